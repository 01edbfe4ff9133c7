// Singing along as a user meets it, on the manual device: the microphone switch, a first take,
// a part sung again, cancelling, the refusals, and the voice playing with its song.

#include "audio/WavFile.h"
#include "playback/MediaSession.h"
#include "playback/PlayerCommands.h"
#include "playback/PlayerTransport.h"
#include "playback/SongSound.h"
#include "support/FakeForms.h"
#include "support/PlayerSetup.h"
#include "support/ScriptedDialogs.h"
#include "voice/Equalizer.h"
#include "voice/VoiceRecorder.h"

#include <QDir>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>
#include <QtEndian>
#include <gtest/gtest.h>

#include <cmath>

namespace {

constexpr int kVoiceRate = 22050;
constexpr qint64 kFrameBytes = 4;  // 16-bit stereo

class Indicator final : public VoiceIndicator {
public:
    void Show() override { shown = true; }
    void Hide() override { shown = false; }
    bool shown = false;
};

// A silent song of `seconds` at a low rate, so that a long one stays small.
QString WriteSilentSong(const QString& path, int seconds)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    WriteStereoWav(path, std::vector<float>(size_t(seconds) * 8000 * 2, 0.0f), 8000);
    return path;
}

qint16 LeftAt(const QByteArray& wave, qint64 frame)
{
    return qFromLittleEndian<qint16>(wave.constData() + 44 + frame * kFrameBytes);
}

class Singing : public testing::Test {
protected:
    void SetUp() override
    {
        LoadDefaults(state, store);
        device = &StartManualEngine(state);
        state.Theme->VoiceDirectory = dir.filePath(QStringLiteral("Voice"));
        state.Theme->RecordFolder = 0;
        state.Theme->RecordQuality = kVoiceRate;
        state.Theme->RecordMode = 2;
        recorder.TempFolder = dir.filePath(QStringLiteral("tmp"));
        QDir().mkpath(recorder.TempFolder);
        transport.AttachVoice(recorder);
        song = WriteSilentSong(dir.filePath(QStringLiteral("songs/Evening Song.wav")), 75);
    }

    void PlayFrom(double seconds)
    {
        ASSERT_TRUE(transport.OpenSong(song, true));
        transport.SeekToSeconds(seconds);
    }

    // The singer sings a steady note for `seconds` while the song plays.
    void Sing(double seconds, float level = 0.5f)
    {
        device->FeedInput(std::vector<float>(size_t(seconds * device->SampleRate()) * 2, level));
        PlayDecoded(*device, state, seconds);
    }

    // The take is placed on a worker; the lamp goes out when it is in the voice file.
    void WaitUntilPlaced()
    {
        ASSERT_TRUE(QTest::qWaitFor([this] { return !recorder.Placing(); }, 10000));
    }

    QString VoiceFile() const { return dir.filePath(QStringLiteral("Voice/Evening Song.wav")); }
    QStringList Temporaries() const { return QDir(recorder.TempFolder).entryList(QDir::Files); }

    QTemporaryDir dir;
    MemoryStore store;
    PlayerState state;
    ManualDevice* device = nullptr;
    Journal journal;
    FakeWindows windows{journal};
    FakeSongList list{journal};
    ScriptedDialogs messages;
    Indicator indicator;
    FakeTray tray;
    ScriptedDialogs dialogs;
    Equalizer equalizer{state};
    VoiceRecorder recorder{state, windows, messages, equalizer, indicator};
    PlayerTransport transport{state, windows, list};
    PlayerCommands commands{state, windows, transport, tray, dialogs};
    QString song;
};

} // namespace

