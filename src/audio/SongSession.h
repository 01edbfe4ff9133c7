#pragma once
// A playing song as the player drives it, whatever plays it: a decoded audio file or a MIDI
// file on the synthesiser. Seconds for positions, hundredths of a decibel for levels
// (0 full, -10000 silence).

#include <QString>

class SongSession {
public:
    enum State { Stopped = 0, Paused = 1, Running = 2 };

    virtual ~SongSession() = default;

    // Opens the file, stopped at 0; false (and ErrorText) when it cannot be played.
    virtual bool RenderFile(const QString& path) = 0;
    virtual QString ErrorText() const = 0;
    // True when RenderFile failed because no song of this kind can play (a synthesiser without
    // its SoundFont), not because of the file; ErrorText then says so to the user.
    virtual bool KindUnavailable() const { return false; }

    virtual void Run() = 0;
    virtual void Pause() = 0;
    virtual void Stop() = 0;
    virtual int GetState() const = 0;

    virtual double get_Duration() const = 0;
    // What the listener hears now; it never runs backwards while the song plays.
    virtual double get_CurrentPosition() const = 0;
    virtual void put_CurrentPosition(double seconds) = 0;
    // How fast song time runs against the listener's time.
    virtual double get_Rate() const = 0;
    virtual void put_Rate(double rate) = 0;
    virtual void put_Volume(int hundredthsDb) = 0;
    virtual int get_Volume() const = 0;
    virtual void put_Balance(int hundredthsDb) = 0;
};
