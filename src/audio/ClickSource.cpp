#include "audio/ClickSource.h"

#include <algorithm>
#include <cmath>
#include <numbers>

ClickSource::ClickSource(int sampleRate, double beatSeconds, double clickSeconds, double hz)
    : m_sampleRate(sampleRate), m_beatFrames(std::max<uint64_t>(1, uint64_t(std::llround(beatSeconds * sampleRate))))
{
    const auto length = std::min<uint64_t>(m_beatFrames, uint64_t(std::llround(clickSeconds * sampleRate)));
    m_click.resize(length);
    for (size_t i = 0; i < length; ++i) {
        const double t = double(i) / sampleRate;
        m_click[i] = float(0.6 * std::sin(2 * std::numbers::pi * hz * t) * (1.0 - double(i) / double(length)));
    }
}

void ClickSource::Render(float* out, int frames, const BufferTiming& timing) noexcept
{
    for (int i = 0; i < frames; ++i) {
        const uint64_t inBeat = (m_frame + uint64_t(i)) % m_beatFrames;
        const float value = inBeat < m_click.size() ? m_click[inBeat] : 0.0f;
        out[2 * i] = out[2 * i + 1] = value;
    }
    HeardClock heard;
    heard.start = double(m_frame) / m_sampleRate;
    m_frame += uint64_t(frames);
    heard.end = double(m_frame) / m_sampleRate;
    heard.heardAt = timing.heardAt;
    m_heard.Publish(heard);
}

double ClickSource::Position(double now) const
{
    const auto heard = m_heard.Read();
    return heard ? heard->PositionAt(now) : 0.0;
}