TEST_F(Singing, AFirstTakeAtOneMinuteLandsAfterAMinuteOfSilence)
{
    commands.ButtonAction(PlayerButton::Microphone);
    ASSERT_TRUE(state.MicrophoneOn);
    EXPECT_EQ(windows.player.Lit(PlayerLamp::Microphone), true);
    EXPECT_TRUE(equalizer.MicroOut()) << "the singer hears the microphone";

    PlayFrom(60.0);
    commands.ButtonAction(PlayerButton::Record);
    ASSERT_TRUE(state.Recording);
    EXPECT_EQ(windows.player.Lit(PlayerLamp::Record), true);
    EXPECT_TRUE(indicator.shown);
    ASSERT_EQ(Temporaries().size(), 1);
    EXPECT_TRUE(QRegularExpression(QStringLiteral("^\\d{14}[AP]M\\.WAV$")).match(Temporaries()[0]).hasMatch())
        << Temporaries()[0].toStdString();

    Sing(1.0);
    commands.ButtonAction(PlayerButton::Record);
    EXPECT_FALSE(state.Recording);
    WaitUntilPlaced();
    EXPECT_EQ(windows.player.Lit(PlayerLamp::Record), false);
    EXPECT_FALSE(indicator.shown);
    EXPECT_TRUE(Temporaries().isEmpty()) << "the temporary take is gone";
    EXPECT_DOUBLE_EQ(recorder.RecordStart, 60.0);

    WaveFormat format;
    ASSERT_TRUE(ReadWaveFormat(VoiceFile(), format));
    EXPECT_EQ(format.rate, kVoiceRate);
    EXPECT_EQ(format.channels, 2);
    EXPECT_EQ(format.dataOffset, 44);
    const QByteArray wave = ReadFileBytes(VoiceFile());
    const qint64 start = 60LL * kVoiceRate;
    EXPECT_EQ(wave.mid(44, start * kFrameBytes), QByteArray(start * kFrameBytes, '\0')) << "a minute of silence";
    EXPECT_NEAR(std::abs(LeftAt(wave, start + 100)), 16384, 200) << "then the take";
    qint64 firstSung = start - 10;
    while (firstSung < start + 10 && std::abs(LeftAt(wave, firstSung)) < 8000)
        ++firstSung;
    EXPECT_LE(std::abs(firstSung - start), 2) << "the take starts at the second it was sung";
    EXPECT_NEAR(double(format.dataBytes) / kFrameBytes / kVoiceRate, 61.0, 0.01);
}

TEST_F(Singing, APartSungAgainLeavesTheRestByteForByte)
{
    QByteArray old = WavHeader(kVoiceRate, 2, 16, quint32(50 * kVoiceRate * kFrameBytes));
    for (qint64 i = 0; i < 50LL * kVoiceRate * kFrameBytes; ++i)
        old.append(char(i * 13 % 97 + 1));
    QDir().mkpath(state.Theme->VoiceDirectory);
    WriteFileBytes(VoiceFile(), old);

    commands.ButtonAction(PlayerButton::Microphone);
    PlayFrom(30.0);
    commands.ButtonAction(PlayerButton::Record);
    Sing(10.0);
    commands.ButtonAction(PlayerButton::Record);
    WaitUntilPlaced();

    const QByteArray wave = ReadFileBytes(VoiceFile());
    ASSERT_EQ(wave.size(), old.size());
    const qint64 from = 44 + 30LL * kVoiceRate * kFrameBytes;
    const qint64 to = 44 + qint64(40.001 * kVoiceRate) * kFrameBytes;
    EXPECT_TRUE(wave.left(from) == old.left(from)) << "before the part";
    EXPECT_TRUE(wave.mid(to) == old.mid(to)) << "after the part";
    EXPECT_NEAR(std::abs(LeftAt(wave, 35LL * kVoiceRate)), 16384, 200) << "the new take in between";
}

TEST_F(Singing, ARecordingsFormatFollowsTheVoiceFileThatExists)
{
    QDir().mkpath(state.Theme->VoiceDirectory);
    WriteFileBytes(VoiceFile(), WavHeader(11025, 1, 16, 11025 * 2) + QByteArray(11025 * 2, '\x01'));
    state.CurrentFile = song;
    recorder.VoicePath();
    EXPECT_EQ(recorder.RecordRate, 11025);
    EXPECT_EQ(recorder.RecordChannels, 1);

    commands.ButtonAction(PlayerButton::Microphone);
    PlayFrom(2.0);
    commands.ButtonAction(PlayerButton::Record);
    Sing(0.5);
    commands.ButtonAction(PlayerButton::Record);
    WaitUntilPlaced();
    WaveFormat format;
    ASSERT_TRUE(ReadWaveFormat(VoiceFile(), format));
    EXPECT_EQ(format.rate, 11025);
    EXPECT_EQ(format.channels, 1);
    EXPECT_NEAR(double(format.dataBytes) / 2 / 11025, 2.5, 0.01);
}

TEST_F(Singing, CancellingLeavesNoTemporaryFileAndNoVoiceFile)
{
    commands.ButtonAction(PlayerButton::Microphone);
    PlayFrom(5.0);
    commands.ButtonAction(PlayerButton::Record);
    Sing(0.3);
    ASSERT_EQ(Temporaries().size(), 1);
    recorder.CancelVoiceRecord();
    EXPECT_FALSE(state.Recording);
    EXPECT_TRUE(Temporaries().isEmpty());
    EXPECT_FALSE(QFile::exists(VoiceFile()));
    EXPECT_EQ(windows.player.Lit(PlayerLamp::Record), false);
}

