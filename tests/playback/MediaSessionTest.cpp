#include "playback/MediaSession.h"
#include "playback/PlayerState.h"
#include "playback/PlayerTransport.h"
#include "support/FakeForms.h"
#include "support/PlayerSetup.h"

#include <QTemporaryDir>
#include <chrono>
#include <gtest/gtest.h>
#include <thread>

namespace {

constexpr int kRate = 48000;

class TransportTest : public testing::Test {
protected:
    TransportTest()
    {
        LoadDefaults(state, store);
        device = &StartManualEngine(state, kRate);
        song = WriteRampWav(dir.filePath("song.wav"), kRate * 3);
        state.CurrentFile = song;
    }

    MediaSession* Session() { return dynamic_cast<MediaSession*>(state.Session.get()); }

    void Play(double seconds) { PlayDecoded(*device, state, seconds); }

    // A sound card keeps calling while the song stands; that is when audio a seek made stale
    // goes back to the decoder.
    void Idle() { device->Step(kRate / 100, kRate / 100); }

    QTemporaryDir dir;
    PlayerState state;
    Journal journal;
    MemoryStore store;
    ManualDevice* device = nullptr;
    FakeWindows windows{journal};
    FakeSongList list{journal};
    PlayerTransport transport{state, windows, list};
    QString song;
};

} // namespace

TEST(MediaSession, VolumeLawsAndRefusedFiles)
{
    EXPECT_EQ(VolumeOfSlider(1.0), 0);
    EXPECT_EQ(VolumeOfSlider(0.21), -2844);
    EXPECT_EQ(VolumeOfSlider(0.2), -3000);
    EXPECT_EQ(VolumeOfSlider(0.2001), -2880);
    EXPECT_EQ(VolumeOfSlider(0.1), -6500);
    EXPECT_EQ(VolumeOfSlider(0.0), -10000);
    EXPECT_EQ(ReopenedVolume(0.5, false), -3500);
    EXPECT_EQ(ReopenedVolume(0.5, true), -10000);

    AudioEngine engine(std::make_unique<ManualDevice>(kRate));
    MediaSession session(engine);
    QTemporaryDir dir;
    WriteFileBytes(dir.filePath("a.mp3"), QByteArray(5000, 'x'));
    EXPECT_FALSE(session.RenderFile(dir.filePath("a.mp3")));
    EXPECT_FALSE(session.ErrorText().isEmpty());
    EXPECT_EQ(session.get_Duration(), 0);
}

TEST_F(TransportTest, PlayAfterPauseGoesOnAndAfterStopStartsAtZero)
{
    windows.player.volume = 0.5;
    ASSERT_TRUE(transport.OpenSong(song, false));
    EXPECT_EQ(Session()->get_Volume(), -1800);
    transport.PlaySong();
    EXPECT_EQ(Session()->GetState(), 2);
    Play(0.5);
    EXPECT_DOUBLE_EQ(Session()->get_CurrentPosition(), 0.5);

    transport.PauseSong();
    Play(0.2);
    EXPECT_DOUBLE_EQ(Session()->get_CurrentPosition(), 0.5);
    EXPECT_EQ(windows.player.Lit(PlayerLamp::Pause), true) << "the pause lamp";
    transport.PlaySong();
    Play(0.2);
    EXPECT_DOUBLE_EQ(Session()->get_CurrentPosition(), 0.7) << "a paused song goes on where it stood";
    EXPECT_EQ(windows.player.Lit(PlayerLamp::Play), true);
    EXPECT_EQ(windows.player.Lit(PlayerLamp::Pause), false);

    transport.StopSong();
    EXPECT_EQ(Session()->GetState(), 0);
    EXPECT_DOUBLE_EQ(Session()->get_CurrentPosition(), 0);
    Play(0.05);
    transport.PlaySong();
    Play(0.1);
    EXPECT_DOUBLE_EQ(Session()->get_CurrentPosition(), 0.1);
    EXPECT_TRUE(journal.calls.contains("Lyric.GetLastPos"));
}

TEST_F(TransportTest, SeekFromTheSliderAndTheReopenKeepWholeSecondsAndState)
{
    ASSERT_TRUE(transport.OpenSong(song, false));
    state.KaraokeOpen = true;
    journal.calls.clear();
    transport.SeekTo(0.5);
    EXPECT_DOUBLE_EQ(Session()->get_CurrentPosition(), 1.5);
    EXPECT_EQ(journal.calls.count("Lyric.GetLastPos"), 1);

    Idle();
    transport.PlaySong();
    Play(0.3);
    EXPECT_DOUBLE_EQ(Session()->get_CurrentPosition(), 1.8);
    bool rewritten = false;
    windows.player.volume = 0.5;
    transport.ReopenAround(song, [&] {
        EXPECT_EQ(state.Session, nullptr) << "nothing holds the file while it is rewritten";
        rewritten = true;
    });
    EXPECT_TRUE(rewritten);
    ASSERT_NE(Session(), nullptr);
    EXPECT_EQ(Session()->GetState(), 2);
    EXPECT_DOUBLE_EQ(Session()->get_CurrentPosition(), 2.0);
    EXPECT_EQ(Session()->get_Volume(), -3500);

    transport.PauseSong();
    transport.SetMuted(true);
    EXPECT_TRUE(state.Engine->MasterMute());
    transport.ReopenAround(song, [] {});
    EXPECT_EQ(Session()->GetState(), 0) << "a paused song comes back stopped, not running";
    EXPECT_EQ(Session()->get_Volume(), -10000);
}

TEST_F(TransportTest, TheHalfSecondTickFindsTheEndOfTheSong)
{
    list.paths = {song};
    ASSERT_TRUE(transport.OpenSong(song, false));
    transport.PlaySong();
    Play(2.9);
    transport.Ticks().PlaybackTick();
    transport.Ticks().mmTimer();
    EXPECT_EQ(Session()->GetState(), 2) << "not at the end yet";
    Play(0.2);
    transport.Ticks().PlaybackTick();
    EXPECT_DOUBLE_EQ(state.CurrentPosition, 3.0);
    transport.Ticks().mmTimer();
    EXPECT_EQ(Session()->GetState(), 0) << "a lone list entry stops at its end";
    EXPECT_DOUBLE_EQ(Session()->get_CurrentPosition(), 0);
}

TEST_F(TransportTest, PlayWithNothingLoadedStartsTheSelectedListEntryOrNothing)
{
    transport.PlaySong();
    EXPECT_TRUE(journal.calls.isEmpty());
    list.paths = {dir.filePath("other.wav"), song};
    list.selected = 1;
    transport.PlaySong();
    EXPECT_EQ(state.CurrentFile, song);
    EXPECT_EQ(list.playing, 1);
    EXPECT_EQ(state.PlayingIndex, 1);
    ASSERT_NE(Session(), nullptr);
    EXPECT_EQ(Session()->GetState(), 2);
}
