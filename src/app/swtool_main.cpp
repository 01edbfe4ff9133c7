// swtool: what Songweaver understands of its settings, texts and files, as plain text.

#include "app/SwtoolCommands.h"
#include "core/Language.h"
#include "core/SettingsStore.h"
#include "core/ThemeClass.h"

#include <QGuiApplication>
#include <QStringList>
#include <QTextStream>
#include <cstdio>

namespace {

const char* const kUsage =
    "usage: swtool COMMAND ...\n"
    "  text KEY [--polish]   the display text of a language key\n"
    "  settings              every setting as key<TAB>value, in load order, as stored\n"
    "  lyrics FILE [--editor | --import] [--write OUT]\n"
    "                        the lyrics the player (or the editor, or the editor's import) reads\n"
    "                        for a song or .lrs file\n"
    "  midi FILE             what the program reads of a MIDI or KAR file: length, title, tempo,\n"
    "                        and per channel: index, channel, patch, volume, pan, state, instrument\n"
    "  midi FILE --wav OUT.wav [--seconds N] [--transpose SEMITONES] [--tempo FACTOR] [--mute CHANNEL]...\n"
    "                        the song as the player sounds it, with the SoundFont of the settings:\n"
    "                        even semitones from -12 to 12, the tempo in fifteenths up to 2,\n"
    "                        channels 1 to 16; prints the file, its length and the tempo used\n"
    "  play SONG --wav OUT.wav [--key SEMITONES] [--tempo FACTOR] [--vocals-off] [--from SECONDS]\n"
    "       [--seconds N]    any song as the player sounds it, through its own decoder, stretcher,\n"
    "                        vocal reducer and synthesiser, as 16-bit stereo at 44.1 kHz: -12 to 12\n"
    "                        semitones (even for MIDI), tempo 0.5 to 2; prints the file and length\n"
    "  cdg FILE.cdg --at SECONDS -o OUT.png\n"
    "                        the CD+G screen at that second, 300 x 216 with its border, as decoded\n"
    "  convert IN --to lrs|lrc|elrc|ultrastar|ass|srt [-o OUT]\n"
    "                        the lyrics of IN (a lyrics file of any of these formats, or a song,\n"
    "                        whose lyrics are found as the player finds them) in another format,\n"
    "                        to OUT or to standard output\n"
    "  split TEXTFILE [--syllables [--lang CODE]]\n"
    "                        the editor's rows of a text: row<TAB>time<TAB>text<TAB>break (1 or 0),\n"
    "                        a word a row, or a syllable a row by the language's dictionary\n"
    "  onsets SONG           where sounds start in the song, in seconds, one a line\n"
    "  merge LYRICS          the editor's text of a song's (or a .lrs file's) lyrics\n"
    "  embed SONG LYRICS.lrs the lyrics stored in the song file as the editor's Save stores them\n"
    "  probe FILE            what the program reads of an audio file: kind, length, tags, texts\n"
    "  tags FILE [--set FIELD=VALUE]... [--ape]\n"
    "                        the information dialog's save of the ID3 tags (or of the APE tag with\n"
    "                        Title1..Track1); prints result<TAB>N\n"
    "  render SONG --at SECONDS -o OUT.png [--size WxH] [--mode N] [--scale F] [--fullscreen]\n"
    "  render SONG --video DIR --fps N --from A --to B [--size WxH] [--mode N] [--scale F]\n"
    "                        the karaoke window at a song position, or numbered frames\n"
    "  playlist FILE.m3u|FILE.pls [--saved]\n"
    "                        the rows as the playlist loads them: text<TAB>time<TAB>path\n"
    "  voice SONG --take TAKE.wav --at SECONDS\n"
    "                        the take placed into the song's voice file as the end of a recording\n"
    "                        places it (converted to an existing file's format); prints its path\n"
    "  print LYRICS [--html OUT.htm] [--pdf OUT.pdf]\n"
    "                        the editor's printed page of a song's (or a .lrs file's) lyrics with\n"
    "                        the saved print settings: the HTML (to standard output without\n"
    "                        --html) and A4 pages as PDF; prints the PDF and its page count\n"
    "  library scan DIR... [--db PATH]\n"
    "                        the songs of the folders into the song library (the user's, or PATH):\n"
    "                        new and changed files read, vanished ones forgotten; prints the counts\n"
    "                        and the seconds taken\n"
    "  library search QUERY [--db PATH] [--limit N]\n"
    "                        the songs the library window finds as QUERY is typed:\n"
    "                        kind<TAB>title<TAB>artist<TAB>path, then the time taken\n"
    "  library stats [--db PATH]\n"
    "                        the songs by kind, with lyrics, unreadable (and why), hours, plays\n";

int Usage()
{
    std::fputs(kUsage, stderr);
    return 2;
}

int PrintText(const QStringList& args)
{
    if (args.isEmpty() || args.size() > 2 || (args.size() == 2 && args[1] != QLatin1String("--polish")))
        return Usage();
    LanguageTable language;
    language.LoadTable(args.size() == 2);
    QTextStream(stdout) << language.GetText(args[0]) << '\n';
    return 0;
}

int ListSettings()
{
    QSettingsStore store;
    std::vector<MonitorRecord> monitors;
    const ThemeClass theme(store, ThemeEnvironment::FromSystem(), monitors);
    QTextStream out(stdout);
    for (const auto& [key, value] : theme.StoredValues())
        out << key << '\t' << value << '\n';
    return 0;
}

} // namespace

