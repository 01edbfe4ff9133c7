#include "tags/MP3Class.h"

#include "audio/MediaProbe.h"
#include "midi/MidiRead.h"
#include "tags/EndTags.h"
#include "tags/FileBytes.h"
#include "tags/Genres.h"
#include "tags/InfoTexts.h"
#include "tags/Lyrics3.h"
#include "tags/TagBridge.h"
#include "video/VideoStream.h"
#include "core/Numbers.h"

#include <QFileInfo>

bool IsMidiName(const QString& path)
{
    const QString extension = path.mid(path.lastIndexOf(u'.') + 1).toLower();
    return extension == u"midi" || extension == u"mid" || extension == u"kar";
}

const QStringList& SongSuffixes()
{
    static const QStringList suffixes{QStringLiteral("mp3"), QStringLiteral("ogg"), QStringLiteral("wav"),
                                      QStringLiteral("mpc"), QStringLiteral("ape"), QStringLiteral("mid"),
                                      QStringLiteral("midi"), QStringLiteral("kar")};
    return suffixes;
}

QString SongPatterns()
{
    QStringList patterns;
    for (const QString& suffix : SongSuffixes())
        patterns << QStringLiteral("*.") + suffix;
    return patterns.join(u';');
}

QString PlayerSongPatterns()
{
    QString patterns = SongPatterns() + QStringLiteral(";*.cdg;*.zip");
    for (const QString& suffix : VideoSuffixes())
        patterns += QStringLiteral(";*.") + suffix;
    return patterns + QStringLiteral(";*.txt");
}

bool IsFolderSongName(const QString& path)
{
    const QString suffix = QFileInfo(path).suffix().toLower();
    return SongSuffixes().contains(suffix) || suffix == u"zip" || VideoSuffixes().contains(suffix);
}

QString MP3Class::CutSp(QString& text)
{
    qsizetype end = text.size();
    while (end > 0 && text[end - 1] == u' ')
        --end;
    text.truncate(end);
    return text;
}

void MP3Class::SetFilename(const QString& path)
{
    ZeroValues();
    m_filename = path;
    m_baseName = QFileInfo(path).completeBaseName();
}

void MP3Class::ZeroValues()
{
    m_length = -1.0;
    m_format.clear();
    m_bitrate = 0;
    m_sampleRate = 0;
    m_lyricsSize = 0;
    m_lyricsVersion = 0;
    m_apeTagVersion = 0;
    m_id3v1Exist = m_id3v2Exist = m_lyricsExist = false;
    for (QString* text : {&m_title, &m_artist, &m_album, &m_year, &m_comment, &m_genre, &m_title1, &m_artist1,
                          &m_album1, &m_year1, &m_comment1, &m_genre1, &m_title2, &m_artist2, &m_album2,
                          &m_year2, &m_comment2, &m_track2, &m_genre2, &m_composer, &m_copyright, &m_url,
                          &m_encoded, &m_originalArtist, &m_lyrycist, &m_performer, &m_description, &m_lyrics,
                          &m_lyricsAuthor, &m_lyricsArtist, &m_lyricsAlbum, &m_lyricsTitle, &m_lyricsPicture,
                          &m_mpegInfo, &m_wavInfo, &m_oggInfo, &m_apeFormat, &m_apeAudio, &m_apeInfo, &m_mppTag,
                          &m_mppInfo})
        text->clear();
    m_track = m_track1 = QStringLiteral("0");
}

QString MP3Class::channels() const
{
    return m_format == u"Mono" ? QStringLiteral("Mono") : QStringLiteral("Stereo");
}

bool MP3Class::ReadFile()
{
    if (IsMidiName(m_filename))
        return ReadMidi();
    m_length = MediaLength(QFile::encodeName(m_filename).toStdString());
    if (m_length == 0)
        return false;
    const FileBytes file(m_filename);
    const bool recognised = SniffFormat(file.View());
    TakeTitleAndArtist(file.View());
    return recognised;
}

bool MP3Class::ReadMidi()
{
    m_format = QStringLiteral("MIDI");
    MidiRead midi(m_polish);
    midi.SetFilename(m_filename);
    m_length = midi.Length;
    m_title = midi.Title;
    m_artist = midi.Artist;
    if (m_title.isEmpty() && m_artist.isEmpty())
        m_title = m_baseName;
    return m_length > 0;
}

