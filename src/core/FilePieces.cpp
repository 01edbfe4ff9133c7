#include "core/FilePieces.h"

#include <algorithm>

qint64 LastIndexOfInFile(QFile& file, QByteArrayView needle, qint64 end)
{
    end = std::min(end, file.size());
    if (needle.isEmpty() || end < needle.size())
        return -1;
    // Each piece overlaps the one after it by the needle's length less one, so a needle that
    // straddles two pieces is still found whole.
    const qint64 overlap = needle.size() - 1;
    qint64 pieceEnd = end;
    while (pieceEnd >= needle.size()) {
        const qint64 pieceBegin = std::max<qint64>(0, pieceEnd - kFilePiece - overlap);
        const auto piece = ReadFileRange(file, pieceBegin, pieceEnd - pieceBegin);
        if (!piece)
            return -1;
        const qsizetype at = piece->lastIndexOf(needle);
        if (at >= 0)
            return pieceBegin + at;
        if (pieceBegin == 0)
            break;
        pieceEnd = pieceBegin + overlap;
    }
    return -1;
}

std::optional<QByteArray> ReadFileRange(QFile& file, qint64 from, qint64 length)
{
    if (from < 0 || length < 0 || from + length > file.size() || !file.seek(from))
        return std::nullopt;
    QByteArray bytes(length, Qt::Uninitialized);
    qint64 done = 0;
    while (done < length) {
        const qint64 read = file.read(bytes.data() + done, length - done);
        if (read <= 0)
            return std::nullopt;
        done += read;
    }
    return bytes;
}

bool SameFileBytes(QFile& a, qint64 fromA, QFile& b, qint64 fromB, qint64 length)
{
    for (qint64 done = 0; done < length;) {
        const qint64 piece = std::min(kFilePiece, length - done);
        const auto left = ReadFileRange(a, fromA + done, piece);
        const auto right = ReadFileRange(b, fromB + done, piece);
        if (!left || !right || *left != *right)
            return false;
        done += piece;
    }
    return true;
}

bool CopyFileBytes(QFile& source, qint64 from, qint64 length, QFileDevice& target)
{
    for (qint64 done = 0; done < length;) {
        const auto piece = ReadFileRange(source, from + done, std::min(kFilePiece, length - done));
        if (!piece || target.write(*piece) != piece->size())
            return false;
        done += piece->size();
    }
    return true;
}
