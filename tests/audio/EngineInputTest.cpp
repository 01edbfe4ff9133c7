// The engine's microphone side on the manual device: the live monitor, the capture ring, the
// level, and the master and line controls the old card mixer had.

#include "audio/AudioEngine.h"
#include "audio/ManualDevice.h"
#include "audio/PcmConversion.h"
#include "audio/SampleRing.h"
#include "audio/WavFile.h"

#include <QTemporaryDir>
#include <QtEndian>
#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

namespace {

constexpr int kRate = 48000;

struct Rig {
    Rig()
    {
        auto made = std::make_unique<ManualDevice>(kRate);
        device = made.get();
        engine = std::make_unique<AudioEngine>(std::move(made));
        engine->Start();
    }
    ManualDevice* device;
    std::unique_ptr<AudioEngine> engine;
};

std::vector<float> Constant(int frames, float value)
{
    return std::vector<float>(size_t(frames) * 2, value);
}

// A sine on both channels, as a source of the engine.
class Tone final : public AudioSource {
public:
    Tone(double hertz, Bus bus = Bus::Wave) : AudioSource(bus), m_step(2 * std::numbers::pi * hertz / kRate) {}
    void Render(float* out, int frames, const BufferTiming&) noexcept override
    {
        for (int i = 0; i < frames; ++i) {
            out[2 * i] = out[2 * i + 1] = float(0.25 * std::sin(m_phase));
            m_phase += m_step;
        }
    }

private:
    double m_step;
    double m_phase = 0;
};

// Peak of the left and right channels over the second half of the output.
std::pair<float, float> Peaks(const std::vector<float>& out)
{
    float left = 0, right = 0;
    for (size_t i = out.size() / 2; i + 1 < out.size(); i += 2) {
        left = std::max(left, std::abs(out[i]));
        right = std::max(right, std::abs(out[i + 1]));
    }
    return {left, right};
}

float PeakOf(Rig& rig, double hertz)
{
    auto tone = std::make_shared<Tone>(hertz);
    rig.engine->AddSource(tone);
    const float peak = Peaks(rig.device->Step(kRate / 2)).first;
    rig.engine->RemoveSource(tone.get());
    return peak;
}

} // namespace

TEST(EngineInput, TheMonitorAddsTheMicrophoneAtItsLevelInTheSameFrame)
{
    Rig rig;
    ASSERT_TRUE(rig.engine->StartInput(0));
    rig.device->FeedInput(Constant(1024, 0.5f));
    EXPECT_EQ(Peaks(rig.device->Step(1024)).first, 0.0f) << "the monitor starts muted";

    rig.engine->SetMonitorMute(false);
    rig.engine->SetMonitorVolume(-600);
    rig.device->FeedInput(Constant(2048, 0.5f));
    const auto& out = rig.device->Step(2048);
    EXPECT_NEAR(out[out.size() - 2], 0.5 * std::pow(10.0, -0.3), 1e-4);

    // A click entering the input leaves the output at the same frame: no latency of our own.
    std::vector<float> click = Constant(512, 0.0f);
    click[2 * 300] = click[2 * 300 + 1] = 0.9f;
    rig.engine->SetMonitorVolume(0);
    rig.device->FeedInput(click);
    const auto& heard = rig.device->Step(512);
    const auto loudest = std::max_element(heard.begin(), heard.end()) - heard.begin();
    EXPECT_EQ(loudest / 2, 300);

    rig.engine->StopInput();
    rig.device->FeedInput(Constant(512, 0.5f));
    EXPECT_EQ(Peaks(rig.device->Step(512)).first, 0.0f) << "no input, nothing monitored";
}

TEST(EngineInput, CaptureTakesEveryFrameFromTheNextBufferAndSaysWhenItBegan)
{
    Rig rig;
    rig.engine->StartInput(0);
    rig.device->FeedInput(Constant(512, 0.1f));
    rig.device->Step(512);
    double started = -1;
    EXPECT_FALSE(rig.engine->CaptureStartedAt(started));

    rig.engine->ArmCapture();
    std::vector<float> ramp(2000 * 2);
    for (size_t i = 0; i < ramp.size(); ++i)
        ramp[i] = float(i % 1000) / 1000.0f;
    rig.device->FeedInput(ramp);
    rig.device->Step(2000, 300);
    ASSERT_TRUE(rig.engine->CaptureStartedAt(started));
    EXPECT_DOUBLE_EQ(started, 512.0 / kRate);

    std::vector<float> taken(ramp.size() + 10);
    EXPECT_EQ(rig.engine->CaptureRing().Read(taken.data(), taken.size()), ramp.size());
    taken.resize(ramp.size());
    EXPECT_EQ(taken, ramp);

    rig.engine->DisarmCapture();
    rig.device->FeedInput(ramp);
    rig.device->Step(2000);
    EXPECT_EQ(rig.engine->CaptureRing().Available(), 0u) << "nothing after the capture ended";

    // A writer that never reads loses what does not fit, and the engine goes on.
    rig.engine->ArmCapture();
    for (int second = 0; second < 2 * AudioEngine::kCaptureSeconds; ++second)
        rig.device->Step(kRate, 1024);
    EXPECT_GT(rig.engine->CaptureOverruns(), 0u);
}

