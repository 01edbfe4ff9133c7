#pragma once
// A playing audio file as the application state holds it: the song's own, or the recorded voice.

class MediaGraph {
public:
    virtual ~MediaGraph() = default;
    virtual void Stop() = 0;
    // Seconds of what the listener hears now.
    virtual double get_CurrentPosition() = 0;
    virtual double get_Duration() = 0;
};
