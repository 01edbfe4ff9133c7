#pragma once
// The two ticks that drive a playing song: PlaybackTick (10 ms) reads the song's clock and
// feeds the lyrics and the time digits; mmTimer (500 ms) moves the progress slider and is the
// only place where the end of a song is noticed.

#include <QObject>
#include <QTimer>

struct AppState;
class FormProvider;
class SongTransport;

class PlaybackTicks : public QObject {
    Q_OBJECT
public:
    PlaybackTicks(AppState& state, FormProvider& forms, SongTransport& transport);

    void Start();
    void Stop();
    bool Running() const { return m_playbackTimer.isActive(); }

    void PlaybackTick();
    void mmTimer();

private:
    double ReadPosition();
    double Duration();
    bool LoneListEntryIsCurrent();

    AppState& m_state;
    FormProvider& m_forms;
    SongTransport& m_transport;
    QTimer m_playbackTimer;
    QTimer m_mmTimer;
};
