#include "audio/Shelving.h"

#include <cmath>
#include <numbers>

void ShelfFilter::Tune(int hundredthsDb, int sampleRate) noexcept
{
    m_gain = hundredthsDb;
    const double a = std::pow(10.0, hundredthsDb / 4000.0);  // amplitude at the shelf, square-rooted
    const double w0 = 2 * std::numbers::pi * m_corner / sampleRate;
    const double cosw = std::cos(w0);
    const double alpha = std::sin(w0) / 2 * std::sqrt(2.0);  // slope 1
    const double root = 2 * std::sqrt(a) * alpha;
    const double sign = m_kind == Low ? 1.0 : -1.0;
    const double b0 = a * ((a + 1) - sign * (a - 1) * cosw + root);
    const double b1 = sign * 2 * a * ((a - 1) - sign * (a + 1) * cosw);
    const double b2 = a * ((a + 1) - sign * (a - 1) * cosw - root);
    const double a0 = (a + 1) + sign * (a - 1) * cosw + root;
    const double a1 = -sign * 2 * ((a - 1) + sign * (a + 1) * cosw);
    const double a2 = (a + 1) + sign * (a - 1) * cosw - root;
    m_b0 = b0 / a0;
    m_b1 = b1 / a0;
    m_b2 = b2 / a0;
    m_a1 = a1 / a0;
    m_a2 = a2 / a0;
}

void ShelfFilter::Process(float* interleaved, int frames) noexcept
{
    if (m_gain == 0)
        return;
    for (int channel = 0; channel < 2; ++channel) {
        auto& [x1, x2, y1, y2] = m_state[size_t(channel)];
        for (int i = 0; i < frames; ++i) {
            float& sample = interleaved[2 * i + channel];
            const double x = sample;
            const double y = m_b0 * x + m_b1 * x1 + m_b2 * x2 - m_a1 * y1 - m_a2 * y2;
            x2 = x1;
            x1 = x;
            y2 = y1;
            y1 = y;
            sample = float(y);
        }
    }
}
