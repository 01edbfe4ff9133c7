#pragma once
// A silent output paced by the steady clock: buffer k is heard at start + k periods + one period
// of latency, exactly, as from a perfect sound card.

#include "audio/AudioDevice.h"

#include <atomic>
#include <thread>
#include <vector>

class NullDevice final : public AudioDevice {
public:
    explicit NullDevice(int sampleRate = 48000, int framesPerBuffer = 512);
    ~NullDevice() override;

    bool Start(AudioRenderer& renderer) override;
    void Stop() override;
    int SampleRate() const override { return m_sampleRate; }
    double Now() const override { return SteadySeconds(); }
    std::string Name() const override { return "Null output"; }

    // Steady-clock seconds at which the first frame was heard; 0 before Start.
    double FirstFrameHeardAt() const { return m_firstHeardAt.load(); }

private:
    void Pace(AudioRenderer& renderer);

    const int m_sampleRate;
    const int m_framesPerBuffer;
    std::vector<float> m_buffer;
    std::atomic<bool> m_running{false};
    std::atomic<double> m_firstHeardAt{0};
    std::thread m_thread;
};
