#pragma once
// The two ticks that drive a playing song: PlaybackTick (10 ms) reads the song's clock and
// feeds the lyrics and the time digits; mmTimer (500 ms) moves the progress slider and is the
// only place where the end of a song is noticed.

#include <QObject>
#include <QTimer>
#include <functional>

struct PlayerState;
class FormProvider;
class SongList;
class SongTransport;

class PlaybackTicks : public QObject {
    Q_OBJECT
public:
    PlaybackTicks(PlayerState& state, FormProvider& forms, SongTransport& transport, const SongList& list);

    void Start();
    void Stop();
    bool Running() const { return m_playbackTimer.isActive(); }

    void PlaybackTick();
    void mmTimer();
    // Asked first when a song reaches its end; true when it took the end over (an evening of
    // singers counting down to the next turn).
    std::function<bool()> SongEnded;

private:
    double Duration();
    bool LoneListEntryIsCurrent();

    PlayerState& m_state;
    FormProvider& m_forms;
    SongTransport& m_transport;
    const SongList& m_list;
    QTimer m_playbackTimer;
    QTimer m_mmTimer;
};
