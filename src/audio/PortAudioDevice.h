#pragma once
// The sound card through PortAudio: one float stereo output stream at the device's own rate.

#include "audio/AudioDevice.h"
#include "audio/DacClock.h"

#include <memory>

typedef void PaStream;

class PortAudioDevice final : public AudioDevice {
public:
    // deviceIndex 1 and up picks that output of OutputDeviceNames(); anything else the default.
    explicit PortAudioDevice(int deviceIndex);
    ~PortAudioDevice() override;

    bool Start(AudioRenderer& renderer) override;
    void Stop() override;
    int SampleRate() const override { return m_sampleRate; }
    double Now() const override { return SteadySeconds(); }
    std::string Name() const override { return m_name; }
    std::string Error() const override { return m_error; }

    // PortAudio's real-time thread: one buffer of `frames` stereo frames; the two times are the
    // stream clock now and when the buffer's first frame reaches the converter.
    void RenderBuffer(float* output, int frames, double streamNow, double dacTime) noexcept;

private:
    int m_device = -1;
    int m_sampleRate = 48000;
    std::string m_name;
    std::string m_error;
    PaStream* m_stream = nullptr;
    AudioRenderer* m_renderer = nullptr;
    std::unique_ptr<DacClock> m_clock;
};
