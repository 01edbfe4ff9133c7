#include "playlist/PlaylistFiles.h"

#include "lyrics/LyricsLoader.h"

#include "core/Numbers.h"
#include "core/TextCodec.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSaveFile>
#include <map>

namespace {

const QString kExtInf = QStringLiteral("#EXTINF");

QString TwoDigits(int value)
{
    return QString::number(value).rightJustified(2, u'0');
}

QString BaseNameOf(const QString& path)
{
    return QFileInfo(path).completeBaseName();
}

// The value behind ":" of an "#EXTINF" line, up to the first "," when there is one; nothing
// when the line has no time, and an error when the comma stands before the colon.
struct ExtInf {
    QString text;
    std::optional<double> seconds;
    bool broken = false;
};

ExtInf ParseExtInf(const QString& line)
{
    ExtInf info;
    const qsizetype comma = line.indexOf(u',');
    if (comma >= 0)
        info.text = line.mid(comma + 1);
    const qsizetype colon = line.indexOf(u':');
    if (colon >= 0 && line.size() != colon + 1) {
        if (comma < 0)
            info.seconds = NumericValue(line.mid(colon + 1));
        else if (comma > colon)
            info.seconds = NumericValue(line.mid(colon + 1, comma - colon - 1));
        else
            info.broken = true;
    }
    return info;
}

void Probe(PlaylistRow& row, const SongProbe& probe)
{
    if (!probe)
        return;
    if (const auto facts = probe(row.ItemPath))
        ApplySongFacts(row, *facts);
}

} // namespace

QString FormatListSeconds(const QString& seconds)
{
    const int16_t value = ToInt16(NumericValue(seconds));
    return TwoDigits(value / 60) + u':' + TwoDigits(value % 60);
}

QString ListTimeToSeconds(const QString& time)
{
    return QString::number(NumericValue(time.left(2)) * 60 + NumericValue(time.right(2)));
}

void ApplySongFacts(PlaylistRow& row, const SongFacts& facts)
{
    row.ItemTime = FormatTime(std::max(0.0, facts.Length));
    if (!facts.Artist.isEmpty())
        row.ItemString = facts.Title.isEmpty() ? facts.Artist : facts.Artist + QStringLiteral(" - ") + facts.Title;
    else if (!facts.Title.isEmpty())
        row.ItemString = facts.Title;
}

QString ListEntryPath(const QString& line, const QString& playlistFolder)
{
    QString path = line.trimmed();
    path.replace(u'\\', u'/');
    // A relative path is read from the playlist's folder; a drive letter marks a Windows path.
    const bool windowsAbsolute = path.size() > 2 && path[1] == u':' && path[2] == u'/';
    if (QDir::isRelativePath(path) && !windowsAbsolute)
        path = QDir(playlistFolder).filePath(path);
    return QDir::cleanPath(path);
}

QString WriteM3U(const std::vector<PlaylistRow>& rows, const QString& relativeTo)
{
    const QString crlf = QStringLiteral("\r\n");
    const QString folder = relativeTo.isEmpty() ? QString() : QDir::cleanPath(QFileInfo(relativeTo).absoluteFilePath());
    QString text = QStringLiteral("#EXTM3U") + crlf;
    for (const PlaylistRow& row : rows) {
        QString info = kExtInf;
        if (!row.ItemTime.isEmpty())
            info += u':' + QString::number(qint64(NumericValue(ListTimeToSeconds(row.ItemTime))));
        if (!row.ItemString.isEmpty())
            info += u',' + row.ItemString;
        if (info.size() <= kExtInf.size() || row.ItemPath.isEmpty())
            continue;
        QString path = QDir::toNativeSeparators(row.ItemPath);
        if (!folder.isEmpty() && QFileInfo(row.ItemPath).absolutePath() == folder)
            path = QFileInfo(row.ItemPath).fileName();
        text += info + crlf + path + crlf;
    }
    return text;
}

