// Vocal reduction: the centre of a stereo song goes between 120 Hz and 8 kHz, what is panned,
// the bass and the highs stay; off, the song comes back exactly, only late; switching it fades.

#include "audio/VocalReducer.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <numbers>
#include <vector>

namespace {

constexpr int kRate = 48000;

// Interleaved stereo: a tone at `left` and `right` times its amplitude on each side.
std::vector<float> Tone(double hz, double seconds, float left, float right)
{
    std::vector<float> samples(size_t(seconds * kRate) * 2);
    for (size_t i = 0; i < samples.size() / 2; ++i) {
        const auto s = float(0.5 * std::sin(2 * std::numbers::pi * hz * double(i) / kRate));
        samples[2 * i] = s * left;
        samples[2 * i + 1] = s * right;
    }
    return samples;
}

// Processes in the uneven buffers a sound card gives.
std::vector<float> Reduced(VocalReducer& reducer, std::vector<float> samples)
{
    const int frames = int(samples.size() / 2);
    for (int at = 0, step = 100; at < frames; at += step, step = step * 5 % 997 + 1)
        reducer.Process(samples.data() + 2 * at, std::min(step, frames - at));
    return samples;
}

double RmsDb(const std::vector<float>& samples, int channel, double fromSecond)
{
    double sum = 0;
    size_t count = 0;
    for (size_t i = size_t(fromSecond * kRate); 2 * i + 1 < samples.size(); ++i, ++count)
        sum += double(samples[2 * i + size_t(channel)]) * samples[2 * i + size_t(channel)];
    return 10 * std::log10(std::max(sum / double(std::max<size_t>(count, 1)), 1e-30));
}

} // namespace

TEST(VocalReducer, TheCentreGoesWhatIsPannedAndTheBassStay)
{
    for (const double hz : {440.0, 1000.0, 3000.0}) {
        VocalReducer reducer(kRate);
        reducer.SetOn(true);
        const std::vector<float> centred = Tone(hz, 1.5, 1, 1);
        const std::vector<float> out = Reduced(reducer, centred);
        EXPECT_LE(RmsDb(out, 0, 0.5) - RmsDb(centred, 0, 0.5), -20) << hz << " Hz in the centre";
        EXPECT_LE(RmsDb(out, 1, 0.5) - RmsDb(centred, 1, 0.5), -20) << hz << " Hz in the centre";
    }

    VocalReducer panned(kRate);
    panned.SetOn(true);
    const std::vector<float> left = Tone(1000, 1.5, 1, 0);
    const std::vector<float> leftOut = Reduced(panned, left);
    EXPECT_NEAR(RmsDb(leftOut, 0, 0.5), RmsDb(left, 0, 0.5), 1.0) << "a hard-panned tone stays";
    EXPECT_LE(RmsDb(leftOut, 1, 0.5), RmsDb(left, 0, 0.5) - 40) << "and stays on its side";

    VocalReducer bass(kRate);
    bass.SetOn(true);
    const std::vector<float> low = Tone(60, 1.5, 1, 1);
    EXPECT_NEAR(RmsDb(Reduced(bass, low), 0, 0.5), RmsDb(low, 0, 0.5), 1.0) << "the bass in the centre stays";
}

TEST(VocalReducer, OffTheSongComesBackExactlyOnlyLate)
{
    VocalReducer reducer(kRate);
    const std::vector<float> song = Tone(700, 0.5, 0.8f, 0.3f);
    const std::vector<float> out = Reduced(reducer, song);
    for (size_t i = 0; i < size_t(VocalReducer::kDelayFrames) * 2; ++i)
        ASSERT_EQ(out[i], 0.0f);
    for (size_t i = size_t(VocalReducer::kDelayFrames) * 2; i < out.size(); ++i)
        ASSERT_EQ(out[i], song[i - size_t(VocalReducer::kDelayFrames) * 2]) << i;

    reducer.Reset();
    const std::vector<float> again = Reduced(reducer, song);
    EXPECT_EQ(again, out) << "after a reset it starts over as late";
}

TEST(VocalReducer, SwitchingOnAndOffFadesWithoutAClickAndWithTheSameDelay)
{
    VocalReducer reducer(kRate);
    std::vector<float> song = Tone(500, 2, 1, 1);
    const std::vector<float> left = Tone(2500, 2, 0.5f, 0);
    for (size_t i = 0; i < song.size(); ++i)
        song[i] += left[i];
    const int frames = int(song.size() / 2);
    std::vector<float> out = song;
    const int quarter = frames / 4;
    reducer.Process(out.data(), quarter);
    reducer.SetOn(true);
    reducer.Process(out.data() + 2 * quarter, 2 * quarter);
    reducer.SetOn(false);
    reducer.Process(out.data() + 6 * quarter, frames - 3 * quarter);

    // No step larger than the sound's own steepest one between two frames.
    float steepest = 0;
    for (size_t i = 2; i < song.size(); ++i)
        steepest = std::max(steepest, std::fabs(song[i] - song[i - 2]));
    for (size_t i = 2; i < out.size(); ++i)
        ASSERT_LE(std::fabs(out[i] - out[i - 2]), steepest * 1.05f) << "frame " << i / 2;

    // Well after it was switched off, the song is back exactly and as late as before.
    const size_t late = size_t(VocalReducer::kDelayFrames) * 2;
    for (size_t i = size_t(frames - kRate / 10) * 2; i < out.size(); ++i)
        ASSERT_NEAR(out[i], song[i - late], 1e-5f) << i;
}
