#include "midi/MidiFile.h"

#include <algorithm>

namespace {

constexpr double kDefaultBpm = 120;

class TrackReader {
public:
    TrackReader(const QByteArray& bytes, qsizetype begin, qsizetype end) : m_bytes(bytes), m_pos(begin), m_end(end) {}

    bool AtEnd() const { return m_pos >= m_end; }
    int Peek() const { return AtEnd() ? -1 : uint8_t(m_bytes[m_pos]); }
    int Byte() { return AtEnd() ? -1 : uint8_t(m_bytes[m_pos++]); }
    QByteArray Take(uint64_t count)
    {
        const qsizetype n = qsizetype(std::min<uint64_t>(count, uint64_t(m_end - m_pos)));
        const QByteArray taken = m_bytes.mid(m_pos, n);
        m_pos += n;
        return taken;
    }
    uint32_t VariableLength()
    {
        uint32_t value = 0;
        for (int i = 0; i < 4; ++i) {
            const int byte = Byte();
            if (byte < 0)
                break;
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

int DataBytesOf(uint8_t status)
{
    const int kind = status & 0xF0;
    return kind == 0xC0 || kind == 0xD0 ? 1 : 2;
}

MidiTrack ReadTrack(TrackReader reader)
{
    MidiTrack track;
    uint64_t tick = 0;
    uint8_t running = 0;
    while (!reader.AtEnd()) {
        tick += reader.VariableLength();
        MidiEvent event;
        event.Tick = tick;
        const int first = reader.Peek();
        if (first < 0)
            break;
        if (first & 0x80) {
            event.Status = uint8_t(reader.Byte());
        } else if (running) {
            event.Status = running;  // running status: the byte is the first data byte
        } else {
            break;
        }
        if (event.Status == 0xFF) {
            event.MetaType = uint8_t(std::max(reader.Byte(), 0));
            event.Data = reader.Take(reader.VariableLength());
        } else if (event.Status == 0xF0 || event.Status == 0xF7) {
            event.Data = reader.Take(reader.VariableLength());
        } else if (event.Status >= 0xF0) {
            continue;  // a system common byte inside a file has no data we could trust
        } else {
            running = event.Status;
            event.Data = reader.Take(uint64_t(DataBytesOf(event.Status)));
        }
        track.EndTick = tick;
        const bool endOfTrack = event.Status == 0xFF && event.MetaType == 0x2F;
        track.Events.push_back(std::move(event));
        if (endOfTrack)
            break;
    }
    return track;
}

} // namespace

int ByteAt(const QByteArray& bytes, qint64 at)
{
    return at >= 0 && at < bytes.size() ? uint8_t(bytes[qsizetype(at)]) : 0;
}

uint32_t BigEndianAt(const QByteArray& bytes, qint64 at, int count)
{
    uint32_t value = 0;
    for (int i = 0; i < count; ++i)
        value = (value << 8) | uint32_t(ByteAt(bytes, at + i));
    return value;
}

std::optional<MidiFile> ParseMidiFile(const QByteArray& bytes)
{
    if (bytes.size() < 14 || !bytes.startsWith("MThd"))
        return std::nullopt;
    const uint32_t headerLength = BigEndianAt(bytes, 4, 4);
    const int trackCount = int(BigEndianAt(bytes, 10, 2));
    MidiFile file;
    file.Division = int(BigEndianAt(bytes, 12, 2));
    if (file.Division == 0 || (file.Division & 0x8000))
        return std::nullopt;

    qsizetype at = 8 + qsizetype(std::min<uint32_t>(headerLength, uint32_t(bytes.size())));
    for (int i = 0; i < trackCount && at + 8 <= bytes.size(); ++i) {
        const qsizetype length = qsizetype(BigEndianAt(bytes, at + 4, 4));
        const qsizetype end = std::min<qsizetype>(bytes.size(), at + 8 + length);
        if (bytes.mid(at, 4) == "MTrk")
            file.Tracks.push_back(ReadTrack(TrackReader(bytes, at + 8, end)));
        at = end;
    }
    return file;
}

MidiSongMeasure MeasureMidiSong(const MidiFile& file)
{
    // The time signature is read where the old synthesiser asked for it: 2000 units of its music
    // time into the song.
    const double signatureTick = 2000.0 / kMusicTimePerQuarter * file.Division;
    MidiSongMeasure measure;
    uint64_t lastTick = 0;
    const MidiEvent* firstTempo = nullptr;
    const MidiEvent* signature = nullptr;
    for (const MidiTrack& track : file.Tracks) {
        lastTick = std::max(lastTick, track.EndTick);
        for (const MidiEvent& event : track.Events) {
            const bool tempo = event.Status == 0xFF && event.MetaType == 0x51 && event.Data.size() == 3;
            if (tempo && (!firstTempo || event.Tick < firstTempo->Tick))
                firstTempo = &event;
            const bool timeSignature = event.Status == 0xFF && event.MetaType == 0x58 && event.Data.size() >= 2
                                       && ByteAt(event.Data, 0) > 0 && ByteAt(event.Data, 1) < 8;
            if (timeSignature && double(event.Tick) <= signatureTick && (!signature || event.Tick >= signature->Tick))
                signature = &event;
        }
    }
    if (signature) {
        measure.BeatsPerMeasure = ByteAt(signature->Data, 0);
        measure.Beat = 1 << ByteAt(signature->Data, 1);
    }
    measure.Quarters = double(lastTick) / file.Division;
    const uint32_t micros = firstTempo ? BigEndianAt(firstTempo->Data, 0, 3) : 0;
    measure.Bpm = micros > 0 ? 60e6 / micros : kDefaultBpm;
    return measure;
}
