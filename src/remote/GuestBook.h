#pragma once
// The guests of the remote: who joined with the right PIN, their sessions' tokens, how fast
// they ask, and the addresses that guessed wrong too often. Used on the server's thread only;
// times are milliseconds of a steady clock, passed in so the rules can be tested.

#include <QByteArray>
#include <QHash>
#include <QString>
#include <deque>
#include <optional>

// A PIN is 4 to 6 digits.
bool ValidPin(const QString& pin);
QString NewPin();

// A random session token of 256 bits, as hex.
QByteArray NewSessionToken();

// The value of the cookie called `name` in a Cookie header, empty when it has none.
QByteArray CookieValue(const QByteArray& header, const QByteArray& name);

struct Guest {
    QString id;
    QString name;
    QString address;
    QByteArray token;
    qint64 lastSeen = 0;
    std::deque<qint64> asked;  // when the guest asked for songs, the last minute's
    double calls = 0;          // the bucket of calls: full at kCallBurst, refilled over time
    qint64 callsAt = 0;
};

class GuestBook {
public:
    static constexpr int kMostNameLength = 40;
    static constexpr int kWrongPinsBeforeBlock = 5;
    static constexpr qint64 kBlockMs = 60'000;
    static constexpr qint64 kSessionIdleMs = 6 * 3600 * 1000;
    // A guest's calls of the API: a burst of this many, then this many a second.
    static constexpr double kCallBurst = 40;
    static constexpr double kCallsPerSecond = 8;

    enum class Joining { Joined, BadName, WrongPin, AddressBlocked, Full };
    struct JoinResult {
        Joining outcome = Joining::BadName;
        Guest* guest = nullptr;
        qint64 retryAfterMs = 0;
    };
    JoinResult Join(const QString& name, const QString& pin, const QString& address, const QString& correctPin,
                    int mostGuests, qint64 now);

    // The guest of a session token, nothing for an unknown or expired one.
    Guest* Find(const QByteArray& token, qint64 now);
    // False when the guest has asked for `perMinute` songs in the last minute; counts the ask.
    bool MayAsk(Guest& guest, int perMinute, qint64 now);
    // False when the guest calls faster than the bucket allows; counts the call.
    bool MayCall(Guest& guest, qint64 now);

    // The guest's session ends and their address is turned away from joining again.
    void Block(const QString& guestId);
    // The milliseconds an address must still wait, 0 when it may join.
    qint64 AddressWait(const QString& address, qint64 now) const;

    const QHash<QByteArray, Guest>& Guests() const { return m_guests; }

private:
    void ForgetIdle(qint64 now);
    void CountWrongPin(const QString& address, qint64 now);

    QHash<QByteArray, Guest> m_guests;  // by token
    QHash<QString, std::deque<qint64>> m_wrongPins;
    QHash<QString, qint64> m_blockedUntil;  // addresses after too many wrong PINs; 0 for ever
};
