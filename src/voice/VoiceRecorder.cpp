#include "voice/VoiceRecorder.h"

#include "core/Dialogs.h"
#include "core/Forms.h"
#include "playback/MediaSession.h"
#include "playback/PlayerState.h"
#include "playback/SongSound.h"
#include "voice/Equalizer.h"

#include <QDir>
#include <QFile>
#include <QTextStream>
#include <algorithm>
#include <cmath>

VoiceRecorder::VoiceRecorder(PlayerState& state, FormProvider& forms, Dialogs& messages, Equalizer& equalizer,
                             VoiceIndicator& indicator)
    : TempFolder(QDir::tempPath()),
      m_state(state),
      m_forms(forms),
      m_messages(messages),
      m_equalizer(equalizer),
      m_indicator(indicator)
{
    m_placingPoll.setInterval(20);
    QObject::connect(&m_placingPoll, &QTimer::timeout, [this] {
        if (m_placing.wait_for(std::chrono::seconds(0)) == std::future_status::ready)
            PlacingDone();
    });
}

VoiceRecorder::~VoiceRecorder()
{
    if (!Placing())
        return;
    m_placing.wait();
    QFile::remove(TempWave);
}

QString VoiceRecorder::Said(const char* english, const char* polish) const
{
    return QString::fromUtf8(m_state.Language.IsPolish ? polish : english);
}

void VoiceRecorder::SwitchMicrophone()
{
    if (m_state.Recording)
        return;
    PlayerForm& player = m_forms.Player();
    if (m_state.MicrophoneOn) {
        m_equalizer.SwitchLineOut(0);
        m_equalizer.StopMicro();
        m_state.MicrophoneOn = false;
        player.Light(PlayerLamp::Microphone, false);
        return;
    }
    if (!m_equalizer.SetMicro()) {
        QTextStream(stderr) << "Songweaver: the microphone cannot be opened (" << m_equalizer.MicroError() << ")\n";
        return;
    }
    // While the voice plays the singer hears the recording, not the microphone.
    m_equalizer.SwitchLineOut(m_state.VoicePlaying ? 0 : 1);
    m_state.MicrophoneOn = true;
    player.Light(PlayerLamp::Microphone, true);
}

void VoiceRecorder::VoicePath()
{
    const VoiceTarget target = VoiceTargetOf(m_state.CurrentFile, *m_state.Theme);
    VoiceFile = target.file;
    RecordRate = target.rate;
    RecordChannels = target.channels;
    m_voiceFileUnusable = target.unusable;
}

void VoiceRecorder::StartVoiceRecord()
{
    if (!m_state.SongOpen() || m_state.Recording || Placing())
        return;
    if (!m_state.MicrophoneOn) {
        m_messages.Inform(Said("Switch microphone function first.", "Włącz funkcję mikrofonu, by móc nagrywać."));
        return;
    }
    if (m_state.VoicePlaying)
        StopVoice();
    m_state.Recording = true;
    m_forms.Player().Light(PlayerLamp::Record, true);
    m_forms.Player().SetButton(PlayerButton::Record, 2);
    m_indicator.Show();
    BeginWaveFile();
}

bool VoiceRecorder::BeginWaveFile()
{
    VoicePath();
    TempWave = QDir(TempFolder).filePath(TempWaveName(Clock()));
    QFile::remove(TempWave);
    if (m_voiceFileUnusable || !m_writer.Begin(TempWave, RecordRate, RecordChannels)) {
        m_writer.Finish();
        m_messages.Critical(m_state.Language.GetText(QStringLiteral("ErrorCreateWav")));
        FinishRecording(true);
        return false;
    }
    return StartCapture();
}

bool VoiceRecorder::StartCapture()
{
    AudioEngine* engine = m_state.Engine.get();
    if (!engine || !engine->InputRunning()) {
        m_writer.Finish();
        const QString error = engine ? QString::fromStdString(engine->DeviceError()) : QString();
        m_messages.Critical(error.isEmpty() ? m_state.Language.GetText(QStringLiteral("ErrorCreateWav")) : error);
        FinishRecording(true);
        return false;
    }
    m_armedAt = engine->Now();
    m_armedPosition = m_state.Clock.Position();
    m_armedPace = SongPace();
    m_writer.Start(*engine);
    m_capturing = true;
    return true;
}

