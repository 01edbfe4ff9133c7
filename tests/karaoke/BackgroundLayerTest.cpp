// What stands behind the lyrics: the song's picture or the settings', the timed picture in its
// place at any screen ratio, and its transition stepped to the end.

#include "KaraokeFixtures.h"
#include "core/Colors.h"
#include "karaoke/BackgroundLayer.h"
#include "karaoke/PicturePlacing.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

struct Layer : testing::Test {
    QTemporaryDir dir;
    TestTheme settings;
    LyricsState lyrics;
    BackgroundLayer layer{lyrics, settings.theme};

    Layer()
    {
        lyrics.PlayLyrics = Song({{{1.0, "One"}}});
        settings.theme.LyricsPicLayout = 1;  // stretched over the window
        layer.SetBackColor(Qt::black);
    }
    QRgb Pixel(int x, int y) const { return layer.Image().pixel(x, y); }
};

} // namespace

TEST_F(Layer, TheSongsPictureElseTheSettingsElseTheBackColour)
{
    layer.Resize({40, 20}, 1.0);
    settings.theme.SetLyricsPicPath(SolidPicture(dir, "settings.png", {4, 4}, Qt::green));
    layer.LoadBasePicture();
    layer.Compose(false);
    EXPECT_EQ(QColor(Pixel(20, 10)), QColor(Qt::green));

    lyrics.PlayLyrics[0].Picture = SolidPicture(dir, "song.png", {4, 4}, Qt::blue);
    EXPECT_TRUE(layer.BasePictureStale()) << "another song asks for its own picture";
    layer.LoadBasePicture();
    EXPECT_FALSE(layer.BasePictureStale());
    layer.Compose(false);
    EXPECT_EQ(QColor(Pixel(20, 10)), QColor(Qt::blue));

    lyrics.PlayLyrics[0].Picture = dir.filePath(QStringLiteral("gone.png"));
    layer.LoadBasePicture();
    layer.Compose(false);
    EXPECT_EQ(QColor(Pixel(20, 10)), QColor(Qt::black)) << "a song picture that is gone is not replaced by the settings'";
}

TEST_F(Layer, TheTimedPictureStandsInLogicalPixelsAtAnyRatio)
{
    lyrics.PlayPictures = {PictureItem{}, PictureItem{SolidPicture(dir, "red.png", {10, 10}, Qt::red), 2, {}, {}, 5}};
    settings.theme.ImageEffect.clear();
    lyrics.PlayLyrics[0].ImageLayout = int16_t(ImageSizing::Original);
    for (const qreal ratio : {1.0, 2.0}) {
        layer.Resize({100, 50}, ratio);
        layer.LoadTimedPicture(1);
        ASSERT_TRUE(layer.ShowTimedPicture(1, 0));
        EXPECT_FALSE(layer.TransitionRunning()) << "no effect: at once";
        EXPECT_EQ(layer.TimedPictureRect(), QRect(45, 20, 10, 10)) << ratio;
        EXPECT_EQ(layer.Image().size(), QSize(100, 50) * ratio);
        EXPECT_EQ(QColor(Pixel(int(50 * ratio), int(25 * ratio))), QColor(Qt::red)) << ratio;
    }
}

TEST_F(Layer, ATransitionEndsOnTheWholeNewPictureAndStopsItsTimer)
{
    layer.Resize({100, 50}, 1.0);
    layer.Compose(false);
    lyrics.PlayPictures = {PictureItem{},
                           PictureItem{SolidPicture(dir, "red.png", {100, 50}, Qt::red), 2, QStringLiteral("Wipe Side"), {}, 10}};
    std::vector<double> timer;
    layer.TransitionTimer = [&timer](double ms) { timer.push_back(ms); };
    layer.LoadTimedPicture(1);
    ASSERT_TRUE(layer.ShowTimedPicture(1, 0));
    ASSERT_TRUE(layer.TransitionRunning());
    ASSERT_EQ(timer.size(), 1u);
    EXPECT_GT(timer[0], 0);
    double ms = 0;
    while (layer.TransitionRunning() && ms < 60'000)
        layer.StepTransition(ms += 10);
    EXPECT_FALSE(layer.TransitionRunning());
    EXPECT_EQ(timer.back(), 0) << "the window's timer stops with the transition";
    for (const QPoint at : {QPoint(0, 0), QPoint(50, 25), QPoint(99, 49)})
        EXPECT_EQ(QColor(Pixel(at.x(), at.y())), QColor(Qt::red)) << at.x() << ',' << at.y();
}
