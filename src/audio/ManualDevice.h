#pragma once
// A device that tests drive: each Step renders a number of frames on the caller's thread and
// advances a virtual clock by exactly that many frames, with no latency. While its input runs,
// the frames a test fed are handed to the renderer in order, silence when none wait.

#include "audio/AudioDevice.h"

#include <vector>

class ManualDevice final : public AudioDevice {
public:
    explicit ManualDevice(int sampleRate = 48000) : m_sampleRate(sampleRate) {}

    bool Start(AudioRenderer& renderer) override
    {
        m_renderer = &renderer;
        return true;
    }
    void Stop() override { m_renderer = nullptr; }
    int SampleRate() const override { return m_sampleRate; }
    double Now() const override { return double(m_frames) / m_sampleRate; }
    std::string Name() const override { return "Manual output"; }

    bool StartInput(int) override;
    void StopInput() override;
    bool InputRunning() const override { return m_inputRunning; }

    // Interleaved stereo frames for the input to deliver after those already fed.
    void FeedInput(const std::vector<float>& interleaved);
    // Renders `frames` frames in buffers of at most `bufferFrames`; returns the interleaved output.
    const std::vector<float>& Step(int frames, int bufferFrames = 512);

private:
    // The input of the next `frames` frames: what was fed, padded with silence.
    const float* NextInput(int frames);

    const int m_sampleRate;
    AudioRenderer* m_renderer = nullptr;
    long long m_frames = 0;
    std::vector<float> m_output;
    bool m_inputRunning = false;
    std::vector<float> m_fed;
    size_t m_fedRead = 0;
    std::vector<float> m_inputBuffer;
};
