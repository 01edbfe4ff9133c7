#pragma once
// A silent output paced by the steady clock: buffer k is heard at start + k periods + one period
// of latency, exactly, as from a perfect sound card. Its input is silence, or the WAV named by
// SONGWEAVER_CAPTURE_WAV played in a loop, captured one period before it is heard.

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
    std::string Error() const override { return m_error; }

    // Loads the capture WAV here, on the caller's thread, never on the pacing one.
    bool StartInput(int) override;
    void StopInput() override;
    bool InputRunning() const override { return m_inputRunning.load(); }
    double OutputLatency() const override { return double(m_framesPerBuffer) / m_sampleRate; }

    // Steady-clock seconds at which the first frame was heard; 0 before Start.
    double FirstFrameHeardAt() const { return m_firstHeardAt.load(); }

private:
    void Pace(AudioRenderer& renderer);
    const float* NextInput() noexcept;

    const int m_sampleRate;
    const int m_framesPerBuffer;
    std::vector<float> m_buffer;
    std::atomic<bool> m_running{false};
    std::atomic<double> m_firstHeardAt{0};
    std::thread m_thread;

    // The loop is only replaced while the input is off, and the pacing thread reads it only
    // while the input runs.
    std::atomic<bool> m_inputRunning{false};
    std::atomic<bool> m_inputBusy{false};
    std::vector<float> m_loop;
    size_t m_loopRead = 0;
    std::vector<float> m_input;
    std::string m_error;
};
