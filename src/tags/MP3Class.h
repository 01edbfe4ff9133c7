#pragma once
// One audio file as the program sees it: its kind, length, title and artist (ReadFile), then
// every tag field and the information texts of its format (ReadTag). The current song has a
// long-lived instance; the playlist and the editor make short-lived ones.

#include "lyrics/TagLyrics.h"
#include "tags/EndTags.h"
#include "tags/FileBytes.h"
#include "tags/StreamFacts.h"

#include <QString>
#include <functional>

struct Id3v2Fields;

// Releases the file if it is the song that plays, runs the rewrite, and takes the song up again
// where it was. The player supplies it; without a player the rewrite simply runs.
using PlayingFileRelease = std::function<void(const QString& path, const std::function<void()>& rewrite)>;

// The texts the information dialog saves, in the order SaveId3Tag takes them: the ID3v1 set,
// the ID3v2 set, then the ID3v2 tag's other five.
struct Id3TagTexts {
    QString Title1, Artist1, Album1, Year1, Comment1, Genre1, Track1;
    QString Title2, Artist2, Album2, Year2, Comment2, Genre2, Track2;
    QString Composer, OriginalArtist, Copyright, URL, Encoded;
};

// The seven texts of an APE or Musepack save: title, artist, album, year, comment, genre, track.
struct ApeTagTexts {
    QString Title, Artist, Album, Year, Comment, Genre, Track;
};

// "mid", "midi" and "kar" files are MIDI whatever they hold; the only use of the extension.
bool IsMidiName(const QString& path);
// The suffixes of the songs the program opens, in lower case; a file dialog's "*.mp3;*.ogg;..."
const QStringList& SongSuffixes();
QString SongPatterns();
// The same with zipped MP3+G songs, videos, and the CD+G and UltraStar song files that play the
// audio they draw for or name: for the player's dialogs.
QString PlayerSongPatterns();
// A song the playlist takes from a folder: the songs above, zipped MP3+G songs and videos.
bool IsFolderSongName(const QString& path);

class MP3Class final : public SongTags {
public:
    // Text in ID3v1 and Lyrics3 tags that is not UTF-8 is read in the user's legacy code page.
    explicit MP3Class(bool polishText = false) : m_polish(polishText) { ZeroValues(); }

    QString Filename() const { return m_filename; }
    void SetFilename(const QString& path);
    QString BaseName() const override { return m_baseName; }

    void ZeroValues();
    // True when the file was recognised; never shows a message.
    bool ReadFile();
    // Every tag field, the Lyrics3 fields and the information texts of the file's format.
    void ReadTag() override;

    // Writes a Lyrics3 v2 tag with these fields into the file, keeping its other tags.
    bool SaveLyrics(const QString& nAuthor, const QString& nartist, const QString& nTitle, const QString& nalbum,
                    const QString& nPicture, const QString& nLyrics, const PlayingFileRelease& release = {});

    // Writes the two ID3 tags (an empty set removes its tag) and reads them back: 1 or 0 when
    // the file changed, -1, -2 or -3 when its ID3v1 tag came back as before though ID3v1, ID3v2
    // or both were touched. The fields keep what the last ReadTag found.
    int16_t SaveId3Tag(const Id3TagTexts& texts, const PlayingFileRelease& release = {});
    // The APE tag of the file from the seven texts; 1 when the file holds them changed, -1 when
    // not, 0 when the genre is no number and nothing was done.
    int16_t SaveAPETag(const ApeTagTexts& texts, const PlayingFileRelease& release = {});
    // A Musepack file's tag of the kind asked for: "Force ID3v1", "ID3v1", "Auto" write ID3v1;
    // "APE v2.00", "APE v1.00" write APE; the other kind goes.
    int16_t SaveMPCTag(const ApeTagTexts& texts, const QString& kind, const PlayingFileRelease& release = {});
    // Removes the ID3 tags of an MP3 or Musepack file; APE tags stay.
    void RemoveTag(const PlayingFileRelease& release = {});
    // The format the file's bytes show now, whatever was read before: the saves write only into
    // the formats their tags belong to.
    QString FormatOnDisk() const;
    // MP3, Monkey's Audio and Musepack files carry APE tags.
    static bool TakesApeTag(const QString& format);
    // The texts as the information dialog starts from them.
    Id3TagTexts TagTexts() const;

    QString format() const { return m_format; }
    double Length() const { return m_length; }
    int16_t Bitrate() const { return m_bitrate; }
    int32_t SampleRate() const { return m_sampleRate; }
    // Compares the format with "Mono", so it always says "Stereo"; nothing relies on it.
    QString channels() const;

    QString Title() const override { return CutSp(m_title); }
    void SetTitle(const QString& title) { m_title = title; }
    QString Artist() const override { return CutSp(m_artist); }
    QString Album() const { return CutSp(m_album); }
    QString Year() const { return CutSp(m_year); }
    QString Comment() const { return CutSp(m_comment); }
    QString Track() const { return m_track; }
    QString Genre() const { return CutSp(m_genre); }

