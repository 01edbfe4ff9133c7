// The transition effects as pure frames: golden images of a few, every effect and detail from the
// old area to the new one whole, the pace of small and large areas.

#include "karaoke/Transitions.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QPainter>
#include <gtest/gtest.h>

namespace {

// Two areas no effect can confuse: a cool gradient with a grid, and a warm one with rings.
QImage OldArea(QSize size)
{
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    QPainter p(&image);
    QLinearGradient g(0, 0, size.width(), size.height());
    g.setColorAt(0, QColor(20, 40, 120));
    g.setColorAt(1, QColor(40, 160, 200));
    p.fillRect(image.rect(), g);
    p.setPen(QColor(230, 230, 255));
    for (int x = 0; x < size.width(); x += 16)
        p.drawLine(x, 0, x, size.height());
    for (int y = 0; y < size.height(); y += 16)
        p.drawLine(0, y, size.width(), y);
    return image;
}

QImage NewArea(QSize size)
{
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    QPainter p(&image);
    QRadialGradient g(size.width() / 2.0, size.height() / 2.0, size.width() / 1.5);
    g.setColorAt(0, QColor(250, 220, 60));
    g.setColorAt(1, QColor(160, 30, 30));
    p.fillRect(image.rect(), g);
    p.setPen(QPen(QColor(40, 20, 10), 3));
    for (int r = 10; r < size.width(); r += 24)
        p.drawEllipse(QPoint(size.width() / 3, size.height() / 3), r, r);
    p.fillRect(QRect(4, 4, 12, 12), Qt::white);  // tells a mirrored or shifted frame apart
    return image;
}

Effect Named(const char* name, const char* detail)
{
    const auto effect = FindEffect(QString::fromLatin1(name), QString::fromLatin1(detail));
    EXPECT_TRUE(effect.has_value()) << name;
    return effect.value_or(Effect{});
}

QString GoldenPath(const QString& name)
{
    return SourcePath(QStringLiteral("tests/fixtures/karaoke/transitions/%1.png").arg(name));
}

// Compares with the golden image; on a mismatch the frame is written beside it as ".actual".
::testing::AssertionResult MatchesGolden(const QImage& frame, const QString& name)
{
    const QString path = GoldenPath(name);
    const QImage actual = frame.convertToFormat(QImage::Format_RGB32);
    if (qEnvironmentVariableIsSet("SONGWEAVER_WRITE_GOLDEN")) {
        QDir().mkpath(QFileInfo(path).path());
        actual.save(path);
    }
    const QImage golden = QImage(path).convertToFormat(QImage::Format_RGB32);
    if (golden == actual)
        return ::testing::AssertionSuccess();
    actual.save(path + QStringLiteral(".actual.png"));
    return ::testing::AssertionFailure() << "frame differs from " << path.toStdString() << " (written .actual.png)";
}

} // namespace

TEST(Transitions, GoldenFramesOfAFewEffectsHalfWayAndNearTheEnd)
{
    const QSize size(160, 90);
    const QImage before = OldArea(size);
    const QImage after = NewArea(size);
    const struct {
        const char* name;
        const char* detail;
        const char* file;
    } cases[] = {
        {"Slide Side", "Left", "slide-side-left"},         {"Slide Cross", "Inside", "slide-cross-inside"},
        {"Wipe Blinds", "Vertical", "wipe-blinds-vertical"}, {"Wipe Box", "Outside", "wipe-box-outside"},
        {"Push Strips", "Horizontal", "push-strips-horizontal"}, {"Stretch Zoom", "Inside", "stretch-zoom-inside"},
        {"Poker", "Vertical", "poker-vertical"},           {"Custom Checkboard", "Top", "checkboard-top"},
    };
    for (const auto& c : cases) {
        for (const double progress : {0.5, 0.8}) {
            const QImage frame = TransitionFrame(before, after, Named(c.name, c.detail), progress);
            EXPECT_TRUE(MatchesGolden(frame, QStringLiteral("%1-%2").arg(QLatin1String(c.file)).arg(int(progress * 100))));
        }
    }
}

TEST(Transitions, EveryEffectAndDetailRunsFromTheOldAreaToTheNewOneWhole)
{
    const QSize size(120, 80);
    const QImage before = OldArea(size);
    const QImage after = NewArea(size);
    int runs = 0;
    for (const EffectRow& row : EffectTable()) {
        for (const QString& detail : row.Details) {
            const Effect effect = *FindEffect(row.Name, detail);
            const QString what = row.Name + QStringLiteral(" / ") + detail;
            EXPECT_EQ(TransitionFrame(before, after, effect, 0.0), before) << what.toStdString();
            // Mid-way the frame is neither picture: the effect shows.
            for (const double progress : {0.3, 0.7}) {
                const QImage mid = TransitionFrame(before, after, effect, progress);
                EXPECT_EQ(mid.size(), size);
                EXPECT_NE(mid, before) << what.toStdString() << " at " << progress;
                EXPECT_NE(mid, after) << what.toStdString() << " at " << progress;
            }
            Transition run(before, after, effect, TransitionPace::For(effect, size, 5), 1.0);
            EXPECT_FALSE(run.Finished(0));
            EXPECT_TRUE(run.Finished(run.Pace().DurationMs()));
            EXPECT_EQ(run.FrameAt(run.Pace().DurationMs()), after) << what.toStdString();
            ++runs;
        }
    }
    EXPECT_EQ(EffectTable().size(), 23u);
    EXPECT_EQ(runs, 66);
}

