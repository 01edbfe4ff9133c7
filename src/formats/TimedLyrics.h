#pragma once
// The timed lyrics of other programs as the player's lyrics: LRC (line-timed), enhanced LRC
// (word-timed), UltraStar song files (notes on beats, with pitches), ASS karaoke subtitles (\k
// syllables) and SRT subtitles, read from text in any encoding and written back. What the
// player's lyrics have no place for (UltraStar's notes, lengths, pitches and duet parts) is kept
// beside them.

#include "lyrics/LyricsData.h"

#include <QString>
#include <QStringList>
#include <optional>
#include <vector>

enum class LyricsFormat { Lrc, EnhancedLrc, UltraStar, Ass, Srt };

// One UltraStar note: ':' normal, '*' golden, 'F' freestyle, 'R' rap, 'G' golden rap.
struct UltraStarNote {
    char kind = ':';
    int beat = 0;
    int length = 0;
    int pitch = 0;
    int part = 1;       // 1 or 2 in a duet
    int syllable = -1;  // its syllable in the lyrics, -1 for a note of the part not shown
};

// What an UltraStar file says beyond its words.
struct UltraStarSong {
    QString audio;  // #MP3 or #AUDIO
    QString video, cover, background;
    double bpm = 0;
    double gapMs = 0;
    double videoGap = 0;
    double start = 0;
    double end = 0;
    bool relative = false;
    QStringList partNames;  // of a duet: P1, P2
    std::vector<UltraStarNote> notes;
};

struct TimedLyrics {
    std::vector<LyricItem> items{1};  // element 0 the header, as the player's lyrics
    UltraStarSong ultraStar;          // UltraStar files only
};

// Lyrics files are read whole up to this size; a larger file is no lyrics file.
inline constexpr qsizetype kLargestTimedLyricsFile = qsizetype(4) << 20;

// Each reader gives nothing when the text holds no timed line at all.
std::optional<TimedLyrics> ReadLrc(const QString& text);
// Part 1 of a duet shows, or `part` 2.
std::optional<TimedLyrics> ReadUltraStar(const QString& text, int part = 1);
std::optional<TimedLyrics> ReadAss(const QString& text);
std::optional<TimedLyrics> ReadSrt(const QString& text);

// The writers take the player's lyrics (element 0 the header). UltraStar names the song's audio
// file; ASS takes the font family and size of its style.
QString WriteLrc(const std::vector<LyricItem>& lyrics, bool enhanced);
QString WriteUltraStar(const std::vector<LyricItem>& lyrics, const QString& audioFile);
QString WriteAss(const std::vector<LyricItem>& lyrics, const QString& fontFamily, int fontSize);
QString WriteSrt(const std::vector<LyricItem>& lyrics);

// "12:34.56" for the LRC tags.
QString LrcTime(double seconds);
