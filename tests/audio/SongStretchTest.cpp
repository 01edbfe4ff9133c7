// An audio song moved in key and tempo as the player plays it: through the decoder thread's
// stretcher, on a device the test steps. The key moves the pitch and not the length, the tempo
// the length and not the pitch; the clock says song seconds; a seek lands; a turn of the knob is
// heard within 150 ms, with the clock going on.

#include "audio/AudioEngine.h"
#include "audio/FileSource.h"
#include "audio/ManualDevice.h"
#include "audio/WavFile.h"
#include "support/Tones.h"

#include <QFile>
#include <QTemporaryDir>
#include <chrono>
#include <cmath>
#include <gtest/gtest.h>
#include <numbers>
#include <thread>

namespace {

constexpr int kRate = 48000;

class SongStretch : public testing::Test {
protected:
    // Sets the key and tempo before the song plays, as a song opened with its own does.
    void StartWith(int semitones, double tempo)
    {
        source->SetSound(semitones, tempo);
        for (int i = 0; i < 2000 && source->SecondsBuffered() < 0.05; ++i)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        source->Run();
    }

    void SetUp() override
    {
        engine.Start();
        OpenSong(8, 1);
    }

    // A 440 Hz voice in the centre at amplitude 0.5 and, with `panned`, a 1 kHz tone at
    // amplitude 0.3 on the left alone.
    void OpenSong(int seconds, int channels, bool panned = false)
    {
        std::vector<float> tone(size_t(kRate) * size_t(seconds) * 2);
        for (size_t i = 0; i < tone.size() / 2; ++i) {
            const double t = double(i) / kRate;
            tone[2 * i] = tone[2 * i + 1] = float(0.5 * std::sin(2 * std::numbers::pi * 440 * t));
            if (panned)
                tone[2 * i] += float(0.3 * std::sin(2 * std::numbers::pi * 1000 * t));
        }
        const QString path = dir.filePath(QStringLiteral("song%1.wav").arg(++songs));
        if (channels == 2) {
            ASSERT_TRUE(WriteStereoWav(path, tone, kRate));
        } else {
            QByteArray pcm;
            for (size_t i = 0; i < tone.size(); i += 2) {
                const auto sample = qint16(std::lround(tone[i] * 32767));
                pcm.append(reinterpret_cast<const char*>(&sample), 2);
            }
            QFile file(path);
            ASSERT_TRUE(file.open(QIODevice::WriteOnly));
            file.write(WavHeader(kRate, 1, 16, quint32(pcm.size())) + pcm);
        }
        std::string error;
        if (source)
            engine.RemoveSource(source.get());
        source = FileSource::Open(path.toStdString(), kRate, error);
        ASSERT_TRUE(source) << error;
        engine.AddSource(source);
    }

    // Plays in 10 ms steps, each once the decoder thread has it ready, as a device would.
    std::vector<float> Play(double seconds)
    {
        std::vector<float> out;
        for (int i = 0; i < int(seconds * 100 + 0.5); ++i) {
            const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(2);
            while (source->SecondsBuffered() < 0.011 && std::chrono::steady_clock::now() < deadline)
                std::this_thread::sleep_for(std::chrono::microseconds(200));
            const std::vector<float>& step = device->Step(kRate / 100, kRate / 100);
            out.insert(out.end(), step.begin(), step.end());
        }
        return out;
    }
    double Position() { return source->Position(device->Now()); }

    QTemporaryDir dir;
    int songs = 0;
    ManualDevice* device = new ManualDevice(kRate);
    AudioEngine engine{std::unique_ptr<AudioDevice>(device)};
    std::shared_ptr<FileSource> source;
};

} // namespace

TEST_F(SongStretch, TwoSemitonesUpSoundHigherAtTheSameSpeed)
{
    StartWith(2, 1);
    const std::vector<float> out = Play(2);
    EXPECT_NEAR(ToneFrequency(out, kRate, kRate / 2, 2 * kRate), 493.88, 493.88 * 0.003);
    EXPECT_NEAR(Position(), 2.0, 0.002) << "a second of song for a second heard";
}

TEST_F(SongStretch, ASlowerTempoKeepsTheKeyAndTheClockSaysSongSeconds)
{
    StartWith(0, 0.8);
    const std::vector<float> out = Play(2.5);
    EXPECT_NEAR(ToneFrequency(out, kRate, kRate / 2, size_t(2.5 * kRate)), 440, 440 * 0.003);
    EXPECT_NEAR(Position(), 2.0, 0.005) << "2.5 s heard at 0.8 are 2 s of the song";

    source->Seek(4.0);
    EXPECT_DOUBLE_EQ(Position(), 4.0);
    source->SetSound(0, 1.5);
    Play(1);
    EXPECT_NEAR(Position(), 5.5, 0.03) << "a seek at tempo 1.5 lands, and the song runs at 1.5 from there";
}

