#include "midi/MidiRead.h"

#include "core/TextCodec.h"

#include <QFile>
#include <algorithm>
#include <array>
#include <map>

namespace {

constexpr double kDefaultQuarterMicros = 500000;
// The synthesiser's look-ahead of 2000 units at 768 per quarter note: the tempo read there is
// the song's tempo.
constexpr double kTempoLookAheadQuarters = 2000.0 / 768.0;

class ByteReader {
public:
    ByteReader(const QByteArray& bytes, qsizetype begin, qsizetype end) : m_bytes(bytes), m_pos(begin), m_end(end) {}

    bool AtEnd() const { return m_pos >= m_end; }
    void Skip(qsizetype count) { m_pos = std::min(m_end, m_pos + std::max<qsizetype>(count, 0)); }
    void StepBack() { --m_pos; }
    int Byte() { return AtEnd() ? -1 : uint8_t(m_bytes[m_pos++]); }
    uint32_t VariableLength()
    {
        uint32_t value = 0;
        for (int i = 0; i < 4; ++i) {
            const int byte = Byte();
            if (byte < 0)
                return value;
            value = (value << 7) | uint32_t(byte & 0x7F);
            if (!(byte & 0x80))
                break;
        }
        return value;
    }

private:
    const QByteArray& m_bytes;
    qsizetype m_pos;
    qsizetype m_end;
};

uint32_t BigEndian(const QByteArray& bytes, qsizetype at, int count)
{
    uint32_t value = 0;
    for (int i = 0; i < count; ++i)
        value = (value << 8) | uint8_t(bytes[at + i]);
    return value;
}

// Walks one track; returns its last tick and adds its tempo events to `tempos`.
uint64_t WalkTrack(ByteReader track, std::map<uint64_t, double>& tempos)
{
    uint64_t tick = 0;
    int status = 0;
    while (!track.AtEnd()) {
        tick += track.VariableLength();
        int byte = track.Byte();
        if (byte < 0)
            break;
        if (byte == 0xFF) {
            const int kind = track.Byte();
            const uint32_t length = track.VariableLength();
            if (kind == 0x2F)
                break;
            if (kind == 0x51 && length == 3) {
                const int a = track.Byte(), b = track.Byte(), c = track.Byte();
                tempos.emplace(tick, double((a << 16) | (b << 8) | c));
            } else {
                track.Skip(length);
            }
            continue;
        }
        if (byte == 0xF0 || byte == 0xF7) {
            track.Skip(track.VariableLength());
            continue;
        }
        if (byte & 0x80)
            status = byte;
        else
            track.StepBack();  // running status: the byte was data
        if (status == 0)
            break;
        const int kind = status & 0xF0;
        track.Skip(kind == 0xC0 || kind == 0xD0 ? 1 : 2);
    }
    return tick;
}

QString ProperCase(const QString& text)
{
    QString result = text.toLower();
    bool wordStart = true;
    for (QChar& c : result) {
        if (wordStart && c.isLetter())
            c = c.toUpper();
        wordStart = c.isSpace();
    }
    return result;
}

} // namespace

double MidiFileSeconds(const QByteArray& bytes)
{
    if (bytes.size() < 14 || !bytes.startsWith("MThd"))
        return 0;
    const uint32_t headerLength = BigEndian(bytes, 4, 4);
    const int tracks = int(BigEndian(bytes, 10, 2));
    const uint32_t division = BigEndian(bytes, 12, 2);
    if (division == 0 || (division & 0x8000))
        return 0;

    std::map<uint64_t, double> tempos;
    uint64_t lastTick = 0;
    qsizetype at = 8 + qsizetype(headerLength);
    for (int i = 0; i < tracks && at + 8 <= bytes.size(); ++i) {
        const qsizetype end = std::min<qsizetype>(bytes.size(), at + 8 + qsizetype(BigEndian(bytes, at + 4, 4)));
        if (bytes.mid(at, 4) == "MTrk")
            lastTick = std::max(lastTick, WalkTrack(ByteReader(bytes, at + 8, end), tempos));
        at = end;
    }

    const uint64_t lookAhead = uint64_t(kTempoLookAheadQuarters * division);
    double quarterMicros = kDefaultQuarterMicros;
    for (const auto& [tick, micros] : tempos) {
        if (tick > lookAhead)
            break;
        if (micros > 0)
            quarterMicros = micros;
    }
    return double(lastTick) / division * quarterMicros / 1e6;
}

void ReadMidiTitle(const QByteArray& bytes, bool polish, QString& title, QString& artist)
{
    std::array<QString, 3> found;
    size_t filled = 0;
    qsizetype searchFrom = 20;
    for (int i = 0; i < 3; ++i) {
        const qsizetype p = bytes.indexOf("@T", searchFrom);
        if (p < 0)
            continue;
        if (p >= 3 && uint8_t(bytes[p - 3]) == 0xFF && bytes[p - 2] == 1) {
            const int length = uint8_t(bytes[p - 1]);
            found[filled++] = ProperCase(DecodeText(bytes.mid(p + 2, std::max(0, length - 2)), polish));
        }
        searchFrom = p + 1;
    }
    if (found[0].isEmpty())
        return;
    title = found[0];
    artist = found[1];
}

void MidiRead::SetFilename(const QString& path)
{
    m_filename = path;
    Length = 0;
    Title.clear();
    Artist.clear();
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return;
    const QByteArray bytes = file.readAll();
    Length = MidiFileSeconds(bytes);
    ReadMidiTitle(bytes, m_polish, Title, Artist);
}
