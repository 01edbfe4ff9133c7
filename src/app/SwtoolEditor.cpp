// swtool split, onsets, merge and embed: the editor's text commands, its onsets and its Save, for
// batch work.

#include "app/SwtoolCommands.h"
#include "core/Language.h"
#include "core/SettingsStore.h"
#include "core/ThemeClass.h"
#include "editor/EditorDocument.h"
#include "editor/EditorFiles.h"
#include "editor/Onsets.h"
#include "lyrics/LyricsBlock.h"
#include "lyrics/LyricsLoader.h"
#include "tags/LyricsEmbedding.h"
#include "tags/MP3Class.h"

#include <QFileInfo>
#include <QTextStream>
#include <optional>

namespace {

int Refuse(const QString& message)
{
    QTextStream(stderr) << message << '\n';
    return 1;
}

// The text of a file as the editor opens it: nothing, with the refusal printed, for a missing
// file or one over the command's limit.
std::optional<QString> OpenedText(const QString& path, qint64 limit, const LanguageTable& language)
{
    if (!QFileInfo(path).isFile()) {
        Refuse(QStringLiteral("File not found: %1").arg(path));
        return std::nullopt;
    }
    if (FileTooLarge(path, limit)) {
        Refuse(language.GetText(QStringLiteral("ErrorFilesize")));
        return std::nullopt;
    }
    return ReadTextFile(path, language.IsPolish);
}

} // namespace

int PrintSplit(const QStringList& args)
{
    QString file, language;
    bool syllables = false;
    for (qsizetype i = 0; i < args.size(); ++i) {
        if (args[i] == u"--syllables")
            syllables = true;
        else if (args[i] == u"--lang" && i + 1 < args.size())
            language = args[++i];
        else if (!args[i].startsWith(u'-') && file.isEmpty())
            file = args[i];
        else
            return 2;
    }
    if (file.isEmpty() || (!language.isEmpty() && !syllables))
        return 2;
    QSettingsStore store;
    LanguageTable table;
    table.LoadLanguage(store);
    const std::optional<QString> text = OpenedText(file, kTextFileLimit, table);
    if (!text)
        return 1;

    std::optional<Hyphenator> hyphenator;
    if (syllables) {
        hyphenator.emplace(language.isEmpty() ? DefaultLyricsLanguage(table.IsPolish) : language);
        if (!hyphenator->Loaded())
            QTextStream(stderr) << MessageNamingFile(table.GetText(QStringLiteral("NoHyphenation")),
                                                     language.isEmpty() ? DefaultLyricsLanguage(table.IsPolish) : language)
                                << '\n';
    }
    LyricsState lyrics;
    EditorDocument document(lyrics);
    document.Split(*text, hyphenator ? &*hyphenator : nullptr);
    QTextStream out(stdout);
    for (int row = 1; row <= document.Count(); ++row)
        out << row << '\t' << document.TimeText(row) << '\t' << document.Entry(row).Text << '\t'
            << (document.Entry(row).LineEnd ? 1 : 0) << '\n';
    return 0;
}

int PrintOnsets(const QStringList& args)
{
    if (args.size() != 1 || args[0].startsWith(u'-'))
        return 2;
    if (!QFileInfo(args[0]).isFile())
        return Refuse(QStringLiteral("File not found: %1").arg(args[0]));
    const std::vector<double> onsets = FindOnsets(args[0]);
    if (onsets.empty())
        return Refuse(QStringLiteral("No onsets found in %1").arg(args[0]));
    QTextStream out(stdout);
    for (double seconds : onsets)
        out << QString::number(seconds, 'f', 3) << '\n';
    return 0;
}

int PrintMerge(const QStringList& args)
{
    if (args.size() != 1)
        return 2;
    const QString& path = args[0];
    if (!QFileInfo(path).isFile())
        return Refuse(QStringLiteral("File not found: %1").arg(path));
    PlayerReading reading(path);

    // The editor takes the lyrics the player shows for the song.
    LyricsState lyrics;
    if (const QString error = LoadPlayerLyrics(lyrics, path, reading.Environment()); !error.isEmpty())
        return Refuse(error);
    lyrics.EditLyrics = lyrics.PlayLyrics;
    QTextStream(stdout) << EditorDocument(lyrics).Merge();
    return 0;
}

int EmbedLyrics(const QStringList& args)
{
    if (args.size() != 2)
        return 2;
    const QString& song = args[0];
    const QString& lrs = args[1];
    if (!QFileInfo(song).isFile())
        return Refuse(QStringLiteral("File not found: %1").arg(song));
    QSettingsStore store;
    LanguageTable language;
    language.LoadLanguage(store);
    const std::optional<QString> text = OpenedText(lrs, kLyricsFileLimit, language);
    if (!text)
        return 1;

    LyricsState lyrics;
    QString refusal;
    const auto keep = [&refusal](const QString& message) { refusal = message; };
    if (!ParseEditorLyrics(lyrics, *text, keep))
        return Refuse(refusal);

    // As the editor saves into the song that plays: a MIDI song by the MIDI player, any other
    // by its media session.
    SaveMP3Host host;
    host.MidiActive = IsMidiName(song);
    host.MediaOpen = !host.MidiActive;
    host.Polish = language.IsPolish;
    host.Text = [&language](const char* key) { return language.GetText(QString::fromLatin1(key)); };
    host.Critical = keep;
    host.Information = keep;
    host.WaitCursor = [](bool) {};
    if (SaveMP3(song, lyrics.EditLyrics, lyrics.EditPictures, host) != SaveMP3Result::Saved)
        return Refuse(refusal);
    return 0;
}
