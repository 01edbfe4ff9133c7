#pragma once
// Lyrics that travel in an audio file's tag ("[mm:ss]text" lines and a picture list), and the
// narrow view of the song's tags that the lyrics loader needs.

#include "lyrics/LyricsData.h"

#include <functional>

// The Lyrics3 fields of a tag as plain texts.
struct TagLyrics {
    bool LyricsExist = false;
    int16_t LyricsVersion = 0;
    QString Lyrics;         // CR LF lines "[mm:ss]text"
    QString LyricsPicture;  // CR LF lines "file" or "file||||text [seconds]"
    QString LyricsArtist;
    QString LyricsTitle;
};

// The current song's tags as the lyrics loader reads them; the tag reader of the song implements it.
class SongTags {
public:
    virtual ~SongTags() = default;
    virtual void ReadTag() = 0;
    virtual QString Artist() const = 0;
    virtual QString Title() const = 0;
    virtual QString BaseName() const = 0;
    virtual TagLyrics LyricsTag() const = 0;
};

// Runs after lyrics are loaded; the karaoke window fits its font there when it is open.
using LyricsRefit = std::function<void()>;

// Each "[time]text" line of tag lyrics as one whole-line syllable; other lines are dropped.
void AppendTagLines(std::vector<LyricItem>& lyrics, const QString& text);

// Tag lyrics into PlayLyrics and PlayPictures: one syllable per timed line, lines before the
// first time tag dropped.
void ImportTagLyrics(LyricsState& lyrics, const TagLyrics& tag, const QFont& font,
                     const LyricsRefit& refit = {});
