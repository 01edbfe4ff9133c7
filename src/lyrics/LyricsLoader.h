#pragma once
// Finding a song's lyrics: the block at the end of the song file, else the sibling ".lrs" file,
// else the lyrics of the song's tag.

#include "lyrics/LyricsBlock.h"

// What a load needs from the rest of the program.
struct LyricsEnvironment {
    QFont Font;                // the lyrics font of the settings, for the longest line
    bool Polish = false;       // text that is not UTF-8 is read in the user's legacy code page
    SongTags* Tags = nullptr;  // the current song's tags; nullptr when none are known
    LyricsRefit Refit;
};

// The song's path with "lrs" for the last three characters, as the old program named it.
QString LyricsPathOf(const QString& songPath);

// Loads the song's lyrics into PlayLyrics and sets LyricsTitleText. A damaged block inside
// the song stops the search. False when no lyrics were found.
bool LoadLyrics(LyricsState& lyrics, const QString& songPath, const LyricsEnvironment& env);

// What follows every load, for lyrics put on the display by other means (the editor's): the
// picture order, the longest line and the title, then the refit.
void FinishShownLyrics(LyricsState& lyrics, const LyricsEnvironment& env);

// The block inside a MIDI song; asks first that the sibling ".lrs" file exists.
bool LoadEmbeddedLyrics(LyricsState& lyrics, const QString& songPath, const LyricsEnvironment& env);

// The largest file read whole: lyrics files and MIDI songs are far smaller; anything larger is
// no such file, and reading it would hold it all in memory.
inline constexpr qint64 kLargestWholeFile = qint64(16) << 20;
// The whole file's bytes, empty when it cannot be read or is larger than that.
QByteArray ReadWholeFile(const QString& path);
