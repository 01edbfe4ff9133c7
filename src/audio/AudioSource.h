#pragma once
// Something the engine mixes: it fills stereo frames on the real-time thread, and carries the
// level controls the mixer applies to it.

#include "audio/AudioDevice.h"

#include <atomic>

class AudioSource {
public:
    // The mixer's line the source plays on: decoded files or the synthesiser.
    enum class Bus { Wave = 0, Synth = 1 };

    explicit AudioSource(Bus bus = Bus::Wave) : LineBus(bus) {}
    virtual ~AudioSource() = default;

    // Overwrites `frames` interleaved stereo frames. Real-time: no locks, no allocation, no I/O.
    virtual void Render(float* out, int frames, const BufferTiming& timing) noexcept = 0;

    // Hundredths of a decibel: 0 full level, -10000 silence; a quiet source may be lifted above 0.
    std::atomic<int> Volume{0};
    // -10000 (right silent) to 10000 (left silent), hundredths of a decibel on the weaker side.
    std::atomic<int> Balance{0};
    std::atomic<bool> Muted{false};
    const Bus LineBus;
};

// Linear gain of a level in hundredths of a decibel; -10000 and below is exact silence, and no
// level lifts a signal by more than 20 dB.
constexpr int kLoudestHundredthsDb = 2000;
float GainOfHundredthsDb(int level);
