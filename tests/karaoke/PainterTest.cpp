// The page in pixels: the rim, the sung prefix in the highlight colour, the ball, the fitted
// font, the title, and the same at twice the pixel ratio.

#include "KaraokeFixtures.h"
#include "core/Colors.h"
#include "karaoke/KaraokeView.h"

#include <QThread>
#include <QPainter>
#include <gtest/gtest.h>

namespace {

const QColor kBack(0, 0, 0);
const QColor kFore(0, 0, 255);
const QColor kHighlight(255, 0, 0);
const QColor kRim(0, 255, 0);

bool Near(QRgb pixel, const QColor& colour, int tolerance = 40)
{
    return std::abs(qRed(pixel) - colour.red()) <= tolerance && std::abs(qGreen(pixel) - colour.green()) <= tolerance
           && std::abs(qBlue(pixel) - colour.blue()) <= tolerance;
}

// Pixels of a colour inside a logical rectangle of the frame.
int Count(const QImage& frame, const QColor& colour, QRect logical = {})
{
    const qreal dpr = frame.devicePixelRatio();
    const QRect area = logical.isNull() ? frame.rect()
                                        : QRect(QPoint(int(logical.left() * dpr), int(logical.top() * dpr)),
                                                QSize(int(logical.width() * dpr), int(logical.height() * dpr)));
    int count = 0;
    for (int y = std::max(0, area.top()); y <= std::min(frame.height() - 1, area.bottom()); ++y)
        for (int x = std::max(0, area.left()); x <= std::min(frame.width() - 1, area.right()); ++x)
            count += Near(frame.pixel(x, y), colour) ? 1 : 0;
    return count;
}

struct Stage {
    TestTheme settings;
    LyricsState lyrics;
    TestClock clock;
    KaraokeView view{lyrics, settings.theme, clock};

    explicit Stage(std::vector<LyricItem> song, QSize size = {800, 300}, qreal dpr = 1.0)
    {
        ThemeClass& t = settings.theme;
        t.LyricsOutlineWidth = 0;
        t.LyricsFitFont = false;
        t.LyricsFontSize = 24;
        t.DisplayMode = 1;
        song[0].BackColor = Win32FromColor(kBack);
        song[0].ForeColor = Win32FromColor(kFore);
        song[0].HighlightColor = Win32FromColor(kHighlight);
        song[0].OutlineColor1 = Win32FromColor(kRim);
        song[0].OutlineColor2 = Win32FromColor(QColor(255, 255, 0));
        song[0].Picture = QStringLiteral("/no/such/picture.png");  // leaves the back colour alone
        song[0].Alignment = 0;
        lyrics.PlayLyrics = std::move(song);
        lyrics.LongestLine = FindLongestLine(lyrics.PlayLyrics, t.LyricsFontFace());
        view.ResizeMe(size, dpr, false);
        view.ChangeLyrics();
    }
    void PlayTo(double seconds)
    {
        for (double p = 0; p <= seconds; p += 0.01) {
            clock.now = p;
            double position = p;
            view.Timeline().IsPlaying(position);
        }
    }
};

} // namespace

TEST(Painter, TheOutlineWidthPicksTheRangeOfOffsetCopies)
{
    EXPECT_FALSE(OutlineOffsets(0).has_value());
    EXPECT_FALSE(OutlineOffsets(-3).has_value());
    const std::pair<int, int> expected[] = {{0, 8}, {1, 7}, {2, 6}, {3, 5}};
    for (int width = 1; width <= 4; ++width) {
        const auto range = OutlineOffsets(int16_t(width));
        ASSERT_TRUE(range.has_value());
        EXPECT_EQ(range->First, expected[width - 1].first);
        EXPECT_EQ(range->Last, expected[width - 1].second);
        EXPECT_EQ(range->First + range->Last, 8) << "the text stands at offset 4";
    }
}

