#pragma once
// MIDI files written byte by byte for the tests: tracks of delta-timed events.

#include <QByteArray>
#include <cstdint>
#include <utility>
#include <vector>

inline QByteArray BigEndianBytes(uint32_t value, int count)
{
    QByteArray bytes;
    for (int i = count - 1; i >= 0; --i)
        bytes += char((value >> (8 * i)) & 0xFF);
    return bytes;
}

class TrackBuilder {
public:
    TrackBuilder& Delta(uint32_t ticks)
    {
        QByteArray groups(1, char(ticks & 0x7F));
        while (ticks >>= 7)
            groups.prepend(char(0x80 | (ticks & 0x7F)));
        m_body += groups;
        return *this;
    }
    TrackBuilder& Raw(const QByteArray& bytes)
    {
        m_body += bytes;
        return *this;
    }
    TrackBuilder& Meta(uint32_t delta, uint8_t type, const QByteArray& data)
    {
        Delta(delta);
        m_body += char(0xFF);
        m_body += char(type);
        m_body += char(data.size());
        m_body += data;
        return *this;
    }
    TrackBuilder& Text(uint32_t delta, const QByteArray& text) { return Meta(delta, 0x01, text); }
    TrackBuilder& Lyric(uint32_t delta, const QByteArray& text) { return Meta(delta, 0x05, text); }
    TrackBuilder& Tempo(uint32_t delta, uint32_t micros)
    {
        return Meta(delta, 0x51, BigEndianBytes(micros, 3));
    }
    TrackBuilder& Event(uint32_t delta, std::initializer_list<int> bytes)
    {
        Delta(delta);
        for (int b : bytes)
            m_body += char(b);
        return *this;
    }
    TrackBuilder& End(uint32_t delta = 0) { return Meta(delta, 0x2F, {}); }
    const QByteArray& Body() const { return m_body; }

private:
    QByteArray m_body;
};

// A format 1 file of these tracks; trackCount stands in the header as given (-1: the real count).
inline QByteArray MidiFileOf(const std::vector<TrackBuilder>& tracks, int division = 480, int trackCount = -1)
{
    QByteArray file("MThd");
    file += BigEndianBytes(6, 4) + BigEndianBytes(1, 2);
    file += BigEndianBytes(uint32_t(trackCount < 0 ? int(tracks.size()) : trackCount), 2);
    file += BigEndianBytes(uint32_t(division), 2);
    for (const TrackBuilder& t : tracks)
        file += QByteArray("MTrk") + BigEndianBytes(uint32_t(t.Body().size()), 4) + t.Body();
    return file;
}

// A song with one lyric track per verse, all sung at the same times, a second a quarter note:
// each verse is 12 syllables "<word><n> ", a line every fourth, named by its track name when
// it has one.
inline QByteArray VersesMidiFile(const std::vector<std::pair<const char*, const char*>>& verses)
{
    constexpr int kDivision = 250;
    std::vector<TrackBuilder> tracks{
        TrackBuilder().Tempo(0, 1000000).Event(0, {0x90, 60, 100}).Event(kDivision * 60, {0x80, 60, 0}).End()};
    for (const auto& [name, word] : verses) {
        TrackBuilder track;
        if (name)
            track.Meta(0, 3, name);
        for (int i = 0; i < 12; ++i)
            track.Lyric(kDivision, QByteArray(i % 4 == 0 ? "\r" : "") + word + QByteArray::number(i) + " ");
        tracks.push_back(track.End());
    }
    return MidiFileOf(tracks, kDivision);
}
