#pragma once
// The lyrics of a song: a flat array of timed syllables whose element 0 is the song's header.

#include <QByteArray>
#include <QString>
#include <memory>
#include <cstdint>
#include <vector>

class QFont;
class SongTags;
class CdgDecoder;
class VideoStream;

struct LyricItem {
    QString LineText;
    QString Text;
    double Time = 0;  // seconds from the start of the song; 0 means no time is set
    double Length = 0;  // seconds the syllable is sung, as a held tap measured it; 0 unknown
    bool LineEnd = false;
    // Header fields, element 0 only. Colours are Win32 colour numbers, -1 for "the setting applies".
    QString Picture;
    int32_t ForeColor = -1;
    int32_t HighlightColor = -1;
    int32_t OutlineColor1 = -1;
    int32_t OutlineColor2 = -1;
    int32_t OutlineColor3 = -1;
    int32_t OutlineColor4 = -1;
    int32_t BackColor = -1;
    int16_t Alignment = -1;
    int16_t Layout = -1;
    QString Artist;
    QString Title;
    QString FormatName;
    // Timed by whole lines (tag lyrics), so lit a line at a time; other lyrics light by syllable.
    bool LineTimed = false;
    int16_t ImageLayout = 1;
    int16_t ImagePosition = 0;
    int16_t ImageCustomX = 320;
    int16_t ImageCustomY = 240;
    int16_t ImageOffsetX = 0;
    int16_t ImageOffsetY = 0;

    bool operator==(const LyricItem&) const = default;
};

struct PictureItem {
    QString File;
    int32_t Time = 0;  // whole seconds
    QString Effect;
    QString Detail;
    int16_t Speed = 0;

    bool operator==(const PictureItem&) const = default;
};

struct PictureOrder {
    int32_t Time = -1;
    int16_t Index = 0;
};

// The module-wide lyrics state, held once by the application state.
struct LyricsState {
    std::vector<LyricItem> PlayLyrics{1};
    std::vector<LyricItem> EditLyrics{1};
    std::vector<PictureItem> PlayPictures{1};
    std::vector<PictureItem> EditPictures{1};
    std::vector<PictureOrder> PictureTimes{1};
    int32_t CurrentLyric = 0;
    QString LongestLine;
    QString LyricsTitleText;
    // The lyrics file or song whose lyrics the last LoadLyrics could not read; empty when none
    // was damaged.
    QString DamagedLyricsFile;
    QByteArray RawLyricsText;  // the bytes of the last block or lyrics file read
    // The disc graphics of an MP3+G song, shown instead of the words; null for other songs.
    // Both stay while the song's words are read again.
    std::shared_ptr<CdgDecoder> Graphics;
    // The moving picture of a video song, under the words; null for other songs.
    std::shared_ptr<VideoStream> Video;
};

// Empties the display arrays to their header and clears the header's song-specific fields; the
// graphics and the video go with their song, not with its words.
void ResetLyricsData(LyricsState& lyrics);

// "artist|title" of the loaded lyrics, else of the song's tags, else the song's display name.
QString MakeLyricsTitle(const LyricsState& lyrics, const SongTags* tags);

// The line text that is widest in the lyrics font; the earlier line wins a tie.
QString FindLongestLine(const std::vector<LyricItem>& lyrics, const QFont& font);

// PictureTimes: the pictures sorted by time, -1 for a picture without a time.
void BuildPictureOrder(LyricsState& lyrics);
