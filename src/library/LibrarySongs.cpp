#include "library/LibrarySongs.h"

#include "library/SearchText.h"

#include <QSet>
#include <QSqlQuery>
#include <QVariant>

QSqlQuery PreparedQuery(QSqlDatabase& db, const QString& statement)
{
    QSqlQuery query(db);
    query.prepare(statement);
    return query;
}

namespace {

// The columns of a LibraryHit, in HitOfRow's order, of the table "songs s".
const QString kHitColumns = QStringLiteral("s.id, s.path, s.kind, s.title, s.artist, s.album, s.length, "
                                           "s.lyrics_source, s.play_count");

std::optional<qint64> SongId(QSqlDatabase& db, const QByteArray& path)
{
    QSqlQuery query = PreparedQuery(db, QStringLiteral("SELECT id FROM songs WHERE path = ?"));
    query.addBindValue(path);
    if (!query.exec() || !query.next())
        return std::nullopt;
    return query.value(0).toLongLong();
}

bool IndexSong(QSqlDatabase& db, qint64 id, const LibrarySong& song)
{
    QSqlQuery drop = PreparedQuery(db, QStringLiteral("DELETE FROM songs_fts WHERE rowid = ?"));
    drop.addBindValue(id);
    QSqlQuery add = PreparedQuery(db, QStringLiteral("INSERT INTO songs_fts(rowid, title, artist, album, lyrics) "
                                                "VALUES(?, ?, ?, ?, ?)"));
    add.addBindValue(id);
    add.addBindValue(SqlText(FoldForSearch(song.title)));
    add.addBindValue(SqlText(FoldForSearch(song.artist)));
    add.addBindValue(SqlText(FoldForSearch(song.album)));
    add.addBindValue(SqlText(FoldForSearch(song.words)));
    return drop.exec() && add.exec();
}

// The order of a listing; Relevance without words to rank lists by artist.
QString OrderClause(const LibraryQuery& query)
{
    const QString direction = query.descending ? QStringLiteral(" DESC") : QString();
    const QString title = QStringLiteral("s.title COLLATE NOCASE");
    switch (query.order) {
    case LibraryOrder::Relevance:
        return QStringLiteral("s.artist COLLATE NOCASE, ") + title;
    case LibraryOrder::Title:
        return title + direction;
    case LibraryOrder::Artist:
        return QStringLiteral("s.artist COLLATE NOCASE") + direction + QStringLiteral(", ") + title;
    case LibraryOrder::Album:
        return QStringLiteral("s.album COLLATE NOCASE") + direction + QStringLiteral(", ") + title;
    case LibraryOrder::Length:
        return QStringLiteral("s.length") + direction;
    case LibraryOrder::Kind:
        return QStringLiteral("s.kind") + direction + QStringLiteral(", ") + title;
    case LibraryOrder::MostSung:
        return QStringLiteral("s.play_count") + (query.descending ? QString() : QStringLiteral(" DESC")) + QStringLiteral(", ") + title;
    case LibraryOrder::LastPlayed:
        return QStringLiteral("s.last_played") + (query.descending ? QString() : QStringLiteral(" DESC")) + QStringLiteral(", ") +
               title;
    }
    return title;
}

} // namespace

