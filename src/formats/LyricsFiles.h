#pragma once
// Timed-lyrics files of other programs on disk: their format by name, read in any encoding,
// found beside a song, written safely, and put on the player's display.

#include "formats/TimedLyrics.h"

struct LyricsEnvironment;
struct LyricsState;

// By the file's extension: .lrc, .txt (UltraStar), .ass or .ssa, .srt; nothing for others.
std::optional<LyricsFormat> FormatOfFile(const QString& path);
// The file read whole (up to kLargestTimedLyricsFile) and decoded in whatever encoding it came;
// nothing when it cannot be read or holds no timed lyrics.
std::optional<TimedLyrics> ReadTimedLyricsFile(const QString& path, bool polish);
// A file with the song's base name beside it: .lrc, an UltraStar .txt whose #MP3 names this
// song (or another UltraStar file of the folder that names it), .ass, .srt, in that order.
std::optional<TimedLyrics> FindSiblingLyrics(const QString& songPath, bool polish);
// The UltraStar file's audio beside it, its name in any case; empty when it names none that exists.
QString UltraStarAudioPath(const QString& txtPath, const TimedLyrics& lyrics);

// The player's lyrics as a format's text. ASS takes the font; UltraStar names the song's audio.
QString TimedLyricsText(LyricsFormat format, const std::vector<LyricItem>& lyrics, const QString& songPath,
                        const QString& fontFamily = {}, int fontSize = 48);
// The same written as a file, UTF-8 without a byte order mark, replacing the file
// whole or not at all.
bool WriteTimedLyricsFile(const QString& path, LyricsFormat format, const std::vector<LyricItem>& lyrics,
                          const QString& songPath, const QString& fontFamily = {}, int fontSize = 48);

// Timed lyrics put on the player's display as a load of its own lyrics would.
void ShowTimedLyrics(LyricsState& lyrics, const TimedLyrics& timed, const LyricsEnvironment& env);
// When the song has no lyrics of its own: a sibling file's, shown; false when there is none.
bool LoadSiblingLyrics(LyricsState& lyrics, const QString& songPath, const LyricsEnvironment& env);
