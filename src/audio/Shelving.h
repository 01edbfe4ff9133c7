#pragma once
// The master tone controls: a low shelf and a high shelf (the biquads of R. Bristow-Johnson's
// cookbook, shelf slope 1) on both channels. Coefficients are computed where the gain changes,
// with no allocation, so the real-time thread may retune them between buffers.

#include <array>

class ShelfFilter {
public:
    enum Kind { Low, High };

    ShelfFilter(Kind kind, double cornerHz) : m_kind(kind), m_corner(cornerHz) {}

    // Gain of the shelf in hundredths of a decibel; 0 passes the sound untouched.
    void Tune(int hundredthsDb, int sampleRate) noexcept;
    int Gain() const noexcept { return m_gain; }
    // Filters interleaved stereo frames in place.
    void Process(float* interleaved, int frames) noexcept;

private:
    const Kind m_kind;
    const double m_corner;
    int m_gain = 0;
    double m_b0 = 1, m_b1 = 0, m_b2 = 0, m_a1 = 0, m_a2 = 0;
    std::array<std::array<double, 4>, 2> m_state{};  // per channel: x1, x2, y1, y2
};

// The lows' and highs' corners of the bass and treble knobs.
constexpr double kBassCornerHz = 120;
constexpr double kTrebleCornerHz = 8000;
