// The main window as a user drives it on the offscreen platform: clicks on the skin's buttons,
// the keyboard table, the menus and the refusals while recording.

#include "playback/MediaSession.h"
#include "playback/PlayerCommands.h"
#include "playback/PlayerState.h"
#include "playback/PlayerTransport.h"
#include "SessionWindows.h"
#include "support/PlayerSetup.h"
#include "support/ScriptedDialogs.h"
#include "ui/player/PlayerServices.h"

#include <QMenu>
#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>

namespace {

class MainWindow : public testing::Test {
protected:
    MainWindow()
    {
        LoadDefaults(state, windows.store);
        StartManualEngine(state);
        windows.player.ApplySkin();
        windows.player.BuildMenus();
        windows.player.Show();
        ConnectPlayerWindow(windows.player, commands, transport);
        commands.CloseApp = [this] { closed = true; };
        song = WriteRampWav(dir.filePath("song.wav"), 48000 * 3);
        list.paths = {song, WriteRampWav(dir.filePath("next.wav"), 48000)};
        transport.OpenSong(song, false);
        state.PlayingIndex = 0;
    }
    QPoint Centre(int button) const { return windows.player.SkinParts().ButtonRect(button).center(); }
    void Click(int button) { QTest::mouseClick(&windows.player, Qt::LeftButton, {}, Centre(button)); }
    void Key(int key, Qt::KeyboardModifiers modifiers = {}) { QTest::keyClick(&windows.player, Qt::Key(key), modifiers); }
    int SessionState() { return state.Session ? state.Session->GetState() : -1; }

    QTemporaryDir dir;
    PlayerState state;
    Journal journal;
    SessionWindows windows{state, journal};
    FakeSongList list{journal};
    FakeTray tray;
    ScriptedDialogs dialogs;
    PlayerTransport transport{state, windows, list};
    PlayerCommands commands{state, windows, transport, tray, dialogs};
    QString song;
    bool closed = false;
};

} // namespace

TEST_F(MainWindow, ClicksOnTheButtonShapesRunTheirCommands)
{
    Click(2);
    EXPECT_EQ(SessionState(), 2);
    EXPECT_TRUE(windows.player.LampLit(PlayerLamp::Play));
    Click(3);
    EXPECT_EQ(SessionState(), 1);
    EXPECT_TRUE(windows.player.LampLit(PlayerLamp::Pause));
    Click(4);
    EXPECT_EQ(SessionState(), 0);
    EXPECT_TRUE(windows.player.LampLit(PlayerLamp::Stop));
    Click(5);
    EXPECT_EQ(state.CurrentFile, dir.filePath("next.wav"));
    Click(1);
    EXPECT_EQ(state.CurrentFile, song);

    // The corner of the round Play button's box lies outside its shape.
    const QRect box = windows.player.SkinParts().ButtonRect(2);
    EXPECT_EQ(windows.player.SkinParts().ButtonAt(box.topLeft() + QPoint(1, 1)), 0);
    EXPECT_EQ(windows.player.SkinParts().ButtonAt(box.center()), 2);
    transport.StopSong();
    QTest::mouseClick(&windows.player, Qt::LeftButton, {}, box.topLeft() + QPoint(1, 1));
    EXPECT_EQ(SessionState(), 0) << "a click beside the shape plays nothing";
}

TEST_F(MainWindow, MuteActsOnThePressAndStaysDrawnPressed)
{
    QTest::mousePress(&windows.player, Qt::LeftButton, {}, Centre(6));
    EXPECT_TRUE(state.Muted) << "on the press, before any release";
    QTest::mouseRelease(&windows.player, Qt::LeftButton, {}, Centre(6));
    EXPECT_TRUE(state.Muted) << "the release does not toggle it back";
    EXPECT_EQ(windows.player.ButtonState(PlayerButton::Mute), 2);
    windows.player.SetButton(PlayerButton::Mute, 1);
    EXPECT_EQ(windows.player.ButtonState(PlayerButton::Mute), 2) << "muted: hover still looks pressed";
    Click(6);
    EXPECT_FALSE(state.Muted);
    windows.player.SetButton(PlayerButton::Mute, 2);
    EXPECT_EQ(windows.player.ButtonState(PlayerButton::Mute), 0) << "not muted: pressed looks normal";
}

TEST_F(MainWindow, WhileRecordingOnlyThePlainTransportWorks)
{
    state.Recording = true;
    Click(2);
    EXPECT_EQ(SessionState(), 2) << "Play works";
    Click(5);
    Click(1);
    EXPECT_EQ(state.CurrentFile, song) << "Next and Previous are refused";
    QTest::mouseClick(&windows.player, Qt::LeftButton, {}, Centre(6));
    EXPECT_FALSE(state.Muted);
    Key(Qt::Key_B);
    Key(Qt::Key_Z);
    EXPECT_EQ(state.CurrentFile, song);
    Key(Qt::Key_V);
    EXPECT_EQ(SessionState(), 0) << "Stop works";
    windows.player.SetButton(PlayerButton::Microphone, 1);
    EXPECT_EQ(windows.player.ButtonState(PlayerButton::Microphone), 0) << "the microphone button is not redrawn while recording";
}

