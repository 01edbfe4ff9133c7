#include "playback/PlayerTransport.h"

#include "audio/NullDevice.h"
#include "core/AppState.h"
#include "playback/MediaSession.h"
#include "playback/PlayerWindow.h"

#include <QFileInfo>
#include <QTextStream>
#include <cmath>

QString CommandLineSongPath(const QString& commandLine)
{
    QString path = QFileInfo(commandLine.trimmed()).absoluteFilePath();
    if (path.endsWith(QLatin1String("lrs"), Qt::CaseInsensitive))
        path = path.left(path.size() - 3) + QStringLiteral("mp3");
    return path;
}

PlayerTransport::PlayerTransport(AppState& state, FormProvider& forms, PlayerWindow& player, MessageBoxes* messages)
    : m_state(state), m_forms(forms), m_player(player), m_messages(messages), m_ticks(state, forms, *this)
{
    QObject::connect(&player, &PlayerWindow::progressMoved, &player, [this](double f) { SeekTo(f); });
    QObject::connect(&player, &PlayerWindow::volumeMoved, &player, [this](double v) { VolumeMoved(v); });
}

void PlayerTransport::StartAudio()
{
    if (m_state.Engine)
        return;
    const int deviceIndex = m_state.Theme ? m_state.Theme->AudioDevice : 0;
    m_state.Engine = std::make_unique<AudioEngine>(CreateOutputDevice(deviceIndex));
    if (m_state.Engine->Start())
        return;
    QTextStream(stderr) << "Songweaver: the sound device \"" << QString::fromStdString(m_state.Engine->Device().Name())
                        << "\" cannot play (" << QString::fromStdString(m_state.Engine->DeviceError())
                        << "); songs play silently.\n";
    m_state.Engine = std::make_unique<AudioEngine>(std::make_unique<NullDevice>());
    m_state.Engine->Start();
}

MediaSession* PlayerTransport::Session() const
{
    return dynamic_cast<MediaSession*>(m_state.MediaControl.get());
}

std::unique_ptr<MediaSession> PlayerTransport::RenderedSession(const QString& path)
{
    StartAudio();
    auto session = std::make_unique<MediaSession>(*m_state.Engine);
    session->put_Rate(m_state.PlaybackRate);
    if (!session->RenderFile(ShortPath(path)))
        return nullptr;
    return session;
}

bool PlayerTransport::CreateGraph(const QString& path)
{
    m_state.MediaControl.reset();
    auto session = RenderedSession(path);
    if (!session)
        return false;
    m_state.MediaControl = std::move(session);
    Session()->put_Volume(GetVolume());
    return true;
}

void PlayerTransport::TransportLamps(int play, int pause, int stop)
{
    m_player.Light(1, pause);
    m_player.Light(0, play);
    m_player.Light(2, stop);
}

void PlayerTransport::PlaySong(bool& resume)
{
    (void)resume;  // for the MIDI player, which takes it as it stands
    MediaSession* session = Session();
    if (!session && !m_state.IsMidi) {
        PlaylistForm* list = m_forms.UserList();
        if (list && list->ListCount() > 0 && list->SelectedIndex() >= 0)
            list->fnChangeSong(list->SelectedIndex());
        return;
    }
    if (session)
        session->Run();
    if (auto* voice = dynamic_cast<MediaSession*>(m_state.VoiceControl.get()); voice && m_state.VoicePlaying)
        voice->Run();
    m_ticks.Start();
    TransportLamps(1, 0, 0);
}

void PlayerTransport::PauseSong()
{
    MediaSession* session = Session();
    if (!session && !m_state.IsMidi)
        return;
    m_ticks.Stop();
    // While recording the song plays on under a frozen display.
    if (m_state.Recording)
        return;
    if (session)
        session->Pause();
    if (auto* voice = dynamic_cast<MediaSession*>(m_state.VoiceControl.get()))
        voice->Pause();
    TransportLamps(0, 1, 0);
}

void PlayerTransport::StopSong()
{
    MediaSession* session = Session();
    if (!session && !m_state.IsMidi)
        return;
    KaraokeForm* lyric = m_forms.Lyric();
    if (m_state.KaraokeOpen && lyric)
        lyric->ClearLyrics();
    if (m_state.VoiceControl)
        m_state.VoiceControl->Stop();
    m_ticks.Stop();
    if (session) {
        session->put_CurrentPosition(0);
        session->Stop();
    }
    m_player.SetProgress(0);
    m_player.SetTimeText(QStringLiteral("0"));
    if (lyric)
        lyric->GetLastPos();
    TransportLamps(0, 0, 1);
}

void PlayerTransport::CloseSong()
{
    m_ticks.Stop();
    KaraokeForm* lyric = m_forms.Lyric();
    if (m_state.KaraokeOpen && lyric)
        lyric->ClearLyrics();
    m_player.SetProgress(0);
    m_player.SetTimeText(QStringLiteral("0"));
    m_player.PutLabels(QString(), QString());
    m_player.SetQualityLabels(QString(), QString());
    m_state.CurrentFile.clear();
    m_state.PlayingIndex = -1;
    if (ControlsForm* midi = m_forms.MidiEq())
        midi->CloseDevice();
    m_state.IsMidi = false;
    m_state.MidiDuration = 0;
    if (m_state.VoiceControl)
        m_state.VoiceControl->Stop();
    if (m_state.MediaControl) {
        m_state.MediaControl->Stop();
        m_state.MediaControl.reset();
    }
    TransportLamps(0, 0, 1);
}

void PlayerTransport::SeekTo(double fraction)
{
    MediaSession* session = Session();
    if (!session)
        return;
    session->put_CurrentPosition(session->get_Duration() * fraction);
    auto* voice = dynamic_cast<MediaSession*>(m_state.VoiceControl.get());
    if (voice && m_state.VoicePlaying)
        voice->put_CurrentPosition(session->get_CurrentPosition());
    KaraokeForm* lyric = m_forms.Lyric();
    if (m_state.KaraokeOpen && lyric)
        lyric->GetLastPos();
}

int16_t PlayerTransport::GetVolume() const
{
    return Session() ? VolumeOfSlider(m_player.VolumeValue()) : int16_t(0);
}

void PlayerTransport::VolumeMoved(double sliderValue)
{
    if (MediaSession* session = Session())
        session->put_Volume(VolumeOfSlider(sliderValue));
}

void PlayerTransport::SetMuted(bool muted)
{
    StartAudio();
    m_state.Engine->SetMasterMute(muted);
    m_state.Muted = muted;
}

void PlayerTransport::ReopenAround(const QString& path, const std::function<void()>& rewrite)
{
    MediaSession* session = Session();
    if (!session || ShortPath(path) != ShortPath(m_state.CurrentFile)) {
        rewrite();
        return;
    }
    const double wholeSeconds = std::round(session->get_CurrentPosition());
    const int state = session->GetState();
    session->Stop();
    m_state.MediaControl.reset();

    rewrite();

    auto reopened = RenderedSession(m_state.CurrentFile);
    if (!reopened)
        return;
    reopened->put_CurrentPosition(wholeSeconds);
    if (state == 2)
        reopened->Run();
    reopened->put_Volume(ReopenedVolume(m_player.VolumeValue(), m_state.Muted));
    m_state.MediaControl = std::move(reopened);
}
