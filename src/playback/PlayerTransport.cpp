#include "playback/PlayerTransport.h"

#include "audio/NullDevice.h"
#include "audio/SoundDevices.h"
#include "core/Dialogs.h"
#include "midi/MidiKnobs.h"
#include "midi/MidiPlayer.h"
#include "playback/MediaSession.h"
#include "playback/MidiControls.h"
#include "playback/PlayerState.h"
#include "playback/SongSound.h"
#include "playback/VoiceCommands.h"

#include <QFile>
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

std::unique_ptr<SongSession> BuiltInSessions(PlayerState& state)
{
    if (state.IsMidi) {
        const QString soundFont = state.Theme ? state.Theme->SoundFont : QString();
        return std::make_unique<MidiPlayer>(*state.Engine, state.Midi, QFile::encodeName(soundFont).toStdString(),
                                            &state.MidiSynths);
    }
    return std::make_unique<MediaSession>(*state.Engine);
}

PlayerTransport::PlayerTransport(PlayerState& state, FormProvider& forms, SongList& list, Dialogs* messages,
                                 SessionFactory sessions)
    : m_state(state),
      m_forms(forms),
      m_list(list),
      m_messages(messages),
      m_sessions(std::move(sessions)),
      m_ticks(state, forms, *this, list)
{
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

std::unique_ptr<SongSession> PlayerTransport::RenderedSession(const QString& path, bool& failed)
{
    StartAudio();
    auto session = m_sessions(m_state);
    failed = false;
    if (!session)
        return nullptr;
    session->put_Rate(m_state.PlaybackRate);
    if (!session->RenderFile(path)) {
        failed = true;
        m_unavailableKind = session->KindUnavailable() ? session->ErrorText() : QString();
        return nullptr;
    }
    return session;
}

bool PlayerTransport::CreateGraph(const QString& path)
{
    KeepSongSound(m_state);
    m_state.Session.reset();
    bool failed = false;
    m_state.Session = RenderedSession(path, failed);
    if (m_state.Session) {
        m_state.Session->put_Volume(GetVolume());
        if (m_state.SongBalance != kBalanceCentre)
            ApplySongBalance(m_state, m_state.SongBalance);
    }
    return !failed;
}

void PlayerTransport::TransportLamps(PlayerLamp lit)
{
    Player().Light(PlayerLamp::Pause, lit == PlayerLamp::Pause);
    Player().Light(PlayerLamp::Play, lit == PlayerLamp::Play);
    Player().Light(PlayerLamp::Stop, lit == PlayerLamp::Stop);
}

void PlayerTransport::PlaySong()
{
    if (!m_state.SongOpen()) {
        if (m_list.ListCount() > 0 && m_list.SelectedIndex() >= 0)
            fnChangeSong(m_list.SelectedIndex());
        return;
    }
    if (m_state.Session)
        m_state.Session->Run();
    if (m_state.VoiceControl && m_state.VoicePlaying)
        m_state.VoiceControl->Run();
    m_ticks.Start();
    TransportLamps(PlayerLamp::Play);
}

void PlayerTransport::PauseSong()
{
    if (!m_state.SongOpen())
        return;
    m_ticks.Stop();
    // While recording the song plays on under a frozen display.
    if (m_state.Recording)
        return;
    if (m_state.Session)
        m_state.Session->Pause();
    if (m_state.VoiceControl)
        m_state.VoiceControl->Pause();
    TransportLamps(PlayerLamp::Pause);
}

void PlayerTransport::StopSong()
{
    if (!m_state.SongOpen())
        return;
    KaraokeForm* lyric = m_forms.Lyric();
    if (m_state.KaraokeOpen && lyric)
        lyric->ClearLyrics();
    if (m_state.Recording && m_voice)
        m_voice->StopVoiceRecord();
    StopVoice();
    m_ticks.Stop();
    if (m_state.Session) {
        m_state.Session->put_CurrentPosition(0);
        m_state.Session->Stop();
    }
    Player().SetProgress(0);
    Player().SetTimeText(QStringLiteral("0"));
    if (lyric)
        lyric->GetLastPos();
    TransportLamps(PlayerLamp::Stop);
}

void PlayerTransport::StopVoice()
{
    if (!m_state.VoiceControl)
        return;
    if (m_voice)
        m_voice->StopVoice();
    else
        m_state.VoiceControl->Stop();
}

void PlayerTransport::CloseSong()
{
    m_ticks.Stop();
    KaraokeForm* lyric = m_forms.Lyric();
    if (m_state.KaraokeOpen && lyric)
        lyric->ClearLyrics();
    m_state.CurrentInfo.reset();
    Player().SetProgress(0);
    Player().SetTimeText(QStringLiteral("0"));
    Player().PutLabels(QString(), QString());
    Player().SetQualityLabels(QString(), QString());
    m_state.CurrentFile.clear();
    m_state.PlayingIndex = -1;
    if (ControlsForm* midi = m_forms.MidiEq())
        midi->CloseDevice();
    StopVoice();
    KeepSongSound(m_state);
    if (m_state.Session) {
        m_state.Session->Stop();
        m_state.Session.reset();
    }
    m_state.IsMidi = false;
    m_state.Sound = {};
    m_state.VocalsOff = false;
    m_state.SongKey.clear();
    m_state.Lyrics.Graphics.reset();
    m_state.Lyrics.Video.reset();
    m_zipSong.reset();
    TransportLamps(PlayerLamp::Stop);
}

void PlayerTransport::SeekTo(double fraction)
{
    SongSession* session = m_state.Session.get();
    if (!session)
        return;
    SeekToSeconds(session->get_Duration() * fraction);
}

void PlayerTransport::SeekToSeconds(double seconds)
{
    SongSession* session = m_state.Session.get();
    if (!session)
        return;
    session->put_CurrentPosition(seconds);
    if (m_state.VoiceControl && m_state.VoicePlaying)
        m_state.VoiceControl->put_CurrentPosition(session->get_CurrentPosition());
    KaraokeForm* lyric = m_forms.Lyric();
    if (m_state.KaraokeOpen && lyric)
        lyric->GetLastPos();
}

int16_t PlayerTransport::GetVolume() const
{
    return m_state.Session ? SessionVolume(m_forms.Player().VolumeValue()) : int16_t(0);
}

int16_t PlayerTransport::SessionVolume(double sliderValue) const
{
    // A MIDI song has a level law of its own, as the synthesiser's line had in the sound card's mixer.
    return m_state.IsMidi ? int16_t(MidiVolumeOfSlider(sliderValue)) : VolumeOfSlider(sliderValue);
}

void PlayerTransport::VolumeMoved(double sliderValue)
{
    if (m_state.Session)
        m_state.Session->put_Volume(SessionVolume(sliderValue));
}

void PlayerTransport::SetMuted(bool muted)
{
    StartAudio();
    m_state.Engine->SetMasterMute(muted);
    m_state.Muted = muted;
}

QString PlayerTransport::SelectedPath() const
{
    const int row = m_list.SelectedIndex();
    return row < 0 ? QString() : m_list.ItemPath(row);
}

void PlayerTransport::ReopenAround(const QString& path, const std::function<void()>& rewrite)
{
    SongSession* session = m_state.Session.get();
    if (!session || path != m_state.CurrentFile) {
        rewrite();
        return;
    }
    const double wholeSeconds = std::round(session->get_CurrentPosition());
    const int state = session->GetState();
    session->Stop();
    m_state.Session.reset();

    rewrite();

    bool failed = false;
    auto reopened = RenderedSession(m_state.CurrentFile, failed);
    if (!reopened)
        return;
    reopened->put_CurrentPosition(wholeSeconds);
    if (state == SongSession::Running)
        reopened->Run();
    reopened->put_Volume(ReopenedVolume(Player().VolumeValue(), m_state.Muted));
    m_state.Session = std::move(reopened);
    // The song goes on as it was heard; its new bytes are its new name in the memory.
    ApplyChoice(m_state, ChosenSound(m_state));
    if (m_state.SongChoices) {
        m_state.SongKey = SongMemory::SongKey(path);
        KeepSongSound(m_state);
    }
}

void PlayerTransport::PlayAtSpeed(double tempo)
{
    ApplySongTempo(m_state, tempo);
    if (ControlsForm* midi = m_forms.MidiEq())
        midi->Refresh();
}

bool PlayerTransport::ChangeSound(KeyCommand command)
{
    switch (command) {
    case KeyCommand::KeyUp:
    case KeyCommand::KeyDown:
        StepKey(m_state, command == KeyCommand::KeyUp ? 1 : -1);
        break;
    case KeyCommand::TempoUp:
    case KeyCommand::TempoDown:
        StepTempo(m_state, command == KeyCommand::TempoUp ? 1 : -1);
        break;
    case KeyCommand::OwnSound:
        ApplyChoice(m_state, SongChoice{});
        break;
    case KeyCommand::VocalsOff:
        if (!ApplyVocalsOff(m_state, !m_state.VocalsOff) && m_messages)
            m_messages->Inform(m_state.Language.GetText(QStringLiteral("VocalsCannot")));
        break;
    default:
        return false;
    }
    if (ControlsForm* midi = m_forms.MidiEq())
        midi->Refresh();
    return true;
}
