#include "audio/PeakLimiter.h"

#include <algorithm>
#include <cmath>

PeakLimiter::PeakLimiter(float ceiling, double releaseSeconds, int sampleRate)
    : m_ceiling(ceiling), m_recovery(float(1 - std::exp(-1 / (releaseSeconds * std::max(sampleRate, 1)))))
{
}

void PeakLimiter::Process(float* interleaved, int frames) noexcept
{
    for (int i = 0; i < frames; ++i) {
        float& left = interleaved[2 * i];
        float& right = interleaved[2 * i + 1];
        const float peak = std::max(std::fabs(left), std::fabs(right));
        const float allowed = peak > m_ceiling ? m_ceiling / peak : 1.0f;
        m_gain = std::min(allowed, m_gain + (1.0f - m_gain) * m_recovery);
        left *= m_gain;
        right *= m_gain;
    }
}
