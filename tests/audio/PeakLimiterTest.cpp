// The synthesiser's limiter: under the ceiling it leaves the sound alone; over it, no sample
// passes the ceiling, the gain comes back over the release, and both sides move together.

#include "audio/PeakLimiter.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <numbers>
#include <vector>

namespace {

constexpr int kRate = 48000;

std::vector<float> Sine(double amplitude, int frames, double hz = 440)
{
    std::vector<float> samples(size_t(frames) * 2);
    for (int i = 0; i < frames; ++i) {
        const auto s = float(amplitude * std::sin(2 * std::numbers::pi * hz * i / kRate));
        samples[size_t(2 * i)] = s;
        samples[size_t(2 * i + 1)] = s * 0.5f;
    }
    return samples;
}

float Peak(const std::vector<float>& samples, size_t from = 0)
{
    float peak = 0;
    for (size_t i = from; i < samples.size(); ++i)
        peak = std::max(peak, std::fabs(samples[i]));
    return peak;
}

} // namespace

TEST(PeakLimiter, UnderTheCeilingTheSoundPassesUntouched)
{
    PeakLimiter limiter(0.891f, 0.1, kRate);
    const std::vector<float> quiet = Sine(0.85, kRate / 10);
    std::vector<float> limited = quiet;
    limiter.Process(limited.data(), int(limited.size() / 2));
    EXPECT_EQ(limited, quiet);
    EXPECT_EQ(limiter.Gain(), 1.0f);
}

TEST(PeakLimiter, OverTheCeilingNoSamplePassesAndTheGainComesBack)
{
    PeakLimiter limiter(0.891f, 0.1, kRate);
    std::vector<float> loud = Sine(4.0, kRate / 4);
    // Buffers of uneven sizes, as devices give them.
    for (size_t at = 0, step = 37; at < loud.size() / 2; at += step, step = step * 7 % 509 + 1)
        limiter.Process(loud.data() + 2 * at, int(std::min(step, loud.size() / 2 - at)));
    EXPECT_LE(Peak(loud), 0.891f + 1e-6f) << "the ceiling, to the rounding of a float";
    EXPECT_GT(Peak(loud, loud.size() / 2), 0.8f) << "still loud, held at the ceiling";
    EXPECT_LT(limiter.Gain(), 0.3f);

    // The right side, half the left, keeps its share: the sides are limited together.
    for (size_t i = loud.size() / 2; i < loud.size(); i += 2)
        EXPECT_NEAR(loud[i + 1], loud[i] * 0.5f, 1e-6f);

    // A quiet passage after it: the gain recovers within a few release times.
    std::vector<float> after = Sine(0.1, kRate / 2);
    limiter.Process(after.data(), int(after.size() / 2));
    EXPECT_GT(limiter.Gain(), 0.99f);
    EXPECT_NEAR(Peak(after, after.size() - kRate / 10), 0.1f, 0.002f);
}
