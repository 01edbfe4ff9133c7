#include "library/SongProbe.h"

#include "library/LibraryPaths.h"

#include "cdg/CdgSong.h"
#include "formats/LyricsFiles.h"
#include "lyrics/LyricsLoader.h"
#include "midi/KaraokeWords.h"
#include "midi/MidiBytes.h"
#include "tags/MP3Class.h"
#include "video/VideoStream.h"

#include <QFileInfo>

namespace {

struct FoundLyrics {
    QString source;
    QString words;
};

QString WordsOf(const std::vector<LyricItem>& items)
{
    QString words;
    for (size_t i = 1; i < items.size(); ++i) {
        // Syllables join to words; a line ends a word.
        words += items[i].Text;
        if (items[i].LineEnd)
            words += u' ';
    }
    return words.simplified();
}

FoundLyrics FindLyrics(const QString& audio, const QString& lyricsOwner, MP3Class& tags, bool polish)
{
    LyricsState lyrics;
    LyricsEnvironment env;
    env.Polish = polish;
    env.Tags = &tags;
    bool found = false;
    if (IsMidiName(audio)) {
        MidiFigures figures;
        found = LoadMidiLyrics(lyrics, figures, audio, env);
    } else {
        found = LoadLyrics(lyrics, lyricsOwner, env) || LoadSiblingLyrics(lyrics, lyricsOwner, env);
    }
    if (!found || lyrics.PlayLyrics.size() <= 1)
        return {};
    const QString source = lyrics.PlayLyrics[0].FormatName;
    return {source.isEmpty() ? QStringLiteral("MIDI") : source, WordsOf(lyrics.PlayLyrics)};
}

QString KindOf(const QString& path, const QString& audio, const FoundLyrics& lyrics, bool zipped)
{
    if (zipped)
        return SongKinds::Zip;
    if (IsMidiName(path))
        return SongKinds::Midi;
    if (IsVideoName(path))
        return SongKinds::Video;
    if (!CdgFileOf(audio).isEmpty())
        return SongKinds::Disc;
    if (lyrics.source.startsWith(QStringLiteral("UltraStar")))
        return SongKinds::UltraStar;
    return SongKinds::Audio;
}

} // namespace

bool IsLibrarySuffix(const QString& suffix)
{
    return IsFolderSongName(QStringLiteral("x.") + suffix);
}

std::variant<LibrarySong, UnreadableSong> ProbeLibrarySong(LibrarySong song, const QString& openable, bool polish)
{
    std::unique_ptr<ZipSong> zip = IsZipName(openable) ? ZipSong::Open(openable) : nullptr;
    if (zip && zip->Fault() != ZipSong::Problem::None)
        return UnreadableSong{zip->Fault() == ZipSong::Problem::NoPair ? QStringLiteral("LibraryZipNoPair")
                                                                       : QStringLiteral("LibraryZipDamaged")};
    if (IsVideoName(openable) && !ProbeVideo(openable).Valid())
        return UnreadableSong{QStringLiteral("LibraryNoPicture")};
    const QString audio = zip ? zip->Audio() : openable;
    MP3Class tags(polish);
    tags.SetFilename(audio);
    if (!tags.ReadFile() && !IsVideoName(openable))
        return UnreadableSong{QStringLiteral("LibraryNotASong")};
    tags.ReadTag();
    // A zip's lyrics file stands beside the zip, where the editor saves it.
    const FoundLyrics lyrics = FindLyrics(audio, zip ? openable : audio, tags, polish);
    song.kind = KindOf(openable, audio, lyrics, zip != nullptr);
    song.title = tags.Title();
    song.artist = tags.Artist();
    song.album = tags.Album();
    if (song.title.isEmpty())
        song.title = QFileInfo(ShownPath(song.path)).completeBaseName();
    song.length = tags.Length();
    song.lyricsSource = lyrics.source;
    song.words = lyrics.words;
    return song;
}
