// Reading a file in pieces gives what a whole read gives: the last place of a needle that
// straddles two pieces, ranges, comparisons and copies, and nothing past the end of the file.

#include "core/FilePieces.h"
#include "support/TestSupport.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

struct Piecewise {
    QTemporaryDir dir;
    QFile file;
    explicit Piecewise(const QByteArray& bytes) : file(dir.filePath(QStringLiteral("f")))
    {
        WriteFileBytes(file.fileName(), bytes);
        file.open(QIODevice::ReadOnly);
    }
};

} // namespace

TEST(FilePieces, TheLastNeedleIsFoundWhereverThePiecesEnd)
{
    const QByteArray needle = "#Songweaver";
    for (const qint64 at : {qint64(0), kFilePiece - 5, kFilePiece - 1, kFilePiece, 2 * kFilePiece - 6, 2 * kFilePiece + 9}) {
        SCOPED_TRACE(at);
        const QByteArray bytes = QByteArray(at, '-') + needle + QByteArray(2 * kFilePiece + 50 - at, '-');
        Piecewise f(bytes);
        EXPECT_EQ(LastIndexOfInFile(f.file, needle, f.file.size()), bytes.lastIndexOf(needle));
        EXPECT_EQ(LastIndexOfInFile(f.file, needle, at + needle.size()), at) << "a needle ending at the end counts";
        EXPECT_EQ(LastIndexOfInFile(f.file, needle, at + needle.size() - 1), -1) << "one cut short does not";
    }
    Piecewise empty(QByteArray{});
    EXPECT_EQ(LastIndexOfInFile(empty.file, needle, 100), -1);
}

TEST(FilePieces, RangesComparisonsAndCopiesStayInsideTheFile)
{
    QByteArray bytes(3 * kFilePiece + 17, '\0');
    for (qsizetype i = 0; i < bytes.size(); ++i)
        bytes[i] = char(i * 7 % 251);
    Piecewise f(bytes);
    EXPECT_EQ(ReadFileRange(f.file, 5, 10), bytes.mid(5, 10));
    EXPECT_FALSE(ReadFileRange(f.file, bytes.size() - 3, 4).has_value());
    EXPECT_FALSE(ReadFileRange(f.file, -1, 4).has_value());

    Piecewise same(bytes);
    EXPECT_TRUE(SameFileBytes(f.file, 0, same.file, 0, bytes.size()));
    QByteArray changed = bytes;
    changed[2 * kFilePiece + 3] = char(changed[2 * kFilePiece + 3] + 1);
    Piecewise other(changed);
    EXPECT_FALSE(SameFileBytes(f.file, 0, other.file, 0, bytes.size()));
    EXPECT_TRUE(SameFileBytes(f.file, 0, other.file, 0, 2 * kFilePiece + 3));
    EXPECT_FALSE(SameFileBytes(f.file, 10, same.file, 10, bytes.size())) << "a range past the end is no match";

    QFile copy(f.dir.filePath(QStringLiteral("copy")));
    ASSERT_TRUE(copy.open(QIODevice::WriteOnly));
    ASSERT_TRUE(CopyFileBytes(f.file, 100, 2 * kFilePiece + 1, copy));
    EXPECT_FALSE(CopyFileBytes(f.file, bytes.size() - 1, 2, copy));
    copy.close();
    EXPECT_EQ(ReadFileBytes(copy.fileName()), bytes.mid(100, 2 * kFilePiece + 1));
}
