#pragma once
// The clock of what the listener hears, as one buffer of a source left it: where the source's
// media position (seconds of a file, ticks of a MIDI song) stood at the buffer's first and last
// frame, when its first frame reaches the ear, and how fast the position moves per second heard.
// Every source publishes one per buffer through a LatestValue; the interface thread asks it
// where the song is now.

#include <algorithm>
#include <cstdint>

struct HeardClock {
    uint32_t serial = 0;  // the seek the buffer belongs to
    double floor = 0;     // the position reads no lower: where the seek landed
    double start = 0;
    double end = 0;
    double heardAt = 0;   // steady-clock seconds
    double rate = 1;      // media units per second heard; 0 while paused
    bool ended = false;   // the source played its last frame in this buffer

    // The position heard at `now`: from `start` at `rate`, held between the floor and `end`.
    double PositionAt(double now) const
    {
        return std::clamp(start + (now - heardAt) * rate, floor, std::max(end, floor));
    }
};
