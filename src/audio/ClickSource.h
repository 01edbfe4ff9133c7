#pragma once
// A click on every beat for as long as it plays: the latency test's metronome. Each buffer is
// made on the real-time thread from one click computed beforehand, so the test needs no file
// and no memory beyond that click, and starts at once.

#include "audio/AudioSource.h"
#include "audio/HeardClock.h"
#include "audio/LatestValue.h"

#include <cstdint>
#include <vector>

class ClickSource final : public AudioSource {
public:
    // A decaying `hz` tone of `clickSeconds` at the start of every beat.
    ClickSource(int sampleRate, double beatSeconds, double clickSeconds, double hz);

    void Render(float* out, int frames, const BufferTiming& timing) noexcept override;
    // Seconds of clicks heard at `now` on the device's clock; 0 before the first buffer.
    double Position(double now) const;

private:
    const int m_sampleRate;
    const uint64_t m_beatFrames;
    std::vector<float> m_click;
    uint64_t m_frame = 0;
    LatestValue<HeardClock> m_heard;
};
