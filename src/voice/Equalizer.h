#pragma once
// The equaliser panel's logic: the bass and treble knobs on the master shelves, the microphone
// switch (the live monitor), the microphone's input with its level meter, and the voice's level.

#include "core/Forms.h"
#include "voice/ClsVolume.h"
#include "voice/LevelMeter.h"

struct PlayerState;

class Equalizer final : public MixerAccess {
public:
    // Knobs run from 0 to 20000, the centre flat.
    static constexpr int kKnobCentre = 10000;

    explicit Equalizer(PlayerState& state);
    // A knob's shelf in hundredths of a decibel: 12 dB either way.
    static int ShelfOfKnob(int value);

    int Bass() const { return m_bass; }
    void setBass(int value);
    int Treble() const { return m_treble; }
    void setTreble(int value);

    // 1: the microphone is heard (the monitor on); anything else silences it.
    void SwitchLineOut(int flag);
    // True while the microphone is heard.
    bool MicroOut();

    // Starts the microphone's input on the settings' recording device; false when it cannot.
    bool SetMicro();
    void StopMicro();
    // Why the microphone could not start.
    QString MicroError() const;
    // Feeds the meter with the newest input buffer, if one came since the last call; returns
    // the lit pixels of the bar.
    int PollLevel();
    const LevelMeter& Meter() const { return m_meter; }

    // The voice fader's level for the voice's session.
    int VoiceLevel() const;

    clsVolume& Mixer();

    bool MasterMuted() const override;
    bool LevelCaptureRunning() const override;
    void StopLevelCapture() override { StopMicro(); }

private:
    void ApplyTone();

    PlayerState& m_state;
    clsVolume m_mixer{nullptr};
    LevelMeter m_meter;
    int m_bass = kKnobCentre;
    int m_treble = kKnobCentre;
    unsigned m_levelBuffers = 0;
};
