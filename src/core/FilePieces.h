#pragma once
// Reading a file in bounded pieces: a song may be gigabytes, and what is looked for stands at
// its ends, so nothing here holds more than a piece of it in memory at once.

#include <QByteArray>
#include <QByteArrayView>
#include <QFile>
#include <optional>

// The size of one piece read from disk.
inline constexpr qint64 kFilePiece = qint64(1) << 20;

// The last place before `end` where `needle` starts, searched from the end backwards; -1 when
// it is not there.
qint64 LastIndexOfInFile(QFile& file, QByteArrayView needle, qint64 end);

// `length` bytes from `from`; nothing when the file ends before them or cannot be read.
std::optional<QByteArray> ReadFileRange(QFile& file, qint64 from, qint64 length);

// Whether the two files hold the same `length` bytes at the two offsets.
bool SameFileBytes(QFile& a, qint64 fromA, QFile& b, qint64 fromB, qint64 length);

// Copies `length` bytes from `from` of one file to the end of the other.
bool CopyFileBytes(QFile& source, qint64 from, qint64 length, QFileDevice& target);
