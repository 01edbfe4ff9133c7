#include "library/SingerQueue.h"

#include "library/LibraryDatabase.h"
#include "library/LibrarySongs.h"

#include <QSqlQuery>
#include <QVariant>
#include <algorithm>

namespace {

bool Exec(QSqlDatabase& db, const QString& statement, const QVariantList& values)
{
    QSqlQuery query = PreparedQuery(db, statement);
    for (const QVariant& value : values)
        query.addBindValue(value);
    return query.exec();
}

QueuedSong SongOfRow(const QSqlQuery& query)
{
    return QueuedSong{query.value(0).toLongLong(), query.value(1).toLongLong(), query.value(2).toByteArray(),
                      query.value(3).toString(),   query.value(4).toString(),   query.value(5).toInt(),
                      query.value(6).toString(),   query.value(7).toBool()};
}

const QString kSongColumns = QStringLiteral("id, singer_id, path, title, artist, semitones, guest, pending");
constexpr int kPlaceColumn = 8;

std::vector<QueuedSong> SongsWhere(QSqlDatabase& db, const QString& condition, const QVariant& value)
{
    std::vector<QueuedSong> songs;
    QSqlQuery query = PreparedQuery(db, QStringLiteral("SELECT %1 FROM queue WHERE %2").arg(kSongColumns, condition));
    query.addBindValue(value);
    if (query.exec()) {
        while (query.next())
            songs.push_back(SongOfRow(query));
    }
    return songs;
}

bool Waits(const Singer& singer, const std::vector<qint64>& withSongs)
{
    return !singer.paused && std::find(withSongs.begin(), withSongs.end(), singer.id) != withSongs.end();
}

} // namespace

std::vector<Singer> SingerQueue::Singers() const
{
    std::vector<Singer> singers;
    QSqlQuery query(m_database.Db());
    if (query.exec(QStringLiteral("SELECT id, name, turns, place, paused FROM singers ORDER BY place"))) {
        while (query.next())
            singers.push_back({query.value(0).toLongLong(), query.value(1).toString(), query.value(2).toInt(),
                               query.value(3).toInt(), query.value(4).toBool()});
    }
    return singers;
}

std::vector<QueuedSong> SingerQueue::SongsOf(qint64 singerId) const
{
    return SongsWhere(m_database.Db(), QStringLiteral("singer_id = ? ORDER BY place"), singerId);
}

int SingerQueue::CurrentRound() const
{
    std::vector<qint64> withSongs;
    QSqlQuery query(m_database.Db());
    if (query.exec(QStringLiteral("SELECT DISTINCT singer_id FROM queue WHERE pending = 0"))) {
        while (query.next())
            withSongs.push_back(query.value(0).toLongLong());
    }
    std::optional<int> waiting;
    int most = 0;
    for (const Singer& singer : Singers()) {
        most = std::max(most, singer.turns);
        if (Waits(singer, withSongs))
            waiting = std::min(waiting.value_or(singer.turns), singer.turns);
    }
    return waiting.value_or(most);
}

std::optional<qint64> SingerQueue::AddSinger(const QString& name)
{
    const QString trimmed = name.simplified();
    if (trimmed.isEmpty())
        return std::nullopt;
    std::optional<qint64> id;
    const int round = CurrentRound();
    m_database.Write([&] {
        QSqlDatabase& db = m_database.Db();
        QSqlQuery add = PreparedQuery(db, QStringLiteral("INSERT INTO singers(name, turns, place) "
                                                    "VALUES(?, ?, (SELECT coalesce(max(place), 0) + 1 FROM singers))"));
        add.addBindValue(trimmed);
        add.addBindValue(round);
        if (!add.exec())
            return false;
        id = add.lastInsertId().toLongLong();
        return true;
    });
    return id;
}

bool SingerQueue::RemoveSinger(qint64 singerId)
{
    return m_database.Write(
        [&] { return Exec(m_database.Db(), QStringLiteral("DELETE FROM singers WHERE id = ?"), {singerId}); });
}

bool SingerQueue::SetPaused(qint64 singerId, bool paused)
{
    return m_database.Write([&] {
        return Exec(m_database.Db(), QStringLiteral("UPDATE singers SET paused = ? WHERE id = ?"),
                    {paused ? 1 : 0, singerId});
    });
}