bool MP3Class::SniffFormat(QByteArrayView bytes)
{
    if (const WavFacts wav = AnalyseWav(bytes); wav.Valid) {
        m_format = QStringLiteral("WAV");
        m_sampleRate = wav.Rate;
    } else if (const MpegFacts mpeg = AnalyseMpeg(bytes); mpeg.Valid) {
        m_format = QStringLiteral("MP3");
        m_bitrate = int16_t(mpeg.Bitrate);
        m_sampleRate = mpeg.Rate;
    } else if (const ApeFacts ape = AnalyseApe(bytes); ape.Valid) {
        m_format = QStringLiteral("APE");
        m_sampleRate = ape.Rate;
    } else if (const MpcFacts mpc = AnalyseMpc(bytes); mpc.Valid) {
        m_format = QStringLiteral("MPC");
        m_bitrate = int16_t(mpc.Bitrate);
    } else if (const OggFacts ogg = AnalyseOgg(bytes); ogg.Valid) {
        m_format = QStringLiteral("OGG");
        m_bitrate = int16_t(ogg.Nominal);
        m_length = ogg.Seconds;
        m_sampleRate = ogg.Rate;
    }
    return !m_format.isEmpty();
}

// The playlist's title and artist: ID3v2 beats ID3v1, and the APE tag, the Ogg comment and a
// WAV file's own tags are asked only when there is no ID3v2 tag in front.
void MP3Class::TakeTitleAndArtist(QByteArrayView bytes)
{
    if (Id3v1Fields v1; ReadId3v1(bytes, m_polish, v1)) {
        m_title = v1.Title;
        m_artist = v1.Artist;
    }
    if (Id3v2Fields v2; ReadId3v2(bytes, v2)) {
        m_title = v2.Title;
        m_artist = v2.Artist;
    } else if (ApeTagFields ape; ReadApeTag(bytes, ape)) {
        m_title = ape.Title;
        m_artist = ape.Artist;
    } else if (OggComment ogg; m_format == u"OGG" && ReadOggComment(m_filename, ogg)) {
        m_title = ogg.Title;
        m_artist = ogg.Artist;
    } else if (m_format == u"WAV") {
        ReadWavTitle(m_filename, m_title, m_artist);
    }
}

void MP3Class::ReadTag()
{
    const FileBytes file(m_filename);
    const QByteArrayView bytes = file.View();
    EndOfFileTags tags;
    tags.HasId3v1 = ReadId3v1(bytes, m_polish, tags.Id3v1);
    tags.HasApe = ReadApeTag(bytes, tags.Ape);
    ReadLyricsTag(bytes);
    BuildInfoTexts(bytes, tags);
    ReadTagFields(bytes, tags);
}

void MP3Class::ReadLyricsTag(QByteArrayView bytes)
{
    Lyrics3Tag tag;
    m_lyricsExist = ReadLyrics3(bytes, m_polish, tag);
    if (!m_lyricsExist)
        return;
    m_lyricsSize = tag.Size;
    m_lyricsVersion = tag.Version;
    m_lyrics = tag.Lyrics;
    m_lyricsAuthor = tag.Author;
    m_lyricsArtist = tag.Artist;
    m_lyricsAlbum = tag.Album;
    m_lyricsTitle = tag.Title;
    m_lyricsPicture = tag.Images;
}

void MP3Class::BuildInfoTexts(QByteArrayView bytes, const EndOfFileTags& tags)
{
    const bool hasV1 = tags.HasId3v1;
    const bool hasV2 = Id3v2Span(bytes) > 0;
    const bool hasApe = tags.HasApe;
    if (m_format == u"WAV") {
        m_wavInfo = WavInfoText(AnalyseWav(bytes));
    } else if (m_format == u"MP3") {
        m_mpegInfo = MpegInfoText(AnalyseMpeg(bytes));
    } else if (m_format == u"APE") {
        const ApeFacts facts = AnalyseApe(bytes);
        m_apeFormat = ApeFormatText(facts, hasV1, hasV2, hasApe);
        m_apeAudio = ApeAudioText(facts);
        m_apeInfo = ApeInfoText(facts);
    } else if (m_format == u"MPC") {
        m_mppTag = MpcTagText(hasV1, hasV2, hasApe ? tags.Ape.Version : 0);
        m_mppInfo = MpcInfoText(AnalyseMpc(bytes));
    } else if (m_format == u"OGG") {
        m_oggInfo = OggInfoText(AnalyseOgg(bytes));
    }
}

