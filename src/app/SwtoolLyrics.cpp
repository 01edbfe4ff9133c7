// swtool lyrics: what the player (or the editor) reads of a song's lyrics.

#include "app/SwtoolCommands.h"
#include "core/Language.h"
#include "core/SettingsStore.h"
#include "core/TextCodec.h"
#include "core/ThemeClass.h"
#include "editor/LyricsImport.h"
#include "formats/LyricsFiles.h"
#include "lyrics/LyricsLoader.h"
#include "midi/KaraokeWords.h"
#include "tags/MP3Class.h"

#include <QDir>
#include <QFileInfo>
#include <QTextStream>
#include <cstdio>

namespace {

struct LyricsOptions {
    QString file;
    bool editor = false;
    bool import = false;
    QString writeTo;
};

bool ReadOptions(QStringList args, LyricsOptions& options)
{
    while (!args.isEmpty()) {
        const QString arg = args.takeFirst();
        if (arg == QLatin1String("--editor"))
            options.editor = true;
        else if (arg == QLatin1String("--import"))
            options.import = true;
        else if (arg == QLatin1String("--write") && !args.isEmpty())
            options.writeTo = args.takeFirst();
        else if (!arg.startsWith(QLatin1String("--")) && options.file.isEmpty())
            options.file = arg;
        else
            return false;
    }
    return !options.file.isEmpty() && !(options.editor && options.import);
}

void PrintHeader(QTextStream& out, const LyricItem& h)
{
    const std::pair<const char*, QString> fields[] = {
        {"format", h.FormatName},
        {"artist", h.Artist},
        {"title", h.Title},
        {"picture", h.Picture},
        {"fore color", QString::number(h.ForeColor)},
        {"highlight color", QString::number(h.HighlightColor)},
        {"outline color 1", QString::number(h.OutlineColor1)},
        {"outline color 2", QString::number(h.OutlineColor2)},
        {"outline color 3", QString::number(h.OutlineColor3)},
        {"outline color 4", QString::number(h.OutlineColor4)},
        {"back color", QString::number(h.BackColor)},
        {"alignment", QString::number(h.Alignment)},
        {"layout", QString::number(h.Layout)},
        {"image layout", QString::number(h.ImageLayout)},
        {"image position", QString::number(h.ImagePosition)},
        {"image custom x", QString::number(h.ImageCustomX)},
        {"image custom y", QString::number(h.ImageCustomY)},
        {"image offset x", QString::number(h.ImageOffsetX)},
        {"image offset y", QString::number(h.ImageOffsetY)},
    };
    for (const auto& [key, value] : fields)
        out << key << '\t' << value << '\n';
}

void PrintDocument(const std::vector<LyricItem>& lyrics, const std::vector<PictureItem>& pictures)
{
    QTextStream out(stdout);
    PrintHeader(out, lyrics[0]);
    for (size_t i = 1; i < pictures.size(); ++i) {
        const PictureItem& p = pictures[i];
        out << "image\t" << p.File << '\t' << p.Time << '\t' << p.Effect << '\t' << p.Speed << '\t' << p.Detail
            << '\n';
    }
    for (size_t i = 1; i < lyrics.size(); ++i) {
        const LyricItem& s = lyrics[i];
        out << "syllable\t" << i << '\t' << QString::number(s.Time, 'f', 3) << '\t' << (s.LineEnd ? 1 : 0) << '\t'
            << s.Text << '\t' << s.LineText << '\n';
    }
}

} // namespace

int Fail(const QString& message)
{
    QTextStream(stderr) << message << '\n';
    return 1;
}

bool IsLrsFile(const QString& path)
{
    return path.endsWith(QLatin1String(".lrs"), Qt::CaseInsensitive);
}

QString EditorText(const QString& path, bool polish)
{
    if (IsLrsFile(path))
        return DecodeText(ReadWholeFile(path), polish);
    QByteArray block;
    return ReadLyricsBlock(path, block) == BlockRead::Read ? DecodeText(block, polish) : QString();
}

QString LoadPlayerLyrics(LyricsState& lyrics, const QString& file, const LyricsEnvironment& env)
{
    if (IsLrsFile(file)) {
        const QString text = DecodeText(ReadWholeFile(file), env.Polish);
        if (!ParseLyricsText(lyrics, text, QFileInfo(file).absolutePath(), env.Font))
            return QString::fromLatin1(kInvalidLyricsMessage);
        lyrics.PlayLyrics[0].FormatName = QStringLiteral("Songweaver (*LRS)");
        lyrics.LyricsTitleText = MakeLyricsTitle(lyrics, env.Tags);
        return {};
    }
    if (FormatOfFile(file)) {
        const auto timed = ReadTimedLyricsFile(file, env.Polish);
        if (!timed)
            return QString::fromLatin1(kInvalidLyricsMessage);
        ShowTimedLyrics(lyrics, *timed, env);
        return {};
    }
    if (IsMidiName(file)) {
        MidiFigures figures;
        MeasureSong(ReadWholeFile(file), figures);
        if (LoadMidiLyrics(lyrics, figures, file, env) || LoadSiblingLyrics(lyrics, file, env))
            return {};
        return QStringLiteral("There are no lyrics for this song.");
    }
    if (LoadLyrics(lyrics, file, env) || LoadSiblingLyrics(lyrics, file, env))
        return {};
    QByteArray block;
    const bool damaged = ReadLyricsBlock(file, block) != BlockRead::None || QFileInfo::exists(LyricsPathOf(file));
    return damaged ? QString::fromLatin1(kInvalidLyricsMessage) : QStringLiteral("There are no lyrics for this song.");
}

