// The karaoke window on the offscreen platform: the page it shows while a song plays, its
// menu commands, full screen and back, and its saved place.

#include "karaoke/KaraokeFixtures.h"
#include "core/Colors.h"
#include "core/WindowPosition.h"
#include "ui/karaoke/LyricWindow.h"

#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>

namespace {

class PlayingSong final : public SongClock {
public:
    bool HasSong() const override { return true; }
    double Position() const override { return position; }
    double position = 0;
};

struct Window {
    TestTheme settings;
    CoreState state;
    LyricsState lyrics;
    PlayingSong playing;
    PlayingSong* song = &playing;
    std::unique_ptr<LyricWindow> window;

    Window()
    {
        state.Theme = std::make_unique<ThemeClass>(settings.store, TestTheme::Environment(), state.MonitorList);
        state.Theme->LyricsFitFont = false;
        state.KaraokeOpen = true;
        auto sung = Song({{{1.0, "Hel"}, {1.5, "lo "}, {2.0, "there"}}, {{3.0, "again"}}});
        sung[0].HighlightColor = Win32FromColor(QColor(255, 0, 0));
        sung[0].Title = QStringLiteral("Greeting");
        lyrics.PlayLyrics = sung;
        lyrics.LyricsTitleText = QStringLiteral("Greeting");
        window = std::make_unique<LyricWindow>(state, lyrics, settings.store, playing);
        window->resize(640, 360);
        window->Show();
        window->ChangeLyrics();
    }
    void PlayTo(double seconds)
    {
        for (double p = 0; p <= seconds; p += 0.01) {
            song->position = p;
            double position = p;
            window->IsPlaying(position);
        }
    }
    int RedPixels()
    {
        const QImage image = window->grab().toImage();
        int red = 0;
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x) {
                const QRgb p = image.pixel(x, y);
                red += qRed(p) > 200 && qGreen(p) < 60 && qBlue(p) < 60 ? 1 : 0;
            }
        return red;
    }
};

} // namespace

TEST(LyricWindow, ShowsTheLitSyllableAsTheSongPlaysAndFollowsAJump)
{
    Window w;
    EXPECT_EQ(w.RedPixels(), 0) << "the title in the intro";
    w.PlayTo(1.7);
    EXPECT_EQ(w.lyrics.CurrentLyric, 2);
    const int lit = w.RedPixels();
    EXPECT_GT(lit, 50);
    w.PlayTo(2.5);
    EXPECT_GT(w.RedPixels(), lit) << "a third syllable lit";
    w.song->position = 1.2;
    w.window->GetLastPos();
    EXPECT_EQ(w.lyrics.CurrentLyric, 1);
    EXPECT_LT(w.RedPixels(), lit) << "back to the first syllable";
}

TEST(LyricWindow, MenuCommandsChangeOffsetAndFontAndHandTheRestToThePlayer)
{
    Window w;
    QStringList handed;
    w.window->PlayerCommand = [&](const QString& key) { handed << key; };
    w.window->RunCommand("OffsetIn");
    w.window->RunCommand("OffsetIn");
    w.window->RunCommand("OffsetOut");
    EXPECT_DOUBLE_EQ(w.state.Theme->LyricsOffset(), 0.1);
    const int size = w.window->View().FontSize();
    w.window->RunCommand("IncFont");
    EXPECT_EQ(w.window->View().FontSize(), size + 1);
    w.window->RunCommand("DecFont");
    w.window->RunCommand("DecFont");
    EXPECT_EQ(w.window->View().FontSize(), size - 1);
    for (const char* key : {"Previous", "Play", "Pause", "Stop", "Next", "Options"})
        w.window->RunCommand(key);
    EXPECT_EQ(handed, (QStringList{"Previous", "Play", "Pause", "Stop", "Next", "Options"}));
}

TEST(LyricWindow, FullScreenReturnsToTheFramedPlaceWhichIsSavedOnUnload)
{
    Window w;
    w.window->setGeometry(100, 120, 500, 300);
    QTest::qWait(10);
    const QRect framed = w.window->geometry();
    w.window->ToggleFullScreen();
    EXPECT_TRUE(w.window->isFullScreen());
    w.window->ToggleFullScreen();
    EXPECT_FALSE(w.window->isFullScreen());
    EXPECT_EQ(w.window->geometry(), framed);
    w.window->Unload();
    const auto saved = ReadWindowPosition(w.settings.store, "karaoke window position");
    ASSERT_TRUE(saved.has_value());
    EXPECT_EQ(*saved, framed);
}

TEST(LyricWindow, ATimedPictureComesInOnTheWindowsOwnTimerWhileTheEventsFlow)
{
    Window w;
    QTemporaryDir dir;
    QImage picture(160, 90, QImage::Format_RGB32);
    picture.fill(Qt::blue);
    const QString file = dir.filePath(QStringLiteral("blue.png"));
    ASSERT_TRUE(picture.save(file));
    w.lyrics.PlayPictures = {PictureItem{}, {file, 1, QStringLiteral("Wipe Side"), QStringLiteral("Left"), 10}};
    BuildPictureOrder(w.lyrics);
    w.window->ChangeLyrics();
    w.PlayTo(1.2);
    ASSERT_TRUE(w.window->View().TransitionRunning());
    const QImage first = w.window->View().Frame().copy();

    // The window's timer steps it; the test's own events keep coming meanwhile.
    int turns = 0;
    EXPECT_TRUE(QTest::qWaitFor([&] {
        ++turns;
        return !w.window->View().TransitionRunning();
    }, 5000));
    EXPECT_GT(turns, 2);
    const QImage last = w.window->View().Frame();
    EXPECT_NE(first, last);
    EXPECT_EQ(last.pixelColor(3, 3), QColor(Qt::blue)) << "the picture fills the window whole";
    EXPECT_EQ(last.pixelColor(636, 356), QColor(Qt::blue));
}
