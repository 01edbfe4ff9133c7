#include "formats/LyricsFiles.h"

#include "core/TextCodec.h"
#include "lyrics/LyricsLoader.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSaveFile>

namespace {

std::optional<TimedLyrics> ReadAs(LyricsFormat format, const QString& text)
{
    switch (format) {
    case LyricsFormat::Lrc:
    case LyricsFormat::EnhancedLrc:
        return ReadLrc(text);
    case LyricsFormat::UltraStar:
        return ReadUltraStar(text);
    case LyricsFormat::Ass:
        return ReadAss(text);
    case LyricsFormat::Srt:
        return ReadSrt(text);
    }
    return std::nullopt;
}

// UltraStar files of the folder (the first 64, their first 16 KiB) for one whose #MP3 or #AUDIO
// names the song: its file often has another name than the song's.
std::optional<TimedLyrics> FindUltraStarNaming(const QFileInfo& song, bool polish)
{
    constexpr int kLookedAt = 64;
    constexpr qint64 kHeaderBytes = 16 << 10;
    const QRegularExpression audioLine(QStringLiteral("^#(?:MP3|AUDIO):\\s*(.*?)\\s*$"),
                                       QRegularExpression::CaseInsensitiveOption | QRegularExpression::MultilineOption);
    const QFileInfoList texts = song.absoluteDir().entryInfoList({QStringLiteral("*.txt"), QStringLiteral("*.TXT")}, QDir::Files);
    for (qsizetype i = 0; i < std::min<qsizetype>(texts.size(), kLookedAt); ++i) {
        QFile file(texts[i].filePath());
        if (!file.open(QIODevice::ReadOnly))
            continue;
        const QRegularExpressionMatch named = audioLine.match(DecodeAnyText(file.read(kHeaderBytes), polish));
        if (named.hasMatch() && named.captured(1).compare(song.fileName(), Qt::CaseInsensitive) == 0)
            return ReadTimedLyricsFile(texts[i].filePath(), polish);
    }
    return std::nullopt;
}

} // namespace

std::optional<LyricsFormat> FormatOfFile(const QString& path)
{
    const QString suffix = QFileInfo(path).suffix().toLower();
    if (suffix == u"lrc")
        return LyricsFormat::Lrc;
    if (suffix == u"txt")
        return LyricsFormat::UltraStar;
    if (suffix == u"ass" || suffix == u"ssa")
        return LyricsFormat::Ass;
    if (suffix == u"srt")
        return LyricsFormat::Srt;
    return std::nullopt;
}

std::optional<TimedLyrics> ReadTimedLyricsFile(const QString& path, bool polish)
{
    const auto format = FormatOfFile(path);
    QFile file(path);
    if (!format || !file.open(QIODevice::ReadOnly) || file.size() > kLargestTimedLyricsFile)
        return std::nullopt;
    return ReadAs(*format, DecodeAnyText(file.readAll(), polish));
}

std::optional<TimedLyrics> FindSiblingLyrics(const QString& songPath, bool polish)
{
    const QFileInfo song(songPath);
    const QDir folder = song.absoluteDir();
    for (const char* suffix : {"lrc", "txt", "ass", "srt"}) {
        for (const QString& name : {song.completeBaseName() + u'.' + QLatin1String(suffix),
                                    song.completeBaseName() + u'.' + QString::fromLatin1(suffix).toUpper()}) {
            const QString path = folder.filePath(name);
            if (!QFileInfo(path).isFile())
                continue;
            auto lyrics = ReadTimedLyricsFile(path, polish);
            // An UltraStar file beside a song may belong to another one of the folder.
            if (lyrics && FormatOfFile(path) == LyricsFormat::UltraStar &&
                QFileInfo(lyrics->ultraStar.audio).fileName().compare(song.fileName(), Qt::CaseInsensitive) != 0)
                continue;
            if (lyrics)
                return lyrics;
        }
        if (QLatin1String(suffix) == u"txt")
            if (auto lyrics = FindUltraStarNaming(song, polish))
                return lyrics;
    }
    return std::nullopt;
}

QString UltraStarAudioPath(const QString& txtPath, const TimedLyrics& lyrics)
{
    if (lyrics.ultraStar.audio.isEmpty())
        return {};
    const QDir folder = QFileInfo(txtPath).absoluteDir();
    const QString path = folder.filePath(lyrics.ultraStar.audio);
    if (QFileInfo(path).isFile())
        return path;
    // Song files made on Windows name their audio in any case.
    const QFileInfo named(path);
    for (const QFileInfo& file : named.absoluteDir().entryInfoList(QDir::Files))
        if (file.fileName().compare(named.fileName(), Qt::CaseInsensitive) == 0)
            return file.filePath();
    return {};
}

QString TimedLyricsText(LyricsFormat format, const std::vector<LyricItem>& lyrics, const QString& songPath,
                        const QString& fontFamily, int fontSize)
{
    switch (format) {
    case LyricsFormat::Lrc:
        return WriteLrc(lyrics, false);
    case LyricsFormat::EnhancedLrc:
        return WriteLrc(lyrics, true);
    case LyricsFormat::UltraStar:
        return WriteUltraStar(lyrics, QFileInfo(songPath).fileName());
    case LyricsFormat::Ass:
        return WriteAss(lyrics, fontFamily, fontSize);
    case LyricsFormat::Srt:
        return WriteSrt(lyrics);
    }
    return {};
}

bool WriteTimedLyricsFile(const QString& path, LyricsFormat format, const std::vector<LyricItem>& lyrics,
                          const QString& songPath, const QString& fontFamily, int fontSize)
{
    const QByteArray bytes = EncodeText(TimedLyricsText(format, lyrics, songPath, fontFamily, fontSize));
    QSaveFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.commit();
}

void ShowTimedLyrics(LyricsState& lyrics, const TimedLyrics& timed, const LyricsEnvironment& env)
{
    ResetLyricsData(lyrics);
    lyrics.PlayLyrics = timed.items;
    FinishShownLyrics(lyrics, env);
}

bool LoadSiblingLyrics(LyricsState& lyrics, const QString& songPath, const LyricsEnvironment& env)
{
    const auto timed = FindSiblingLyrics(songPath, env.Polish);
    if (!timed)
        return false;
    ShowTimedLyrics(lyrics, *timed, env);
    return true;
}
