#include "playback/LatencyClicks.h"

#include "audio/AudioEngine.h"
#include "audio/FileSource.h"
#include "audio/WavFile.h"
#include "core/Shell.h"

#include <QFile>
#include <cmath>
#include <numbers>
#include <vector>

namespace {

constexpr int kClickRate = 48000;
constexpr double kLengthSeconds = 120;
constexpr double kClickSeconds = 0.03;
constexpr double kClickHz = 1760;

// Short decaying tones on every beat.
std::vector<float> Clicks()
{
    const auto frames = size_t(kLengthSeconds * kClickRate);
    const auto beat = size_t(LatencyClicks::kBeatSeconds * kClickRate);
    const auto click = size_t(kClickSeconds * kClickRate);
    std::vector<float> samples(frames * 2, 0.0f);
    for (size_t start = 0; start + click < frames; start += beat)
        for (size_t i = 0; i < click; ++i) {
            const double t = double(i) / kClickRate;
            const auto value = float(0.6 * std::sin(2 * std::numbers::pi * kClickHz * t) * (1.0 - double(i) / click));
            samples[2 * (start + i)] = samples[2 * (start + i) + 1] = value;
        }
    return samples;
}

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
    if (!m_file.isEmpty())
        QFile::remove(m_file);
}

bool LatencyClicks::Start(QString& error)
{
    m_file = GetTempFolder() + QStringLiteral("SWVLatencyTest.wav");
    if (!WriteStereoWav(m_file, Clicks(), kClickRate)) {
        error = QStringLiteral("Cannot write %1").arg(m_file);
        return false;
    }
    std::string message;
    m_source = FileSource::Open(m_file.toStdString(), m_engine.SampleRate(), message);
    if (!m_source || !m_engine.AddSource(m_source)) {
        error = QString::fromStdString(message);
        m_source.reset();
        return false;
    }
    m_source->Run();
    return true;
}

bool LatencyClicks::Lit(double offsetSeconds) const
{
    return m_source && BeatLit(m_source->Position(m_engine.Now()), offsetSeconds);
}
