// The playlist window on the offscreen platform: the double click, the keys and commands,
// and drag and drop.

#include "SessionWindows.h"
#include "playback/PlayerState.h"
#include "playback/PlayerTransport.h"
#include "support/PlayerSetup.h"
#include "support/PlaylistRows.h"
#include "support/ScriptedDialogs.h"
#include "ui/playlist/UserList.h"

#include <QAction>
#include <QApplication>
#include <QDir>
#include <QMenu>
#include <QFileDialog>
#include <QListView>
#include <QMimeData>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QUrl>
#include <gtest/gtest.h>

namespace {

class PlaylistWindow : public testing::Test {
protected:
    PlaylistWindow()
    {
        LoadDefaults(state, windows.store);
        StartManualEngine(state);
        list.Show();
    }

    QTemporaryDir dir;
    PlayerState state;
    Journal journal;
    SessionWindows windows{state, journal};
    Playlist songs{state.Language};
    PlayerTransport transport{state, windows, songs};
    ScriptedDialogs dialogs;
    UserList list{state, songs, windows.store, windows.docking, transport, dialogs};
};

// The files a real file dialog lists in the folder under the filter, once it has read them.
QStringList ListedFiles(const QString& folder, const QString& filter)
{
    QFileDialog dialog(nullptr, QString(), folder, filter);
    dialog.setOption(QFileDialog::DontUseNativeDialog);
    dialog.show();
    auto* view = dialog.findChild<QListView*>(QStringLiteral("listView"));
    QStringList files;
    for (int waited = 0; waited < 5000 && view; waited += 50) {
        QTest::qWait(50);
        files.clear();
        for (int row = 0; row < view->model()->rowCount(view->rootIndex()); ++row)
            files << view->model()->index(row, 0, view->rootIndex()).data().toString();
        if (!files.isEmpty())
            break;
    }
    files.sort(Qt::CaseInsensitive);
    return files;
}

} // namespace

TEST_F(PlaylistWindow, ADoubleClickMarksTheRowBeforeItsSongIsRead)
{
    songs.AddItem("gone", "00:10", dir.filePath("gone.wav"));
    songs.AddItem("song", "00:01", WriteRampWav(dir.filePath("song.wav"), 48000));
    transport.fnChangeSong(0);
    EXPECT_EQ(songs.Model().CurrentPlaying(), 0) << "marked though the file is missing";
    EXPECT_EQ(state.PlayingIndex, -1) << "the failed load closed the song";
    const QPoint second(10, list.List().RowHeight() + 3);
    QTest::mouseDClick(list.List().viewport(), Qt::LeftButton, {}, second);
    EXPECT_EQ(songs.Model().CurrentPlaying(), 1);
    EXPECT_EQ(state.PlayingIndex, 1);
    EXPECT_EQ(state.CurrentFile, dir.filePath("song.wav"));
}

TEST_F(PlaylistWindow, KeysDriveTheTransportAndDeleteRemovesTheSelection)
{
    songs.AddItem("a", "00:01", WriteRampWav(dir.filePath("a.wav"), 48000));
    songs.AddItem("b", "00:01", WriteRampWav(dir.filePath("b.wav"), 48000));
    transport.fnChangeSong(0);
    auto sessionState = [this] { return state.Session->GetState(); };
    QTest::keyClick(&list, Qt::Key_X);
    EXPECT_EQ(sessionState(), 2);
    QTest::keyClick(&list, Qt::Key_C);
    EXPECT_EQ(sessionState(), 1);
    QTest::keyClick(&list, Qt::Key_V);
    EXPECT_EQ(sessionState(), 0);
    QTest::keyClick(&list, Qt::Key_B);
    EXPECT_EQ(state.CurrentFile, dir.filePath("b.wav"));
    QTest::keyClick(&list, Qt::Key_Z);
    EXPECT_EQ(state.CurrentFile, dir.filePath("a.wav"));

    songs.Model().SetSelected(1, true);
    QTest::keyClick(&list, Qt::Key_Delete);
    EXPECT_EQ(RowTexts(songs), QStringList{"a"});
}

TEST_F(PlaylistWindow, CommandsSortSelectAndTheSaveItemStaysUnreached)
{
    for (const char* text : {"Cherry", "apple", "Banana"})
        songs.AddItem(text, "00:01", dir.filePath(text));
    list.Command("SortAsc");
    EXPECT_EQ(RowTexts(songs), (QStringList{"apple", "Banana", "Cherry"}));
    list.Command("SortDesc");
    EXPECT_EQ(RowTexts(songs), (QStringList{"Cherry", "Banana", "apple"}));
    list.Command("SelAll");
    list.Command("Rev");
    EXPECT_EQ(songs.SelectedIndex(), -1);

    bool dialogShown = false;
    QTimer::singleShot(300, [&] {
        if (QWidget* dialog = QApplication::activeModalWidget()) {
            dialogShown = true;
            dialog->close();
        }
    });
    list.Command("ListSave");
    QTest::qWait(350);
    EXPECT_FALSE(dialogShown) << "the menu's \"ListSave\" is not the table's \"Listsave\"";

    list.Command("Close");
    EXPECT_FALSE(list.isVisible());
    EXPECT_FALSE(state.PlaylistOpen);
}