    QString Title1() const { return CutSp(m_title1); }
    QString Artist1() const { return CutSp(m_artist1); }
    QString Album1() const { return CutSp(m_album1); }
    QString Year1() const { return CutSp(m_year1); }
    QString Comment1() const { return CutSp(m_comment1); }
    QString Track1() const { return m_track1; }
    QString Genre1() const { return CutSp(m_genre1); }

    QString Title2() const { return CutSp(m_title2); }
    QString Artist2() const { return CutSp(m_artist2); }
    QString Album2() const { return CutSp(m_album2); }
    QString Year2() const { return CutSp(m_year2); }
    QString Comment2() const { return CutSp(m_comment2); }
    QString Track2() const { return m_track2; }
    QString Genre2() const { return CutSp(m_genre2); }
    QString Composer() const { return CutSp(m_composer); }
    QString Copyright() const { return CutSp(m_copyright); }
    QString URL() const { return CutSp(m_url); }
    QString Encoded() const { return CutSp(m_encoded); }
    QString OriginalArtist() const { return CutSp(m_originalArtist); }
    QString Lyrycist() const { return CutSp(m_lyrycist); }
    QString Performer() const { return CutSp(m_performer); }
    QString Description() const { return CutSp(m_description); }

    bool ID3v1Exist() const { return m_id3v1Exist; }
    bool ID3v2Exist() const { return m_id3v2Exist; }
    bool LyricsExist() const { return m_lyricsExist; }
    int32_t LyricsSize() const { return m_lyricsSize; }
    int16_t LyricsVersion() const { return m_lyricsVersion; }
    QString Lyrics() const { return CutSp(m_lyrics); }
    QString LyricsAuthor() const { return CutSp(m_lyricsAuthor); }
    QString LyricsArtist() const { return CutSp(m_lyricsArtist); }
    QString LyricsAlbum() const { return CutSp(m_lyricsAlbum); }
    QString LyricsTitle() const { return CutSp(m_lyricsTitle); }
    QString LyricsPicture() const { return CutSp(m_lyricsPicture); }
    TagLyrics LyricsTag() const override;

    QString MPEGInfo() const { return m_mpegInfo; }
    QString WAVInfo() const { return m_wavInfo; }
    QString OGGInfo() const { return m_oggInfo; }
    QString APEformat() const { return m_apeFormat; }
    QString APEaudio() const { return m_apeAudio; }
    QString APEInfo() const { return m_apeInfo; }
    QString MPPTag() const { return m_mppTag; }
    QString MPPInfo() const { return m_mppInfo; }

    // Strips trailing blanks from the stored field itself, so the strip is permanent.
    static QString CutSp(QString& text);

private:
    bool ReadMidi();
    bool SniffFormat(QByteArrayView bytes);
    void TakeTitleAndArtist(QByteArrayView bytes);
    void ReadLyricsTag(QByteArrayView bytes);
    struct EndOfFileTags {
        bool HasId3v1 = false;
        Id3v1Fields Id3v1;
        bool HasApe = false;
        ApeTagFields Ape;
    };
    void BuildInfoTexts(QByteArrayView bytes, const EndOfFileTags& tags);
    void ReadTagFields(QByteArrayView bytes, const EndOfFileTags& tags);
    void CopyMergedToFirstSet();
    void TakeId3v2Set(const Id3v2Fields& v2);
    // The file's managed regions through an edit, the playing file released around it; false
    // when the save was refused and the file is as it was.
    bool Splice(const PlayingFileRelease& release, const RegionFinder& find, const RegionEdit& edit);
    int16_t VerifyId3Save(bool touchedV1, bool touchedV2) const;
    void SetMerged(const QString& title, const QString& artist, const QString& album, const QString& year,
                   const QString& comment, const QString& track, const QString& genre);

    bool m_polish;
    QString m_filename;
    QString m_baseName;
    QString m_format;
    double m_length = -1.0;
    int16_t m_bitrate = 0;
    int32_t m_sampleRate = 0;
    int m_apeTagVersion = 0;

    mutable QString m_title, m_artist, m_album, m_year, m_comment, m_track, m_genre;
    mutable QString m_title1, m_artist1, m_album1, m_year1, m_comment1, m_track1, m_genre1;
    mutable QString m_title2, m_artist2, m_album2, m_year2, m_comment2, m_track2, m_genre2;
    mutable QString m_composer, m_copyright, m_url, m_encoded, m_originalArtist, m_lyrycist;
    mutable QString m_performer, m_description;
    bool m_id3v1Exist = false;
    bool m_id3v2Exist = false;

    bool m_lyricsExist = false;
    int32_t m_lyricsSize = 0;
    int16_t m_lyricsVersion = 0;
    mutable QString m_lyrics, m_lyricsAuthor, m_lyricsArtist, m_lyricsAlbum, m_lyricsTitle, m_lyricsPicture;

    QString m_mpegInfo, m_wavInfo, m_oggInfo, m_apeFormat, m_apeAudio, m_apeInfo, m_mppTag, m_mppInfo;
};