TEST_F(MainWindow, TheKeyboardTableInItsOrder)
{
    Key(Qt::Key_X);
    EXPECT_EQ(SessionState(), 2);
    Key(Qt::Key_C, Qt::AltModifier);
    EXPECT_EQ(SessionState(), 1) << "Alt+C is caught by the plain C row";
    Key(Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(SessionState(), 0) << "plain letters fire with Ctrl held";
    Key(Qt::Key_B);
    EXPECT_EQ(state.CurrentFile, dir.filePath("next.wav"));
    Key(Qt::Key_T, Qt::ControlModifier);
    EXPECT_EQ(windows.player.TimeStyle(), "ELAPSED");
    Key(Qt::Key_T, Qt::ControlModifier);
    EXPECT_EQ(windows.player.TimeStyle(), "CURRENT");
    state.KaraokeOpen = true;
    Key(Qt::Key_K, Qt::ControlModifier);
    EXPECT_FALSE(state.KaraokeOpen);
    Key(Qt::Key_K, Qt::ControlModifier);
    EXPECT_TRUE(state.KaraokeOpen);
    EXPECT_TRUE(journal.calls.contains("Lyric.GetLastPos")) << "a window opened mid-song catches up";
    Key(Qt::Key_T);
    EXPECT_EQ(windows.player.TimeStyle(), "CURRENT") << "T needs Ctrl";
}

TEST_F(MainWindow, MenusCarryTheirKeysAndControlStaysInert)
{
    QMenu* main = windows.player.Menu("Main");
    ASSERT_NE(main, nullptr);
    QStringList keys;
    for (QAction* action : main->actions())
        if (!action->isSeparator())
            keys << (action->menu() ? action->menu()->objectName() : action->data().toString());
    EXPECT_EQ(keys, (QStringList{"About", "Open", "Recent", "Info", "List", "Control", "Karaoke", "Editor", "Library",
                                 "Singers", "Remote", "Microphone", "Record", "Voice", "Options", "Player", "Sound", "HelpMe",
                                 "Keyboard", "Exit"}));
    QStringList tray;
    for (QAction* action : windows.player.Menu("TrayMenu")->actions())
        tray << action->data().toString();
    EXPECT_EQ(tray, (QStringList{"TrayRestore", "TrayExit"}));

    const bool controls = state.ControlsOpen;
    commands.MenuCommand("Control");
    EXPECT_EQ(state.ControlsOpen, controls);
    commands.MenuCommand("Elapsed");
    EXPECT_EQ(windows.player.TimeStyle(), "ELAPSED") << "\"Time elapsed\" shows the remaining time, as it always did";
    commands.MenuCommand("Play");
    EXPECT_EQ(SessionState(), 2);
    commands.MenuCommand("Library");
    commands.MenuCommand("Singers");
    Key(Qt::Key_F, Qt::ControlModifier);
    EXPECT_EQ(windows.shownInfo, (QStringList{"Library", "Singers", "Library"}));
    commands.MenuCommand("Exit");
    EXPECT_TRUE(closed);
}

TEST_F(MainWindow, TheTrayHidesTheWindowsAndBringsThemBack)
{
    state.KaraokeOpen = true;
    commands.MinimizeToTray();
    EXPECT_TRUE(state.InTray);
    EXPECT_FALSE(windows.player.isVisible());
    EXPECT_TRUE(journal.calls.contains("Lyric.Hide"));
    commands.MenuCommand("TrayRestore");
    EXPECT_FALSE(state.InTray);
    EXPECT_TRUE(windows.player.isVisible());
    EXPECT_TRUE(journal.calls.contains("Lyric.Show"));
}

TEST_F(MainWindow, TheRecentFilesMenuNumbersTheSongsAsTheyAreWhenItOpens)
{
    QMenu* recent = windows.player.Menu("Recent");
    ASSERT_NE(recent, nullptr);
    emit recent->aboutToShow();
    ASSERT_EQ(recent->actions().size(), 1);
    EXPECT_FALSE(recent->actions()[0]->isEnabled()) << "nothing to clear";

    for (int i = 10; i >= 0; --i)
        state.Recent.Add(QStringLiteral("/missing/Rock & Roll %1.kar").arg(i));
    emit recent->aboutToShow();
    const QList<QAction*> actions = recent->actions();
    ASSERT_EQ(actions.size(), RecentFiles::kKept + 2);
    EXPECT_EQ(actions[0]->text(), "&1 Rock && Roll 0.kar");
    EXPECT_EQ(actions[0]->toolTip(), "/missing/Rock & Roll 0.kar");
    EXPECT_EQ(actions[9]->text(), "1&0 Rock && Roll 9.kar");
    EXPECT_TRUE(actions[10]->isSeparator());

    actions[1]->trigger();
    ASSERT_EQ(dialogs.messages.size(), 1) << "the missing song is named";
    EXPECT_TRUE(dialogs.messages[0].contains("Rock & Roll 1.kar"));
    actions[11]->trigger();
    EXPECT_TRUE(state.Recent.Paths().isEmpty());
}
