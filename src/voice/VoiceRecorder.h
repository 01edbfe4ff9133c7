#pragma once
// Recording the singer and playing the voice back. A take is captured from the microphone to a
// temporary WAV while the song plays; when it ends it is placed into the song's voice file at
// the second it was sung, on a worker, while the REC lamp and the indicator stay on to show the
// program is busy with it. The voice plays as a second session beside the song's, placed once at
// the song's position plus the settings' offset. Recording and the voice's playback exclude
// each other.

#include "audio/CaptureWriter.h"
#include "playback/VoiceCommands.h"
#include "voice/VoiceFiles.h"

#include <QDateTime>
#include <QString>
#include <QTimer>
#include <functional>
#include <future>

struct PlayerState;
class Equalizer;
class FormProvider;
class Dialogs;

// The small window whose panels blink while the voice plays or a take is recorded.
class VoiceIndicator {
public:
    virtual ~VoiceIndicator() = default;
    virtual void Show() = 0;
    virtual void Hide() = 0;
};

// One step of a blinking panel: a panel at 0 goes off screen, any other comes back.
constexpr int kPanelOffScreen = -5000;
constexpr int BlinkPanel(int left) { return left == 0 ? kPanelOffScreen : 0; }

class VoiceRecorder final : public VoiceCommands {
public:
    VoiceRecorder(PlayerState& state, FormProvider& forms, Dialogs& messages, Equalizer& equalizer,
                  VoiceIndicator& indicator);
    // A take still being placed is placed whole before the recorder goes.
    ~VoiceRecorder() override;

    void SwitchMicrophone() override;
    void StartVoiceRecord() override;
    void StopVoiceRecord() override { FinishRecording(false); }
    void CancelVoiceRecord() { FinishRecording(true); }
    void ToggleVoice() override;
    void StopVoice() override;

    // Works out VoiceFile, RecordRate and RecordChannels for the current song.
    void VoicePath();
    // A finished take is being placed into the voice file; no new take and no voice until then.
    bool Placing() const { return m_placing.valid(); }

    QString VoiceFile;
    QString TempWave;
    int RecordChannels = 2;
    int RecordRate = 22050;
    double RecordStart = 0;

    // Where temporary takes go, and the clock that names them.
    QString TempFolder;
    std::function<QDateTime()> Clock = [] { return QDateTime::currentDateTime(); };

private:
    bool BeginWaveFile();
    bool StartCapture();
    // False when the take could not be written whole.
    bool EndCapture();
    void FinishRecording(bool cancel);
    // Places the take on a worker; the recording ends on this thread when it is done.
    void PlaceOnWorker();
    void PlacingDone();
    void EndRecordingState();
    // The file the voice plays from: where takes are placed, else the voice folder.
    QString VoicePlaybackFile() const;
    // The song's audible second now, and how fast it moves on.
    double SongPace() const;
    QString Said(const char* english, const char* polish) const;

    PlayerState& m_state;
    FormProvider& m_forms;
    Dialogs& m_messages;
    Equalizer& m_equalizer;
    VoiceIndicator& m_indicator;
    CaptureWriter m_writer;
    std::future<PlaceResult> m_placing;
    QTimer m_placingPoll;
    bool m_capturing = false;
    bool m_voiceFileUnusable = false;
    // The song's second and the device clock when the capture was armed.
    double m_armedPosition = 0;
    double m_armedAt = 0;
    double m_armedPace = 1;
};