void MP3Class::SetMerged(const QString& title, const QString& artist, const QString& album, const QString& year,
                         const QString& comment, const QString& track, const QString& genre)
{
    m_title = title;
    m_artist = artist;
    m_album = album;
    m_year = year;
    m_comment = comment;
    m_track = track;
    m_genre = genre;
}

void MP3Class::CopyMergedToFirstSet()
{
    m_title1 = m_title;
    m_artist1 = m_artist;
    m_album1 = m_album;
    m_year1 = m_year;
    m_comment1 = m_comment;
    m_track1 = m_track;
    m_genre1 = m_genre;
}

// A later tag overrides an earlier one: ID3v1, then APE (shown in the ID3v1 places) or else
// ID3v2, then the Ogg comment when there is no APE tag.
void MP3Class::ReadTagFields(QByteArrayView bytes, const EndOfFileTags& tags)
{
    if (tags.HasId3v1) {
        const Id3v1Fields& v1 = tags.Id3v1;
        m_id3v1Exist = true;
        SetMerged(v1.Title, v1.Artist, v1.Album, v1.Year, v1.Comment, QString::number(v1.Track), GenreName(v1.Genre));
        CopyMergedToFirstSet();
    }
    const ApeTagFields& ape = tags.Ape;
    if (tags.HasApe) {
        SetMerged(ape.Title, ape.Artist, ape.Album, ape.Year, ape.Comment, ape.Track, ape.Genre);
        CopyMergedToFirstSet();
    } else if (Id3v2Fields v2; ReadId3v2(bytes, v2)) {
        m_id3v2Exist = true;
        SetMerged(v2.Title, v2.Artist, v2.Album, v2.Year, v2.Comment, QString::number(NumericValue(v2.Track)), v2.Genre);
        TakeId3v2Set(v2);
    }
    if (OggComment ogg; !tags.HasApe && m_format == u"OGG" && ReadOggComment(m_filename, ogg)) {
        SetMerged(ogg.Title, ogg.Artist, ogg.Album, ogg.Date, ogg.Comment, ogg.Track, ogg.Genre);
        CopyMergedToFirstSet();
        m_performer = ogg.Performer;
        m_description = ogg.Description;
    }
}

void MP3Class::TakeId3v2Set(const Id3v2Fields& v2)
{
    m_title2 = v2.Title;
    m_artist2 = v2.Artist;
    m_album2 = v2.Album;
    m_year2 = v2.Year;
    m_comment2 = v2.Comment;
    m_track2 = v2.Track;
    m_genre2 = v2.Genre;
    m_composer = v2.Composer;
    m_originalArtist = v2.OriginalArtist;
    m_copyright = v2.Copyright;
    m_url = v2.Url;
    m_encoded = v2.Encoded;
}

TagLyrics MP3Class::LyricsTag() const
{
    TagLyrics tag;
    tag.LyricsExist = m_lyricsExist;
    tag.LyricsVersion = m_lyricsVersion;
    tag.Lyrics = Lyrics();
    tag.LyricsPicture = LyricsPicture();
    tag.LyricsArtist = LyricsArtist();
    tag.LyricsTitle = LyricsTitle();
    return tag;
}

bool MP3Class::SaveLyrics(const QString& nAuthor, const QString& nartist, const QString& nTitle,
                          const QString& nalbum, const QString& nPicture, const QString& nLyrics,
                          const PlayingFileRelease& release)
{
    Lyrics3Tag tag;
    tag.Author = nAuthor;
    tag.Artist = nartist;
    tag.Title = nTitle;
    tag.Album = nalbum;
    tag.Images = nPicture;
    tag.Lyrics = nLyrics;
    return Splice(release, EndTagRegions, [&](QByteArray&, QByteArray& tail) {
        tail = ReplaceLyrics3(tail, tag);
        return true;
    });
}