int main(int argc, char* argv[])
{
    // Fonts and monitors are read without showing anything.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    QCoreApplication::setOrganizationName(QStringLiteral("Tonehaven"));
    QCoreApplication::setApplicationName(QStringLiteral("Songweaver"));

    QStringList args = QCoreApplication::arguments().mid(1);
    if (args.isEmpty())
        return Usage();
    const QString command = args.takeFirst();
    if (command == QLatin1String("text"))
        return PrintText(args);
    if (command == QLatin1String("settings") && args.isEmpty())
        return ListSettings();
    if (command == QLatin1String("lyrics")) {
        const int result = PrintLyrics(args);
        return result == 2 ? Usage() : result;
    }
    if (command == QLatin1String("midi")) {
        const int result = PrintMidi(args);
        return result == 2 ? Usage() : result;
    }
    if (command == QLatin1String("split")) {
        const int result = PrintSplit(args);
        return result == 2 ? Usage() : result;
    }
    if (command == QLatin1String("onsets")) {
        const int result = PrintOnsets(args);
        return result == 2 ? Usage() : result;
    }
    if (command == QLatin1String("merge")) {
        const int result = PrintMerge(args);
        return result == 2 ? Usage() : result;
    }
    if (command == QLatin1String("embed")) {
        const int result = EmbedLyrics(args);
        return result == 2 ? Usage() : result;
    }
    if (command == QLatin1String("playlist")) {
        const int result = PrintPlaylist(args);
        return result == 2 ? Usage() : result;
    }
    if (command == QLatin1String("voice"))
        return PlaceVoiceTake(args);
    if (command == QLatin1String("render")) {
        const int result = RenderFrames(args);
        return result == 2 ? Usage() : result;
    }
    if (command == QLatin1String("tags")) {
        const int result = SaveTags(args);
        return result == 2 ? Usage() : result;
    }
    if (command == QLatin1String("print")) {
        const int result = PrintPages(args);
        return result == 2 ? Usage() : result;
    }
    if (command == QLatin1String("cdg")) {
        const int result = PrintCdgScreen(args);
        return result == 2 ? Usage() : result;
    }
    if (command == QLatin1String("convert")) {
        const int result = ConvertLyrics(args);
        return result == 2 ? Usage() : result;
    }
    if (command == QLatin1String("play")) {
        const int result = PlaySongToWav(args);
        return result == 2 ? Usage() : result;
    }
    if (command == QLatin1String("library")) {
        const int result = LibraryCommand(args);
        return result == 2 ? Usage() : result;
    }
    if (command == QLatin1String("probe")) {
        const int result = PrintProbe(args);
        return result == 2 ? Usage() : result;
    }
    return Usage();
}
