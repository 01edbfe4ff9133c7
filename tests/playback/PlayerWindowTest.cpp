#include "audio/SoundDevices.h"
#include "core/AppState.h"
#include "core/WindowPosition.h"
#include "playback/PlayerTransport.h"
#include "playback/PlayerWindow.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>

TEST(PlayerWindow, UnloadSavesItsPositionInTwipsWithTheWindowFlags)
{
    AppState state;
    state.Language.LoadTable(false);
    MemoryStore store;
    PlayerWindow player(state, store);
    player.ApplySkin();
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
    AppState state;
    MemoryStore store;
    PlayerWindow player(state, store);
    player.Show();
    QSignalSpy asked(&player, &PlayerWindow::closeRequested);
    player.close();
    EXPECT_EQ(asked.size(), 1);
    EXPECT_TRUE(player.isVisible()) << "the orderly way out hides it, after saving";
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