TEST(Painter, TheRimIsTheUnionOfEveryOffsetCopy)
{
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setPointSize(20);
    const QString text = QStringLiteral("Ag, sing!");
    for (int16_t width : {1, 3}) {
        SCOPED_TRACE(width);
        const OutlineRange range = *OutlineOffsets(width);
        const QImage rim = OutlineImage(text, font, kRim, range, 1.0);

        const QImage glyphs = TextImage(text, font, kRim, 1.0);
        QImage copies(rim.size(), QImage::Format_ARGB32_Premultiplied);
        copies.fill(Qt::transparent);
        QPainter painter(&copies);
        for (int i = 0; i <= range.Last - range.First; ++i)
            for (int j = 0; j <= range.Last - range.First; ++j)
                painter.drawImage(i, j, glyphs);
        painter.end();

        int worst = 0;
        for (int y = 0; y < rim.height(); ++y)
            for (int x = 0; x < rim.width(); ++x)
                worst = std::max(worst, std::abs(qAlpha(rim.pixel(x, y)) - qAlpha(copies.pixel(x, y))));
        EXPECT_LE(worst, 3) << "two passes of one row of copies give the same rim as every copy";
    }
}

TEST(Painter, TheSungPrefixIsLitAndTheRestOfTheLineIsNot)
{
    Stage stage(Song({{{1.0, "Sing "}, {2.0, "along "}, {3.0, "now"}}, {{5.0, "next"}}}));
    stage.PlayTo(2.5);
    ASSERT_EQ(stage.lyrics.CurrentLyric, 2);
    const QImage& frame = stage.view.Frame();
    const QRect block = stage.view.BlockRect();
    const QFontMetrics metrics(stage.view.Font());
    const int lineWidth = metrics.horizontalAdvance(QStringLiteral("Sing along now"));
    const int x = 400 - (lineWidth + 9) / 2 + 4;
    const int sung = metrics.horizontalAdvance(QStringLiteral("Sing along "));
    const int rowHeight = metrics.height() + 9;
    const QRect lit(x, block.top(), sung, rowHeight);
    const QRect unlit(x + sung + 2, block.top(), lineWidth - sung - 2, rowHeight);
    EXPECT_GT(Count(frame, kHighlight, lit), 100);
    EXPECT_EQ(Count(frame, kFore, lit), 0);
    EXPECT_GT(Count(frame, kFore, unlit), 100);
    EXPECT_EQ(Count(frame, kHighlight, unlit), 0);
    const QRect nextRow(0, block.top() + rowHeight, 800, rowHeight);
    EXPECT_GT(Count(frame, kFore, nextRow), 50) << "the next line waits in the fore colour";
    EXPECT_EQ(Count(frame, kHighlight, nextRow), 0);
    EXPECT_EQ(Count(frame, kRim), 0) << "outline width 0 draws no rim";
}

TEST(Painter, OnlyTheFirstOutlineColourReachesTheScreen)
{
    Stage stage(Song({{{1.0, "Rim"}}}));
    stage.settings.theme.LyricsOutlineWidth = 1;
    stage.PlayTo(1.5);
    EXPECT_GT(Count(stage.view.Frame(), kRim), 200);
    EXPECT_EQ(Count(stage.view.Frame(), QColor(255, 255, 0)), 0);
}

TEST(Painter, LineTimedLyricsLightTheWholeLine)
{
    auto song = Song({{{1.0, "Whole "}, {2.0, "line"}}});
    song[0].FormatName = QStringLiteral("Lyrics 2.00");
    song[0].LineTimed = true;
    Stage stage(song);
    stage.PlayTo(1.5);
    const QRect block = stage.view.BlockRect();
    EXPECT_GT(Count(stage.view.Frame(), kHighlight, block), 200);
    EXPECT_EQ(Count(stage.view.Frame(), kFore, block), 0);
}

TEST(Painter, MidiWordsLightSyllableBySyllable)
{
    auto song = Song({{{1.0, "Whole "}, {2.0, "line"}}});
    song[0].FormatName = QStringLiteral("MIDI lyric events");
    Stage stage(song);
    stage.PlayTo(1.5);
    const QRect block = stage.view.BlockRect();
    EXPECT_GT(Count(stage.view.Frame(), kHighlight, block), 200);
    EXPECT_GT(Count(stage.view.Frame(), kFore, block), 100) << "the second syllable is not sung yet";
}

