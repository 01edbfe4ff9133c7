#pragma once
// The latency test of the preferences: a click every half second through the program's output,
// and a light that the lyrics' clock would switch on with each click, the time offset taken off.
// When the light and the click come together, the offset fits the listener's sound system.

#include <QString>
#include <memory>

class AudioEngine;
class ClickSource;

// True while the lyrics' clock, the heard position less the offset, is in the first tenth of
// a second of a beat.
bool BeatLit(double heardSeconds, double offsetSeconds);

class LatencyClicks final {
public:
    static constexpr double kBeatSeconds = 0.5;
    static constexpr double kLitSeconds = 0.1;

    explicit LatencyClicks(AudioEngine& engine);
    ~LatencyClicks();
    LatencyClicks(const LatencyClicks&) = delete;
    LatencyClicks& operator=(const LatencyClicks&) = delete;

    // Plays the clicks; false with a message when they cannot play.
    bool Start(QString& error);
    // What the light shows now.
    bool Lit(double offsetSeconds) const;

private:
    AudioEngine& m_engine;
    std::shared_ptr<ClickSource> m_source;
};
