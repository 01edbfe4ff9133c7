#pragma once
// The one output stream of the program and its mixer. Sources are added and removed from the
// interface thread; the device's real-time thread sums them with their gain, balance and mute
// and their line's (wave or synthesiser) gain and mute, adds the microphone's monitor, then
// applies the master gain, mute, balance, bass and treble. While the input runs the same pass
// hands the microphone to the capture ring and keeps its level. The real-time path takes no
// lock and allocates nothing.

#include "audio/AudioSource.h"
#include "audio/PeakLimiter.h"
#include "audio/SampleRing.h"
#include "audio/Shelving.h"

#include <array>
#include <memory>
#include <vector>

class AudioEngine final : private AudioRenderer {
public:
    static constexpr int kMaxSources = 16;
    // Seconds of microphone the capture ring holds for a writer that falls behind.
    static constexpr int kCaptureSeconds = 4;

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

    // Levels in hundredths of a decibel, balance as AudioSource::Balance.
    void SetMasterVolume(int hundredthsDb) { m_masterVolume = hundredthsDb; }
    int MasterVolume() const { return m_masterVolume; }
    void SetMasterMute(bool mute) { m_masterMute = mute; }
    bool MasterMute() const { return m_masterMute; }
    void SetMasterBalance(int hundredthsDb) { m_masterBalance = hundredthsDb; }
    int MasterBalance() const { return m_masterBalance; }
    void SetMasterBass(int hundredthsDb) { m_bass = hundredthsDb; }
    int MasterBass() const { return m_bass; }
    void SetMasterTreble(int hundredthsDb) { m_treble = hundredthsDb; }
    int MasterTreble() const { return m_treble; }
    void SetBusVolume(AudioSource::Bus bus, int hundredthsDb) { m_busVolume[size_t(bus)] = hundredthsDb; }
    int BusVolume(AudioSource::Bus bus) const { return m_busVolume[size_t(bus)]; }
    void SetBusMute(AudioSource::Bus bus, bool mute) { m_busMute[size_t(bus)] = mute; }
    bool BusMute(AudioSource::Bus bus) const { return m_busMute[size_t(bus)]; }

    // The microphone. The input runs while anything listens to it.
    bool StartInput(int inputDeviceIndex);
    void StopInput();
    bool InputRunning() const { return m_device->InputRunning(); }
    // The live monitor: the microphone in the output, at its own level, unless muted.
    void SetMonitorMute(bool mute) { m_monitorMute = mute; }
    bool MonitorMute() const { return m_monitorMute; }
    void SetMonitorVolume(int hundredthsDb) { m_monitorVolume = hundredthsDb; }
    int MonitorVolume() const { return m_monitorVolume; }
    // The microphone's level into the monitor and the recording.
    void SetInputVolume(int hundredthsDb) { m_inputVolume = hundredthsDb; }
    int InputVolume() const { return m_inputVolume; }

    // The first frame of the last input buffer, 16-bit, and a count of input buffers so far.
    struct InputLevel {
        int16_t left = 0;
        int16_t right = 0;
        unsigned buffers = 0;
    };
    InputLevel LastInputLevel() const;

    // Capture: from the next input buffer on, the microphone goes to CaptureRing() as
    // interleaved stereo floats at the device rate, until DisarmCapture returns.
    void ArmCapture();
    void DisarmCapture();
    SampleRing& CaptureRing() { return m_captureRing; }
    // Device-clock second at which the first captured frame reached the converter; false until
    // the first buffer was captured.
    bool CaptureStartedAt(double& seconds) const;
    // Samples the ring had no room for since the capture was armed.
    size_t CaptureOverruns() const { return m_captureLost; }

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
    struct Ramp {
        float left = 0;
        float right = 0;
    };
    static constexpr int kScratchFrames = 4096;

    void MixChunk(float* out, int frames, const BufferTiming& timing) noexcept;
    void MixSources(float* out, int frames, const BufferTiming& timing) noexcept;
    void TakeInput(float* out, const float* input, int frames, double capturedAt) noexcept;
    void ApplyMaster(float* out, int frames) noexcept;
    // Waits until the real-time thread has finished the pass it may be in.
    void WaitForCallbackPass() const;

    std::unique_ptr<AudioDevice> m_device;
    std::array<Slot, kMaxSources> m_slots;
    std::vector<std::shared_ptr<AudioSource>> m_owned;  // interface thread only
    std::vector<float> m_scratch;
    std::vector<float> m_synthBus;
    std::vector<float> m_inputScratch;
    std::atomic<int> m_masterVolume{0};
    std::atomic<bool> m_masterMute{false};
    std::atomic<int> m_masterBalance{0};
    std::atomic<int> m_bass{0};
    std::atomic<int> m_treble{0};
    std::array<std::atomic<int>, 2> m_busVolume{};
    std::array<std::atomic<bool>, 2> m_busMute{};
    std::atomic<bool> m_monitorMute{true};
    std::atomic<int> m_monitorVolume{0};
    std::atomic<int> m_inputVolume{0};

    std::atomic<uint32_t> m_levelFrame{0};
    std::atomic<unsigned> m_levelBuffers{0};

    SampleRing m_captureRing;
    std::atomic<bool> m_captureArmed{false};
    std::atomic<bool> m_captureStarted{false};
    std::atomic<double> m_captureStartedAt{0};
    std::atomic<size_t> m_captureLost{0};

    // Real-time thread only.
    Ramp m_master{1, 1};
    // A loud MIDI song at the top of the slider meets this before the master, never the clip.
    PeakLimiter m_synthLimiter;
    Ramp m_monitor;
    float m_inputGain = 1;
    ShelfFilter m_bassFilter{ShelfFilter::Low, kBassCornerHz};
    ShelfFilter m_trebleFilter{ShelfFilter::High, kTrebleCornerHz};

    std::atomic<bool> m_inCallback{false};
    std::atomic<unsigned> m_callbacks{0};
};
