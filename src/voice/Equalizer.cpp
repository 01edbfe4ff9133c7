#include "voice/Equalizer.h"

#include "playback/PlayerState.h"

#include <algorithm>
#include <array>

namespace {

// A knob (0 to 20000) as a mixer tone level (0 to 65535, 32768 flat).
int ToneLevelOfKnob(int value)
{
    return int(int64_t(std::clamp(value, 0, 2 * Equalizer::kKnobCentre)) * 32768 / Equalizer::kKnobCentre);
}

} // namespace

Equalizer::Equalizer(PlayerState& state) : m_state(state) {}

int Equalizer::ShelfOfKnob(int value)
{
    return ShelfOfLevel(ToneLevelOfKnob(value));
}

clsVolume& Equalizer::Mixer()
{
    m_mixer.SetEngine(m_state.Engine.get());
    return m_mixer;
}

void Equalizer::setBass(int value)
{
    m_bass = std::clamp(value, 0, 2 * kKnobCentre);
    ApplyTone();
}

void Equalizer::setTreble(int value)
{
    m_treble = std::clamp(value, 0, 2 * kKnobCentre);
    ApplyTone();
}

void Equalizer::ApplyTone()
{
    Mixer().setVolumeLevelBass(ToneLevelOfKnob(m_bass));
    Mixer().setVolumeLevelTreble(ToneLevelOfKnob(m_treble));
}

void Equalizer::SwitchLineOut(int flag)
{
    Mixer().setMicroOutMute(flag == 1 ? 0 : -1);
}

bool Equalizer::MicroOut()
{
    return Mixer().MicroOutMute() == 0;
}

bool Equalizer::SetMicro()
{
    AudioEngine* engine = m_state.Engine.get();
    if (!engine)
        return false;
    ApplyTone();
    Mixer().InitializeMixer(m_state.Theme ? m_state.Theme->RecordDevice : 0);
    return engine->StartInput(Mixer().MixerSelect());
}

void Equalizer::StopMicro()
{
    if (AudioEngine* engine = m_state.Engine.get())
        engine->StopInput();
    m_meter = LevelMeter();
}

QString Equalizer::MicroError() const
{
    return m_state.Engine ? QString::fromStdString(m_state.Engine->DeviceError()) : QString();
}

int Equalizer::PollLevel()
{
    if (AudioEngine* engine = m_state.Engine.get(); engine && engine->InputRunning()) {
        const AudioEngine::InputLevel level = engine->LastInputLevel();
        if (level.buffers != m_levelBuffers) {
            m_levelBuffers = level.buffers;
            const std::array<uint8_t, 4> bytes = {uint8_t(level.left & 0xFF), uint8_t((level.left >> 8) & 0xFF),
                                                  uint8_t(level.right & 0xFF), uint8_t((level.right >> 8) & 0xFF)};
            m_meter.Monitor(bytes.data(), int(bytes.size()));
        }
    }
    return changeVolume(m_meter.Sum());
}

int Equalizer::VoiceLevel() const
{
    return readVol(m_state.Theme ? m_state.Theme->VoiceVolume : 33);
}

bool Equalizer::MasterMuted() const
{
    return m_state.Engine && m_state.Engine->MasterMute();
}

bool Equalizer::LevelCaptureRunning() const
{
    return m_state.Engine && m_state.Engine->InputRunning();
}