std::optional<qint64> SingerQueue::SingerNamed(const QString& name)
{
    const QString trimmed = name.simplified();
    for (const Singer& singer : Singers()) {
        if (singer.name.compare(trimmed, Qt::CaseInsensitive) == 0)
            return singer.id;
    }
    return AddSinger(trimmed);
}

std::optional<qint64> SingerQueue::Enqueue(qint64 singerId, const QByteArray& path, const QString& title,
                                           const QString& artist, std::optional<int> semitones, const QString& guest,
                                           bool pending)
{
    std::optional<qint64> id;
    m_database.Write([&] {
        QSqlQuery add = PreparedQuery(m_database.Db(), QStringLiteral(R"(
INSERT INTO queue(singer_id, path, title, artist, place, semitones, guest, pending)
VALUES(:singer, :path, :title, :artist,
       (SELECT coalesce(max(place), 0) + 1 FROM queue WHERE singer_id = :singer),
       coalesce(:semitones,
                (SELECT k.semitones FROM singer_keys k JOIN singers s ON s.name = k.singer
                 WHERE s.id = :singer AND k.path = :path), 0),
       :guest, :pending))"));
        add.bindValue(QStringLiteral(":singer"), singerId);
        add.bindValue(QStringLiteral(":path"), path);
        add.bindValue(QStringLiteral(":title"), SqlText(title));
        add.bindValue(QStringLiteral(":artist"), SqlText(artist));
        add.bindValue(QStringLiteral(":semitones"), semitones ? QVariant(*semitones) : QVariant(QMetaType(QMetaType::Int)));
        add.bindValue(QStringLiteral(":guest"), SqlText(guest));
        add.bindValue(QStringLiteral(":pending"), pending ? 1 : 0);
        if (!add.exec())
            return false;
        id = add.lastInsertId().toLongLong();
        return true;
    });
    return id;
}

bool SingerQueue::Approve(qint64 songId)
{
    return m_database.Write(
        [&] { return Exec(m_database.Db(), QStringLiteral("UPDATE queue SET pending = 0 WHERE id = ?"), {songId}); });
}

std::vector<QueuedSong> SingerQueue::SongsOfGuest(const QString& guest) const
{
    return SongsWhere(m_database.Db(), QStringLiteral("guest = ? ORDER BY id"), guest);
}

int SingerQueue::RemoveGuest(const QString& guest)
{
    int removed = 0;
    m_database.Write([&] {
        QSqlQuery remove = PreparedQuery(m_database.Db(), QStringLiteral("DELETE FROM queue WHERE guest = ? AND guest <> ''"));
        remove.addBindValue(guest);
        if (!remove.exec())
            return false;
        removed = remove.numRowsAffected();
        return true;
    });
    return removed;
}

bool SingerQueue::Move(qint64 songId, int steps)
{
    return m_database.Write([&] {
        QSqlDatabase& db = m_database.Db();
        QSqlQuery owner = PreparedQuery(db, QStringLiteral("SELECT singer_id FROM queue WHERE id = ?"));
        owner.addBindValue(songId);
        if (!owner.exec() || !owner.next())
            return false;
        std::vector<QueuedSong> songs = SongsOf(owner.value(0).toLongLong());
        const auto at = std::find_if(songs.begin(), songs.end(), [&](const QueuedSong& s) { return s.id == songId; });
        const int from = int(at - songs.begin());
        const int to = std::clamp(from + steps, 0, int(songs.size()) - 1);
        const QueuedSong moved = songs[from];
        songs.erase(songs.begin() + from);
        songs.insert(songs.begin() + to, moved);
        for (size_t i = 0; i < songs.size(); ++i) {
            if (!Exec(db, QStringLiteral("UPDATE queue SET place = ? WHERE id = ?"), {double(i + 1), songs[i].id}))
                return false;
        }
        return true;
    });
}

bool SingerQueue::Remove(qint64 songId)
{
    std::optional<QueuedSong> removed;
    double place = 0;
    const bool done = m_database.Write([&] {
        QSqlDatabase& db = m_database.Db();
        QSqlQuery song = PreparedQuery(db, QStringLiteral("SELECT %1, place FROM queue WHERE id = ?").arg(kSongColumns));
        song.addBindValue(songId);
        if (!song.exec() || !song.next())
            return false;
        removed = SongOfRow(song);
        place = song.value(kPlaceColumn).toDouble();
        return Exec(db, QStringLiteral("DELETE FROM queue WHERE id = ?"), {songId});
    });
    if (done) {
        m_removed = removed;
        m_removedPlace = place;
    }
    return done;
}

bool SingerQueue::UndoRemove()
{
    if (!m_removed)
        return false;
    const QueuedSong& song = *m_removed;
    const bool done = m_database.Write([&] {
        // A singer who left meanwhile takes no song back.
        QSqlQuery add = PreparedQuery(m_database.Db(),
                                 QStringLiteral("INSERT INTO queue(id, singer_id, path, title, artist, place, semitones, guest, pending) "
                                                "SELECT ?, ?, ?, ?, ?, ?, ?, ?, ? WHERE EXISTS (SELECT 1 FROM singers WHERE id = ?)"));
        for (const QVariant& value : {QVariant(song.id), QVariant(song.singerId), QVariant(song.path),
                                      SqlText(song.title), SqlText(song.artist), QVariant(m_removedPlace),
                                      QVariant(song.semitones), SqlText(song.guest), QVariant(song.pending ? 1 : 0),
                                      QVariant(song.singerId)})
            add.addBindValue(value);
        return add.exec() && add.numRowsAffected() == 1;
    });
    if (done)
        m_removed.reset();
    return done;
}

std::optional<Turn> SingerQueue::Next() const
{
    const std::vector<Turn> upcoming = Upcoming();
    return upcoming.empty() ? std::nullopt : std::optional<Turn>(upcoming.front());
}

std::vector<Turn> SingerQueue::Upcoming() const
{
    struct Waiting {
        Singer singer;
        std::vector<QueuedSong> songs;
    };
    std::vector<Waiting> waiting;
    for (const Singer& singer : Singers()) {
        std::vector<QueuedSong> songs = SongsOf(singer.id);
        std::erase_if(songs, [](const QueuedSong& song) { return song.pending; });
        if (!singer.paused && !songs.empty())
            waiting.push_back({singer, std::move(songs)});
    }
    std::vector<Turn> turns;
    for (;;) {
        Waiting* next = nullptr;
        for (Waiting& w : waiting) {
            if (!w.songs.empty() && (!next || w.singer.turns < next->singer.turns))
                next = &w;
        }
        if (!next)
            return turns;
        turns.push_back({next->singer, next->songs.front()});
        next->songs.erase(next->songs.begin());
        ++next->singer.turns;
    }
}

std::optional<Turn> SingerQueue::TakeNext(qint64 when)
{
    const std::optional<Turn> next = Next();
    if (!next)
        return std::nullopt;
    const bool done = m_database.Write([&] {
        QSqlDatabase& db = m_database.Db();
        const int turns = next->singer.turns + 1;
        // Singers passed over keep up with the round.
        return Exec(db, QStringLiteral("DELETE FROM queue WHERE id = ?"), {next->song.id}) &&
               Exec(db, QStringLiteral("UPDATE singers SET turns = ? WHERE id = ?"), {turns, next->singer.id}) &&
               Exec(db, QStringLiteral("UPDATE singers SET turns = ? WHERE turns < ? AND (paused <> 0 OR "
                                       "id NOT IN (SELECT singer_id FROM queue WHERE pending = 0))"),
                    {next->singer.turns, next->singer.turns}) &&
               RecordPlay(db, next->song.path, next->song.title, next->song.artist, next->singer.name, when);
    });
    return done ? next : std::nullopt;
}

bool SingerQueue::KeepKey(const QString& singer, const QByteArray& path, int semitones)
{
    return m_database.Write([&] {
        return Exec(m_database.Db(),
                    QStringLiteral("INSERT OR REPLACE INTO singer_keys(singer, path, semitones) VALUES(?, ?, ?)"),
                    {singer, path, semitones});
    });
}
