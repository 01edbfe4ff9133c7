#pragma once
// The singers of an evening, each with their own songs, taking turns. Every change is written
// to the database at once, so the queue outlives a crash or a power cut.
//
// Fair turns: the next singer is the one who has sung least, the earlier in the rotation first.
// A new singer starts with as many turns as the singers still waiting in this round, so they
// sing at its end rather than after a long list or before everyone; a singer who was passed
// over (paused, or with no song queued) keeps up with the round and gets no burst of turns on
// coming back.

#include <QByteArray>
#include <QString>
#include <optional>
#include <vector>

class LibraryDatabase;

struct Singer {
    qint64 id = 0;
    QString name;
    int turns = 0;
    int place = 0;
    bool paused = false;
};

struct QueuedSong {
    qint64 id = 0;
    qint64 singerId = 0;
    QByteArray path;
    QString title, artist;
    int semitones = 0;
    QString guest;         // the guest whose phone asked for it, empty when the host queued it
    bool pending = false;  // asked for by a guest and waiting for the host's approval
};

struct Turn {
    Singer singer;
    QueuedSong song;
};

class SingerQueue {
public:
    explicit SingerQueue(LibraryDatabase& database) : m_database(database) {}

    // In the rotation's order.
    std::vector<Singer> Singers() const;
    std::vector<QueuedSong> SongsOf(qint64 singerId) const;

    std::optional<qint64> AddSinger(const QString& name);
    bool RemoveSinger(qint64 singerId);
    bool SetPaused(qint64 singerId, bool paused);

    // The singer of that name, added when there is none yet.
    std::optional<qint64> SingerNamed(const QString& name);

    // The song goes to the end of the singer's list, in the key the singer last sang it in, or
    // in `semitones` when given. A guest's song waits for approval when `pending`.
    std::optional<qint64> Enqueue(qint64 singerId, const QByteArray& path, const QString& title, const QString& artist,
                                  std::optional<int> semitones = std::nullopt, const QString& guest = QString(),
                                  bool pending = false);
    bool Approve(qint64 songId);
    // A guest's songs still in the queue.
    std::vector<QueuedSong> SongsOfGuest(const QString& guest) const;
    // Every song of the guest leaves the queue; how many did.
    int RemoveGuest(const QString& guest);
    // Up (negative) or down the singer's list.
    bool Move(qint64 songId, int steps);
    bool Remove(qint64 songId);
    // The song removed last comes back where it was; false when there is none.
    bool UndoRemove();
    bool CanUndoRemove() const { return m_removed.has_value(); }

    // Who sings next and what, nothing when no singer waits with a song.
    std::optional<Turn> Next() const;
    // Every turn to come in the order they will be sung if nothing changes.
    std::vector<Turn> Upcoming() const;
    // The next turn taken: the song leaves the queue, the singer's turn is counted and the
    // play history has it, in one transaction.
    std::optional<Turn> TakeNext(qint64 when);

    // The key a singer sang a song in, for the next time they queue it.
    bool KeepKey(const QString& singer, const QByteArray& path, int semitones);

private:
    int CurrentRound() const;

    LibraryDatabase& m_database;
    std::optional<QueuedSong> m_removed;
    double m_removedPlace = 0;
};
