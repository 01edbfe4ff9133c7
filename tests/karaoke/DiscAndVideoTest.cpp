// The karaoke window's page for the songs that bring their own picture: the screen of an MP3+G
// song's disc graphics, scaled with its shape kept, at the packet the clock has reached, and a
// video song's frame under its words.

#include "KaraokeFixtures.h"
#include "cdg/CdgScreen.h"
#include "core/Colors.h"
#include "karaoke/KaraokeView.h"
#include "video/VideoStream.h"

#include <QPainter>
#include <QRandomGenerator>
#include <gtest/gtest.h>

namespace {

// Colour 1 is pure red, colour 2 pure blue; the screen is red from packet 0, blue from `blueAt`,
// and its border green (colour 3) throughout.
std::shared_ptr<CdgDecoder> RedThenBlue(int blueAt)
{
    QByteArray colours = CdgPacket(30, {0, 0, 0x3C, 0, 0, 0x0F, 0x03, 0x30});
    QByteArray bytes = colours + CdgPacket(1, {1}) + CdgPacket(2, {3});
    while (bytes.size() < blueAt * CdgDecoder::kPacketBytes)
        bytes += CdgPacket(0, {});
    bytes += CdgPacket(1, {2}) + CdgPacket(2, {3});
    for (int i = 0; i < 600; ++i)
        bytes += CdgPacket(0, {});
    return std::make_shared<CdgDecoder>(bytes);
}

struct Stage {
    TestTheme settings;
    LyricsState lyrics;
    TestClock clock;
    KaraokeView view{lyrics, settings.theme, clock};

    Stage(std::vector<LyricItem> song, QSize size, qreal dpr = 1.0)
    {
        ThemeClass& t = settings.theme;
        t.LyricsOutlineWidth = 0;
        t.LyricsFitFont = false;
        t.LyricsFontSize = 24;
        t.DisplayMode = 1;
        song[0].BackColor = Win32FromColor(QColor(10, 20, 30));
        song[0].ForeColor = Win32FromColor(QColor(0, 0, 255));
        song[0].HighlightColor = Win32FromColor(QColor(255, 0, 255));
        lyrics.PlayLyrics = std::move(song);
        lyrics.LongestLine = FindLongestLine(lyrics.PlayLyrics, t.LyricsFontFace());
        view.ResizeMe(size, dpr, false);
    }
    void Start() { view.ChangeLyrics(); }
    void PlayTo(double from, double to)
    {
        for (double p = from; p <= to + 1e-9; p += 0.01) {
            clock.now = p;
            double position = p;
            view.Tick(position);
        }
    }
    QRgb At(int x, int y) const { return view.Composed().pixel(int(x * view.Composed().devicePixelRatio()), int(y * view.Composed().devicePixelRatio())); }
};

} // namespace

TEST(DiscGraphics, TheScreenFillsTheWindowWithItsShapeAndChangesAtItsPacket)
{
    for (const qreal dpr : {1.0, 2.0}) {
        SCOPED_TRACE(dpr);
        Stage stage(NumberedLines(2), QSize(800, 300), dpr);
        stage.lyrics.Graphics = RedThenBlue(300);
        stage.Start();
        stage.PlayTo(0, 0.5);
        // 300 x 216 shown 300 high: 417 wide, in the middle.
        EXPECT_EQ(stage.At(400, 150), qRgb(255, 0, 0));
        EXPECT_EQ(stage.At(196, 150), qRgb(0, 255, 0)) << "the border";
        EXPECT_EQ(stage.At(180, 150), qRgb(0, 0, 0)) << "black beside the screen";
        EXPECT_EQ(stage.At(620, 150), qRgb(0, 0, 0));

        stage.PlayTo(0.51, 0.99);
        EXPECT_EQ(stage.At(400, 150), qRgb(255, 0, 0)) << "packet 300 is not due before second 1";
        stage.PlayTo(1.0, 1.0);
        EXPECT_EQ(stage.At(400, 150), qRgb(0, 0, 255)) << "it shows at the tick of its second";
        stage.PlayTo(0.2, 0.2);
        EXPECT_EQ(stage.At(400, 150), qRgb(255, 0, 0)) << "a jump back shows the screen of its second";
    }
}

TEST(DiscGraphics, CrispPixelsOrSmoothScalingAsTheSettingSays)
{
    // A one-pixel chequer of the two colours scaled up 4 times: crisp keeps pure colours.
    QByteArray bytes = CdgPacket(30, {0, 0, 0x3C, 0, 0, 0x0F});
    for (int row = 1; row < 17; ++row)
        for (int column = 1; column < 49; ++column) {
            QByteArray tile = CdgPacket(6, {0, 1, row, column});
            for (int i = 0; i < 12; ++i)
                tile[8 + i] = char(i % 2 ? 0x2A : 0x15);
            bytes += tile;
        }
    for (const bool smooth : {false, true}) {
        Stage stage(NumberedLines(1), QSize(1200, 864));
        stage.settings.theme.CdgSmooth = smooth;
        stage.lyrics.Graphics = std::make_shared<CdgDecoder>(bytes);
        stage.Start();
        stage.PlayTo(0, 3);
        const QImage shown = stage.view.Composed();
        int mixed = 0;
        for (int x = 300; x < 900; ++x) {
            const QRgb p = shown.pixel(x, 400);
            mixed += (p != qRgb(0, 0, 0) && p != qRgb(255, 0, 0) && p != qRgb(0, 0, 255)) ? 1 : 0;
        }
        if (smooth)
            EXPECT_GT(mixed, 100);
        else
            EXPECT_EQ(mixed, 0);
    }
}

