// The tick and the jump: which syllable is lit when, and what the window is asked to do.

#include "KaraokeFixtures.h"
#include "karaoke/KaraokeTimeline.h"

#include <gtest/gtest.h>

namespace {

class JournalSurface final : public KaraokeSurface {
public:
    bool CanPaint() const override { return ready && !painting; }
    bool WindowReady() const override { return ready; }
    void PaintPage(int32_t index, bool jump) override { calls(QStringLiteral("Page %1%2").arg(index).arg(jump ? " jump" : "")); }
    void PaintTitle() override { calls("Title"); }
    void Restore() override { calls("Restore"); }
    void SetLastTimer(bool enabled) override { calls(enabled ? "Timer on" : "Timer off"); }
    void ChangePic(int16_t picture) override { calls(QStringLiteral("ChangePic %1").arg(picture)); }
    void ShowPicture(int16_t picture) override { calls(QStringLiteral("ShowPicture %1").arg(picture)); }
    void DropPicture() override { calls("DropPicture"); }
    void SetBackground(bool useDefault) override { calls(useDefault ? "Background default" : "Background"); }
    void ClearRows() override { calls("ClearRows"); }
    bool ready = true;
    bool painting = false;
    Journal calls;
};

struct Timeline {
    LyricsState lyrics;
    JournalSurface surface;
    TestClock clock;
    double offset = 0;
    KaraokeTimeline timeline{lyrics, surface, clock, [this] { return offset; }};

    explicit Timeline(std::vector<LyricItem> song) { lyrics.PlayLyrics = std::move(song); }
    double Tick(double position)
    {
        clock.now = position;
        timeline.IsPlaying(position);
        return position;
    }
    QStringList Pages() const { return surface.calls.calls.filter(QStringLiteral("Page")); }
};

} // namespace

TEST(Timeline, ALateTickCatchesUpOneSyllablePerTick)
{
    Timeline t(Song({{{1.0, "a "}, {1.2, "b "}, {1.4, "c"}}, {{2.0, "d"}}}));
    t.Tick(0.5);
    EXPECT_EQ(t.surface.calls.calls, QStringList{"Title"}) << "the intro keeps the title up";
    t.Tick(1.5);
    t.Tick(1.51);
    t.Tick(1.52);
    EXPECT_EQ(t.Pages(), (QStringList{"Page 1", "Page 2", "Page 3"}));
    EXPECT_EQ(t.lyrics.CurrentLyric, 3);
    t.Tick(1.53);
    EXPECT_EQ(t.Pages().size(), 3) << "nothing more is due";
    t.Tick(2.5);
    EXPECT_EQ(t.lyrics.CurrentLyric, 4);
    EXPECT_EQ(t.surface.calls.calls.count("Timer off"), 4) << "each new syllable holds the end timer back";
    t.surface.calls.calls.clear();
    t.Tick(2.6);
    EXPECT_EQ(t.surface.calls.calls, QStringList{"Timer on"}) << "the last syllable has been reached";
}

TEST(Timeline, ASyllableAtExactlyThePositionStartsOnTheNextTick)
{
    Timeline t(Song({{{1.0, "a "}, {2.0, "b"}}}));
    t.Tick(1.0);
    EXPECT_EQ(t.lyrics.CurrentLyric, 0) << "due, but the walk wants a time below the position";
    t.Tick(1.01);
    EXPECT_EQ(t.lyrics.CurrentLyric, 1);
}

TEST(Timeline, TimesOfZeroAndTimesThatRunBackwardsArePassedOver)
{
    Timeline allZero(Song({{{0, "a "}, {0, "b"}}}));
    for (double p : {0.0, 1.0, 5.0, 60.0})
        allZero.Tick(p);
    EXPECT_TRUE(allZero.Pages().isEmpty()) << "a song of zero times never leaves the title";
    EXPECT_EQ(allZero.lyrics.CurrentLyric, 0);

    Timeline backwards(Song({{{1.0, "a "}, {3.0, "b "}, {2.0, "c "}, {4.0, "d"}}}));
    for (double p = 0.5; p < 5; p += 0.01)
        backwards.Tick(p);
    EXPECT_EQ(backwards.Pages(), (QStringList{"Page 1", "Page 2", "Page 4"}));
}

TEST(Timeline, TheOffsetComesOffThePositionAndNeverBelowZero)
{
    Timeline t(Song({{{1.0, "a"}}}));
    t.offset = 0.3;
    EXPECT_DOUBLE_EQ(t.Tick(1.2), 0.9);
    EXPECT_EQ(t.lyrics.CurrentLyric, 0) << "1.2 s less the offset is still before the syllable";
    t.offset = 5;
    EXPECT_DOUBLE_EQ(t.Tick(2.0), 0.0) << "an offset larger than the position runs at 0";
}

TEST(Timeline, NothingMovesWithoutASongWhileFadingOrWhilePainting)
{
    Timeline t(Song({{{1.0, "a "}, {2.0, "b"}}}));
    t.clock.hasSong = false;
    t.Tick(1.5);
    EXPECT_EQ(t.lyrics.CurrentLyric, 0);
    t.clock.hasSong = true;
    t.timeline.Fading = true;
    t.Tick(1.5);
    EXPECT_EQ(t.lyrics.CurrentLyric, 0);
    t.timeline.Fading = false;
    t.surface.painting = true;
    t.Tick(1.5);
    EXPECT_TRUE(t.surface.calls.calls.isEmpty()) << "a tick during a page returns at once";
    t.surface.painting = false;
    t.Tick(1.5);
    EXPECT_EQ(t.lyrics.CurrentLyric, 1);
}