namespace {

// The walk shared by both readers of M3U lists: a path line, with the "#EXTINF" line before it
// when there is one; other "#" lines and blank lines are passed over. `finish` completes a row
// and says whether it is kept. An "#EXTINF" line as the last line has no path and gives nothing.
void ReadListRows(const QStringList& lines, const QString& playlistFolder, const std::function<bool(PlaylistRow&)>& finish,
                  const std::function<void(const PlaylistRow&)>& add)
{
    for (qsizetype i = 0; i < lines.size(); ++i) {
        ExtInf info;
        if (lines[i].startsWith(kExtInf)) {
            info = ParseExtInf(lines[i]);
            if (info.broken || ++i == lines.size())
                return;
        } else if (lines[i].trimmed().isEmpty() || lines[i].startsWith(u'#')) {
            continue;
        }
        PlaylistRow row;
        row.ItemString = info.text;
        if (info.seconds)
            row.ItemTime = FormatListSeconds(QString::number(*info.seconds));
        row.ItemPath = ListEntryPath(lines[i], playlistFolder);
        if (!finish(row))
            continue;
        if (row.ItemString.isEmpty())
            row.ItemString = BaseNameOf(row.ItemPath);
        add(row);
    }
}

} // namespace

void ReadM3U(const QStringList& lines, const QString& playlistFolder, const SongProbe& probe,
             const std::function<void(const PlaylistRow&)>& add)
{
    const auto probeExisting = [&probe](PlaylistRow& row) {
        if (QFileInfo(row.ItemPath).isFile())
            Probe(row, probe);
        return true;
    };
    ReadListRows(lines, playlistFolder, probeExisting, add);
}

void ReadSavedList(const QStringList& lines, const QString& playlistFolder,
                   const std::function<void(const PlaylistRow&)>& add)
{
    const auto keepExisting = [](PlaylistRow& row) { return QFileInfo(row.ItemPath).isFile(); };
    ReadListRows(lines, playlistFolder, keepExisting, add);
}

void ReadPls(const QStringList& lines, const QString& playlistFolder, const SongProbe& probe,
             const std::function<void(const PlaylistRow&)>& add)
{
    struct Entry {
        QString file, title;
        std::optional<QString> length;
    };
    static const QRegularExpression keyed(QStringLiteral("^\\s*(file|title|length)(\\d{1,9})\\s*=(.*)$"),
                                          QRegularExpression::CaseInsensitiveOption);
    std::map<int, Entry> entries;
    for (const QString& line : lines) {
        const QRegularExpressionMatch match = keyed.match(line);
        if (!match.hasMatch())
            continue;
        Entry& entry = entries[match.captured(2).toInt()];
        const QString key = match.captured(1).toLower();
        if (key == u"file")
            entry.file = match.captured(3);
        else if (key == u"title")
            entry.title = match.captured(3);
        else
            entry.length = match.captured(3);
    }
    for (const auto& [number, entry] : entries) {
        if (entry.file.trimmed().isEmpty())
            continue;
        PlaylistRow row;
        row.ItemPath = ListEntryPath(entry.file, playlistFolder);
        row.ItemString = entry.title;
        if (entry.length)
            row.ItemTime = FormatListSeconds(*entry.length);
        if (QFileInfo(row.ItemPath).isFile())
            Probe(row, probe);
        if (row.ItemString.isEmpty())
            row.ItemString = BaseNameOf(row.ItemPath);
        add(row);
    }
}

QStringList ReadListLines(const QString& path, bool polish)
{
    QString text = DecodeText(ReadWholeFile(path), polish);
    text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    QStringList lines = text.split(u'\n');
    // A file that ends with a line break has no empty line after it.
    if (!lines.isEmpty() && lines.last().isEmpty())
        lines.removeLast();
    return lines;
}

bool WriteListFile(const QString& path, const QString& text)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    file.write(EncodeText(text));
    return file.commit();
}
