#include "audio/SoundDevices.h"
#include "core/CoreState.h"
#include "core/WindowPosition.h"
#include "playback/PlayerTransport.h"
#include "ui/player/PlayerWindow.h"
#include "support/TestSupport.h"
#include "ui/kit/Docking.h"

#include <QDir>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>

namespace {

// The main window with its skin, over the settings of a first run.
struct SkinnedPlayer {
    CoreState state;
    MemoryStore store;
    Docking docking;
    PlayerWindow player{state, store, docking};
    SkinnedPlayer()
    {
        state.Language.LoadTable(false);
        player.ApplySkin();
    }
};

} // namespace

TEST(PlayerWindow, UnloadSavesItsPositionInTwipsWithTheWindowFlags)
{
    SkinnedPlayer window;
    PlayerWindow& player = window.player;
    CoreState& state = window.state;
    MemoryStore& store = window.store;
    player.MoveTo(QPoint(100, 40));
    state.PlaylistOpen = true;
    state.ControlsOpen = false;

    player.Unload();
    const QSize size = player.Geometry().size();
    EXPECT_EQ(store.values[QStringLiteral("player position")],
              QStringLiteral("1500,600,%1,%2,1,0").arg(size.width() * 15).arg(size.height() * 15));
    const auto read = ReadPlayerPosition(store);
    ASSERT_TRUE(read);
    EXPECT_EQ(read->geometry.topLeft(), QPoint(100, 40));
    EXPECT_TRUE(read->playlistOpen);
    EXPECT_FALSE(read->controlsOpen);
}

TEST(PlayerWindow, ClosingAsksTheApplicationInsteadOfClosing)
{
    CoreState state;
    MemoryStore store;
    Docking docking;
    PlayerWindow player(state, store, docking);
    player.Show();
    QSignalSpy asked(&player, &PlayerWindow::closeRequested);
    player.close();
    EXPECT_EQ(asked.size(), 1);
    EXPECT_TRUE(player.isVisible()) << "the orderly way out hides it, after saving";
}

namespace {

struct PaintCounter : QObject {
    int paints = 0;
    bool eventFilter(QObject*, QEvent* event) override
    {
        paints += event->type() == QEvent::Paint ? 1 : 0;
        return false;
    }
};

} // namespace

TEST(PlayerWindow, APlayingSongRepaintsTheWindowOnlyWhenItsTimeOrKnobMoves)
{
    SkinnedPlayer window;
    PlayerWindow& player = window.player;
    player.Show();
    QTest::qWait(50);
    PaintCounter counter;
    player.installEventFilter(&counter);
    // Two seconds of a four-minute song, ticked every 10 ms as the player ticks.
    for (int tick = 0; tick < 200; ++tick) {
        const double seconds = 61.0 + tick * 0.01;
        player.SetTimeText(QStringLiteral("01:%1").arg(int(seconds) - 60, 2, 10, QChar(u'0')));
        player.SetProgress(seconds / 240.0);
        QCoreApplication::processEvents();
    }
    EXPECT_GE(counter.paints, 2) << "the time turned over twice";
    EXPECT_LE(counter.paints, 20) << "a hundred ticks a second ask for no hundred paints";
}

TEST(PlayerTransport, CommandLinePaths)
{
    QTemporaryDir dir;
    const QString cwd = QDir::currentPath();
    QDir::setCurrent(dir.path());
    EXPECT_EQ(CommandLineSongPath(QStringLiteral("my song.lrs")), dir.filePath(QStringLiteral("my song.mp3")));
    EXPECT_EQ(CommandLineSongPath(QStringLiteral("/music/a.LRS")), "/music/a.mp3");
    EXPECT_EQ(CommandLineSongPath(QStringLiteral("/music/a.ogg")), "/music/a.ogg");
    QDir::setCurrent(cwd);
}

TEST(SoundDevices, TheNullDeviceCountsAsASoundDevice)
{
    const QByteArray saved = qgetenv("SONGWEAVER_AUDIO");
    qputenv("SONGWEAVER_AUDIO", "null");
    EXPECT_TRUE(NullDeviceChosen());
    EXPECT_TRUE(HasOutputDevice());
    qputenv("SONGWEAVER_AUDIO", "pulse");
    EXPECT_FALSE(NullDeviceChosen());
    EXPECT_EQ(HasOutputDevice(), !OutputDeviceNames().isEmpty());
    qputenv("SONGWEAVER_AUDIO", saved);
}

TEST(Docking, WindowsTouchingTheMainWindowMoveWithIt)
{
    EXPECT_TRUE(EdgesTouch(QRect(0, 0, 100, 50), QRect(0, 50, 100, 200)));
    EXPECT_TRUE(EdgesTouch(QRect(0, 0, 100, 50), QRect(102, 10, 30, 30)));
    EXPECT_FALSE(EdgesTouch(QRect(0, 0, 100, 50), QRect(0, 70, 100, 200)));
    EXPECT_FALSE(EdgesTouch(QRect(0, 0, 100, 50), QRect(200, 50, 100, 200))) << "below, but beside it";

    Docking docking;
    QWidget main, docked, apart;
    for (QWidget* w : {&main, &docked, &apart})
        w->setWindowFlag(Qt::FramelessWindowHint);
    main.setGeometry(100, 100, 200, 80);
    docked.setGeometry(100, 180, 200, 300);
    apart.setGeometry(600, 600, 100, 100);
    for (QWidget* w : {&main, &docked, &apart}) {
        w->show();
        docking.Register(w);
    }
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&main));

    main.move(150, 120);
    QTRY_COMPARE(docked.pos(), QPoint(150, 200));
    EXPECT_EQ(apart.pos(), QPoint(600, 600));

    docking.Unregister(&docked);
    main.move(160, 120);
    QTest::qWait(20);
    EXPECT_EQ(docked.pos(), QPoint(150, 200)) << "an unloaded window stays";
}

TEST(PlayerLabels, LongTextsAreCutWithDotsToFitTheirWidth)
{
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setPointSize(13);
    const QString fitted = FitLabelText(QStringLiteral("A Title Far Too Long For The Little Label Of The Player"), font, 180);
    EXPECT_TRUE(fitted.endsWith("..."));
    EXPECT_LE(QFontMetrics(font).horizontalAdvance(fitted), 180);
    EXPECT_TRUE(QStringLiteral("A Title Far Too Long").startsWith(fitted.chopped(3)) || fitted.size() > 23);
    EXPECT_EQ(FitLabelText(QStringLiteral("Short"), font, 180), "Short");
}
