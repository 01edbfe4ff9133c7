// FluidSynth as a source of the engine: notes sound at their pitch and move by the transpose
// (drums never), the tempo factor shortens the song, and a seek lands where it was asked.

#include "audio/SynthSource.h"
#include "support/TestSupport.h"

#include <QTemporaryDir>
#include <cmath>
#include <gtest/gtest.h>

namespace {

constexpr int kRate = 48000;

// One held note from tick 0 to `endTick` at 120 BPM, 480 ticks a quarter.
SynthSong HeldNote(int channel, int program, int key, uint64_t endTick = 960)
{
    SynthSong song;
    song.Tempos = {{0, 500000}};
    song.Events = {{0, uint8_t(0xC0 | channel), uint8_t(program), 0},
                   {0, uint8_t(0x90 | channel), uint8_t(key), 110},
                   {endTick, uint8_t(0x80 | channel), uint8_t(key), 0}};
    song.EndTick = endTick;
    return song;
}

std::shared_ptr<SynthSource> NewSynth()
{
    std::string error;
    auto synth = SynthSource::Create({}, kRate, error);
    EXPECT_NE(synth, nullptr) << error;
    return synth;
}

// Left channel of `frames` frames rendered in 512-frame buffers.
std::vector<float> Play(SynthSource& synth, int frames)
{
    std::vector<float> left;
    std::vector<float> buffer(512 * 2);
    for (int done = 0; done < frames; done += 512) {
        synth.Render(buffer.data(), 512, BufferTiming{double(done) / kRate});
        for (int i = 0; i < 512; ++i)
            left.push_back(buffer[size_t(i) * 2]);
    }
    return left;
}

// The pitch of a steady tone: the shortest lag whose autocorrelation comes near the best one.
double Frequency(const std::vector<float>& samples, size_t from, size_t to)
{
    const int shortest = kRate / 2000, longest = kRate / 100;
    std::vector<double> correlation(size_t(longest) + 1, 0.0);
    for (int lag = shortest; lag <= longest; ++lag)
        for (size_t i = from; i + size_t(lag) < to; ++i)
            correlation[size_t(lag)] += double(samples[i]) * samples[i + size_t(lag)];
    const double best = *std::max_element(correlation.begin(), correlation.end());
    for (int lag = shortest; lag <= longest; ++lag)
        if (correlation[size_t(lag)] >= 0.9 * best && correlation[size_t(lag)] >= correlation[size_t(lag) - 1]
            && correlation[size_t(lag)] >= correlation[size_t(lag) + 1])
            return double(kRate) / lag;
    return 0.0;
}

} // namespace

TEST(SynthSource, NotesSoundAtTheirPitchAndMoveByTheTransposeButDrumsDoNot)
{
    auto synth = NewSynth();
    ASSERT_NE(synth, nullptr);
    synth->Load(HeldNote(0, 73, 69));  // a flute holds a clean A4
    synth->Run();
    std::vector<float> a4 = Play(*synth, kRate / 2);
    EXPECT_NEAR(Frequency(a4, kRate / 10, kRate / 10 + 4096), 440.0, 440.0 * 0.02);

    synth->Load(HeldNote(0, 73, 69));
    synth->SetTranspose(12);
    synth->Run();
    std::vector<float> a5 = Play(*synth, kRate / 2);
    EXPECT_NEAR(Frequency(a5, kRate / 10, kRate / 10 + 4096), 880.0, 880.0 * 0.02);

    auto drumsPlain = NewSynth();
    auto drumsMoved = NewSynth();
    drumsPlain->Load(HeldNote(9, 0, 38));
    drumsMoved->Load(HeldNote(9, 0, 38));
    drumsMoved->SetTranspose(12);
    drumsPlain->Run();
    drumsMoved->Run();
    const std::vector<float> plain = Play(*drumsPlain, kRate / 4);
    const std::vector<float> moved = Play(*drumsMoved, kRate / 4);
    EXPECT_EQ(plain, moved) << "the drum channel is never transposed";
    EXPECT_GT(*std::max_element(plain.begin(), plain.end()), 0.01f) << "the snare sounded";
}