TEST_F(Singing, RecordingWantsTheMicrophoneAndTheVoiceWaitsForTheRecording)
{
    PlayFrom(1.0);
    commands.ButtonAction(PlayerButton::Record);
    EXPECT_FALSE(state.Recording);
    EXPECT_EQ(messages.Shown(), QStringList{QStringLiteral("Switch microphone function first.")});

    state.Language.IsPolish = true;
    commands.KeyDown(Qt::Key_R, Qt::NoModifier);
    EXPECT_EQ(messages.Shown().last(), QStringLiteral("Włącz funkcję mikrofonu, by móc nagrywać."));
    state.Language.IsPolish = false;

    commands.KeyDown(Qt::Key_M, Qt::NoModifier);
    commands.KeyDown(Qt::Key_R, Qt::NoModifier);
    ASSERT_TRUE(state.Recording);
    commands.ButtonAction(PlayerButton::Voice);
    EXPECT_EQ(messages.Shown().last(), QStringLiteral("Stop recording first."));
    EXPECT_FALSE(state.VoicePlaying);
    commands.ButtonAction(PlayerButton::Microphone);
    EXPECT_TRUE(state.MicrophoneOn) << "the microphone stays on while a take is recorded";

    // The end of the song ends the take and keeps it.
    Sing(0.2);
    transport.StopSong();
    EXPECT_FALSE(state.Recording);
    WaitUntilPlaced();
    EXPECT_TRUE(QFile::exists(VoiceFile()));
}

TEST_F(Singing, ATakeIsPlacedWhileTheProgramAnswersAndTheLampShowsItIsBusy)
{
    commands.ButtonAction(PlayerButton::Microphone);
    PlayFrom(1.0);
    commands.ButtonAction(PlayerButton::Record);
    Sing(3.0);
    commands.ButtonAction(PlayerButton::Record);
    ASSERT_TRUE(recorder.Placing()) << "the take is not placed on the interface thread";
    EXPECT_FALSE(state.Recording) << "the song is free to go on";
    EXPECT_TRUE(windows.player.Lit(PlayerLamp::Record)) << "the lamp stays on while the take is placed";
    EXPECT_TRUE(indicator.shown);

    commands.ButtonAction(PlayerButton::Record);
    EXPECT_FALSE(state.Recording) << "no new take over the one being placed";
    commands.ButtonAction(PlayerButton::Voice);
    EXPECT_FALSE(state.VoicePlaying) << "nor the voice file it is written into";

    WaitUntilPlaced();
    EXPECT_FALSE(windows.player.Lit(PlayerLamp::Record));
    EXPECT_FALSE(indicator.shown);
    EXPECT_TRUE(Temporaries().isEmpty());
    WaveFormat format;
    ASSERT_TRUE(ReadWaveFormat(VoiceFile(), format));
    EXPECT_NEAR(double(format.dataBytes) / kFrameBytes / kVoiceRate, 4.0, 0.01);
}

TEST_F(Singing, AVoiceFileInTheVoiceFolderPlaysWithItsSongWhereverTheSongCameFrom)
{
    QDir().mkpath(state.Theme->VoiceDirectory);
    std::vector<float> voice(size_t(75) * kVoiceRate * 2, 0.25f);
    ASSERT_TRUE(WriteStereoWav(VoiceFile(), voice, kVoiceRate));
    state.Theme->RecordFolder = 1;  // takes go beside the song, yet the voice folder's file is found
    state.Theme->SetLyricsOffset(0.5);
    commands.ButtonAction(PlayerButton::Microphone);
    PlayFrom(20.0);

    commands.ButtonAction(PlayerButton::Voice);
    ASSERT_TRUE(state.VoicePlaying);
    ASSERT_TRUE(state.VoiceControl);
    EXPECT_EQ(windows.player.Lit(PlayerLamp::Voice), true);
    EXPECT_FALSE(equalizer.MicroOut()) << "the monitor is off while the voice plays";
    EXPECT_NEAR(state.VoiceControl->get_CurrentPosition(), 20.5, 1e-6) << "placed at the song's second plus the offset";
    EXPECT_EQ(state.VoiceControl->get_Volume(), readVol(state.Theme->VoiceVolume));

    // The voice's own decoder gets ready beside the song's.
    auto* voiceSession = dynamic_cast<MediaSession*>(state.VoiceControl.get());
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(2);
    while (voiceSession->SecondsBuffered() < 0.5 && std::chrono::steady_clock::now() < deadline)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    PlayDecoded(*device, state, 0.3);
    const auto& out = device->Step(480, 480);
    EXPECT_GT(std::abs(out[200]), 0.1f) << "the voice is heard over the silent song";
    EXPECT_NEAR(state.VoiceControl->get_CurrentPosition() - state.Session->get_CurrentPosition(), 0.5, 0.011);

    commands.ButtonAction(PlayerButton::Voice);
    EXPECT_FALSE(state.VoicePlaying);
    EXPECT_FALSE(state.VoiceControl);
    EXPECT_EQ(windows.player.Lit(PlayerLamp::Voice), false);
    EXPECT_TRUE(equalizer.MicroOut()) << "the monitor comes back";

    // The next song of the evening takes the voice away with the old one.
    commands.ButtonAction(PlayerButton::Voice);
    ASSERT_TRUE(state.VoicePlaying);
    ASSERT_TRUE(transport.OpenSong(WriteSilentSong(dir.filePath(QStringLiteral("other/Morning.wav")), 3), true));
    EXPECT_FALSE(state.VoicePlaying);
    EXPECT_FALSE(state.VoiceControl);
    EXPECT_EQ(windows.player.Lit(PlayerLamp::Voice), false);

    // A song without a voice file lights the lamp and puts it out again.
    commands.ButtonAction(PlayerButton::Voice);
    EXPECT_FALSE(state.VoicePlaying);
    EXPECT_EQ(windows.player.Lit(PlayerLamp::Voice), false);
}

