// Timed pictures in the karaoke window: the schedule walked by the tick, the transition that
// brings each picture in under still text, the picture's place and its frame.

#include "KaraokeFixtures.h"
#include "core/Colors.h"
#include "karaoke/KaraokeView.h"
#include "karaoke/PicturePlacing.h"

#include <QPainter>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

const QColor kBack(0, 0, 0);
const QColor kFore(255, 255, 255);
const QColor kRed(220, 0, 0);
const QColor kBlue(0, 0, 220);

struct PictureStage {
    QTemporaryDir dir;
    TestTheme settings;
    LyricsState lyrics;
    TestClock clock;
    KaraokeView view{lyrics, settings.theme, clock};
    double ms = 0;
    QString red = SolidPicture(dir, "red.png", {200, 100}, kRed);
    QString blue = SolidPicture(dir, "blue.png", {100, 100}, kBlue);

    PictureStage()
    {
        settings.theme.LyricsFitFont = false;
        settings.theme.LyricsOutlineWidth = 0;
        settings.theme.LyricsFontSize = 20;
        settings.theme.ImageEffect.clear();
        view.Clock = [this] { return ms; };
    }

    // Lyrics from 1 s, the pictures as (file, second, effect, detail, speed), in a window.
    void Load(std::vector<PictureItem> pictures, QSize size = {400, 200})
    {
        lyrics.PlayLyrics = Song({{{1.0, "One "}, {1.5, "two"}}, {{4.0, "three"}}, {{9.0, "four"}}});
        LyricItem& header = lyrics.PlayLyrics[0];
        header.BackColor = Win32FromColor(kBack);
        header.ForeColor = header.HighlightColor = Win32FromColor(kFore);
        header.Picture = dir.filePath(QStringLiteral("no-base.png"));
        lyrics.PlayPictures.assign(1, PictureItem{});
        lyrics.PlayPictures.insert(lyrics.PlayPictures.end(), pictures.begin(), pictures.end());
        BuildPictureOrder(lyrics);
        view.ResizeMe(size, 1.0, false);
        view.ChangeLyrics();
    }

    void TickAt(double seconds)
    {
        clock.now = seconds;
        double position = seconds;
        view.Timeline().IsPlaying(position);
    }

    // The window's transition timer, run for this long.
    void RunFor(double millis)
    {
        const double end = ms + millis;
        while (ms < end) {
            ms = std::min(end, ms + 10);
            view.StepTransition();
        }
    }

    QColor At(int x, int y) const { return view.Frame().pixelColor(x, y); }
};

PictureItem Picture(const QString& file, int32_t second, const char* effect = "", const char* detail = "",
                    int16_t speed = 5)
{
    return PictureItem{file, second, QString::fromLatin1(effect), QString::fromLatin1(detail), speed};
}

} // namespace

TEST(PictureSchedule, WithoutPicturesTheBackColourStaysForTheWholeSong)
{
    PictureStage s;
    s.Load({});
    for (const double t : {0.5, 2.0, 5.0, 12.0}) {
        s.TickAt(t);
        EXPECT_EQ(s.At(2, 2), kBack) << t;
        EXPECT_EQ(s.At(398, 197), kBack) << t;
        EXPECT_FALSE(s.view.TransitionRunning());
    }
}

TEST(PictureSchedule, ASecondZeroPictureShowsAtTheStartAndLaterOnesAtTheFirstTickOfTheirSecond)
{
    PictureStage s;
    s.Load({Picture(s.red, 0), Picture(s.blue, 3)});
    // Fitted keeping its shape: 200 x 100 fills the 400 x 200 window.
    EXPECT_EQ(s.view.TimedPictureRect(), QRect(0, 0, 400, 200));
    EXPECT_EQ(s.At(5, 100), kRed);
    s.TickAt(3.0);
    EXPECT_EQ(s.At(5, 100), kRed);
    s.TickAt(3.01);
    EXPECT_FALSE(s.view.TransitionRunning());  // no effect anywhere: at once
    EXPECT_EQ(s.view.TimedPictureRect(), QRect(100, 0, 200, 200));
    EXPECT_EQ(s.At(150, 100), kBlue);
    EXPECT_EQ(s.At(5, 100), kBack);
}

TEST(PictureSchedule, TwoPicturesOfOneSecondComeOnePerTick)
{
    PictureStage s;
    s.Load({Picture(s.red, 2), Picture(s.blue, 2)});
    EXPECT_EQ(s.At(200, 100), kBack);
    s.TickAt(2.01);
    EXPECT_EQ(s.view.Timeline().PictureIndex, 1);
    const QColor first = s.At(200, 100);
    s.TickAt(2.02);
    EXPECT_EQ(s.view.Timeline().PictureIndex, 2);
    const QColor second = s.At(200, 100);
    EXPECT_NE(first, second);
    EXPECT_TRUE((first == kRed && second == kBlue) || (first == kBlue && second == kRed));
}

TEST(PictureSchedule, AMissingOrUndecodablePictureLeavesWhatIsShown)
{
    PictureStage s;
    QFile broken(s.dir.filePath(QStringLiteral("broken.png")));
    ASSERT_TRUE(broken.open(QIODevice::WriteOnly));
    broken.write("\x89PNG\r\n\x1a\n but nothing after");
    broken.close();
    s.Load({Picture(s.red, 0), Picture(s.dir.filePath(QStringLiteral("gone.png")), 2, "Wipe Side", "Left"),
            Picture(broken.fileName(), 3, "Wipe Side", "Left")});
    for (const double t : {2.01, 3.01}) {
        s.TickAt(t);
        EXPECT_FALSE(s.view.TransitionRunning()) << t;
        EXPECT_EQ(s.At(5, 100), kRed) << t;
    }
    EXPECT_EQ(s.view.Timeline().PictureIndex, 3);
}

