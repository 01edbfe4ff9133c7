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
