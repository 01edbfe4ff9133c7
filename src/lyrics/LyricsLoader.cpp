#include "lyrics/LyricsLoader.h"

#include "core/TextCodec.h"

#include <QFile>
#include <QFileInfo>

namespace {

const QString kInternalFormat = QStringLiteral("Songweaver (internal)");
const QString kLrsFormat = QStringLiteral("Songweaver (*LRS)");

enum class Embedded { None, Loaded, Damaged };

Embedded LoadBlockFromSong(LyricsState& lyrics, const QString& songPath, const LyricsEnvironment& env)
{
    lyrics.RawLyricsText.clear();
    switch (ReadLyricsBlock(songPath, lyrics.RawLyricsText)) {
    case BlockRead::None:
        return Embedded::None;
    case BlockRead::TooLarge:
        lyrics.DamagedLyricsFile = songPath;
        return Embedded::Damaged;
    case BlockRead::Read:
        break;
    }
    const QString block = DecodeText(lyrics.RawLyricsText, env.Polish);
    if (!ParseLyricsText(lyrics, block, QFileInfo(songPath).absolutePath(), env.Font, env.Refit)) {
        lyrics.DamagedLyricsFile = songPath;
        return Embedded::Damaged;
    }
    lyrics.PlayLyrics[0].FormatName = kInternalFormat;
    return Embedded::Loaded;
}

bool LoadLrsFile(LyricsState& lyrics, const QString& songPath, const LyricsEnvironment& env)
{
    const QString lrsPath = LyricsPathOf(songPath);
    if (!QFileInfo(lrsPath).isFile())
        return false;
    lyrics.RawLyricsText = ReadWholeFile(lrsPath);
    const QString text = DecodeText(lyrics.RawLyricsText, env.Polish);
    if (!ParseLyricsText(lyrics, text, QFileInfo(songPath).absolutePath(), env.Font, env.Refit)) {
        lyrics.DamagedLyricsFile = lrsPath;
        return false;
    }
    lyrics.PlayLyrics[0].FormatName = kLrsFormat;
    return true;
}

bool LoadTagLyrics(LyricsState& lyrics, const LyricsEnvironment& env)
{
    if (!env.Tags)
        return false;
    env.Tags->ReadTag();
    const TagLyrics tag = env.Tags->LyricsTag();
    if (!tag.LyricsExist)
        return false;
    ImportTagLyrics(lyrics, tag, env.Font, env.Refit);
    lyrics.PlayLyrics[0].FormatName = QStringLiteral("Lyrics %1.00").arg(tag.LyricsVersion);
    lyrics.PlayLyrics[0].LineTimed = true;
    return true;
}

bool NoLyrics(LyricsState& lyrics, const LyricsEnvironment& env)
{
    ResetLyricsData(lyrics);
    lyrics.LyricsTitleText = MakeLyricsTitle(lyrics, env.Tags);
    return false;
}

} // namespace

QString LyricsPathOf(const QString& songPath)
{
    return songPath.left(songPath.size() - 3) + QStringLiteral("lrs");
}

QByteArray ReadWholeFile(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly) || file.size() > kLargestWholeFile)
        return {};
    return file.readAll();
}

bool LoadLyrics(LyricsState& lyrics, const QString& songPath, const LyricsEnvironment& env)
{
    ResetLyricsData(lyrics);
    lyrics.DamagedLyricsFile.clear();
    // A song without lyrics of its own must not show the previous song's artist and title.
    lyrics.PlayLyrics[0] = LyricItem{};

    switch (LoadBlockFromSong(lyrics, songPath, env)) {
    case Embedded::Damaged:
        return NoLyrics(lyrics, env);
    case Embedded::None:
        if (!LoadLrsFile(lyrics, songPath, env) && !LoadTagLyrics(lyrics, env))
            return NoLyrics(lyrics, env);
        break;
    case Embedded::Loaded:
        break;
    }
    lyrics.LyricsTitleText = MakeLyricsTitle(lyrics, env.Tags);
    return true;
}

void FinishShownLyrics(LyricsState& lyrics, const LyricsEnvironment& env)
{
    BuildPictureOrder(lyrics);
    lyrics.LongestLine = FindLongestLine(lyrics.PlayLyrics, env.Font);
    lyrics.LyricsTitleText = MakeLyricsTitle(lyrics, env.Tags);
    if (env.Refit)
        env.Refit();
}

bool LoadEmbeddedLyrics(LyricsState& lyrics, const QString& songPath, const LyricsEnvironment& env)
{
    // The sibling file is asked for but the song itself is read: MIDI import counts on this order.
    if (!QFileInfo::exists(LyricsPathOf(songPath)))
        return false;
    switch (LoadBlockFromSong(lyrics, songPath, env)) {
    case Embedded::Loaded:
        return true;
    case Embedded::Damaged:
        ResetLyricsData(lyrics);
        return false;
    case Embedded::None:
        return false;
    }
    return false;
}
