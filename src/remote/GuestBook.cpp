#include "remote/GuestBook.h"

#include <QRandomGenerator>
#include <algorithm>
#include <limits>

bool ValidPin(const QString& pin)
{
    return pin.size() >= 4 && pin.size() <= 6 &&
           std::all_of(pin.begin(), pin.end(), [](QChar c) { return c >= u'0' && c <= u'9'; });
}

QString NewPin()
{
    return QStringLiteral("%1").arg(QRandomGenerator::system()->bounded(1'000'000), 6, 10, QLatin1Char('0'));
}

QByteArray NewSessionToken()
{
    quint32 words[8];
    QRandomGenerator::system()->fillRange(words);
    return QByteArray(reinterpret_cast<const char*>(words), sizeof words).toHex();
}

QByteArray CookieValue(const QByteArray& header, const QByteArray& name)
{
    for (const QByteArray& pair : header.split(';')) {
        const int equals = pair.indexOf('=');
        if (equals > 0 && pair.left(equals).trimmed() == name)
            return pair.mid(equals + 1).trimmed();
    }
    return {};
}

GuestBook::JoinResult GuestBook::Join(const QString& name, const QString& pin, const QString& address,
                                      const QString& correctPin, int mostGuests, qint64 now)
{
    if (const qint64 wait = AddressWait(address, now))
        return {Joining::AddressBlocked, nullptr, wait};
    if (!ValidPin(correctPin) || pin != correctPin) {
        CountWrongPin(address, now);
        return {Joining::WrongPin, nullptr, AddressWait(address, now)};
    }
    const QString simplified = name.simplified();
    if (simplified.isEmpty() || simplified.size() > kMostNameLength ||
        std::any_of(simplified.begin(), simplified.end(), [](QChar c) { return c.category() == QChar::Other_Control; }))
        return {Joining::BadName};
    ForgetIdle(now);
    if (m_guests.size() >= mostGuests)
        return {Joining::Full};
    Guest guest;
    // Random, so a guest of an earlier evening whose songs are still queued is nobody today.
    guest.id = QString::fromLatin1(NewSessionToken().left(16));
    guest.name = simplified;
    guest.address = address;
    guest.token = NewSessionToken();
    guest.lastSeen = now;
    guest.calls = kCallBurst;
    guest.callsAt = now;
    Guest& stored = m_guests.insert(guest.token, guest).value();
    return {Joining::Joined, &stored};
}

Guest* GuestBook::Find(const QByteArray& token, qint64 now)
{
    const auto it = m_guests.find(token);
    if (token.isEmpty() || it == m_guests.end())
        return nullptr;
    if (now - it->lastSeen > kSessionIdleMs) {
        m_guests.erase(it);
        return nullptr;
    }
    it->lastSeen = now;
    return &it.value();
}

bool GuestBook::MayAsk(Guest& guest, int perMinute, qint64 now)
{
    while (!guest.asked.empty() && now - guest.asked.front() >= 60'000)
        guest.asked.pop_front();
    if (int(guest.asked.size()) >= perMinute)
        return false;
    guest.asked.push_back(now);
    return true;
}

bool GuestBook::MayCall(Guest& guest, qint64 now)
{
    guest.calls = std::min(kCallBurst, guest.calls + double(now - guest.callsAt) / 1000.0 * kCallsPerSecond);
    guest.callsAt = now;
    if (guest.calls < 1)
        return false;
    guest.calls -= 1;
    return true;
}

void GuestBook::Block(const QString& guestId)
{
    for (auto it = m_guests.begin(); it != m_guests.end();) {
        if (it->id == guestId) {
            m_blockedUntil[it->address] = 0;
            it = m_guests.erase(it);
        } else {
            ++it;
        }
    }
}

qint64 GuestBook::AddressWait(const QString& address, qint64 now) const
{
    const auto it = m_blockedUntil.find(address);
    if (it == m_blockedUntil.end())
        return 0;
    if (*it == 0)
        return std::numeric_limits<qint64>::max();
    return std::max<qint64>(0, *it - now);
}

void GuestBook::ForgetIdle(qint64 now)
{
    for (auto it = m_guests.begin(); it != m_guests.end();)
        it = now - it->lastSeen > kSessionIdleMs ? m_guests.erase(it) : std::next(it);
}

void GuestBook::CountWrongPin(const QString& address, qint64 now)
{
    std::deque<qint64>& wrong = m_wrongPins[address];
    while (!wrong.empty() && now - wrong.front() >= kBlockMs)
        wrong.pop_front();
    wrong.push_back(now);
    if (int(wrong.size()) >= kWrongPinsBeforeBlock) {
        m_blockedUntil[address] = now + kBlockMs;
        wrong.clear();
    }
}