TEST(Painter, TheBallMarksTheLineLeftOfItsStart)
{
    Stage stage(Song({{{1.0, "Ball "}, {2.0, "here"}}}));
    ThemeClass& theme = stage.settings.theme;
    theme.LyricsShowBall = true;
    theme.LyricsBallColor = Win32FromColor(QColor(255, 255, 255));
    theme.DisplayMode = 3;
    stage.PlayTo(1.5);
    const QFontMetrics metrics(stage.view.Font());
    const int x = 400 - (metrics.horizontalAdvance(QStringLiteral("Ball here")) + 9) / 2;
    const QRect left(0, 0, x, 300);
    EXPECT_GT(Count(stage.view.Frame(), QColor(255, 255, 255), left), 10);
}

TEST(Painter, TheFittedFontFillsTheWidthInsideItsBand)
{
    for (int width : {500, 900, 1600}) {
        SCOPED_TRACE(width);
        Stage stage(Song({{{1.0, "A line of some length to fit"}}, {{2.0, "short"}}}), QSize(width, 700));
        stage.settings.theme.LyricsFitFont = true;
        stage.view.FitLyrics();
        QFont font = stage.view.Font();
        const int w = QFontMetrics(font).horizontalAdvance(stage.lyrics.LongestLine) + 16;
        EXPECT_LE(w, width - 30) << "the line keeps its margin";
        font.setPointSize(font.pointSize() + 1);
        EXPECT_GT(QFontMetrics(font).horizontalAdvance(stage.lyrics.LongestLine) + 16, width - 40)
            << "and one point more would leave the band";
        const int size = stage.view.FontSize();
        stage.view.FitLyrics();
        EXPECT_EQ(stage.view.FontSize(), size) << "a size inside the band is left alone";
    }
    Stage flat(Song({{{1.0, "A line of some length to fit"}}}), QSize(1600, 180));
    flat.view.FitLyrics();
    QFont font = flat.view.Font();
    EXPECT_LE(QFontMetrics(font).boundingRect(QStringLiteral("Mg")).height(), (180 - 132) / 2)
        << "a low window caps the height";
}

TEST(Painter, ALongTitleShrinksToThreeQuartersOfTheWidth)
{
    Stage stage(Song({{{9.0, "late"}}}), QSize(600, 300));
    const int lyricsSize = stage.view.FontSize();
    stage.lyrics.LyricsTitleText = QStringLiteral("An Artist With A Remarkably Long Name|And A Title Longer Still Than That");
    stage.view.PaintTitle(true);
    const QImage& frame = stage.view.Frame();
    EXPECT_GT(Count(frame, kFore), 100);
    EXPECT_GT(Count(frame, kHighlight), 100);
    const int margin = 600 / 8 - 8;
    EXPECT_EQ(Count(frame, kFore, QRect(0, 0, margin, 300)) + Count(frame, kHighlight, QRect(0, 0, margin, 300)), 0);
    EXPECT_EQ(stage.view.FontSize(), lyricsSize) << "the lyrics keep their size";
}

TEST(Painter, TwiceThePixelRatioGivesTheSamePageInFinerPixels)
{
    Stage single(Song({{{1.0, "Crisp "}, {2.0, "text"}}}), QSize(640, 240), 1.0);
    Stage twice(Song({{{1.0, "Crisp "}, {2.0, "text"}}}), QSize(640, 240), 2.0);
    single.PlayTo(1.5);
    twice.PlayTo(1.5);
    EXPECT_EQ(twice.view.Frame().size(), QSize(1280, 480));
    const double ratio = double(Count(twice.view.Frame(), kHighlight)) / Count(single.view.Frame(), kHighlight);
    EXPECT_NEAR(ratio, 4.0, 1.0) << "the lit area scales with the pixel count";
    EXPECT_EQ(twice.view.BlockRect(), single.view.BlockRect()) << "layout stays in logical pixels";
}

