#pragma once
// The one output stream of the program and its mixer. Sources are added and removed from the
// interface thread; the device's real-time thread sums them with their gain, balance and mute,
// then applies the master gain and mute. The real-time path takes no lock and allocates nothing.

#include "audio/AudioSource.h"

#include <array>
#include <memory>
#include <vector>

class AudioEngine final : private AudioRenderer {
public:
    static constexpr int kMaxSources = 16;

    explicit AudioEngine(std::unique_ptr<AudioDevice> device);
    ~AudioEngine() override;
    AudioEngine(const AudioEngine&) = delete;
    AudioEngine& operator=(const AudioEngine&) = delete;

    // Starts the device; false when it cannot run (DeviceError tells why).
    bool Start();
    std::string DeviceError() const { return m_device->Error(); }
    AudioDevice& Device() { return *m_device; }
    int SampleRate() const { return m_device->SampleRate(); }
    double Now() const { return m_device->Now(); }

    // False when all slots are taken.
    bool AddSource(std::shared_ptr<AudioSource> source);
    // Returns once the real-time thread can no longer touch the source.
    void RemoveSource(const AudioSource* source);

    void SetMasterVolume(int hundredthsDb) { m_masterVolume = hundredthsDb; }
    void SetMasterMute(bool mute) { m_masterMute = mute; }
    bool MasterMute() const { return m_masterMute; }

    // One mix pass, as the device calls it.
    void Render(float* out, int frames, const BufferTiming& timing) noexcept override;

private:
    struct Slot {
        std::atomic<AudioSource*> source{nullptr};
        // Real-time thread only: the source and gains of the last buffer, for ramps.
        const AudioSource* last = nullptr;
        float gainLeft = 0;
        float gainRight = 0;
    };
    static constexpr int kScratchFrames = 4096;

    void MixChunk(float* out, int frames, const BufferTiming& timing) noexcept;

    std::unique_ptr<AudioDevice> m_device;
    std::array<Slot, kMaxSources> m_slots;
    std::vector<std::shared_ptr<AudioSource>> m_owned;  // interface thread only
    std::vector<float> m_scratch;
    std::atomic<int> m_masterVolume{0};
    std::atomic<bool> m_masterMute{false};
    float m_masterGain = 1;  // real-time thread only
    std::atomic<bool> m_inCallback{false};
    std::atomic<unsigned> m_callbacks{0};
};
