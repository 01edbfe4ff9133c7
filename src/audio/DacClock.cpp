#include "audio/DacClock.h"

#include <algorithm>
#include <cmath>

namespace {

// Weight of a new measurement against the prediction: follows drift, ignores wake-up jitter.
constexpr double kSmoothing = 0.05;
// A reported latency above this is taken as overstated.
constexpr double kMaxReportedLatency = 0.2;

} // namespace

DacClock::DacClock(int sampleRate, double reportedLatency)
    : m_sampleRate(sampleRate), m_fallbackLatency(std::clamp(reportedLatency, 0.0, kMaxReportedLatency))
{
}

bool DacClock::Plausible(double streamNow, double dacTime) const
{
    if (dacTime <= 0 || streamNow <= 0)
        return false;
    const double latency = dacTime - streamNow;
    if (latency < 0 || latency > kMaxLatency)
        return false;
    // Successive buffers must be about one period apart on the device's clock.
    if (m_lastDac > 0 && m_lastPeriod > 0) {
        const double step = dacTime - m_lastDac;
        if (std::fabs(step - m_lastPeriod) > m_lastPeriod * 0.5 + 0.002)
            return false;
    }
    return true;
}

double DacClock::HeardAt(double cpuNow, double streamNow, double dacTime, int frames)
{
    const double period = double(frames) / m_sampleRate;
    m_trusted = Plausible(streamNow, dacTime);
    const double measured = m_trusted ? cpuNow + (dacTime - streamNow) : cpuNow + m_fallbackLatency;
    m_lastDac = dacTime;

    double heardAt = measured;
    if (m_expected >= 0 && std::fabs(measured - m_expected) < std::max(period, m_lastPeriod))
        heardAt = m_expected + kSmoothing * (measured - m_expected);
    m_expected = heardAt + period;
    m_lastPeriod = period;
    return heardAt;
}