TEST_F(Singing, ATakeSungAtASlowerTempoLandsInSongTimeAndTheVoiceKeepsTheSongsTempo)
{
    commands.ButtonAction(PlayerButton::Microphone);
    PlayFrom(20.0);
    auto& media = dynamic_cast<MediaSession&>(*state.Session);
    media.SetSound(0, 0.8);
    PlayDecoded(*device, state, 0.2);
    const double startedAt = state.Session->get_CurrentPosition();
    commands.ButtonAction(PlayerButton::Record);
    // A soft note for 2.5 s and a loud one for 1.25 s, as heard: 2 s and 1 s of the song.
    const int rate = device->SampleRate();
    std::vector<float> sung(size_t(3.75 * rate) * 2);
    for (size_t i = 0; i < sung.size() / 2; ++i) {
        const float level = i < size_t(2.5 * rate) ? 0.25f : 0.75f;
        sung[2 * i] = sung[2 * i + 1] = level * float(std::sin(2 * M_PI * 440 * double(i) / rate));
    }
    device->FeedInput(sung);
    PlayDecoded(*device, state, 3.75);
    commands.ButtonAction(PlayerButton::Record);
    WaitUntilPlaced();
    EXPECT_NEAR(recorder.RecordStart, startedAt, 0.011);

    const QByteArray wave = ReadFileBytes(VoiceFile());
    // Where the loud note begins: the first 5 ms whose peak passes half way.
    const auto peakAt = [&wave](qint64 from) {
        int peak = 0;
        for (qint64 f = from; f < from + kVoiceRate / 200; ++f)
            peak = std::max(peak, std::abs(int(LeftAt(wave, f))));
        return peak;
    };
    qint64 loud = FramesBefore(recorder.RecordStart, kVoiceRate);
    while (44 + (loud + kVoiceRate) * kFrameBytes < wave.size() && peakAt(loud) < 16384)
        loud += kVoiceRate / 200;
    EXPECT_NEAR(double(loud) / kVoiceRate, recorder.RecordStart + 2.0, 0.02) << "the loud note at its song second";
    WaveFormat format;
    ASSERT_TRUE(ReadWaveFormat(VoiceFile(), format));
    EXPECT_NEAR(double(format.dataBytes) / kFrameBytes / kVoiceRate, recorder.RecordStart + 3.0, 0.02)
        << "3.75 s sung at tempo 0.8 are 3 s of the song";

    state.Theme->SetLyricsOffset(0);
    commands.ButtonAction(PlayerButton::Voice);
    ASSERT_TRUE(state.VoicePlaying);
    ApplyTempo(state, 150);
    auto& voice = dynamic_cast<MediaSession&>(*state.VoiceControl);
    EXPECT_EQ(voice.Tempo(), media.Tempo()) << "the voice follows the song's tempo";
    ApplyTranspose(state, 150);
    EXPECT_EQ(voice.Semitones(), 0) << "and never its key";
}

TEST_F(Singing, TheLevelBarFollowsTheMicrophoneAndFallsSlowly)
{
    commands.ButtonAction(PlayerButton::Microphone);
    device->FeedInput(std::vector<float>(512 * 2, 0.9f));
    device->Step(512);
    EXPECT_EQ(equalizer.PollLevel(), changeVolume(2 * 29490));
    EXPECT_EQ(equalizer.PollLevel(), changeVolume(2 * 29490)) << "no new buffer, no change";
    int sum = equalizer.Meter().Sum();
    for (int i = 0; i < 5; ++i) {
        device->Step(512);
        equalizer.PollLevel();
        EXPECT_EQ(equalizer.Meter().Sum(), sum - 1000) << "silence lowers the sum by a thousand per buffer";
        sum = equalizer.Meter().Sum();
    }
    commands.ButtonAction(PlayerButton::Microphone);
    EXPECT_FALSE(state.MicrophoneOn);
    EXPECT_FALSE(state.Engine->InputRunning());
    EXPECT_EQ(equalizer.PollLevel(), 0);
}