TEST(Timeline, AJumpFindsTheSyllableBeforeTheFirstOneStillToCome)
{
    Timeline t(Song({{{1.0, "a "}, {2.0, "b "}, {3.0, "c"}}, {{4.0, "d"}}}));
    t.clock.now = 2.0;
    t.timeline.GetLastPos(true);
    EXPECT_EQ(t.lyrics.CurrentLyric, 2) << "the exact time of a syllable selects it only through the tick";
    EXPECT_EQ(t.Pages(), QStringList{"Page 2 jump"});
    EXPECT_TRUE(t.surface.calls.calls.contains("ClearRows"));
    EXPECT_TRUE(t.surface.calls.calls.contains("Background default"));

    t.surface.calls.calls.clear();
    t.clock.now = 2.5;
    t.timeline.GetLastPos(true);
    EXPECT_TRUE(t.surface.calls.calls.isEmpty()) << "the position lies inside the lit syllable";

    t.clock.now = 1.5;
    t.timeline.GetLastPos(true);
    EXPECT_EQ(t.lyrics.CurrentLyric, 1) << "backwards";

    t.surface.calls.calls.clear();
    t.clock.now = 9.0;
    t.timeline.GetLastPos(true);
    EXPECT_TRUE(t.surface.calls.calls.isEmpty()) << "past the last syllable the display stays";
    EXPECT_EQ(t.lyrics.CurrentLyric, 1);

    t.clock.now = 0.2;
    t.timeline.GetLastPos(false);
    EXPECT_EQ(t.lyrics.CurrentLyric, 0);
    EXPECT_TRUE(t.Pages().isEmpty()) << "a closed window paints nothing";
    t.surface.calls.calls.clear();
    t.timeline.GetLastPos(true);
    EXPECT_EQ(t.surface.calls.calls, (QStringList{"DropPicture", "Background default"}))
        << "before the first syllable only the picture is chosen; the tick brings the title back";
}

TEST(Timeline, PicturesFollowTheirSecondsAndAJumpPicksTheLatest)
{
    Timeline t(Song({{{1.0, "a "}, {10.0, "b"}}}));
    t.lyrics.PlayPictures.resize(3);
    t.lyrics.PlayPictures[1].Time = 5;
    t.lyrics.PlayPictures[2].Time = 3;
    BuildPictureOrder(t.lyrics);
    t.Tick(3.0);
    EXPECT_FALSE(t.surface.calls.calls.contains("ChangePic 2")) << "a picture shows once its second has begun";
    t.Tick(3.01);
    EXPECT_TRUE(t.surface.calls.calls.contains("ChangePic 2"));
    EXPECT_EQ(t.timeline.PictureIndex, 1);
    t.surface.calls.calls.clear();
    t.lyrics.CurrentLyric = 0;
    t.clock.now = 6;
    t.timeline.GetLastPos(true);
    EXPECT_TRUE(t.surface.calls.calls.contains("ChangePic 1"));
    EXPECT_TRUE(t.surface.calls.calls.contains("Background"));
    EXPECT_EQ(t.timeline.PictureIndex, 2);
}

TEST(Timeline, AStartPictureAnywhereInTheListLeavesTheTimedOnesTheirSeconds)
{
    Timeline t(Song({{{1.0, "a "}, {10.0, "b"}}}));
    // Files list a timed picture first and the start picture (second 0) later.
    t.lyrics.PlayPictures.resize(4);
    t.lyrics.PlayPictures[1].Time = 4;
    t.lyrics.PlayPictures[2].Time = 0;
    t.lyrics.PlayPictures[3].Time = 7;
    BuildPictureOrder(t.lyrics);
    EXPECT_EQ(StartPicture(t.lyrics), 2);

    t.Tick(4.01);
    EXPECT_TRUE(t.surface.calls.calls.contains("ChangePic 1")) << "the start picture does not hold the schedule up";
    t.Tick(7.01);
    EXPECT_TRUE(t.surface.calls.calls.contains("ChangePic 3"));
    EXPECT_FALSE(t.surface.calls.calls.contains("ChangePic 2")) << "the tick never shows the start picture";

    t.surface.calls.calls.clear();
    t.lyrics.CurrentLyric = 0;
    t.clock.now = 2;
    t.timeline.GetLastPos(true);
    EXPECT_EQ(t.surface.calls.calls, (QStringList{"ClearRows", "DropPicture", "ChangePic 2", "Background", "Page 1 jump"}))
        << "a jump back before the first timed picture brings the start picture back";
    EXPECT_EQ(t.timeline.PictureIndex, 0);

    t.Tick(4.01);
    EXPECT_TRUE(t.surface.calls.calls.contains("ChangePic 1")) << "and the schedule runs again from there";

    t.timeline.Restart();
    EXPECT_EQ(t.timeline.PictureIndex, 0);
    EXPECT_EQ(t.lyrics.CurrentLyric, 0);
}