int PrintLyrics(const QStringList& args)
{
    LyricsOptions options;
    if (!ReadOptions(args, options))
        return 2;
    if (!QFileInfo(options.file).isFile())
        return Fail(QStringLiteral("File not found: %1").arg(options.file));

    PlayerReading reading(options.file);
    const LyricsEnvironment env = reading.Environment();

    LyricsState lyrics;
    const std::vector<LyricItem>* document = &lyrics.PlayLyrics;
    const std::vector<PictureItem>* pictures = &lyrics.PlayPictures;
    if (options.editor) {
        if (!ParseEditorLyrics(lyrics, EditorText(options.file, env.Polish), [](const QString& message) { Fail(message); }))
            return 1;
        document = &lyrics.EditLyrics;
        pictures = &lyrics.EditPictures;
    } else if (options.import) {
        MidiFigures figures;
        if (!ImportLyrics(lyrics, figures, &reading.song, options.file, env.Polish))
            return 1;
        document = &lyrics.EditLyrics;
        pictures = &lyrics.EditPictures;
    } else if (const QString error = LoadPlayerLyrics(lyrics, options.file, env); !error.isEmpty()) {
        return Fail(error);
    }

    PrintDocument(*document, *pictures);
    if (!options.writeTo.isEmpty() && !(QDir().mkpath(QFileInfo(options.writeTo).absolutePath())
                                         && SaveLrsFile(options.writeTo, *document, *pictures)))
        return Fail(QStringLiteral("Cannot write %1").arg(options.writeTo));
    return 0;
}

namespace {

bool LoadLanguageOf(LanguageTable& language, const SettingsStore& store)
{
    language.LoadLanguage(store);
    return language.IsPolish;
}

} // namespace

PlayerReading::PlayerReading(const QString& file)
    : theme(store, ThemeEnvironment::FromSystem(), monitors), song(LoadLanguageOf(language, store))
{
    song.SetFilename(file);
    song.ReadFile();
}

LyricsEnvironment PlayerReading::Environment()
{
    return {theme.LyricsFontFace(), language.IsPolish, &song, {}};
}

namespace {

std::optional<LyricsFormat> ConvertTarget(const QString& name)
{
    if (name == u"lrc")
        return LyricsFormat::Lrc;
    if (name == u"elrc")
        return LyricsFormat::EnhancedLrc;
    if (name == u"ultrastar")
        return LyricsFormat::UltraStar;
    if (name == u"ass")
        return LyricsFormat::Ass;
    if (name == u"srt")
        return LyricsFormat::Srt;
    return std::nullopt;
}

// The song an export names: the input itself when it is a song, else the audio an UltraStar
// file names, else an MP3 of the input's name.
QString SongOfInput(const QString& input)
{
    if (!FormatOfFile(input) && !IsLrsFile(input))
        return input;
    if (const auto timed = ReadTimedLyricsFile(input, false); timed && !timed->ultraStar.audio.isEmpty())
        return QFileInfo(input).absoluteDir().filePath(timed->ultraStar.audio);
    return QFileInfo(input).absoluteDir().filePath(QFileInfo(input).completeBaseName() + QStringLiteral(".mp3"));
}

} // namespace

int ConvertLyrics(const QStringList& args)
{
    QString input, target, output;
    for (qsizetype i = 0; i < args.size(); ++i) {
        if (args[i] == u"--to" && i + 1 < args.size())
            target = args[++i];
        else if (args[i] == u"-o" && i + 1 < args.size())
            output = args[++i];
        else if (!args[i].startsWith(u'-') && input.isEmpty())
            input = args[i];
        else
            return 2;
    }
    const auto format = ConvertTarget(target);
    if (input.isEmpty() || (!format && target != u"lrs"))
        return 2;
    if (!QFileInfo(input).isFile())
        return Fail(QStringLiteral("File not found: %1").arg(input));
    PlayerReading reading(input);
    const LyricsEnvironment env = reading.Environment();
    LyricsState lyrics;
    if (const QString error = LoadPlayerLyrics(lyrics, input, env); !error.isEmpty())
        return Fail(error);
    const QString song = SongOfInput(input);
    if (output.isEmpty()) {
        const QString text = format ? TimedLyricsText(*format, lyrics.PlayLyrics, song, env.Font.family(), env.Font.pointSize())
                                    : BuildLyricsBlock(lyrics.PlayLyrics, lyrics.PlayPictures, QStringLiteral("."));
        QTextStream out(stdout);
        out.setEncoding(QStringConverter::Utf8);
        out << text;
        return 0;
    }
    const bool written = format ? WriteTimedLyricsFile(output, *format, lyrics.PlayLyrics, song, env.Font.family(), env.Font.pointSize())
                                : SaveLrsFile(output, lyrics.PlayLyrics, lyrics.PlayPictures);
    if (!written)
        return Fail(QStringLiteral("Cannot write %1").arg(output));
    QTextStream(stdout) << output << '\n';
    return 0;
}
