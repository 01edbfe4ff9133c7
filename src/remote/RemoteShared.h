#pragma once
// What the interface thread and the guests' server share: the host's settings, the song that
// plays, the guests who joined and those the host blocked. Guarded by a mutex, never touched by
// the audio thread; the counters let each side notice the other's changes by polling.

#include <QString>
#include <QStringList>
#include <atomic>
#include <mutex>
#include <set>
#include <vector>

struct RemoteSettings {
    QString pin;
    bool approveEach = false;   // guests' songs wait for the host before they join the rotation
    int requestsPerMinute = 10;  // songs one guest may ask for in a minute
    int songsPerGuest = 3;       // songs one guest may have in the queue at once
    int mostGuests = 100;
};

struct NowPlaying {
    QString title, artist, singer;
    bool operator==(const NowPlaying&) const = default;
};

struct GuestSummary {
    QString id;  // never the session's token: safe to show and to store in the queue
    QString name;
    QString address;
    bool blocked = false;
};

class RemoteShared {
public:
    void SetSettings(const RemoteSettings& settings);
    RemoteSettings Settings() const;

    void SetNowPlaying(const NowPlaying& now);
    NowPlaying Now() const;

    // The host turns a guest away: their session ends and their address cannot join again.
    void Block(const QString& guestId);
    bool Blocked(const QString& guestId) const;

    void SetGuests(std::vector<GuestSummary> guests);
    std::vector<GuestSummary> Guests() const;

    // Counted up by the server each time a guest changes the queue.
    void GuestChangedQueue() { m_guestChanges.fetch_add(1, std::memory_order_release); }
    quint64 GuestChanges() const { return m_guestChanges.load(std::memory_order_acquire); }

private:
    mutable std::mutex m_mutex;
    RemoteSettings m_settings;
    NowPlaying m_now;
    std::set<QString> m_blocked;
    std::vector<GuestSummary> m_guests;
    std::atomic<quint64> m_guestChanges{0};
};
