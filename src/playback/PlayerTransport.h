#pragma once
// The song transport of the player window: stop, next, and songs handed over by the command line.

#include "core/Forms.h"
#include "core/PlaybackTicks.h"

struct AppState;
class PlayerWindow;

// The path a command line names: made absolute, and a lyrics file ("...lrs") stands for the
// song beside it with the extension "mp3".
QString CommandLineSongPath(const QString& commandLine);

class PlayerTransport final : public SongTransport {
public:
    PlayerTransport(AppState& state, FormProvider& forms, PlayerWindow& player);

    PlaybackTicks& Ticks() { return m_ticks; }

    void StopSong() override;
    void DALEJ() override;
    void OpenFromCommandLine(const QString& commandLine) override;

private:
    AppState& m_state;
    PlayerWindow& m_player;
    PlaybackTicks m_ticks;
};
