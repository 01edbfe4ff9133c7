#include "remote/RemoteShared.h"

void RemoteShared::SetSettings(const RemoteSettings& settings)
{
    std::lock_guard lock(m_mutex);
    m_settings = settings;
}

RemoteSettings RemoteShared::Settings() const
{
    std::lock_guard lock(m_mutex);
    return m_settings;
}

void RemoteShared::SetNowPlaying(const NowPlaying& now)
{
    std::lock_guard lock(m_mutex);
    m_now = now;
}

NowPlaying RemoteShared::Now() const
{
    std::lock_guard lock(m_mutex);
    return m_now;
}

void RemoteShared::Block(const QString& guestId)
{
    std::lock_guard lock(m_mutex);
    m_blocked.insert(guestId);
    for (GuestSummary& guest : m_guests) {
        if (guest.id == guestId)
            guest.blocked = true;
    }
}

bool RemoteShared::Blocked(const QString& guestId) const
{
    std::lock_guard lock(m_mutex);
    return m_blocked.contains(guestId);
}

void RemoteShared::SetGuests(std::vector<GuestSummary> guests)
{
    std::lock_guard lock(m_mutex);
    for (GuestSummary& guest : guests)
        guest.blocked = m_blocked.contains(guest.id);
    m_guests = std::move(guests);
}

std::vector<GuestSummary> RemoteShared::Guests() const
{
    std::lock_guard lock(m_mutex);
    return m_guests;
}
