#pragma once
// Bounds-checked reads of little- and big-endian integers from file bytes: a read past the end
// gives 0, so a truncated header reads as zeros instead of reading out of the buffer.

#include <QByteArrayView>
#include <cstdint>

inline uint32_t ByteAt(QByteArrayView bytes, qsizetype at)
{
    return at >= 0 && at < bytes.size() ? uint8_t(bytes[at]) : 0;
}

inline uint32_t LittleEndian(QByteArrayView bytes, qsizetype at, int count)
{
    uint32_t value = 0;
    for (int i = count - 1; i >= 0; --i)
        value = (value << 8) | ByteAt(bytes, at + i);
    return value;
}

inline uint32_t BigEndian(QByteArrayView bytes, qsizetype at, int count)
{
    uint32_t value = 0;
    for (int i = 0; i < count; ++i)
        value = (value << 8) | ByteAt(bytes, at + i);
    return value;
}

inline bool HasAt(QByteArrayView bytes, qsizetype at, QByteArrayView magic)
{
    return at >= 0 && at + magic.size() <= bytes.size() && bytes.sliced(at, magic.size()) == magic;
}
