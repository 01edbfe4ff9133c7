#include "playback/LatencyClicks.h"

#include "audio/AudioEngine.h"
#include "audio/ClickSource.h"

#include <cmath>

namespace {

constexpr double kClickSeconds = 0.03;
constexpr double kClickHz = 1760;

} // namespace

bool BeatLit(double heardSeconds, double offsetSeconds)
{
    const double clock = heardSeconds - offsetSeconds;
    if (clock < 0)
        return false;
    return std::fmod(clock, LatencyClicks::kBeatSeconds) < LatencyClicks::kLitSeconds;
}

LatencyClicks::LatencyClicks(AudioEngine& engine) : m_engine(engine) {}

LatencyClicks::~LatencyClicks()
{
    if (m_source)
        m_engine.RemoveSource(m_source.get());
}

bool LatencyClicks::Start(QString& error)
{
    m_source = std::make_shared<ClickSource>(m_engine.SampleRate(), kBeatSeconds, kClickSeconds, kClickHz);
    if (!m_engine.AddSource(m_source)) {
        error = QStringLiteral("the engine has no room for another sound");
        m_source.reset();
        return false;
    }
    return true;
}

bool LatencyClicks::Lit(double offsetSeconds) const
{
    return m_source && BeatLit(m_source->Position(m_engine.Now()), offsetSeconds);
}