TEST(VideoSong, ItsWordsLightOverItsPicture)
{
    QTemporaryDir dir;
    const QString path = MakeTestVideo(dir.filePath("song.mp4"), 3);
    Stage stage(Song({{{0.5, "Over "}, {1.0, "the "}, {2.5, "picture"}}}), QSize(800, 300));
    stage.lyrics.Video = std::make_shared<VideoStream>(path);
    stage.Start();
    stage.PlayTo(0, 1.5);
    ASSERT_TRUE(stage.lyrics.Video->SettleAt(1.5));
    const QImage shown = stage.view.Composed();
    const QRect block = stage.view.BlockRect();
    ASSERT_FALSE(block.isEmpty());

    int lit = 0, unlit = 0;
    for (int y = block.top(); y <= block.bottom(); ++y)
        for (int x = block.left(); x <= block.right(); ++x) {
            lit += shown.pixel(x, y) == qRgb(255, 0, 255) ? 1 : 0;
            unlit += shown.pixel(x, y) == qRgb(0, 0, 255) ? 1 : 0;
        }
    EXPECT_GT(lit, 200) << "\"Over the \" is sung";
    EXPECT_GT(unlit, 100) << "\"picture\" is not yet";

    // Outside the words: the video's frame, 320 x 240 shown 400 x 300 in the middle, on black.
    EXPECT_EQ(shown.pixel(100, 150), qRgb(0, 0, 0));
    const QImage frame = stage.lyrics.Video->Current().scaled(400, 300, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    int same = 0, looked = 0;
    for (int y = 2; y < 300; y += 7)
        for (int x = 202; x < 598; x += 7) {
            if (block.contains(x, y))
                continue;
            ++looked;
            const QRgb a = shown.pixel(x, y), b = frame.pixel(x - 200, y);
            same += std::abs(qRed(a) - qRed(b)) + std::abs(qGreen(a) - qGreen(b)) + std::abs(qBlue(a) - qBlue(b)) < 60;
        }
    EXPECT_GT(same, looked * 9 / 10);
    EXPECT_EQ(stage.view.Frame().pixel(100, 150), 0u) << "the words' own frame is clear where they are not";
}

TEST(DiscGraphics, AScreenDrawnTickByTickEqualsTheSameScreenDrawnWhole)
{
    // Tiles of two colours, three a tick, over a screen scaled by a factor that is not whole.
    QByteArray bytes = CdgPacket(30, {0, 0, 0x3C, 0, 0, 0x0F, 0x3F, 0});
    QRandomGenerator random(5);
    for (int i = 0; i < 900; ++i) {
        QByteArray tile = CdgPacket(i % 4 ? 6 : 38, {1 + random.bounded(3), 2, 1 + random.bounded(16), 1 + random.bounded(48)});
        for (int row = 0; row < 12; ++row)
            tile[8 + row] = char(random.bounded(64));
        bytes += tile;
    }
    for (const bool smooth : {false, true})
        for (const qreal dpr : {1.0, 1.5}) {
            SCOPED_TRACE(testing::Message() << "smooth " << smooth << ", dpr " << dpr);
            Stage played(NumberedLines(1), QSize(777, 431), dpr), jumped(NumberedLines(1), QSize(777, 431), dpr);
            jumped.clock.now = 2.5;  // the window opened at 2.5 s draws the screen whole
            for (Stage* stage : {&played, &jumped}) {
                stage->settings.theme.CdgSmooth = smooth;
                stage->lyrics.Graphics = std::make_shared<CdgDecoder>(bytes);
                stage->Start();
            }
            played.PlayTo(0, 2.5);
            const QImage a = played.view.Frame(), b = jumped.view.Frame();
            int worst = 0, count = 0;
            for (int y = 0; y < a.height(); ++y)
                for (int x = 0; x < a.width(); ++x) {
                    const QRgb p = a.pixel(x, y), q = b.pixel(x, y);
                    const int d = std::max({std::abs(qRed(p) - qRed(q)), std::abs(qGreen(p) - qGreen(q)), std::abs(qBlue(p) - qBlue(q))});
                    worst = std::max(worst, d);
                    count += d > 0;
                }
            // Smooth scaling through a clip may round a level apart from the whole draw.
            EXPECT_LE(worst, smooth ? 1 : 0) << count << " pixels differ";
        }
}