TEST(SynthSource, TheTempoFactorShortensTheSongAndSeeksLandOnTheirTick)
{
    auto synth = NewSynth();
    ASSERT_NE(synth, nullptr);
    auto framesToEnd = [&](double factor) {
        synth->Load(HeldNote(0, 0, 60, 1920));  // two seconds at 120 BPM
        synth->SetTempoFactor(factor);
        synth->Run();
        std::vector<float> buffer(512 * 2);
        int frames = 0;
        while (!synth->Ended() && frames < kRate * 10) {
            synth->Render(buffer.data(), 512, BufferTiming{double(frames) / kRate});
            frames += 512;
        }
        return frames;
    };
    EXPECT_NEAR(framesToEnd(1.0), 2 * kRate, 512);
    EXPECT_NEAR(framesToEnd(2.0), kRate, 512);

    synth->Load(HeldNote(0, 0, 60, 1920));
    synth->SeekTick(960);
    EXPECT_DOUBLE_EQ(synth->TickAt(0), 960) << "the target stands until the callback has played from it";
    synth->Run();
    std::vector<float> buffer(480 * 2);
    synth->Render(buffer.data(), 480, BufferTiming{1.0});
    EXPECT_DOUBLE_EQ(synth->TickAt(1.0), 960);
    EXPECT_NEAR(synth->TickAt(1.005), 964.8, 1e-9) << "960 ticks a second, heard from 1.0 s";
    EXPECT_NEAR(synth->TickAt(5.0), 969.6, 1e-9) << "never past what was rendered";
    synth->SeekTick(5000);
    EXPECT_DOUBLE_EQ(synth->TickAt(0), 1920) << "a seek past the end stops at the end";
}

TEST(SynthSource, BehindADeviceLatencyTheHeardTickIsTheOneOfTheEarlierBuffers)
{
    auto synth = NewSynth();
    ASSERT_NE(synth, nullptr);
    synth->Load(HeldNote(0, 0, 60, 1920));
    synth->Run();
    // Each buffer is rendered 50 ms before it is heard, as a sound card's queue makes it.
    const double latency = 0.05, period = 480.0 / kRate;
    std::vector<float> buffer(480 * 2);
    for (int k = 0; k < 20; ++k)
        synth->Render(buffer.data(), 480, BufferTiming{k * period + latency});
    // Twenty buffers were rendered, but only what was heard by now counts: 960 ticks a second.
    const double now = 19 * period + latency - 0.004;
    EXPECT_NEAR(synth->TickAt(now), (now - latency) * 960, 1e-6);

    synth->Hold();
    synth->Render(buffer.data(), 480, BufferTiming{20 * period + latency});
    const double held = synth->TickAt(20 * period + latency);
    synth->Run();
    synth->Render(buffer.data(), 480, BufferTiming{21 * period + latency});
    EXPECT_DOUBLE_EQ(synth->TickAt(21 * period), held) << "a song that goes on never goes back";
    synth->SeekTick(1500);
    synth->Render(buffer.data(), 480, BufferTiming{22 * period + latency});
    EXPECT_DOUBLE_EQ(synth->TickAt(22 * period), 1500) << "nor before where a seek put it";
}

TEST(SynthSource, AMissingSoundFontIsNamed)
{
    QTemporaryDir dir;
    const std::string broken = dir.filePath(QStringLiteral("broken.sf2")).toStdString();
    WriteFileBytes(QString::fromStdString(broken), QByteArray("RIFF not a soundfont"));
    std::string error;
    EXPECT_EQ(SynthSource::Create(broken, kRate, error), nullptr);
    EXPECT_NE(error.find("broken.sf2"), std::string::npos) << error;
}