TEST(EngineInput, TheLevelIsTheFirstFrameOfTheNewestBufferAfterTheInputLevel)
{
    Rig rig;
    rig.engine->StartInput(0);
    std::vector<float> input = Constant(1024, 0.0f);
    input[0] = 0.5f;
    input[1] = -0.25f;
    input[1024] = 1.0f;  // the first frame of the second buffer
    input[1025] = -1.0f;
    rig.device->FeedInput(input);
    rig.device->Step(512);
    AudioEngine::InputLevel level = rig.engine->LastInputLevel();
    EXPECT_EQ(level.left, 16384);
    EXPECT_EQ(level.right, -8192);
    EXPECT_EQ(level.buffers, 1u);
    rig.device->Step(512);
    level = rig.engine->LastInputLevel();
    EXPECT_EQ(level.left, 32767);
    EXPECT_EQ(level.right, -32767);
    EXPECT_EQ(level.buffers, 2u);

    rig.engine->SetInputVolume(-10000);
    rig.device->FeedInput(Constant(1024, 0.5f));
    rig.device->Step(512);
    rig.device->Step(512);
    EXPECT_EQ(rig.engine->LastInputLevel().left, 0) << "the recording level comes before the meter";
}

TEST(EngineMixer, LinesMasterBalanceAndTheShelves)
{
    Rig rig;
    const float plain = PeakOf(rig, 1000);
    EXPECT_NEAR(plain, 0.25, 0.01);

    rig.engine->SetBusVolume(AudioSource::Bus::Synth, -10000);
    EXPECT_NEAR(PeakOf(rig, 1000), plain, 1e-4) << "the synthesiser's line leaves files alone";
    rig.engine->SetBusVolume(AudioSource::Bus::Wave, -600);
    EXPECT_NEAR(PeakOf(rig, 1000), plain * std::pow(10.0, -0.3), 1e-3);
    rig.engine->SetBusMute(AudioSource::Bus::Wave, true);
    EXPECT_EQ(PeakOf(rig, 1000), 0.0f);
    rig.engine->SetBusMute(AudioSource::Bus::Wave, false);
    rig.engine->SetBusVolume(AudioSource::Bus::Wave, 0);

    rig.engine->SetMasterBalance(10000);
    auto tone = std::make_shared<Tone>(1000);
    rig.engine->AddSource(tone);
    const auto [left, right] = Peaks(rig.device->Step(kRate / 2));
    rig.engine->RemoveSource(tone.get());
    EXPECT_EQ(left, 0.0f);
    EXPECT_NEAR(right, plain, 1e-3);
    rig.engine->SetMasterBalance(0);

    // 12 dB of bass lifts the lows about fourfold and leaves the highs.
    const float low = PeakOf(rig, 40);
    const float high = PeakOf(rig, 6000);
    rig.engine->SetMasterBass(1200);
    EXPECT_NEAR(20 * std::log10(PeakOf(rig, 40) / low), 12.0, 1.0);
    EXPECT_NEAR(20 * std::log10(PeakOf(rig, 6000) / high), 0.0, 0.5);
    rig.engine->SetMasterBass(0);
    rig.engine->SetMasterTreble(-1200);
    const float cutHigh = PeakOf(rig, 16000);
    rig.engine->SetMasterTreble(0);
    EXPECT_NEAR(20 * std::log10(cutHigh / PeakOf(rig, 16000)), -12.0, 1.5);
    rig.engine->SetMasterTreble(-1200);
    EXPECT_NEAR(20 * std::log10(PeakOf(rig, 40) / low), 0.0, 0.5);
}

TEST(SampleRing, WrapsRoundAndTakesOnlyWhatFits)
{
    SampleRing ring(8);
    const float in[6] = {1, 2, 3, 4, 5, 6};
    float out[8] = {};
    EXPECT_EQ(ring.Write(in, 6), 6u);
    EXPECT_EQ(ring.Read(out, 4), 4u);
    EXPECT_EQ(ring.Write(in, 6), 6u);
    EXPECT_EQ(ring.Write(in, 6), 0u) << "full";
    EXPECT_EQ(ring.Read(out, 8), 8u);
    const float expected[8] = {5, 6, 1, 2, 3, 4, 5, 6};
    EXPECT_TRUE(std::equal(out, out + 8, expected));
    EXPECT_EQ(ring.TotalWritten(), 12u);
    EXPECT_EQ(ring.TotalRead(), 12u);
}

TEST(PcmConversion, ResamplesToTheRecordingsShapeAndDecodesFilesWhole)
{
    PcmConverter converter(kRate, 22050, 1);
    ASSERT_TRUE(converter.Valid());
    std::vector<float> input(size_t(kRate) * 2);
    for (size_t i = 0; i < input.size(); i += 2) {
        input[i] = 0.5f;
        input[i + 1] = 0.25f;
    }
    QByteArray pcm = converter.Convert(input.data(), kRate);
    pcm += converter.Convert(nullptr, 0);
    EXPECT_NEAR(pcm.size() / 2, 22050, 2) << "one second";
    const qint16 middle = qFromLittleEndian<qint16>(pcm.constData() + pcm.size() / 2 / 2 * 2);
    EXPECT_NEAR(middle, 0.375 * 32767, 40) << "mono is the average of both sides";

    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("tone.wav"));
    std::vector<float> tone(22050 * 2);
    for (size_t i = 0; i < tone.size(); ++i)
        tone[i] = float(std::sin(double(i / 2) * 0.05)) * 0.5f;
    ASSERT_TRUE(WriteStereoWav(path, tone, 22050));
    std::string error;
    const std::vector<float> decoded = DecodeWholeFile(path.toStdString(), 22050, 2, error);
    ASSERT_EQ(decoded.size(), tone.size()) << error;
    for (size_t i = 0; i < tone.size(); i += 997)
        EXPECT_NEAR(decoded[i], tone[i], 1.0 / 16000);
    EXPECT_TRUE(DecodeWholeFile(dir.filePath(QStringLiteral("none.wav")).toStdString(), 22050, 2, error).empty());
    EXPECT_FALSE(error.empty());
}
