#pragma once
// Where the song that plays is now, as the listener hears it: the one clock every window, the
// editor's taps and the recorder read.

class SongClock {
public:
    virtual ~SongClock() = default;
    // A song is open, playing or not.
    virtual bool HasSong() const = 0;
    // Seconds into the open song; 0 when none is open.
    virtual double Position() const = 0;
};
