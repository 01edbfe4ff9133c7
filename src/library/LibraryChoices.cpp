#include "library/LibraryChoices.h"

#include "library/LibraryDatabase.h"

#include <QDateTime>
#include <QFile>
#include <QSqlQuery>
#include <QVariant>
#include <algorithm>
#include <cmath>

namespace {

const QByteArray kOldHeader = "#Songweaver song settings 1";
// The old file kept 5000 songs of some 60 bytes a line.
constexpr qint64 kLongestOldFile = qint64(5000) * 200;

// The choice in the knobs' ranges; a tempo that is no number is the song's own.
SongChoice InRange(const SongChoice& choice)
{
    return SongChoice{std::clamp(choice.semitones, -12, 12),
                      std::isfinite(choice.tempo) ? std::clamp(choice.tempo, 0.5, 2.0) : 1.0, choice.vocalsOff};
}

std::optional<SongChoice> ParseOldLine(const QList<QByteArray>& fields)
{
    if (fields.size() != 4)
        return std::nullopt;
    bool semitonesOk = false, tempoOk = false, vocalsOk = false;
    const int semitones = fields[1].toInt(&semitonesOk);
    const double tempo = fields[2].toDouble(&tempoOk);
    const int vocals = fields[3].toInt(&vocalsOk);
    if (!semitonesOk || !tempoOk || !vocalsOk || !std::isfinite(tempo))
        return std::nullopt;
    return InRange(SongChoice{semitones, tempo, vocals != 0});
}

bool Keep(QSqlDatabase& db, const QString& key, const SongChoice& choice, qint64 when)
{
    QSqlQuery query(db);
    if (choice.IsNeutral()) {
        query.prepare(QStringLiteral("DELETE FROM song_choices WHERE song_key = ?"));
        query.addBindValue(key);
        return query.exec();
    }
    query.prepare(QStringLiteral("INSERT OR REPLACE INTO song_choices(song_key, semitones, tempo, vocals_off, "
                                 "chosen_at) VALUES(?, ?, ?, ?, ?)"));
    query.addBindValue(key);
    query.addBindValue(choice.semitones);
    query.addBindValue(choice.tempo);
    query.addBindValue(choice.vocalsOff ? 1 : 0);
    query.addBindValue(when);
    return query.exec();
}

} // namespace

SongChoice LibraryChoices::Recall(const QString& songKey)
{
    if (songKey.isEmpty() || !m_database.IsOpen())
        return {};
    QSqlQuery query(m_database.Db());
    query.prepare(QStringLiteral("SELECT semitones, tempo, vocals_off FROM song_choices WHERE song_key = ?"));
    query.addBindValue(songKey);
    if (!query.exec() || !query.next())
        return {};
    return InRange(SongChoice{query.value(0).toInt(), query.value(1).toDouble(), query.value(2).toBool()});
}

bool LibraryChoices::Remember(const QString& songKey, const SongChoice& choice)
{
    if (songKey.isEmpty())
        return false;
    return m_database.Write(
        [&] { return Keep(m_database.Db(), songKey, InRange(choice), QDateTime::currentSecsSinceEpoch()); });
}

std::optional<int> ImportSongChoicesFile(LibraryDatabase& database, const QString& file)
{
    QFile old(file);
    if (!old.open(QIODevice::ReadOnly))
        return std::nullopt;
    const QList<QByteArray> lines = old.read(kLongestOldFile).split('\n');
    old.close();
    int taken = 0;
    const bool written = database.Write([&] {
        if (lines.isEmpty() || lines.first().trimmed() != kOldHeader)
            return true;
        // The old file listed the song chosen longest ago first.
        const qint64 now = QDateTime::currentSecsSinceEpoch();
        for (qsizetype i = 1; i < lines.size(); ++i) {
            const QList<QByteArray> fields = lines[i].trimmed().split('\t');
            const auto choice = ParseOldLine(fields);
            if (!choice || choice->IsNeutral())
                continue;
            if (!Keep(database.Db(), QString::fromLatin1(fields[0]), *choice, now - lines.size() + i))
                return false;
            ++taken;
        }
        return true;
    });
    if (!written)
        return std::nullopt;
    QFile::remove(file + QStringLiteral(".imported"));
    QFile::rename(file, file + QStringLiteral(".imported"));
    return taken;
}