double VoiceRecorder::SongPace() const
{
    if (!m_state.Session || m_state.Session->GetState() != SongSession::Running)
        return 0;
    const auto* media = dynamic_cast<const MediaSession*>(m_state.Session.get());
    return m_state.Session->get_Rate() * (media ? media->Tempo() : 1.0);
}

bool VoiceRecorder::EndCapture()
{
    if (!m_capturing)
        return false;
    m_capturing = false;
    // The take starts where the song stood when its first frame was sung: the audible second at
    // arming, moved by the time between arming and that frame reaching the converter.
    double capturedAt = m_armedAt;
    m_state.Engine->CaptureStartedAt(capturedAt);
    RecordStart = std::max(0.0, m_armedPosition + (capturedAt - m_armedAt) * m_armedPace);
    return m_writer.Finish();
}

void VoiceRecorder::FinishRecording(bool cancel)
{
    if (!m_state.Recording)
        return;
    const bool captured = EndCapture();
    if (!cancel && captured) {
        PlaceOnWorker();
        return;
    }
    if (!cancel)
        m_messages.Critical(m_state.Language.GetText(QStringLiteral("ErrorCreateWav")));
    QFile::remove(TempWave);
    EndRecordingState();
}

void VoiceRecorder::PlaceOnWorker()
{
    // The song may go on or change meanwhile; the take keeps the files and second it was sung for.
    m_state.Recording = false;
    m_placing = std::async(std::launch::async, [voiceFile = VoiceFile, take = TempWave, start = RecordStart,
                                                pace = m_armedPace] {
        // Sung at another tempo, the take goes into the voice file in song time.
        if (pace > 0 && std::abs(pace - 1) > 1e-6 && !StretchTakeToSongTime(take, pace))
            return PlaceResult::WriteFailed;
        return PlaceTake(voiceFile, take, start);
    });
    m_placingPoll.start();
}

void VoiceRecorder::PlacingDone()
{
    m_placingPoll.stop();
    const PlaceResult result = m_placing.get();
    QFile::remove(TempWave);
    if (result != PlaceResult::Done)
        m_messages.Critical(m_state.Language.GetText(QStringLiteral("ErrorCreateWav")));
    EndRecordingState();
}

void VoiceRecorder::EndRecordingState()
{
    m_state.Recording = false;
    m_forms.Player().Light(PlayerLamp::Record, false);
    m_forms.Player().SetButton(PlayerButton::Record, 0);
    m_indicator.Hide();
}

QString VoiceRecorder::VoicePlaybackFile() const
{
    const QString placed = VoiceFileOf(m_state.CurrentFile, *m_state.Theme);
    return QFile::exists(placed) ? placed : VoiceFileIn(m_state.Theme->VoiceDirectory, m_state.CurrentFile);
}

void VoiceRecorder::ToggleVoice()
{
    if (!m_state.SongOpen())
        return;
    if (m_state.Recording || Placing()) {
        m_messages.Inform(Said("Stop recording first.", "Wyłącz nagrywanie, by włączyć głos."));
        return;
    }
    PlayerForm& player = m_forms.Player();
    player.Light(PlayerLamp::Voice, true);
    const QString path = VoicePlaybackFile();
    auto voice = m_state.Engine && QFile::exists(path) ? std::make_unique<MediaSession>(*m_state.Engine) : nullptr;
    if (!voice || !voice->RenderFile(path)) {
        player.Light(PlayerLamp::Voice, false);
        m_state.VoicePlaying = false;
        return;
    }
    if (m_state.VoiceControl)
        m_state.VoiceControl->Stop();
    m_state.VoicePlaying = true;
    m_equalizer.SwitchLineOut(0);
    m_indicator.Show();
    m_state.VoiceControl = std::move(voice);
    PaceVoice(m_state);
    m_state.VoiceControl->put_CurrentPosition(m_state.Clock.Position() + m_state.Theme->LyricsOffset());
    m_state.VoiceControl->put_Volume(m_equalizer.VoiceLevel());
    if (m_state.Session && m_state.Session->GetState() == SongSession::Running)
        m_state.VoiceControl->Run();
}

void VoiceRecorder::StopVoice()
{
    if (m_state.VoiceControl) {
        m_state.VoiceControl->Stop();
        m_state.VoiceControl.reset();
    }
    m_state.VoicePlaying = false;
    if (m_state.MicrophoneOn)
        m_equalizer.SwitchLineOut(1);
    m_indicator.Hide();
    m_forms.Player().Light(PlayerLamp::Voice, false);
}
