// The player's commands without a window: the tray, and the commands this build has no window
// for yet.

#include "playback/PlayerCommands.h"
#include "playback/PlayerState.h"
#include "playback/PlayerTransport.h"
#include "support/FakeForms.h"
#include "support/PlayerSetup.h"
#include "support/ScriptedDialogs.h"

#include <gtest/gtest.h>

namespace {

struct Commands : testing::Test {
    Commands()
    {
        LoadDefaults(state, store);
        state.PlaylistOpen = true;
        state.KaraokeOpen = true;
    }
    Journal journal;
    MemoryStore store;
    PlayerState state;
    FakeWindows windows{journal};
    FakeSongList list{journal};
    FakeTray tray;
    ScriptedDialogs dialogs;
    PlayerTransport transport{state, windows, list};
    PlayerCommands commands{state, windows, transport, tray, dialogs};
};

} // namespace

TEST_F(Commands, WithoutASystemTrayMinimisingMinimisesTheWindows)
{
    tray.available = false;
    commands.MinimizeToTray();
    EXPECT_FALSE(state.InTray) << "nothing would bring the windows back from a tray that is not there";
    EXPECT_FALSE(tray.shown);
    EXPECT_EQ(journal.calls, (QStringList{"Player.Minimize", "UserList.Minimize", "Lyric.Minimize"}));

    tray.available = true;
    journal.calls.clear();
    commands.MinimizeToTray();
    EXPECT_TRUE(state.InTray);
    EXPECT_TRUE(tray.shown);
    EXPECT_EQ(journal.calls, (QStringList{"Player.Hide", "UserList.Hide", "Lyric.Hide"}));
    commands.MenuCommand("TrayRestore");
    EXPECT_FALSE(state.InTray);
    EXPECT_FALSE(tray.shown);
    EXPECT_TRUE(journal.calls.contains("Lyric.Show"));
}

TEST_F(Commands, PreferencesAboutAndTutorialOpenOnTheirTabsButNotWhileRecording)
{
    commands.ButtonAction(PlayerButton::Preferences);
    commands.MenuCommand("Prefs");
    commands.MenuCommand("Keyboard");
    EXPECT_TRUE(commands.KeyDown(Qt::Key_P, Qt::ControlModifier));
    commands.MenuCommand("About");
    commands.MenuCommand("HelpMe");
    commands.MenuCommand("Control");
    EXPECT_EQ(windows.shownInfo, (QStringList{"Preferences 0", "Preferences 0", "Preferences 5", "Preferences 0",
                                              "About", "Tutorial"}))
        << "\"Control\" stays inert";

    windows.shownInfo.clear();
    state.Recording = true;
    commands.ButtonAction(PlayerButton::Preferences);
    for (const char* key : {"Prefs", "Keyboard", "About", "HelpMe"})
        commands.MenuCommand(QString::fromLatin1(key));
    EXPECT_TRUE(commands.KeyDown(Qt::Key_P, Qt::ControlModifier)) << "the key is taken, its command refused";
    EXPECT_TRUE(windows.shownInfo.isEmpty()) << windows.shownInfo.join(", ").toStdString();
    EXPECT_FALSE(commands.KeyDown(Qt::Key_M, {})) << "a build without the voice commands";
}

TEST_F(Commands, InfoOpensTheDialogOfTheSelectedRowsKindButNotWhileRecording)
{
    const QStringList files = {MediaFixture("id3v1.mp3"), MediaFixture("comments.ogg"),
                               MediaFixture("pcm16-stereo.wav"), MediaFixture("untitled.mid"),
                               MediaFixture("not-audio.txt"), QStringLiteral("/no/such/song.mp3")};
    for (const QString& file : files)
        list.AddItem(QString(), QString(), file);
    commands.GetInfo();
    EXPECT_TRUE(windows.shownInfo.isEmpty()) << "no row selected";
    for (int row = 0; row < files.size(); ++row) {
        list.selected = row;
        if (row % 2)
            commands.MenuCommand(QStringLiteral("Info"));
        else
            EXPECT_TRUE(commands.KeyDown(Qt::Key_3, Qt::AltModifier));
    }
    EXPECT_EQ(windows.shownInfo, (QStringList{"MP3 " + files[0], "OGG " + files[1], "WAV " + files[2],
                                              "MIDI " + files[3]}));

    state.Recording = true;
    list.selected = 0;
    EXPECT_TRUE(commands.KeyDown(Qt::Key_3, Qt::AltModifier));
    commands.MenuCommand(QStringLiteral("Info"));
    EXPECT_EQ(windows.shownInfo.size(), 4) << "refused while recording";
}

