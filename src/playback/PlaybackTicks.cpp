#include "playback/PlaybackTicks.h"

#include "core/Forms.h"
#include "core/Numbers.h"
#include "playback/PlayerState.h"

PlaybackTicks::PlaybackTicks(PlayerState& state, FormProvider& forms, SongTransport& transport, const SongList& list)
    : m_state(state), m_forms(forms), m_transport(transport), m_list(list)
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

double PlaybackTicks::Duration()
{
    return m_state.Session ? m_state.Session->get_Duration() : 0;
}

void PlaybackTicks::PlaybackTick()
{
    // Nothing advances while the program sits in the tray, not even the end-of-song test.
    if (m_state.InTray)
        return;

    m_state.CurrentPosition = m_state.Clock.Position();

    // A disc song's graphics and a video's picture follow the clock as words do.
    KaraokeForm* lyric = m_forms.Lyric();
    const LyricsState& shown = m_state.Lyrics;
    if (m_state.KaraokeOpen && lyric && (shown.PlayLyrics.size() > 1 || shown.Graphics || shown.Video)) {
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
    return m_list.ListCount() == 1 && m_list.ItemPath(0) == m_state.CurrentFile;
}

void PlaybackTicks::mmTimer()
{
    const double duration = Duration();
    m_forms.Player().SetProgress(duration > 0 ? m_state.CurrentPosition / duration : 0);

    if (m_state.CurrentPosition < duration)
        return;
    if (SongEnded && SongEnded())
        return;

    if (m_state.Recording || LoneListEntryIsCurrent())
        m_transport.StopSong();
    else
        m_transport.DALEJ();
}
