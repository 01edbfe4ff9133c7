// The stretcher as the player streams through it: a tone moved in key keeps its length, a tone
// slowed down keeps its key, the song frame it reports follows what it gave, and no value or
// order of calls makes it give anything but sound.

#include "audio/TimeStretch.h"
#include "support/Tones.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <numbers>
#include <random>
#include <vector>

namespace {

constexpr int kRate = 44100;

std::vector<float> Tone(double hz, double seconds, double silenceAfter = 0)
{
    const int frames = int(seconds * kRate);
    std::vector<float> samples(size_t(frames + int(silenceAfter * kRate)) * 2, 0.0f);
    for (int i = 0; i < frames; ++i) {
        const auto s = float(0.5 * std::sin(2 * std::numbers::pi * hz * i / kRate));
        samples[size_t(2 * i)] = s;
        samples[size_t(2 * i + 1)] = s;
    }
    return samples;
}

// Streams the song through as the worker will: what it wants in, what it has out.
std::vector<float> Stream(TimeStretch& stretch, const std::vector<float>& song)
{
    std::vector<float> out;
    std::vector<float> block(4096 * 2);
    const int total = int(song.size() / 2);
    for (int pushed = 0; pushed < total;) {
        const int count = std::min(stretch.FramesWanted(), total - pushed);
        stretch.Push(song.data() + 2 * pushed, count);
        pushed += count;
        for (int got; (got = stretch.Pull(block.data(), 4096)) > 0;)
            out.insert(out.end(), block.begin(), block.begin() + 2 * got);
    }
    return out;
}

// Seconds from the first to the last frame louder than a tenth of the tone.
double SoundingSeconds(const std::vector<float>& stereo)
{
    size_t first = stereo.size(), last = 0;
    for (size_t i = 0; i < stereo.size(); i += 2)
        if (std::fabs(stereo[i]) > 0.05f) {
            first = std::min(first, i / 2);
            last = i / 2;
        }
    return last > first ? double(last - first) / kRate : 0;
}

} // namespace

TEST(TimeStretch, TwoSemitonesUpKeepTheLength)
{
    for (const auto engine : {TimeStretch::Engine::Faster, TimeStretch::Engine::Finer}) {
        TimeStretch stretch(kRate, engine);
        stretch.SetSemitones(2);
        stretch.Restart(0);
        const std::vector<float> out = Stream(stretch, Tone(440, 4, 1));
        EXPECT_NEAR(ToneFrequency(out, kRate, size_t(kRate), size_t(3 * kRate)), 493.88, 493.88 * 0.003);
        EXPECT_NEAR(SoundingSeconds(out), 4.0, 4.0 * 0.005);
    }
}

TEST(TimeStretch, ASlowerTempoLastsLongerInTheSameKey)
{
    for (const auto engine : {TimeStretch::Engine::Faster, TimeStretch::Engine::Finer}) {
        TimeStretch stretch(kRate, engine);
        stretch.SetTempo(0.8);
        stretch.Restart(0);
        const std::vector<float> out = Stream(stretch, Tone(440, 4, 1.5));
        EXPECT_NEAR(ToneFrequency(out, kRate, size_t(kRate), size_t(4 * kRate)), 440, 440 * 0.003);
        EXPECT_NEAR(SoundingSeconds(out), 5.0, 5.0 * 0.005);
        EXPECT_NEAR(stretch.SongFrame(), double(out.size() / 2) * 0.8, 1) << "each frame given is 0.8 of a song frame";
    }
}

TEST(TimeStretch, ARestartBeginsAtItsSongFrameWithTheSoundInPlace)
{
    TimeStretch stretch(kRate, TimeStretch::Engine::Faster);
    stretch.SetTempo(1.5);
    Stream(stretch, Tone(440, 1));
    stretch.Restart(10 * kRate);
    EXPECT_EQ(stretch.SongFrame(), 10.0 * kRate);
    // A tone that starts at once after the restart comes out at once, not a start delay later.
    const std::vector<float> out = Stream(stretch, Tone(440, 2));
    size_t first = 0;
    while (first < out.size() && std::fabs(out[first]) < 0.05f)
        first += 2;
    EXPECT_LT(double(first / 2) / kRate, 0.02);
}

TEST(TimeStretch, ValuesOutOfRangeComeToTheNearerEndAndNoOrderOfCallsBreaksTheSound)
{
    TimeStretch stretch(kRate, TimeStretch::Engine::Faster);
    stretch.SetTempo(5);
    EXPECT_EQ(stretch.Tempo(), 2.0);
    stretch.SetTempo(0);
    EXPECT_EQ(stretch.Tempo(), 0.5);
    stretch.SetTempo(std::nan(""));
    EXPECT_EQ(stretch.Tempo(), 0.5) << "a value that is no number changes nothing";
    stretch.SetSemitones(-40);
    EXPECT_EQ(stretch.Semitones(), -12.0);
    stretch.SetSemitones(std::numeric_limits<double>::infinity());
    EXPECT_EQ(stretch.Semitones(), -12.0);

    // Pushes of any size, knob turns and restarts between them, as a busy player makes them.
    std::mt19937 random(7);
    const std::vector<float> song = Tone(330, 3);
    std::vector<float> out(8192 * 2);
    for (int round = 0; round < 300; ++round) {
        const int count = int(random() % 5000);
        const int from = int(random() % (song.size() / 2 - 5000));
        stretch.Push(song.data() + 2 * from, count);
        if (random() % 7 == 0)
            stretch.SetTempo(0.5 + (random() % 150) / 100.0);
        if (random() % 11 == 0)
            stretch.SetSemitones(double(int(random() % 25) - 12));
        if (random() % 29 == 0)
            stretch.Restart(from);
        const int got = stretch.Pull(out.data(), int(random() % 8192));
        for (int i = 0; i < got * 2; ++i)
            ASSERT_TRUE(std::isfinite(out[size_t(i)]) && std::fabs(out[size_t(i)]) < 4.0f) << "round " << round;
    }
    EXPECT_EQ(stretch.Pull(out.data(), 0), 0);
}

TEST(TimeStretch, AStepInTheSongComesOutWhereTheTempoPutsIt)
{
    // A soft tone for a second, then a loud one: the step belongs at 1 / tempo seconds.
    std::vector<float> song = Tone(440, 2, 1);
    for (size_t i = 0; i < size_t(kRate) * 2; ++i)
        song[i] *= 0.2f;
    for (const auto engine : {TimeStretch::Engine::Faster, TimeStretch::Engine::Finer})
        for (const double tempo : {0.8, 1.25}) {
            TimeStretch stretch(kRate, engine);
            stretch.SetTempo(tempo);
            stretch.Restart(0);
            std::vector<float> out = Stream(stretch, song);
            stretch.Finish();
            std::vector<float> rest(4096 * 2);
            for (int got; (got = stretch.Pull(rest.data(), 4096)) > 0;)
                out.insert(out.end(), rest.begin(), rest.begin() + 2 * got);
            size_t step = 0;
            while (step < out.size() && std::fabs(out[step]) < 0.3f)
                step += 2;
            EXPECT_NEAR(double(step / 2) / kRate, 1 / tempo, 0.01) << "engine " << int(engine) << " at " << tempo;
            EXPECT_NEAR(double(out.size() / 2) / kRate, 3 / tempo, 0.01) << "engine " << int(engine) << " at " << tempo;
        }
}
