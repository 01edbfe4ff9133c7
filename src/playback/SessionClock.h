#pragma once
// The song clock of the player: the session's audible position, whatever plays the song.

#include "core/SongClock.h"

struct PlayerState;

class SessionClock final : public SongClock {
public:
    explicit SessionClock(const PlayerState& state) : m_state(state) {}
    bool HasSong() const override;
    double Position() const override;

private:
    const PlayerState& m_state;
};
