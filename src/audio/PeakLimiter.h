#pragma once
// A stereo-linked peak limiter with no look-ahead, so it adds no latency and the synthesiser's
// sound stays frame-exact with its clock: the gain drops at once to the level that keeps the
// louder side at the ceiling, and comes back over the release time. Nothing is allocated, so
// the real-time thread runs it.

class PeakLimiter {
public:
    PeakLimiter(float ceiling, double releaseSeconds, int sampleRate);

    // Limits interleaved stereo frames in place.
    void Process(float* interleaved, int frames) noexcept;
    // The gain the last frame had, 1 when nothing was limited.
    float Gain() const noexcept { return m_gain; }

private:
    const float m_ceiling;
    const float m_recovery;  // the share of the way back to 1 the gain goes each frame
    float m_gain = 1;
};