TEST_F(PlaylistWindow, DroppedFilesAndFoldersAreProbedAndAdded)
{
    QDir(dir.path()).mkpath("album/disc");
    CopyFixture(MediaFixture("id3v2.mp3"), dir.filePath("album/disc"), "2.mp3");
    CopyFixture(MediaFixture("comments.ogg"), dir.filePath("album"), "1.ogg");
    CopyFixture(MediaFixture("not-audio.txt"), dir.filePath("album"), "notes.txt");
    const QString single = CopyFixture(MediaFixture("id3v1.mp3"), dir.path(), "single.mp3");

    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(single), QUrl::fromLocalFile(dir.filePath("album"))});
    QDragEnterEvent enter(QPoint(20, 40), Qt::CopyAction, &data, Qt::LeftButton, {});
    QApplication::sendEvent(&list, &enter);
    EXPECT_TRUE(enter.isAccepted());
    QDropEvent drop(QPointF(20, 40), Qt::CopyAction, &data, Qt::LeftButton, {});
    QApplication::sendEvent(&list, &drop);
    EXPECT_TRUE(drop.isAccepted());
    ASSERT_TRUE(WaitForProbedRows(songs, 3));
    EXPECT_EQ(RowTexts(songs), (QStringList{"Artist One - Title One", "Ogg Artist - Ogg Title", "Artist Two - Title Two"}))
        << "the folder's audio files in name order, the text file left out";
}


TEST_F(PlaylistWindow, TheMenusPlayPlaysTheSelectedRow)
{
    songs.AddItem("a", "00:01", WriteRampWav(dir.filePath("a.wav"), 48000));
    songs.AddItem("b", "00:01", WriteRampWav(dir.filePath("b.wav"), 48000));
    songs.Model().SetSelected(1, true);
    list.Command("Play");
    EXPECT_EQ(state.CurrentFile, dir.filePath("b.wav"));
    EXPECT_EQ(songs.Model().CurrentPlaying(), 1);
    ASSERT_NE(state.Session, nullptr);
    EXPECT_EQ(state.Session->GetState(), SongSession::Running);
}

TEST_F(PlaylistWindow, AddAndLoadShowEverySongAndListWithAllFilesLast)
{
    // A text file may be an UltraStar song, which plays the audio it names.
    const QStringList songFiles{"a.mp3", "b.OGG", "c.wav", "d.mpc", "e.ape", "f.mid", "g.midi", "h.KAR", "song.txt"};
    for (const QString& name : songFiles + QStringList{"cover.jpg"})
        WriteFileBytes(dir.filePath(name), "x");

    dialogs.chosen = {};
    list.fnAddSong();
    ASSERT_EQ(dialogs.filters.size(), 1);
    EXPECT_EQ(ListedFiles(dir.path(), dialogs.filters[0]), songFiles);
    EXPECT_TRUE(dialogs.filters[0].endsWith(QStringLiteral(";;All files (*)")));

    WriteFileBytes(dir.filePath("party.m3u"), "x");
    WriteFileBytes(dir.filePath("old.PLS"), "x");
    list.fnListLoad();
    ASSERT_EQ(dialogs.filters.size(), 2);
    EXPECT_EQ(ListedFiles(dir.path(), dialogs.filters[1]), (QStringList{"old.PLS", "party.m3u"}));
}

TEST_F(PlaylistWindow, AListWithNoSongsSaysSoAndKeepsTheRows)
{
    songs.AddItem("Mine", "00:01", dir.filePath("mine.wav"));
    WriteFileBytes(dir.filePath("empty.pls"), "[playlist]\r\nNumberOfEntries=0\r\n");
    dialogs.files.push_back(dir.filePath("empty.pls"));
    list.fnListLoad();
    EXPECT_EQ(songs.ListCount(), 1);
    ASSERT_EQ(dialogs.messages.size(), 1);
    EXPECT_TRUE(dialogs.messages[0].startsWith(QStringLiteral("info: The playlist names no songs:")));
    EXPECT_TRUE(dialogs.messages[0].endsWith(dir.filePath("empty.pls")));
}

TEST_F(PlaylistWindow, AddFolderAddsItsSongsAndThoseOfItsFoldersFromTheButtonAndTheMenu)
{
    QDir(dir.path()).mkpath(QStringLiteral("album/disc 2"));
    WriteRampWav(dir.filePath("album/b.wav"), 4800);
    WriteRampWav(dir.filePath("album/disc 2/a.wav"), 4800);
    WriteFileBytes(dir.filePath("album/cover.txt"), "not a song");
    QStringList offered;
    for (QAction* action : list.Menu(QStringLiteral("Bt1"))->actions())
        offered << action->data().toString();
    EXPECT_EQ(offered, (QStringList{"AddSongs", "AddFolder"})) << "the Add button's menu";
    QStringList context;
    for (QAction* action : list.Menu(QStringLiteral("MNU"))->actions())
        context << action->data().toString();
    EXPECT_TRUE(context.contains("AddFolder"));

    dialogs.files = {dir.filePath("album")};
    list.Command(QStringLiteral("AddFolder"));
    ASSERT_TRUE(WaitForProbedRows(songs, 2));
    EXPECT_EQ(songs.ListCount(), 2) << "the text file is no song";
    EXPECT_EQ(songs.ItemPath(0), dir.filePath("album/b.wav"));
    EXPECT_EQ(songs.ItemPath(1), dir.filePath("album/disc 2/a.wav"));
    list.Command(QStringLiteral("AddFolder"));
    EXPECT_EQ(songs.ListCount(), 2) << "a cancelled choice adds nothing";
}
