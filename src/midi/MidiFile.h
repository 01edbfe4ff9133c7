#pragma once
// A Standard MIDI File read event by event: running status, meta, system exclusive and channel
// events, each with its absolute tick. Damaged files give what could be read before the damage.

#include <QByteArray>
#include <cstdint>
#include <optional>
#include <vector>

struct MidiEvent {
    uint64_t Tick = 0;
    uint8_t Status = 0;    // 0xFF for a meta event, 0xF0/0xF7 for system exclusive
    uint8_t MetaType = 0;  // meta events only
    QByteArray Data;       // the meta text or the channel event's data bytes
};

struct MidiTrack {
    std::vector<MidiEvent> Events;
    uint64_t EndTick = 0;  // the tick of its last event
};

struct MidiFile {
    int Division = 0;  // ticks per quarter note
    std::vector<MidiTrack> Tracks;
};

// The byte at `at`, 0 past either end: short files read as if padded with zeros.
int ByteAt(const QByteArray& bytes, qint64 at);
// `count` bytes from `at` as one big-endian number, padded the same way.
uint32_t BigEndianAt(const QByteArray& bytes, qint64 at, int count);

// Nothing when the bytes do not start as a MIDI file or use frame-based timing.
std::optional<MidiFile> ParseMidiFile(const QByteArray& bytes);

// The old synthesiser's music time: 768 units to the quarter note, whatever the file's division.
inline constexpr int kMusicTimePerQuarter = 768;

// The figures a synthesiser announces for a song: its length in quarter notes (the last event
// of any track), the tempo at its start (the first tempo event, 120 when there is none) and the
// time signature a little way in (4/4 when there is none).
struct MidiSongMeasure {
    double Quarters = 0;
    double Bpm = 120;
    int BeatsPerMeasure = 4;
    int Beat = 4;
    double Seconds() const { return Bpm > 0 ? Quarters * 60.0 / Bpm : 0.0; }
};
MidiSongMeasure MeasureMidiSong(const MidiFile& file);
