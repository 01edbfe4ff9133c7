#pragma once
// The sound card through PortAudio: one float stereo output stream at the device's own rate.
// With the input on, one duplex stream where the card allows it (one clock, the lowest
// latency), else a second stream for the input whose frames reach the output's callback
// through a ring.

#include "audio/AudioDevice.h"
#include "audio/DacClock.h"
#include "audio/LatestValue.h"
#include "audio/SampleRing.h"

#include <memory>
#include <vector>

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

    bool StartInput(int inputDeviceIndex) override;
    void StopInput() override;
    bool InputRunning() const override { return m_inputDevice >= 0; }
    double InputLatency() const override { return m_inputLatency; }
    double OutputLatency() const override { return m_outputLatency; }
    bool Duplex() const override { return m_duplex; }

    // PortAudio's real-time thread: one buffer of `frames` stereo frames; the times are the
    // stream clock now, when the buffer's first frame reaches the converter, and when the
    // input's first frame left it.
    void RenderBuffer(const float* input, float* output, int frames, double streamNow, double dacTime,
                      double adcTime) noexcept;
    // The separate input stream's real-time thread.
    void TakeInputBuffer(const float* input, int frames, double streamNow, double adcTime) noexcept;

private:
    bool OpenStreams();
    bool OpenOutput(bool withInput);
    bool OpenSeparateInput();
    void CloseStreams();
    // Closes a stream whose opening or start failed, keeping PortAudio's reason when asked;
    // always false.
    bool Abandon(PaStream*& stream, int err, bool keepReason);
    // Steady-clock second at which the first of `frames` input frames was at the converter.
    double CapturedAt(double cpuNow, double streamNow, double adcTime, int frames) const;
    // Mono or stereo input as stereo in m_inputStereo; the stereo frames made.
    int Widen(const float* input, int frames) noexcept;

    int m_device = -1;
    int m_sampleRate = 48000;
    std::string m_name;
    std::string m_error;
    PaStream* m_stream = nullptr;
    AudioRenderer* m_renderer = nullptr;
    std::unique_ptr<DacClock> m_clock;
    double m_outputLatency = 0;

    int m_inputDevice = -1;  // PortAudio's index; -1 with the input off
    int m_inputChannels = 0;
    double m_inputLatency = 0;
    bool m_duplex = false;
    PaStream* m_inputStream = nullptr;
    std::vector<float> m_inputStereo;
    // Separate streams only: the input's frames, and where the ring's newest block was captured.
    SampleRing m_inputRing{1 << 16};
    std::vector<float> m_ringInput;
    struct CaptureBlock {
        size_t start = 0;  // the ring's count of samples written before the block
        double at = 0;     // steady-clock seconds its first frame was sung
    };
    LatestValue<CaptureBlock> m_ringBlock;
};
