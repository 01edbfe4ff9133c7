// Reading stays cheap whatever the file: a song of 200 MB opens with its lyrics without being
// read whole, the block is found from the end exactly where a whole read would find it, and a
// block of one line with 120,000 syllables loads.

#include "lyrics/LyricsLoader.h"
#include "support/TestSupport.h"

#include <QFile>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

QByteArray OneLongLine(int syllables)
{
    QByteArray block = "#Songweaver\r\n#TITLE=Long\r\n";
    for (int i = 0; i < syllables; ++i)
        block += '[' + QByteArray::number(i / 20.0, 'f', 2) + "]la ";
    return block + "\r\n#End Songweaver\r\n";
}

std::optional<BlockSpan> SpanInFile(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? FindLyricsBlockInFile(file) : std::nullopt;
}

} // namespace

TEST(LargeInput, TheBlockFoundFromTheEndIsTheOneAWholeReadFinds)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("song.mp3"));
    const QByteArray block = OneLongLine(3);
    const qsizetype piece = qsizetype(1) << 20;
    QRandomGenerator random(30);
    // Markers placed across the edges of the pieces read from disk, and files with a marker
    // missing, out of order or repeated.
    std::vector<QByteArray> files;
    for (const qsizetype at : {piece - 5, piece - 11, piece, 2 * piece - 1, piece + 3}) {
        QByteArray bytes(at, 'x');
        files.push_back(bytes + block + QByteArray(64, 'y'));
        QByteArray end = QByteArray(2 * piece + 300 - at, 'z');
        files.push_back(bytes + "#Songweaver" + end.first(200) + "\r\n#End Songweaver" + end);
    }
    files.push_back(QByteArray(piece + 100, 'x') + "#Songweaver");
    files.push_back("\r\n#End Songweaver" + QByteArray(piece, 'x') + "#Songweaver");
    files.push_back(block + QByteArray(3 * piece, 'q') + block);
    for (int i = 0; i < 4; ++i) {
        QByteArray noise(2 * piece + random.bounded(1000), '\0');
        for (char& c : noise)
            c = char(random.bounded(256));
        files.push_back(noise.first(piece) + block + noise);
    }
    for (const QByteArray& bytes : files) {
        WriteFileBytes(path, bytes);
        const auto whole = FindLyricsBlock(bytes);
        const auto pieces = SpanInFile(path);
        ASSERT_EQ(whole.has_value(), pieces.has_value());
        if (whole) {
            EXPECT_EQ(pieces->Begin, whole->Begin);
            EXPECT_EQ(pieces->Length, whole->Length);
        }
    }
}

TEST(LargeInput, ASongOf200MegabytesOpensWithItsLyrics)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("live.mp3"));
    {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        // A hole in the file: the disk holds only the ends.
        ASSERT_TRUE(file.resize(qint64(200) << 20));
        ASSERT_TRUE(file.seek(file.size()));
        file.write("\r\n" + OneLongLine(40) + QByteArray(128, '\0').replace(0, 3, "TAG"));
    }
    LyricsState lyrics;
    EXPECT_TRUE(LoadLyrics(lyrics, path, LyricsEnvironment{QFont(), false, nullptr, {}}));
    EXPECT_EQ(lyrics.PlayLyrics.size(), 41u);
    EXPECT_EQ(lyrics.PlayLyrics[0].Title, "Long");
}

TEST(LargeInput, ABlockOfOneLineWith120000SyllablesLoads)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("song.mp3"));
    WriteFileBytes(path, QByteArray(4096, '\0') + "\r\n" + OneLongLine(120000));
    LyricsState lyrics;
    ASSERT_TRUE(LoadLyrics(lyrics, path, LyricsEnvironment{QFont(), false, nullptr, {}}));
    ASSERT_EQ(lyrics.PlayLyrics.size(), 120001u);
    EXPECT_EQ(lyrics.PlayLyrics[120000].Time, 5999.95);
    EXPECT_EQ(lyrics.PlayLyrics[1].LineText.size(), 120000 * 3);
    EXPECT_EQ(lyrics.LongestLine, lyrics.PlayLyrics[1].LineText);
}

TEST(LargeInput, ABlockTooLargeToHoldIsTakenForDamage)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("song.mp3"));
    {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("#Songweaver\r\n[1]la");
        ASSERT_TRUE(file.resize(kLargestLyricsBlock + 100));
        ASSERT_TRUE(file.seek(file.size()));
        file.write("\r\n#End Songweaver\r\n");
    }
    QByteArray block;
    EXPECT_EQ(ReadLyricsBlock(path, block), BlockRead::TooLarge);
    EXPECT_TRUE(block.isEmpty());
    LyricsState lyrics;
    EXPECT_FALSE(LoadLyrics(lyrics, path, LyricsEnvironment{QFont(), false, nullptr, {}}))
        << "a damaged block stops the search, as it always has";
}
