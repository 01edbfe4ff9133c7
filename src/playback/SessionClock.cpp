#include "playback/SessionClock.h"

#include "playback/PlayerState.h"

bool SessionClock::HasSong() const
{
    return m_state.SongOpen();
}

double SessionClock::Position() const
{
    return m_state.Session ? m_state.Session->get_CurrentPosition() : 0;
}