bool StoreSong(QSqlDatabase& db, const LibrarySong& song)
{
    QSqlQuery forget = PreparedQuery(db, QStringLiteral("DELETE FROM unreadable WHERE path = ?"));
    forget.addBindValue(song.path);
    QSqlQuery upsert = PreparedQuery(db, QStringLiteral(R"(
INSERT INTO songs(path, size, mtime, kind, title, artist, album, length, lyrics_source)
VALUES(?, ?, ?, ?, ?, ?, ?, ?, ?)
ON CONFLICT(path) DO UPDATE SET size = excluded.size, mtime = excluded.mtime, kind = excluded.kind,
    title = excluded.title, artist = excluded.artist, album = excluded.album, length = excluded.length,
    lyrics_source = excluded.lyrics_source)"));
    for (const QVariant& value : {QVariant(song.path), QVariant(song.stamp.size), QVariant(song.stamp.mtime),
                                  SqlText(song.kind), SqlText(song.title), SqlText(song.artist), SqlText(song.album),
                                  QVariant(song.length), SqlText(song.lyricsSource)})
        upsert.addBindValue(value);
    if (!forget.exec() || !upsert.exec())
        return false;
    const auto id = SongId(db, song.path);
    return id && IndexSong(db, *id, song);
}

bool StoreUnreadable(QSqlDatabase& db, const QByteArray& path, const FileStamp& stamp, const QString& reason)
{
    if (!ForgetFile(db, path))
        return false;
    QSqlQuery add = PreparedQuery(db, QStringLiteral("INSERT INTO unreadable(path, size, mtime, reason) VALUES(?, ?, ?, ?)"));
    add.addBindValue(path);
    add.addBindValue(stamp.size);
    add.addBindValue(stamp.mtime);
    add.addBindValue(SqlText(reason));
    return add.exec();
}

bool ForgetFile(QSqlDatabase& db, const QByteArray& path)
{
    if (const auto id = SongId(db, path)) {
        QSqlQuery unindex = PreparedQuery(db, QStringLiteral("DELETE FROM songs_fts WHERE rowid = ?"));
        unindex.addBindValue(*id);
        QSqlQuery drop = PreparedQuery(db, QStringLiteral("DELETE FROM songs WHERE id = ?"));
        drop.addBindValue(*id);
        if (!unindex.exec() || !drop.exec())
            return false;
    }
    QSqlQuery unreadable = PreparedQuery(db, QStringLiteral("DELETE FROM unreadable WHERE path = ?"));
    unreadable.addBindValue(path);
    return unreadable.exec();
}

bool CarryOver(QSqlDatabase& db, const QByteArray& from, const QByteArray& to)
{
    QSqlQuery counts = PreparedQuery(db, QStringLiteral(R"(
UPDATE songs SET play_count = (SELECT play_count FROM songs WHERE path = :from),
                 last_played = (SELECT last_played FROM songs WHERE path = :from)
WHERE path = :to)"));
    counts.bindValue(QStringLiteral(":from"), from);
    counts.bindValue(QStringLiteral(":to"), to);
    if (!counts.exec())
        return false;
    for (const char* table : {"history", "queue", "singer_keys"}) {
        QSqlQuery move = PreparedQuery(db, QStringLiteral("UPDATE OR IGNORE %1 SET path = ? WHERE path = ?").arg(QLatin1String(table)));
        move.addBindValue(to);
        move.addBindValue(from);
        if (!move.exec())
            return false;
    }
    return true;
}

QHash<QByteArray, KnownFile> KnownFiles(QSqlDatabase& db)
{
    QHash<QByteArray, KnownFile> known;
    QSqlQuery query(db);
    query.setForwardOnly(true);
    if (query.exec(QStringLiteral("SELECT path, size, mtime, 0 FROM songs UNION ALL "
                                  "SELECT path, size, mtime, 1 FROM unreadable"))) {
        while (query.next())
            known.insert(query.value(0).toByteArray(),
                         KnownFile{{query.value(1).toLongLong(), query.value(2).toLongLong()}, query.value(3).toBool()});
    }
    return known;
}

namespace {

LibraryHit HitOfRow(const QSqlQuery& row)
{
    return LibraryHit{row.value(0).toLongLong(), row.value(1).toByteArray(), row.value(2).toString(),
                      row.value(3).toString(),   row.value(4).toString(),    row.value(5).toString(),
                      row.value(6).toDouble(),   row.value(7).toString(),    row.value(8).toInt()};
}

QStringList FilterConditions(const LibraryQuery& query)
{
    QStringList conditions;
    if (!query.kind.isEmpty())
        conditions << QStringLiteral("s.kind = :kind");
    if (query.withLyricsOnly)
        conditions << QStringLiteral("(s.lyrics_source <> '' OR s.kind IN ('mp3+g', 'zip'))");
    return conditions;
}

// One pass over the songs: those matching `match` (all when empty), filtered, in `order`.
std::vector<LibraryHit> SelectSongs(QSqlDatabase& db, const LibraryQuery& query, const QString& match,
                                    const QString& order, int limit, int offset = 0)
{
    QStringList conditions = FilterConditions(query);
    if (!match.isEmpty())
        conditions.prepend(QStringLiteral("songs_fts MATCH :match"));
    QString statement = QStringLiteral("SELECT ") + kHitColumns + QStringLiteral(" FROM songs s");
    if (!match.isEmpty())
        statement += QStringLiteral(" JOIN songs_fts ON songs_fts.rowid = s.id");
    if (!conditions.isEmpty())
        statement += QStringLiteral(" WHERE ") + conditions.join(QStringLiteral(" AND "));
    if (!order.isEmpty())
        statement += QStringLiteral(" ORDER BY ") + order;
    statement += QStringLiteral(" LIMIT :limit OFFSET :offset");

    QSqlQuery select = PreparedQuery(db, statement);
    select.setForwardOnly(true);
    if (!match.isEmpty())
        select.bindValue(QStringLiteral(":match"), match);
    if (!query.kind.isEmpty())
        select.bindValue(QStringLiteral(":kind"), query.kind);
    select.bindValue(QStringLiteral(":limit"), limit);
    select.bindValue(QStringLiteral(":offset"), offset);
    std::vector<LibraryHit> hits;
    if (select.exec()) {
        while (select.next())
            hits.push_back(HitOfRow(select));
    }
    return hits;
}

} // namespace

std::vector<LibraryHit> SearchSongs(QSqlDatabase& db, const LibraryQuery& query)
{
    const QString expression = SearchExpression(query.text);
    if (expression.isEmpty() || query.order != LibraryOrder::Relevance)
        return SelectSongs(db, query, expression, OrderClause(query), query.limit, query.offset);
    // Ranking every song whose lyrics hold a common word would take long; the songs whose
    // title, artist or album match are ranked (title words weigh most), and the songs matched
    // through their lyrics follow in the order they are stored.
    std::vector<LibraryHit> hits =
        SelectSongs(db, query, QStringLiteral("{title artist album} : (%1)").arg(expression),
                    QStringLiteral("bm25(songs_fts, 10.0, 6.0, 3.0, 0.0), s.title COLLATE NOCASE"), query.limit);
    if (int(hits.size()) >= query.limit)
        return hits;
    QSet<qint64> ranked;
    for (const LibraryHit& hit : hits)
        ranked.insert(hit.id);
    for (LibraryHit& hit : SelectSongs(db, query, expression, QString(), query.limit + int(ranked.size()))) {
        if (int(hits.size()) >= query.limit)
            break;
        if (!ranked.contains(hit.id))
            hits.push_back(std::move(hit));
    }
    return hits;
}

int CountListed(QSqlDatabase& db, const LibraryQuery& query)
{
    const QStringList conditions = FilterConditions(query);
    QSqlQuery count = PreparedQuery(db, QStringLiteral("SELECT count(*) FROM songs s") +
                                       (conditions.isEmpty() ? QString()
                                                             : QStringLiteral(" WHERE ") + conditions.join(QStringLiteral(" AND "))));
    if (!query.kind.isEmpty())
        count.bindValue(QStringLiteral(":kind"), query.kind);
    return count.exec() && count.next() ? count.value(0).toInt() : 0;
}

namespace {

std::optional<LibraryHit> SongWhere(QSqlDatabase& db, const QString& condition, const QVariant& value)
{
    QSqlQuery query = PreparedQuery(db, QStringLiteral("SELECT ") + kHitColumns + QStringLiteral(" FROM songs s WHERE ") + condition);
    query.addBindValue(value);
    if (!query.exec() || !query.next())
        return std::nullopt;
    return HitOfRow(query);
}

} // namespace

std::optional<LibraryHit> SongAt(QSqlDatabase& db, const QByteArray& path)
{
    return SongWhere(db, QStringLiteral("s.path = ?"), path);
}

std::optional<LibraryHit> SongWithId(QSqlDatabase& db, qint64 id)
{
    return SongWhere(db, QStringLiteral("s.id = ?"), id);
}

std::vector<std::pair<QByteArray, QString>> UnreadableFiles(QSqlDatabase& db)
{
    std::vector<std::pair<QByteArray, QString>> files;
    QSqlQuery query(db);
    if (query.exec(QStringLiteral("SELECT path, reason FROM unreadable ORDER BY path"))) {
        while (query.next())
            files.emplace_back(query.value(0).toByteArray(), query.value(1).toString());
    }
    return files;
}

LibraryStats CountSongs(QSqlDatabase& db)
{
    LibraryStats stats;
    QSqlQuery query(db);
    if (query.exec(QStringLiteral("SELECT kind, count(*), sum(length), sum(lyrics_source <> '' OR kind IN "
                                  "('mp3+g', 'zip')) FROM songs GROUP BY kind"))) {
        while (query.next()) {
            const int count = query.value(1).toInt();
            stats.byKind.insert(query.value(0).toString(), count);
            stats.songs += count;
            stats.seconds += query.value(2).toDouble();
            stats.withLyrics += query.value(3).toInt();
        }
    }
    if (query.exec(QStringLiteral("SELECT count(*) FROM unreadable")) && query.next())
        stats.unreadable = query.value(0).toInt();
    if (query.exec(QStringLiteral("SELECT count(*) FROM history")) && query.next())
        stats.sung = query.value(0).toInt();
    return stats;
}

bool RecordPlay(QSqlDatabase& db, const QByteArray& path, const QString& title, const QString& artist,
                const QString& singer, qint64 when)
{
    QSqlQuery count = PreparedQuery(db, QStringLiteral("UPDATE songs SET play_count = play_count + 1, last_played = ? "
                                                  "WHERE path = ?"));
    count.addBindValue(when);
    count.addBindValue(path);
    QSqlQuery history = PreparedQuery(db, QStringLiteral("INSERT INTO history(path, title, artist, singer, sung_at) "
                                                    "VALUES(?, ?, ?, ?, ?)"));
    history.addBindValue(path);
    history.addBindValue(SqlText(title));
    history.addBindValue(SqlText(artist));
    history.addBindValue(SqlText(singer));
    history.addBindValue(when);
    return count.exec() && history.exec();
}

std::vector<HistoryRow> PlayHistory(QSqlDatabase& db, int limit)
{
    std::vector<HistoryRow> rows;
    QSqlQuery query = PreparedQuery(db, QStringLiteral("SELECT path, title, artist, singer, sung_at FROM history "
                                                  "ORDER BY sung_at DESC, id DESC LIMIT ?"));
    query.addBindValue(limit);
    if (query.exec()) {
        while (query.next())
            rows.push_back({query.value(0).toByteArray(), query.value(1).toString(), query.value(2).toString(),
                            query.value(3).toString(), query.value(4).toLongLong()});
    }
    return rows;
}