TEST_F(Commands, ButtonFourteenAndCtrlEOpenAndUnloadTheEditorButNotWhileRecording)
{
    FakeWindows fresh(journal, false);
    PlayerCommands own(state, fresh, transport, tray, dialogs);
    state.Recording = true;
    EXPECT_TRUE(own.KeyDown(Qt::Key_E, Qt::ControlModifier));
    own.ButtonAction(PlayerButton::Editor);
    EXPECT_EQ(fresh.Editor(), nullptr);
    EXPECT_FALSE(state.EditorOpen);

    state.Recording = false;
    own.ButtonAction(PlayerButton::Editor);
    ASSERT_NE(fresh.Editor(), nullptr);
    EXPECT_TRUE(state.EditorOpen);
    own.KeyDown(Qt::Key_E, Qt::ControlModifier);
    EXPECT_FALSE(state.EditorOpen);
    own.MenuCommand("Editor");
    EXPECT_TRUE(state.EditorOpen);
    EXPECT_EQ(journal.calls, (QStringList{"Editor.Open", "Editor.CloseByUser", "Editor.Open"}));
    fresh.editor.closes = false;
    own.ButtonAction(PlayerButton::Editor);
    EXPECT_TRUE(state.EditorOpen) << "the user kept the editor open over changed rows";
}

TEST_F(Commands, ButtonNineLoadsAndTogglesTheMidiWindowWhileTheMenusControlItemStaysInert)
{
    FakeWindows fresh(journal, false);
    PlayerCommands own(state, fresh, transport, tray, dialogs);
    own.MenuCommand("Control");
    EXPECT_EQ(fresh.MidiEq(), nullptr) << "the menu item has never reached the window";
    own.ButtonAction(PlayerButton::Controls);
    ASSERT_NE(fresh.MidiEq(), nullptr);
    EXPECT_TRUE(state.ControlsOpen);
    own.ButtonAction(PlayerButton::Controls);
    EXPECT_FALSE(state.ControlsOpen);
    EXPECT_EQ(journal.calls, (QStringList{"MidiEq.Show", "MidiEq.Hide"}));
}

TEST_F(Commands, TheOpenDialogIsRefusedWhileEditingAndItsFilesBecomeThePlaylist)
{
    state.EditorOpen = true;
    commands.OpenFileDialog();
    EXPECT_EQ(dialogs.asked, 0);
    state.EditorOpen = false;
    dialogs.chosen = {QStringLiteral("/nowhere/a.mp3"), QStringLiteral("/nowhere/b.mp3")};
    commands.OpenFileDialog();
    EXPECT_EQ(dialogs.asked, 1);
    EXPECT_EQ(list.paths, dialogs.chosen);
    EXPECT_EQ(list.playing, 0) << "the first row is marked as it starts";
    EXPECT_EQ(state.Theme->MusicPath, "/nowhere");
}

TEST_F(Commands, SongsOpenedByNameComeBackFromTheRecentFilesAndAMissingOneIsNamedAndDropped)
{
    StartManualEngine(state);
    const QString wav = MediaFixture("pcm16-stereo.wav");
    const QString ogg = MediaFixture("comments.ogg");
    dialogs.chosen = {wav, ogg};
    commands.OpenFileDialog();
    EXPECT_EQ(state.Recent.Paths(), QStringList{wav}) << "the song that played, not every file chosen";

    transport.OpenFromCommandLine(ogg);
    EXPECT_EQ(state.Recent.Paths(), QStringList({ogg, wav}));

    commands.MenuCommand("Recent1");
    EXPECT_EQ(state.CurrentFile, wav);
    EXPECT_EQ(list.paths, QStringList{wav}) << "a recent song becomes the playlist, as the Open dialog's do";
    EXPECT_EQ(state.Recent.Paths(), QStringList({wav, ogg}));

    dialogs.chosen = {MediaFixture("not-audio.txt")};
    commands.OpenFileDialog();
    EXPECT_EQ(state.Recent.Paths(), QStringList({wav, ogg})) << "a file that did not open is not listed";

    state.Recent.Add(QStringLiteral("/nowhere/gone.kar"));
    dialogs.messages.clear();
    commands.MenuCommand("Recent0");
    ASSERT_EQ(dialogs.messages.size(), 1);
    EXPECT_TRUE(dialogs.messages[0].contains("/nowhere/gone.kar")) << dialogs.messages[0].toStdString();
    EXPECT_EQ(state.Recent.Paths(), QStringList({wav, ogg})) << "gone from the list";

    commands.MenuCommand("Recent0");
    ASSERT_EQ(state.CurrentFile, wav);
    state.EditorOpen = true;
    commands.MenuCommand("Recent1");
    EXPECT_EQ(state.CurrentFile, wav) << "refused while editing, as the Open dialog is";
    state.EditorOpen = false;
    commands.MenuCommand("Recent9");
    commands.MenuCommand("RecentX");
    EXPECT_EQ(state.CurrentFile, wav);

    commands.MenuCommand("RecentClear");
    EXPECT_TRUE(state.Recent.Paths().isEmpty());
}
