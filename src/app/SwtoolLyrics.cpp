// swtool lyrics: what the player (or the editor) reads of a song's lyrics.

#include "app/SwtoolCommands.h"
#include "core/Language.h"
#include "core/SettingsStore.h"
#include "core/TextCodec.h"
#include "core/ThemeClass.h"
#include "editor/LyricsImport.h"
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
    if (IsMidiName(file)) {
        MidiFigures figures;
        MeasureSong(ReadWholeFile(file), figures);
        if (LoadMidiLyrics(lyrics, figures, file, env))
            return {};
        return QStringLiteral("There are no lyrics for this song.");
    }
    if (LoadLyrics(lyrics, file, env))
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
