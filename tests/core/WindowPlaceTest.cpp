// Where a window opens the first time: beside the main window, never over it when the screen
// has room, and always whole on the screen.

#include "core/WindowPosition.h"

#include <gtest/gtest.h>

TEST(WindowPlace, TheEditorOpensBesideThePlayerAndWholeOnTheScreen)
{
    const QRect screen(0, 0, 1366, 728);
    const QSize editor(700, 500);

    // The player at the bottom right: the editor stands to its left, bottoms aligned.
    const QRect rightPlayer(966, 578, 400, 150);
    EXPECT_EQ(PlaceBeside(rightPlayer, editor, screen), QRect(QPoint(266, 228), editor));

    // The player at the left edge: the editor goes to its right.
    const QRect leftPlayer(0, 300, 400, 150);
    const QRect right = PlaceBeside(leftPlayer, editor, screen);
    EXPECT_EQ(right.left(), 400);
    EXPECT_FALSE(right.intersects(leftPlayer));

    // A player in the middle of a small screen: above it, clamped to the screen.
    const QRect small(0, 0, 1024, 600);
    const QRect middle(312, 400, 400, 150);
    const QRect above = PlaceBeside(middle, QSize(700, 380), small);
    EXPECT_FALSE(above.intersects(middle));
    EXPECT_TRUE(small.contains(above));

    // No room anywhere: on the screen all the same, as much of it as fits.
    const QRect huge = PlaceBeside(rightPlayer, QSize(2000, 1000), screen);
    EXPECT_EQ(huge.topLeft(), screen.topLeft());
}

TEST(WindowPlace, ARestoredWindowComesBackWholeOnTheScreen)
{
    const QRect screen(0, 0, 1366, 728);
    EXPECT_EQ(KeepOnScreen(QRect(100, 100, 400, 300), screen), QRect(100, 100, 400, 300)) << "already whole";
    EXPECT_EQ(KeepOnScreen(QRect(1200, 600, 400, 300), screen), QRect(966, 428, 400, 300)) << "moved in by the least";
    EXPECT_EQ(KeepOnScreen(QRect(-500, -80, 400, 300), screen), QRect(0, 0, 400, 300));
    EXPECT_EQ(KeepOnScreen(QRect(50, 40, 600, 1048), screen), QRect(50, 0, 600, 728)) << "taller than the screen";
    const QRect second(1366, 0, 1600, 900);
    EXPECT_EQ(KeepOnScreen(QRect(2800, 100, 400, 300), second), QRect(2566, 100, 400, 300)) << "on its own screen";
}

namespace {

// The player, the playlist and the karaoke window of a first run on a screen of `screen`.
struct FirstRun {
    explicit FirstRun(const QRect& screen)
        : places(ArrangeFirstRun(screen, QSize(360, 125), QSize(360, 300))),
          karaoke(PlaceKaraoke(screen, places.player | places.playlist))
    {
    }
    FirstRunPlaces places;
    QRect karaoke;
};

} // namespace

TEST(WindowPlace, TheFirstRunPutsEveryWindowWholeOnScreensDownTo1366By768AtTwiceTheScale)
{
    // Available areas in logical pixels: 1x and 2x of 1366x768 and 1600x900, less a 40-pixel panel.
    const QRect screens[] = {QRect(0, 0, 1366, 728), QRect(0, 0, 683, 364), QRect(0, 0, 1600, 860),
                             QRect(0, 0, 800, 430), QRect(0, 32, 1366, 736)};
    for (const QRect& screen : screens) {
        const FirstRun run(screen);
        SCOPED_TRACE(testing::Message() << screen.width() << "x" << screen.height());
        EXPECT_TRUE(screen.contains(run.places.player));
        EXPECT_TRUE(screen.contains(run.places.playlist));
        EXPECT_TRUE(screen.contains(run.karaoke));
        EXPECT_EQ(run.places.playlist.topLeft(), run.places.player.bottomLeft() + QPoint(0, 1)) << "docked under";
        EXPECT_FALSE(run.karaoke.intersects(run.places.player));
        EXPECT_FALSE(run.karaoke.intersects(run.places.playlist));
        EXPECT_GE(run.places.playlist.height(), 120) << "rows enough to use";
        EXPECT_NEAR(double(run.karaoke.width()) / run.karaoke.height(), 16.0 / 9.0, 0.02);
    }
}

TEST(WindowPlace, ABigScreenKeepsTheFirstRunLookAndTheFullKaraokeWindow)
{
    const QRect screen(0, 0, 1920, 1160);
    const FirstRun run(screen);
    EXPECT_EQ(run.places.player.topLeft(), DefaultPlayerPlace(screen, QSize(360, 125)))
        << "centred across, below the middle, when the pair fits there";
    EXPECT_EQ(FirstRun(QRect(0, 0, 1920, 1040)).places.playlist.bottom(), 1039) << "else raised to the bottom";
    EXPECT_EQ(run.karaoke.size(), kKaraokeFirstSize);

    // On a small screen the pair goes to a side, and the karaoke window gets the rest.
    const FirstRun small(QRect(0, 0, 683, 364));
    EXPECT_EQ(small.places.player.right(), 682);
    EXPECT_EQ(small.places.playlist.height(), 364 - 125);
    EXPECT_GE(small.karaoke.width(), 320);
}

TEST(WindowPlace, TheKaraokeWindowOpensInTheLargestFreePartOfTheScreen)
{
    const QRect screen(0, 0, 1600, 860);
    // The player and playlist stand at the left: the karaoke window goes right of them, whole size.
    const QRect karaoke = PlaceKaraoke(screen, QRect(0, 300, 360, 425));
    EXPECT_EQ(karaoke.size(), kKaraokeFirstSize);
    EXPECT_GE(karaoke.left(), 360);

    // Nothing free anywhere: at the top left, as large as the screen allows.
    EXPECT_EQ(PlaceKaraoke(QRect(0, 0, 683, 364), QRect(0, 0, 683, 364)), QRect(0, 0, 683, 364));
    // The windows lie on another screen: the whole of this one is free.
    EXPECT_EQ(PlaceKaraoke(screen, QRect(2000, 0, 360, 425)), QRect(QPoint(0, 0), kKaraokeFirstSize));
}