TEST(PictureSchedule, TheTransitionRunsUnderStillTextAndEndsOnTheNewPictureWhole)
{
    PictureStage s;
    s.Load({Picture(s.red, 0), Picture(s.blue, 3, "Wipe Side", "Right", 5)});
    for (int i = 0; i < 3; ++i)
        s.TickAt(2.9);  // "One two" stands lit on the page
    const QImage before = s.view.Frame();
    std::vector<QPoint> text;
    for (int y = 0; y < before.height(); ++y)
        for (int x = 0; x < before.width(); ++x)
            if (before.pixelColor(x, y) == kFore)
                text.emplace_back(x, y);
    ASSERT_GT(text.size(), 50u);

    s.TickAt(3.01);
    ASSERT_TRUE(s.view.TransitionRunning());
    // Area 400 x 200: steps of 1 pixel (4 x 2 / 70 x 5 rounds up to 1), 9 ms each.
    s.RunFor(9.0 * 200);
    ASSERT_TRUE(s.view.TransitionRunning());
    EXPECT_EQ(s.At(250, 2), kBlue);  // uncovered from the right edge
    EXPECT_EQ(s.At(399, 2), kBack);
    EXPECT_EQ(s.At(150, 2), kRed);
    for (const QPoint& p : text)
        ASSERT_EQ(s.view.Frame().pixelColor(p), kFore) << p.x() << "," << p.y();

    s.RunFor(9.0 * 200 + 20);
    EXPECT_FALSE(s.view.TransitionRunning());
    EXPECT_EQ(s.At(5, 2), kBack);
    EXPECT_EQ(s.At(150, 2), kBlue);
}

TEST(PictureSchedule, APictureWithoutEffectTakesTheSettingsAndNoneOrAStrangeNameShowsAtOnce)
{
    PictureStage s;
    s.settings.theme.ImageEffect = QStringLiteral("Push Side");
    s.settings.theme.EffectDetail = QStringLiteral("Top");
    s.Load({Picture(s.red, 2), Picture(s.blue, 3, "None"), Picture(s.red, 4, "Sparkle", "Left")});
    s.TickAt(2.01);
    EXPECT_TRUE(s.view.TransitionRunning());
    s.TickAt(3.01);  // the next picture ends the running one
    EXPECT_FALSE(s.view.TransitionRunning());
    EXPECT_EQ(s.At(150, 100), kBlue);
    s.TickAt(4.01);
    EXPECT_FALSE(s.view.TransitionRunning());
    EXPECT_EQ(s.At(5, 100), kRed);
}

TEST(PictureSchedule, ASmallWindowStillEndsItsTransitionAndAJumpEndsOneAtOnce)
{
    PictureStage s;
    s.Load({Picture(s.blue, 2, "Stretch Zoom", "Inside", 1)}, {90, 60});
    s.TickAt(2.01);
    ASSERT_TRUE(s.view.TransitionRunning());
    s.RunFor(15.0 * 90 + 20);
    EXPECT_FALSE(s.view.TransitionRunning());
    EXPECT_EQ(s.At(45, 30), kBlue);

    s.Load({Picture(s.blue, 2, "Stretch Zoom", "Inside", 1)});
    s.TickAt(2.01);
    ASSERT_TRUE(s.view.TransitionRunning());
    s.clock.now = 2.5;
    s.view.Timeline().GetLastPos(true);
    EXPECT_FALSE(s.view.TransitionRunning());
    EXPECT_EQ(s.At(150, 100), kBlue);
}

TEST(PicturePlacing, SizePositionAndOffsetsPlaceThePicture)
{
    LyricItem h;
    const QSize client(800, 450);
    h.ImageLayout = 0;
    EXPECT_EQ(PictureRect(h, {200, 100}, client), QRect(300, 175, 200, 100));
    h.ImageLayout = 1;
    EXPECT_EQ(PictureRect(h, {200, 200}, client), QRect(175, 0, 450, 450));
    h.ImageLayout = 2;
    h.ImageCustomX = 320;
    h.ImageCustomY = 240;
    h.ImagePosition = 1;
    EXPECT_EQ(PictureRect(h, {10, 10}, client), QRect(240, 0, 320, 240));
    h.ImagePosition = 2;
    h.ImageOffsetX = -40;
    h.ImageOffsetY = 10;
    EXPECT_EQ(PictureRect(h, {10, 10}, client), QRect(200, 220, 320, 240));
}

TEST(PicturePlacing, EachBorderStyleLooksItsOwnAndNoneLeavesThePicture)
{
    const QRect rect(10, 10, 80, 60);
    auto framed = [&](const QString& style) {
        QImage image(100, 80, QImage::Format_ARGB32_Premultiplied);
        image.fill(kRed);
        QPainter p(&image);
        DrawImageBorder(p, rect, style);
        return image;
    };
    QImage plain(100, 80, QImage::Format_ARGB32_Premultiplied);
    plain.fill(kRed);
    EXPECT_EQ(framed(QStringLiteral("None")), plain);
    std::vector<QImage> looks;
    for (const QString& style : BorderStyles()) {
        const QImage image = framed(style);
        EXPECT_NE(image, plain) << style.toStdString();
        EXPECT_EQ(image.pixelColor(50, 40), kRed) << style.toStdString();  // the picture's middle stays
        EXPECT_EQ(image.pixelColor(5, 5), kRed) << style.toStdString();    // nothing outside the rectangle
        for (const QImage& other : looks)
            EXPECT_NE(image, other) << style.toStdString();
        looks.push_back(image);
    }
}