TEST(Transitions, NamesAreExactAndAStrangeDetailTakesTheEffectsFirst)
{
    EXPECT_FALSE(FindEffect(QStringLiteral("None"), {}));
    EXPECT_FALSE(FindEffect(QStringLiteral("slide side"), QStringLiteral("Left")));
    EXPECT_FALSE(FindEffect(QString(), QString()));
    const auto effect = FindEffect(QStringLiteral("Wipe Diagonal"), QStringLiteral("Bottom Right"));
    ASSERT_TRUE(effect);
    EXPECT_EQ(effect->Table().Details[effect->Detail], QStringLiteral("Bottom Right"));
    EXPECT_EQ(FindEffect(QStringLiteral("Push Side"), QStringLiteral("Diagonal"))->Detail, 0);
}

TEST(Transitions, ThePaceGrowsWithTheAreaAndEndsEvenUnderAHundredPixels)
{
    const Effect side = Named("Wipe Side", "Left");
    // 19.2 x 10.8 / 70 x 5 = 14.8: steps of 15 pixels, 9 ms apart, across 1920 pixels.
    const TransitionPace large = TransitionPace::For(side, QSize(1920, 1080), 5);
    EXPECT_EQ(large.StepPixels, 15);
    EXPECT_DOUBLE_EQ(large.FrameMs, 9.0);
    EXPECT_EQ(large.Frames, 128);
    EXPECT_DOUBLE_EQ(large.ProgressAt(0), 0.0);
    EXPECT_DOUBLE_EQ(large.ProgressAt(9.0 * 10 + 1), 150.0 / 1920);
    EXPECT_DOUBLE_EQ(large.ProgressAt(large.DurationMs()), 1.0);

    // 8 x 4.5 / 70 x 10 = 5.1: steps of 5 at 1.5 ms; a vertical detail runs along the height.
    const TransitionPace fast = TransitionPace::For(Named("Wipe Side", "Top"), QSize(800, 450), 10);
    EXPECT_EQ(fast.StepPixels, 5);
    EXPECT_DOUBLE_EQ(fast.FrameMs, 1.5);
    EXPECT_EQ(fast.Frames, 90);

    // Under 100 pixels the raw step is far below 1; one pixel a frame still reaches the end.
    const TransitionPace tiny = TransitionPace::For(side, QSize(90, 60), 1);
    EXPECT_EQ(tiny.StepPixels, 1);
    EXPECT_DOUBLE_EQ(tiny.FrameMs, 15.0);
    EXPECT_EQ(tiny.Frames, 90);
    EXPECT_DOUBLE_EQ(tiny.ProgressAt(tiny.DurationMs()), 1.0);

    // Blinds: 20 rounds of 6 x d ms, each round opening one more line of every blind.
    const TransitionPace blinds = TransitionPace::For(Named("Wipe Blinds", "Horizontal"), QSize(1920, 1080), 8);
    EXPECT_EQ(blinds.Frames, 20);
    EXPECT_DOUBLE_EQ(blinds.FrameMs, 18.0);
    EXPECT_DOUBLE_EQ(blinds.ProgressAt(0), 1.0 / 20);
    EXPECT_DOUBLE_EQ(blinds.ProgressAt(18.0 * 19), 1.0);

    // Speeds beyond 10 are not corrected: no delay left, the picture is there at once.
    EXPECT_DOUBLE_EQ(TransitionPace::For(side, QSize(800, 450), 11).ProgressAt(0), 1.0);
}

TEST(Transitions, BlindsOpenEveryTwentiethLineTogether)
{
    const QSize size(100, 60);
    const QImage before = OldArea(size);
    const QImage after = NewArea(size);
    // After 3 of 20 rounds, lines 0-2, 20-22, 40-42 are the new picture, the rest the old.
    const QImage frame = TransitionFrame(before, after, Named("Wipe Blinds", "Horizontal"), 3.0 / 20);
    for (int y = 0; y < size.height(); ++y) {
        const bool open = y % 20 < 3;
        EXPECT_EQ(frame.copy(0, y, size.width(), 1), (open ? after : before).copy(0, y, size.width(), 1)) << "line " << y;
    }
    for (const char* axis : {"Horizontal", "Vertical"})
        EXPECT_EQ(TransitionFrame(before, after, Named("Wipe Blinds", axis), 0.5 / 20), before)
            << axis << ": before the first round no line opens";
}
