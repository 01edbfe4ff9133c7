#include "library/KaraokeEvening.h"

#include "core/Forms.h"
#include "library/LibraryPaths.h"
#include "playback/PlayerState.h"
#include "playback/PlayerTransport.h"
#include "playback/SongSound.h"

#include <QDateTime>

KaraokeEvening::KaraokeEvening(SingerQueue& queue, PlayerState& state, PlayerTransport& transport,
                               FormProvider& forms, QString linkFolder, QObject* parent)
    : QObject(parent),
      m_queue(queue),
      m_state(state),
      m_transport(transport),
      m_forms(forms),
      m_linkFolder(std::move(linkFolder))
{
    m_countdown.setInterval(1000);
    connect(&m_countdown, &QTimer::timeout, this, &KaraokeEvening::Tick);
}

QString KaraokeEvening::NextText() const
{
    const auto next = m_queue.Next();
    if (!next)
        return {};
    return m_state.Language.GetText(QStringLiteral("NextSinger"))
        .arg(next->singer.name, next->song.artist.isEmpty() ? next->song.title
                                                            : next->song.artist + QStringLiteral(" - ") + next->song.title);
}

bool KaraokeEvening::PlayNext()
{
    m_countdown.stop();
    KeepCurrentKey();
    const auto turn = m_queue.TakeNext(QDateTime::currentSecsSinceEpoch());
    m_current = turn;
    emit changed();
    if (!turn)
        return false;
    const QString path = OpenablePath(turn->song.path, m_linkFolder);
    if (path.isEmpty() || !m_transport.OpenSong(path, false))
        return false;
    m_currentFile = m_state.CurrentFile;
    SongChoice choice = ChosenSound(m_state);
    choice.semitones = turn->song.semitones;
    ApplyChoice(m_state, choice);
    m_transport.PlaySong();
    return true;
}

bool KaraokeEvening::SongEnded()
{
    // A song opened since, from the playlist or the library, is no turn of the queue.
    if (m_current && !PlayingTurn())
        m_current.reset();
    if (!m_current || m_countdown.isActive())
        return false;
    KeepCurrentKey();
    m_current.reset();
    // The last turn of the queue ends the music too: no playlist song starts in a singer's place.
    m_transport.StopSong();
    if (m_queue.Next()) {
        m_secondsLeft = kCountdownSeconds;
        m_countdown.start();
        ShowCountdown();
    }
    emit changed();
    return true;
}

void KaraokeEvening::HoldCountdown()
{
    m_countdown.stop();
    emit changed();
}

bool KaraokeEvening::PlayingTurn() const
{
    return m_current && m_state.CurrentFile == m_currentFile;
}

void KaraokeEvening::KeepCurrentKey()
{
    if (PlayingTurn())
        m_queue.KeepKey(m_current->singer.name, m_current->song.path, KnobSemitones(m_state));
}

void KaraokeEvening::ShowCountdown()
{
    const QString next = NextText();
    if (next.isEmpty()) {
        m_countdown.stop();
        return;
    }
    ResetLyricsData(m_state.Lyrics);
    m_state.Lyrics.LyricsTitleText =
        next + u'|' + m_state.Language.GetText(QStringLiteral("StartsIn")).arg(m_secondsLeft);
    if (KaraokeForm* lyric = m_forms.Lyric()) {
        lyric->ClearNewLyrics();
        lyric->ChangeLyrics();
    }
}

void KaraokeEvening::Tick()
{
    if (--m_secondsLeft > 0) {
        ShowCountdown();
        return;
    }
    PlayNext();
}
