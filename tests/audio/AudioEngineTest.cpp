#include "audio/AudioEngine.h"
#include "audio/DacClock.h"
#include "audio/FfmpegHandles.h"
#include "audio/FileSource.h"
#include "audio/ManualDevice.h"
#include "audio/MediaProbe.h"
#include "audio/NullDevice.h"
#include "audio/PcmConversion.h"
#include "support/TestSupport.h"

#include <QFile>
#include <QTemporaryDir>
#include <chrono>
#include <gtest/gtest.h>
#include <thread>

namespace {

constexpr int kRate = 48000;

// A source of constant samples, for the mixer.
class ConstantSource final : public AudioSource {
public:
    explicit ConstantSource(float value) : m_value(value) {}
    void Render(float* out, int frames, const BufferTiming&) noexcept override { std::fill_n(out, frames * 2, m_value); }

private:
    float m_value;
};

// Waits until the decoder has queued this much audio, as a real device's first callbacks would.
void AwaitDecoded(const FileSource& source, double seconds)
{
    for (int i = 0; i < 2000 && source.SecondsBuffered() < seconds; ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
}

class FileSourceTest : public testing::Test {
protected:
    void SetUp() override
    {
        std::string error;
        source = FileSource::Open(WriteRampWav(dir.filePath("ramp.wav"), kRate).toStdString(), kRate, error);
        ASSERT_TRUE(source) << error;
        engine.AddSource(source);
        engine.Start();
        AwaitDecoded(*source, 0.5);
    }

    double Position() { return source->Position(device->Now()); }
    const std::vector<float>& Step(int frames, int buffer = 512) { return device->Step(frames, buffer); }

    QTemporaryDir dir;
    ManualDevice* device = new ManualDevice(kRate);
    AudioEngine engine{std::unique_ptr<AudioDevice>(device)};
    std::shared_ptr<FileSource> source;
};

} // namespace

TEST_F(FileSourceTest, DeliversEveryFrameAndTheClockCountsThemExactly)
{
    EXPECT_DOUBLE_EQ(source->Duration(), 1.0);
    EXPECT_EQ(source->GetState(), FileSource::Stopped);
    EXPECT_EQ(Step(480)[0], 0.0f) << "nothing plays before Run";
    EXPECT_DOUBLE_EQ(Position(), 0);

    source->Run();
    EXPECT_EQ(source->GetState(), FileSource::Running);
    const std::vector<float>& out = Step(1000, 512);
    for (int i = 0; i < 1000; ++i) {
        ASSERT_EQ(out[2 * i], RampSample(i)) << "frame " << i;
        ASSERT_EQ(out[2 * i + 1], -RampSample(i)) << "frame " << i;
    }
    EXPECT_DOUBLE_EQ(Position(), 1000.0 / kRate);
}

TEST_F(FileSourceTest, PauseFreezesStopThenPlayStartsAtZero)
{
    source->Run();
    Step(4800);
    source->Pause();
    EXPECT_EQ(source->GetState(), FileSource::Paused);
    const std::vector<float>& silent = Step(4800);
    EXPECT_TRUE(std::all_of(silent.begin(), silent.end(), [](float s) { return s == 0; }));
    EXPECT_DOUBLE_EQ(Position(), 0.1);

    source->Seek(0);
    source->Stop();
    EXPECT_DOUBLE_EQ(Position(), 0);
    Step(480);
    AwaitDecoded(*source, 0.5);
    source->Run();
    const std::vector<float>& out = Step(480);
    EXPECT_EQ(out[0], RampSample(0));
    EXPECT_EQ(out[2 * 479], RampSample(479));
    EXPECT_DOUBLE_EQ(Position(), 0.01);
}

TEST_F(FileSourceTest, SeekLandsOnTheFrameAndTheClockJumpsAtOnce)
{
    source->Run();
    Step(960);
    source->Seek(0.7);
    EXPECT_DOUBLE_EQ(Position(), 0.7);
    source->Pause();
    Step(480);
    AwaitDecoded(*source, 0.2);
    source->Run();
    const std::vector<float>& out = Step(480);
    EXPECT_EQ(out[0], RampSample(33600));
    EXPECT_EQ(out[2 * 100], RampSample(33700));
    EXPECT_DOUBLE_EQ(Position(), 0.71);
}

TEST_F(FileSourceTest, RateTwoPlaysEveryOtherFrameAndDoublesTheClock)
{
    source->SetRate(2.0);
    source->Run();
    const std::vector<float>& out = Step(4800);
    for (int i = 0; i < 4800; i += 97)
        ASSERT_EQ(out[2 * i], RampSample(2 * i)) << "frame " << i;
    EXPECT_DOUBLE_EQ(Position(), 0.2);

    source->SetRate(0.5);
    const std::vector<float>& slow = Step(480);
    EXPECT_FLOAT_EQ(slow[2], (RampSample(9600) + RampSample(9601)) / 2) << "halfway between two frames";
    EXPECT_DOUBLE_EQ(Position(), 0.2 + 0.005);
}

TEST_F(FileSourceTest, EndOfStreamHoldsThePositionAtTheDuration)
{
    source->Run();
    for (int i = 0; i < 120; ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
        Step(480);
    }
    EXPECT_DOUBLE_EQ(Position(), 1.0);
    Step(4800);
    EXPECT_DOUBLE_EQ(Position(), 1.0);
}

TEST(AudioEngine, MixesSourcesWithGainBalanceMuteAndMaster)
{
    auto* device = new ManualDevice(kRate);
    AudioEngine engine{std::unique_ptr<AudioDevice>(device)};
    engine.Start();
    auto a = std::make_shared<ConstantSource>(0.25f);
    auto b = std::make_shared<ConstantSource>(0.25f);
    ASSERT_TRUE(engine.AddSource(a));
    ASSERT_TRUE(engine.AddSource(b));
    EXPECT_FLOAT_EQ(device->Step(64)[10], 0.5f);

    b->Volume = -600;  // -6 dB, about half
    device->Step(64);
    EXPECT_NEAR(device->Step(64)[10], 0.25f + 0.25f * 0.501f, 1e-3);
    b->Muted = true;
    device->Step(64);
    EXPECT_FLOAT_EQ(device->Step(64)[10], 0.25f);

    a->Balance = 10000;  // left silent
    device->Step(64);
    const auto& balanced = device->Step(64);
    EXPECT_FLOAT_EQ(balanced[10], 0.0f);
    EXPECT_FLOAT_EQ(balanced[11], 0.25f);

    engine.SetMasterMute(true);
    device->Step(64);
    EXPECT_FLOAT_EQ(device->Step(64)[11], 0.0f);
    engine.SetMasterMute(false);
    engine.RemoveSource(a.get());
    device->Step(64);
    EXPECT_FLOAT_EQ(device->Step(64)[11], 0.0f);
    EXPECT_EQ(a.use_count(), 1) << "the engine let go of the removed source";

    EXPECT_EQ(GainOfHundredthsDb(0), 1.0f);
    EXPECT_EQ(GainOfHundredthsDb(-10000), 0.0f);
}

TEST(AudioEngine, FilesThatAreNotAudioAreRefused)
{
    QTemporaryDir dir;
    WriteFileBytes(dir.filePath("notes.mp3"), "These are not the sounds you are looking for.\n");
    WriteFileBytes(dir.filePath("empty.ogg"), "");
    std::string error;
    for (const char* name : {"notes.mp3", "empty.ogg", "missing.wav"}) {
        EXPECT_EQ(FileSource::Open(dir.filePath(name).toStdString(), kRate, error), nullptr) << name;
        EXPECT_FALSE(error.empty());
        EXPECT_EQ(MediaLength(dir.filePath(name).toStdString()), 0) << name;
    }
    EXPECT_DOUBLE_EQ(MediaLength(WriteRampWav(dir.filePath("ramp.wav"), 24000).toStdString()), 0.5);
}

// How late a 10 ms sleep wakes up on this machine, in seconds: the worst of twenty.
static double SleepOvershoot()
{
    double worst = 0;
    for (int i = 0; i < 20; ++i) {
        const double before = SteadySeconds();
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
        worst = std::max(worst, SteadySeconds() - before - 0.010);
    }
    return worst;
}

TEST(AudioEngine, NullDevicePositionNeverRunsBackwardsAndKeepsToTheWallClock)
{
    // The null device keeps time by sleeping; where the system's timers wake threads tens of
    // milliseconds late (seen on some virtual machines), it cannot, and this says so.
    if (const double late = SleepOvershoot(); late > 0.010)
        GTEST_SKIP() << "10 ms sleeps wake up to " << late * 1000 << " ms late here";
    QTemporaryDir dir;
    std::string error;
    auto source = FileSource::Open(WriteRampWav(dir.filePath("ramp.wav"), kRate * 2).toStdString(), kRate, error);
    ASSERT_TRUE(source);
    auto* device = new NullDevice(kRate, 512);
    AudioEngine engine{std::unique_ptr<AudioDevice>(device)};
    engine.AddSource(source);
    AwaitDecoded(*source, 0.5);
    source->Run();
    ASSERT_TRUE(engine.Start());

    double last = 0;
    int backwards = 0;
    // A machine that holds the device thread back for a moment leaves the song behind the wall
    // clock until it catches up, so the closest of the last samples is the one that counts.
    std::vector<double> errors;
    const double until = SteadySeconds() + 0.6;
    while (SteadySeconds() < until) {
        const double now = engine.Now();
        const double position = source->Position(now);
        backwards += position < last;
        last = position;
        errors.push_back(std::fabs(position - (now - device->FirstFrameHeardAt())));
        std::this_thread::sleep_for(std::chrono::microseconds(300));
    }
    EXPECT_EQ(backwards, 0);
    ASSERT_GT(errors.size(), 20u);
    EXPECT_LT(*std::min_element(errors.end() - 20, errors.end()), 0.02);
    engine.RemoveSource(source.get());
}

TEST(DacClock, TrustsPlausibleTimestampsAndReplacesLyingOnes)
{
    const int frames = 480;  // 10 ms
    DacClock honest(kRate, 0.03);
    double heard = 0;
    for (int k = 0; k < 50; ++k) {
        const double cpu = 100 + k * 0.01 + ((k % 2) ? 0.002 : -0.002);  // wake-up jitter
        const double stream = 5 + k * 0.01;
        heard = honest.HeardAt(cpu, stream, stream + 0.025, frames);
    }
    EXPECT_TRUE(honest.UsesDeviceTimestamps());
    EXPECT_NEAR(heard, 100 + 49 * 0.01 + 0.025, 0.0015) << "smoothed against the jitter";

    DacClock zero(kRate, 0.03);
    EXPECT_DOUBLE_EQ(zero.HeardAt(100, 5, 0, frames), 100.03);
    EXPECT_FALSE(zero.UsesDeviceTimestamps());

    DacClock milliseconds(kRate, 0.03);  // DAC time in the wrong unit
    EXPECT_DOUBLE_EQ(milliseconds.HeardAt(100, 5, 5025, frames), 100.03);

    DacClock pulse(kRate, 2.0);  // an overstated latency is capped
    EXPECT_DOUBLE_EQ(pulse.HeardAt(100, 0, 0, frames), 100.2);

    DacClock stuck(kRate, 0.03);
    stuck.HeardAt(100, 5, 5.025, frames);
    stuck.HeardAt(100.01, 5.01, 5.025, frames);  // the DAC time did not advance
    EXPECT_FALSE(stuck.UsesDeviceTimestamps());
}

// A recording padded with 100 MB of zeros, and a stray copy of its audio behind them.
QString PaddedSong(const QString& folder)
{
    const QByteArray audio = ReadFileBytes(MediaFixture("plain.mp3"));
    const QString padded = folder + QStringLiteral("/padded.mp3");
    QFile file(padded);
    file.open(QIODevice::WriteOnly);
    file.write(audio);
    file.resize(qint64(100) << 20);
    file.seek(file.size());
    file.write(audio);
    return padded;
}

TEST(AudioEngine, ASongPaddedWith100MegabytesOfZerosOpensAndPlaysItsAudio)
{
    QTemporaryDir dir;
    const QString padded = PaddedSong(dir.path());
    std::string error;
    const std::vector<float> once = DecodeWholeFile(MediaFixture("plain.mp3").toStdString(), kRate, 2, error);
    ASSERT_FALSE(once.empty()) << error;
    const std::vector<float> song = DecodeWholeFile(padded.toStdString(), kRate, 2, error);
    EXPECT_EQ(song.size(), once.size()) << "the audio plays to its end, and the padding ends the song";
    EXPECT_GT(MediaLength(padded.toStdString()), 0.0) << "the song opens";

    auto source = FileSource::Open(padded.toStdString(), kRate, error);
    ASSERT_TRUE(source) << error;
}

TEST(AudioEngine, ASeekIntoPaddingGivesUpInsteadOfGatheringItInMemory)
{
    QTemporaryDir dir;
    const QString padded = PaddedSong(dir.path());
    std::string error;
    FormatHandle format = OpenMediaFile(padded.toStdString(), error);
    ASSERT_TRUE(format) << error;
    const int stream = av_find_best_stream(format.get(), AVMEDIA_TYPE_AUDIO, -1, -1, nullptr, 0);
    ASSERT_GE(stream, 0);
    const AVStream* s = format->streams[stream];
    // A user drags the slider to the middle of the file's nominal length. What FFmpeg reads in
    // search of the place and of a packet, its parser holds in memory.
    const int64_t before = format->pb->bytes_read;
    SeekWithin(*format, stream, s->duration > 0 ? s->duration / 2 : 0, AVSEEK_FLAG_BACKWARD);
    PacketHandle packet(av_packet_alloc());
    while (ReadPacketWithin(*format, *packet) >= 0)
        av_packet_unref(packet.get());
    EXPECT_LT(format->pb->bytes_read - before, int64_t(20) << 20) << "FFmpeg read on through the padding";
}