TEST(Painter, TheTextLeavesEightSecondsAfterTheLastSyllable)
{
    Stage stage(Song({{{1.0, "End"}}}));
    stage.PlayTo(1.5);
    stage.view.Repaint();
    EXPECT_GT(Count(stage.view.Frame(), kHighlight), 50);
    stage.clock.now = 9.0;
    stage.view.Repaint();
    EXPECT_EQ(Count(stage.view.Frame(), kHighlight), 0);
    EXPECT_EQ(Count(stage.view.Frame(), kFore), 0);
}

TEST(Painter, LightingASyllableOnScreenGivesTheSamePixelsAsARedraw)
{
    Stage stage(Song({{{1.0, "Step "}, {2.0, "by "}, {3.0, "step"}}, {{5.0, "onward"}}}));
    stage.settings.theme.LyricsOutlineWidth = 2;
    stage.PlayTo(1.5);
    stage.view.PrepareUpcoming();
    stage.PlayTo(3.5);
    ASSERT_EQ(stage.lyrics.CurrentLyric, 3);
    const QImage lit = stage.view.Frame().copy();
    stage.view.Repaint();
    const QImage redrawn = stage.view.Frame();
    ASSERT_EQ(lit.size(), redrawn.size());
    int differing = 0;
    for (int y = 0; y < lit.height(); ++y)
        for (int x = 0; x < lit.width(); ++x)
            differing += lit.pixel(x, y) != redrawn.pixel(x, y) ? 1 : 0;
    EXPECT_EQ(differing, 0);
    EXPECT_GT(Count(lit, kHighlight), 200);
}

TEST(Painter, ChangedSettingsReachThePageThatShows)
{
    std::vector<LyricItem> song = Song({{{1.0, "Settings"}}});
    Stage stage(song);
    stage.lyrics.PlayLyrics[0].BackColor = -1;  // the song leaves the colours to the settings
    stage.lyrics.PlayLyrics[0].HighlightColor = -1;
    stage.PlayTo(1.5);
    ThemeClass& t = stage.settings.theme;
    const QColor back(10, 120, 30);
    const QColor fore(250, 250, 250);
    t.LyricsBackColor = Win32FromColor(back);
    t.LyricsHighlightColor = Win32FromColor(fore);
    const int before = Count(stage.view.Frame(), fore);
    EXPECT_EQ(Count(stage.view.Frame(), back), 0);

    stage.view.ApplySettings();
    EXPECT_GT(Count(stage.view.Frame(), back), 800 * 300 / 2) << "the new back colour";
    EXPECT_GT(Count(stage.view.Frame(), fore), before) << "the sung line in the new highlight colour";

    const int small = Count(stage.view.Frame(), fore);
    t.LyricsFontSize = 48;
    stage.view.ApplySettings();
    EXPECT_GT(Count(stage.view.Frame(), fore), small * 2) << "a larger font";
}

TEST(Painter, LinesRasterisedAheadOnTheWorkerDrawTheSamePixelsAsLinesDrawnOnTheSpot)
{
    const auto song = Song({{{1.0, "Ahead "}, {2.0, "of "}, {3.0, "time"}}, {{5.0, "and "}, {6.0, "beyond"}}});
    const auto settle = [](Stage& stage) {
        while (stage.view.PreparingLines())
            QThread::msleep(1);
    };
    Stage ahead(song, {800, 300}, 2.0);
    ahead.settings.theme.LyricsOutlineWidth = 2;
    settle(ahead);
    ahead.view.PrepareUpcoming();  // the rims at the new width, made on the worker
    settle(ahead);
    ahead.PlayTo(5.5);

    Stage onTheSpot(song, {800, 300}, 2.0);
    onTheSpot.settings.theme.LyricsOutlineWidth = 2;
    onTheSpot.PlayTo(5.5);

    ASSERT_EQ(ahead.lyrics.CurrentLyric, 4);
    EXPECT_TRUE(ahead.view.Frame() == onTheSpot.view.Frame());
    EXPECT_GT(Count(ahead.view.Frame(), kRim), 200);
}
