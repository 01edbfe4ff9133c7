#pragma once
// The byte-pattern reader of MIDI files: header, first tempo and channel figures found by
// searching the raw bytes, as the player and its channel strips use them. It is no event
// parser on purpose: a byte of the right value anywhere counts, which decides which channels
// light up.

#include "lyrics/LyricsData.h"

#include <QByteArray>
#include <QString>
#include <array>
#include <cstdint>
#include <vector>

struct ChannelRecord {
    bool PatchChanged = false;
    bool VolumeChanged = false;
    int16_t Patch = 0;     // the program of the file, 0 to 255 as read
    int16_t Channel = -1;  // -1 for a channel not in use, else its number plus 1
    int16_t Volume = 100;
    int16_t Pan = 0;
    int16_t State = 0;  // 2 for a channel in use
};

// What the readings of MIDI files leave for the player. It lives as long as the player: a file
// without a tempo event keeps the figures of the song before, and the program starts with 0.
// A track with words of its own: one verse of a file that has a words track per verse.
struct WordsTrack {
    int Track = 0;  // its place in the file, from 0
    QString Name;   // its track name, empty when it has none
};

struct MidiFigures {
    double MidiTempoMicros = 0;      // microseconds per quarter note, of the first tempo event
    float MidiBpm = 0;               // two decimals
    double MidiQuarterDivision = 0;  // the header's division / 4
    double MidiMsPerTick = 0;
    double MidiSegmentLength = 0;  // in music time, 768 per quarter note
    double MidiDuration = 0;       // seconds
    int BeatsPerMeasure = 4;       // the time signature a little way into the song
    int Beat = 4;
    std::array<ChannelRecord, 16> ChannelTable;
    // The verses of the song, none when it has fewer than two, and the track of the one shown.
    std::vector<WordsTrack> Verses;
    int Verse = -1;
};

// The number the old reader made of bytes: each written as hexadecimal without a leading zero,
// joined, read back. So 00 05 is 5 but 01 05 is 0x15, 21.
uint32_t JoinedHexNumber(const QByteArray& bytes, qsizetype at, int count);

// The track whose words are read: a "Words" track name event, else 50 text events; -1 when no
// track qualifies and the whole file is scanned.
int ChooseWordsTrack(const QByteArray& file);
// The body of track `index` as the track walk of the reader finds it.
QByteArray TrackBody(const QByteArray& file, int index);

// Header, first tempo and channels of the file into `figures`; the words of the chosen track
// (or of the whole file) appended to songLyrics. Returns the chosen track, -1 for the file.
int ReadFile(const QByteArray& file, MidiFigures& figures, std::vector<LyricItem>& songLyrics, bool polish);

// The name of General MIDI program 0 to 127, "Percussion" for 128, empty otherwise.
QString GetPatch(int index);
// What plays on a channel (0 to 15) with that patch: "Percussion" on the drum channel, index 9.
QString ChannelInstrument(int channel, int patch);

// The 411 bytes of the file that walks channel 0 through all 128 programs.
QByteArray FileTempBytes();
// Writes them as "filetemp.tmp" into `folder`; false when that fails.
bool CreateFileTemp(const QString& folder);

// A karaoke converter's output under 1000 bytes is taken for a failure: it is deleted and the
// song itself is read. Returns the file to read.
constexpr qint64 kSmallestConvertedFile = 1000;
QString AcceptConvertedFile(const QString& converted, const QString& song);