TEST_F(SongStretch, ATurnOfTheKnobIsHeardAtOnceAndTheClockGoesOn)
{
    source->Run();
    std::vector<float> out = Play(1);
    ASSERT_NEAR(ToneFrequency(out, kRate, 0, size_t(kRate)), 440, 1) << "the song as it is, decoded seconds ahead";
    const double before = Position();

    source->SetSound(2, 1);
    out = Play(0.5);
    const double after = Position();
    EXPECT_NEAR(after - before, 0.5, 0.01) << "the clock neither jumps nor stops at the splice";
    // From 150 ms after the turn on, the song is two semitones up.
    EXPECT_NEAR(ToneFrequency(out, kRate, size_t(0.15 * kRate), size_t(0.5 * kRate)), 493.88, 493.88 * 0.005);

    source->SetSound(2, 0.8);
    const double slowing = Position();
    out = Play(1);
    EXPECT_NEAR(Position() - slowing, 0.8, 0.05) << "the tempo changes on the fly";
    EXPECT_NEAR(ToneFrequency(out, kRate, size_t(0.15 * kRate), kRate), 493.88, 493.88 * 0.005);

    source->SetSound(0, 1);
    out = Play(0.5);
    EXPECT_NEAR(ToneFrequency(out, kRate, size_t(0.15 * kRate), size_t(0.5 * kRate)), 440, 440 * 0.003) << "back as it is";
    for (size_t i = 2; i < out.size(); i += 2)
        ASSERT_LT(std::fabs(out[i] - out[i - 2]), 0.2f) << "no click at frame " << i / 2;
}

namespace {

double RmsDb(const std::vector<float>& samples, int channel, size_t fromFrame)
{
    double sum = 0;
    size_t count = 0;
    for (size_t i = fromFrame; 2 * i + 1 < samples.size(); ++i, ++count)
        sum += double(samples[2 * i + size_t(channel)]) * samples[2 * i + size_t(channel)];
    return 10 * std::log10(std::max(sum / double(std::max<size_t>(count, 1)), 1e-30));
}

} // namespace

TEST_F(SongStretch, VocalsOffTakeTheCentreAtEveryKeyAndTempoAndKeepWhatIsPanned)
{
    OpenSong(8, 2, true);
    const double voiceDb = 20 * std::log10(0.5 / std::sqrt(2.0));
    const double pannedDb = 20 * std::log10(0.3 / std::sqrt(2.0));
    source->Run();
    std::vector<float> out = Play(0.5);
    ASSERT_NEAR(RmsDb(out, 1, 0), voiceDb, 0.5) << "the voice is there";

    ASSERT_TRUE(source->SetVocalsOff(true));
    const double before = Position();
    out = Play(1);
    EXPECT_NEAR(Position() - before, 1, 0.01) << "the clock goes on through the splice";
    const size_t settled = size_t(0.15 * kRate);
    EXPECT_LE(RmsDb(out, 1, settled) - voiceDb, -20) << "the centre goes within 150 ms";
    EXPECT_NEAR(RmsDb(out, 0, settled), pannedDb, 1) << "what is panned stays";

    source->SetSound(0, 0.8);
    out = Play(1);
    EXPECT_LE(RmsDb(out, 1, settled) - voiceDb, -20) << "at another tempo";
    EXPECT_NEAR(RmsDb(out, 0, settled), pannedDb, 1);
    // The key moves the tone away from its formant, which the stretcher keeps where it was:
    // what is panned then sounds softer, as it would without the reduction.
    source->SetSound(2, 0.8);
    out = Play(1);
    EXPECT_LE(RmsDb(out, 1, settled) - voiceDb, -20) << "at another key";

    source->Seek(5.0);
    out = Play(0.5);
    EXPECT_NEAR(Position(), 5.4, 0.01) << "a seek lands, at tempo 0.8";
    EXPECT_LE(RmsDb(out, 1, 0) - voiceDb, -20) << "from the first frame after a seek";

    source->SetSound(0, 1);
    ASSERT_TRUE(source->SetVocalsOff(false));
    out = Play(0.5);
    EXPECT_NEAR(RmsDb(out, 1, settled), voiceDb, 0.5) << "the voice comes back";
    for (size_t i = 2; i < out.size(); i += 2)
        ASSERT_LT(std::fabs(out[i] - out[i - 2]), 0.25f) << "no click at frame " << i / 2;
}

TEST_F(SongStretch, AMonoSongCannotLoseItsVocals)
{
    OpenSong(2, 1);
    EXPECT_FALSE(source->IsStereo());
    EXPECT_FALSE(source->SetVocalsOff(true));
    EXPECT_TRUE(source->SetVocalsOff(false));
}
