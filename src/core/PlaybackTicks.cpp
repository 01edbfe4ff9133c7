#include "core/PlaybackTicks.h"

#include "core/AppState.h"
#include "core/Forms.h"
#include "text/Numbers.h"

PlaybackTicks::PlaybackTicks(AppState& state, FormProvider& forms, SongTransport& transport)
    : m_state(state), m_forms(forms), m_transport(transport)
{
    m_playbackTimer.setInterval(10);
    m_playbackTimer.setTimerType(Qt::PreciseTimer);
    m_mmTimer.setInterval(500);
    connect(&m_playbackTimer, &QTimer::timeout, this, &PlaybackTicks::PlaybackTick);
    connect(&m_mmTimer, &QTimer::timeout, this, &PlaybackTicks::mmTimer);
}

void PlaybackTicks::Start()
{
    m_playbackTimer.start();
    m_mmTimer.start();
}

void PlaybackTicks::Stop()
{
    m_playbackTimer.stop();
    m_mmTimer.stop();
}

double PlaybackTicks::ReadPosition()
{
    if (m_state.IsMidi) {
        ControlsForm* midi = m_forms.MidiEq();
        return midi ? midi->MidiTime() : m_state.CurrentPosition;
    }
    return m_state.MediaControl ? m_state.MediaControl->get_CurrentPosition() : m_state.CurrentPosition;
}

double PlaybackTicks::Duration()
{
    if (m_state.IsMidi)
        return m_state.MidiDuration;
    return m_state.MediaControl ? m_state.MediaControl->get_Duration() : 0;
}

void PlaybackTicks::PlaybackTick()
{
    // Nothing advances while the program sits in the tray, not even the end-of-song test.
    if (m_state.InTray)
        return;

    m_state.CurrentPosition = ReadPosition();

    KaraokeForm* lyric = m_forms.Lyric();
    if (m_state.KaraokeOpen && lyric && m_state.Lyrics.PlayLyrics.size() > 1) {
        m_state.LyricsRunning = true;
        lyric->IsPlaying(m_state.CurrentPosition);
    }

    PlayerForm& player = m_forms.Player();
    if (player.TimeStyle() == QLatin1String("CURRENT"))
        player.SetTimeText(FormatTime(m_state.CurrentPosition));
    else
        player.SetTimeText(FormatTime(Duration() - m_state.CurrentPosition));
}

bool PlaybackTicks::LoneListEntryIsCurrent()
{
    PlaylistForm* list = m_forms.UserList();
    return list && list->ListCount() == 1 && list->ItemPath(0) == m_state.CurrentFile;
}

void PlaybackTicks::mmTimer()
{
    const double duration = Duration();
    m_forms.Player().SetProgress(duration > 0 ? m_state.CurrentPosition / duration : 0);

    if (m_state.CurrentPosition < duration)
        return;

    if (m_state.Recording || LoneListEntryIsCurrent())
        m_transport.StopSong();
    else
        m_transport.DALEJ();
}
