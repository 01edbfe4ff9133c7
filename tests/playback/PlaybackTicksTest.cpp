#include "playback/PlaybackTicks.h"
#include "playback/PlayerState.h"
#include "support/FakeForms.h"

#include <QTest>
#include <gtest/gtest.h>

namespace {

struct Ticking : testing::Test {
    Journal journal;
    PlayerState state;
    FakeWindows windows{journal};
    FakeSongList list{journal};
    FakeTransport transport{journal};
    PlaybackTicks ticks{state, windows, transport, list};
    FakeSession* media = nullptr;

    void SetUp() override
    {
        auto song = std::make_unique<FakeSession>(journal, QStringLiteral("Media"));
        media = song.get();
        media->duration = 200;
        state.Session = std::move(song);
        state.CurrentFile = QStringLiteral("/songs/a.mp3");
        state.Lyrics.PlayLyrics.resize(3);
    }
};

} // namespace

TEST_F(Ticking, TickReadsTheSongClockAndFeedsLyricsAndDigits)
{
    state.KaraokeOpen = true;
    windows.lyric.offset = 0.5;
    media->position = 75.9;
    ticks.PlaybackTick();
    EXPECT_EQ(windows.lyric.seen, std::vector<double>{75.9});
    EXPECT_DOUBLE_EQ(state.CurrentPosition, 75.4) << "the position comes back with the offset taken off";
    EXPECT_TRUE(state.LyricsRunning);
    EXPECT_EQ(windows.player.timeText, "01:15");

    windows.player.timeStyle = QStringLiteral("ELAPSED");
    media->position = 80;
    ticks.PlaybackTick();
    EXPECT_EQ(windows.player.timeText, "02:00") << "the other style shows the time left";
}

TEST_F(Ticking, LyricsAreOnlyDrivenWithAnOpenWindowAndSyllables)
{
    media->position = 10;
    ticks.PlaybackTick();
    EXPECT_TRUE(windows.lyric.seen.empty()) << "karaoke window closed";

    state.KaraokeOpen = true;
    state.Lyrics.PlayLyrics.resize(1);
    ticks.PlaybackTick();
    EXPECT_TRUE(windows.lyric.seen.empty()) << "only the header";
    EXPECT_FALSE(state.LyricsRunning);
    EXPECT_EQ(state.CurrentPosition, 10);
}

TEST_F(Ticking, NothingAdvancesInTheTray)
{
    state.KaraokeOpen = true;
    media->position = 200;
    state.InTray = true;
    ticks.PlaybackTick();
    ticks.mmTimer();
    EXPECT_EQ(state.CurrentPosition, 0);
    EXPECT_TRUE(windows.lyric.seen.empty());
    EXPECT_TRUE(journal.calls.isEmpty()) << journal.calls.join(u' ').toStdString();

    state.InTray = false;
    ticks.PlaybackTick();
    ticks.mmTimer();
    EXPECT_EQ(journal.calls, QStringList{"DALEJ"}) << "the end is noticed once the window is back";
}

TEST_F(Ticking, EndOfSongMovesOnStopsALoneSongAndStopsARecording)
{
    state.CurrentPosition = 100;
    ticks.mmTimer();
    EXPECT_DOUBLE_EQ(windows.player.progress, 0.5);
    EXPECT_TRUE(journal.calls.isEmpty());

    state.CurrentPosition = 200;
    list.paths = {QStringLiteral("/songs/a.mp3")};
    ticks.mmTimer();
    EXPECT_EQ(journal.calls, QStringList{"StopSong"}) << "a one-song list stops at its end";

    journal.calls.clear();
    list.paths = {QStringLiteral("/songs/b.mp3")};
    ticks.mmTimer();
    EXPECT_EQ(journal.calls, QStringList{"DALEJ"}) << "a song that is not the lone entry moves on to it";

    journal.calls.clear();
    list.paths = {QStringLiteral("/songs/a.mp3"), QStringLiteral("/songs/b.mp3")};
    state.Recording = true;
    ticks.mmTimer();
    EXPECT_EQ(journal.calls, QStringList{"StopSong"}) << "a recording stops instead of moving on";
}

TEST_F(Ticking, MidiSongsUseTheirSessionsClockAndLength)
{
    state.IsMidi = true;
    media->duration = 90;
    media->position = 30;
    windows.player.timeStyle = QStringLiteral("ELAPSED");
    ticks.PlaybackTick();
    EXPECT_EQ(state.CurrentPosition, 30);
    EXPECT_EQ(windows.player.timeText, "01:00");
    ticks.mmTimer();
    EXPECT_DOUBLE_EQ(windows.player.progress, 1.0 / 3);
}

TEST_F(Ticking, TimersRunTogether)
{
    EXPECT_FALSE(ticks.Running());
    ticks.Start();
    EXPECT_TRUE(ticks.Running());
    media->position = 12;
    QTest::qWait(60);
    EXPECT_EQ(state.CurrentPosition, 12) << "the 10 ms tick runs on the event loop";
    ticks.Stop();
    EXPECT_FALSE(ticks.Running());
}
