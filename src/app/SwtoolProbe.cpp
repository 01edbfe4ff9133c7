// swtool probe: what the program reads of an audio file, as key<TAB>value lines.

#include "app/SwtoolCommands.h"
#include "cdg/CdgSong.h"
#include "core/Language.h"
#include "core/SettingsStore.h"
#include "playback/SongKind.h"
#include "tags/MP3Class.h"

#include <QFileInfo>
#include <QTextStream>

namespace {

// One value on one line: line ends become "\n" and tabs "\t".
QString Escaped(QString text)
{
    return text.replace(QLatin1String("\r\n"), QLatin1String("\\n"))
        .replace(u'\n', QLatin1String("\\n"))
        .replace(u'\r', QLatin1String("\\n"))
        .replace(u'\t', QLatin1String("\\t"));
}

QString Flag(bool flag)
{
    return flag ? QStringLiteral("true") : QStringLiteral("false");
}

void PrintReadFile(QTextStream& out, MP3Class& song, bool recognised)
{
    out << "ReadFile\t" << Flag(recognised) << '\n'
        << "format\t" << song.format() << '\n'
        << "Length\t" << QString::number(song.Length(), 'g', 10) << '\n'
        << "Bitrate\t" << song.Bitrate() << '\n'
        << "SampleRate\t" << song.SampleRate() << '\n'
        << "ReadFile.Title\t" << Escaped(song.Title()) << '\n'
        << "ReadFile.Artist\t" << Escaped(song.Artist()) << '\n';
}

void PrintReadTag(QTextStream& out, const MP3Class& song)
{
    const std::pair<const char*, QString> texts[] = {
        {"Title", song.Title()}, {"Artist", song.Artist()}, {"Album", song.Album()}, {"Year", song.Year()},
        {"Comment", song.Comment()}, {"Track", song.Track()}, {"Genre", song.Genre()},
        {"Title1", song.Title1()}, {"Artist1", song.Artist1()}, {"Album1", song.Album1()}, {"Year1", song.Year1()},
        {"Comment1", song.Comment1()}, {"Track1", song.Track1()}, {"Genre1", song.Genre1()},
        {"Title2", song.Title2()}, {"Artist2", song.Artist2()}, {"Album2", song.Album2()}, {"Year2", song.Year2()},
        {"Comment2", song.Comment2()}, {"Track2", song.Track2()}, {"Genre2", song.Genre2()},
        {"Composer", song.Composer()}, {"Copyright", song.Copyright()}, {"URL", song.URL()},
        {"Encoded", song.Encoded()}, {"OriginalArtist", song.OriginalArtist()}, {"Lyrycist", song.Lyrycist()},
        {"Performer", song.Performer()}, {"Description", song.Description()},
        {"ID3v1Exist", Flag(song.ID3v1Exist())}, {"ID3v2Exist", Flag(song.ID3v2Exist())},
        {"LyricsExist", Flag(song.LyricsExist())}, {"LyricsSize", QString::number(song.LyricsSize())},
        {"LyricsVersion", QString::number(song.LyricsVersion())}, {"Lyrics", song.Lyrics()},
        {"LyricsAuthor", song.LyricsAuthor()}, {"LyricsArtist", song.LyricsArtist()},
        {"LyricsAlbum", song.LyricsAlbum()}, {"LyricsTitle", song.LyricsTitle()},
        {"LyricsPicture", song.LyricsPicture()},
    };
    for (const auto& [key, value] : texts)
        out << key << '\t' << Escaped(value) << '\n';

    const QString format = song.format();
    std::vector<std::pair<const char*, QString>> info;
    if (format == u"WAV")
        info = {{"WAVInfo", song.WAVInfo()}};
    else if (format == u"MP3")
        info = {{"MPEGInfo", song.MPEGInfo()}};
    else if (format == u"APE")
        info = {{"APEformat", song.APEformat()}, {"APEaudio", song.APEaudio()}, {"APEInfo", song.APEInfo()}};
    else if (format == u"MPC")
        info = {{"MPPTag", song.MPPTag()}, {"MPPInfo", song.MPPInfo()}};
    else if (format == u"OGG")
        info = {{"OGGInfo", song.OGGInfo()}};
    for (const auto& [key, value] : info)
        out << key << '\t' << Escaped(value) << '\n';
}

} // namespace

int PrintProbe(const QStringList& args)
{
    if (args.size() != 1 || args[0].startsWith(QLatin1String("--")))
        return 2;
    if (!QFileInfo(args[0]).isFile()) {
        QTextStream(stderr) << "File not found: " << args[0] << '\n';
        return 1;
    }
    QSettingsStore store;
    LanguageTable language;
    language.LoadLanguage(store);

    // A CD+G file or a zip is probed as the audio it plays.
    std::unique_ptr<ZipSong> zip;
    const QString audio = AudioOfKaraokeFile(args[0], zip);
    if (audio.isEmpty()) {
        QTextStream(stderr) << "No karaoke song in " << args[0] << '\n';
        return 1;
    }
    MP3Class song(language.IsPolish);
    song.SetFilename(audio);
    QTextStream out(stdout);
    PrintReadFile(out, song, song.ReadFile());
    out << "Kind\t" << SongKindText(audio, song.format()) << '\n';
    song.ReadTag();
    PrintReadTag(out, song);
    return 0;
}
