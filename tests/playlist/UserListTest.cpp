// The playlist window on the offscreen platform: rows arriving in order from the probe, the
// double click, the keys and commands, drag and drop, and the list it saves at exit.

#include "audio/ManualDevice.h"
#include "core/AppState.h"
#include "playback/MediaSession.h"
#include "playback/PlayerTransport.h"
#include "playback/SessionWindows.h"
#include "playlist/UserList.h"

#include <QApplication>
#include <QMimeData>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QUrl>
#include <gtest/gtest.h>

namespace {

// The transport walks this playlist window; the other windows are faked.
class PlaylistWindows final : public FormProvider {
public:
    PlaylistWindows(AppState& state, Journal& journal) : inner(state, journal) {}
    PlayerForm& Player() override { return inner.player; }
    PlaylistForm* UserList() override { return list; }
    ControlsForm* MidiEq() override { return &inner.midiEq; }
    KaraokeForm* Lyric() override { return &inner.lyric; }
    std::vector<Form*> LoadedForms() override { return {&inner.player, list}; }
    SessionWindows inner;
    PlaylistForm* list = nullptr;
};

class Playlist : public testing::Test {
protected:
    Playlist()
    {
        state.Language.LoadTable(false);
        ThemeEnvironment env;
        env.fontFamilies = {QStringLiteral("DejaVu Sans")};
        state.Theme = std::make_unique<ThemeClass>(windows.inner.store, env, state.MonitorList);
        state.Engine = std::make_unique<AudioEngine>(std::make_unique<ManualDevice>(48000));
        state.Engine->Start();
        windows.list = &list;
        list.Show();
    }
    QStringList Texts()
    {
        QStringList texts;
        for (int i = 0; i < list.ListCount(); ++i)
            texts << list.Model().Row(i).ItemString;
        return texts;
    }
    bool WaitForRows(int count)
    {
        return QTest::qWaitFor([&] { return list.ListCount() >= count && !list.Prober().Busy(); }, 10000);
    }

    QTemporaryDir dir;
    AppState state;
    Journal journal;
    PlaylistWindows windows{state, journal};
    PlayerTransport transport{state, windows, windows.inner.player};
    UserList list{state, windows.inner.store, windows.inner.docking, transport, dir.filePath("Songweaver.ini")};
};

} // namespace

TEST_F(Playlist, ProbedRowsArriveInTheOrderOfTheFile)
{
    QStringList lines{"#EXTM3U"};
    for (int i = 0; i < 12; ++i) {
        const char* fixture = i % 3 == 0 ? "id3v1.mp3" : i % 3 == 1 ? "comments.ogg" : "pcm8-mono.wav";
        CopyFixture(MediaFixture(fixture), dir.path(), QStringLiteral("%1.%2").arg(i).arg(QString(fixture).section('.', -1)));
        lines << QStringLiteral("#EXTINF:1,Row %1").arg(i) << QStringLiteral("%1.%2").arg(i).arg(QString(fixture).section('.', -1));
    }
    WriteListFile(dir.filePath("many.m3u"), lines.join("\r\n") + "\r\n");
    list.LoadListFile(dir.filePath("many.m3u"));
    ASSERT_TRUE(WaitForRows(12));
    const QStringList texts = Texts();
    for (int i = 0; i < 12; ++i) {
        const QString expected = i % 3 == 0 ? "Artist One - Title One" : i % 3 == 1 ? "Ogg Artist - Ogg Title" : QStringLiteral("Row %1").arg(i);
        EXPECT_EQ(texts[i], expected) << i;
        EXPECT_TRUE(list.ItemPath(i).endsWith(QStringLiteral("/%1.").arg(i) + list.ItemPath(i).section('.', -1)));
    }
}

TEST_F(Playlist, ADoubleClickMarksTheRowBeforeItsSongIsRead)
{
    list.AddItem("gone", "00:10", dir.filePath("gone.wav"));
    list.AddItem("song", "00:01", WriteRampWav(dir.filePath("song.wav"), 48000));
    list.fnChangeSong(0);
    EXPECT_EQ(list.Model().CurrentPlaying(), 0) << "marked though the file is missing";
    EXPECT_EQ(state.PlayingIndex, -1) << "the failed load closed the song";
    const QPoint second(10, list.List().RowHeight() + 3);
    QTest::mouseDClick(list.List().viewport(), Qt::LeftButton, {}, second);
    EXPECT_EQ(list.Model().CurrentPlaying(), 1);
    EXPECT_EQ(state.PlayingIndex, 1);
    EXPECT_EQ(state.CurrentFile, dir.filePath("song.wav"));
}

TEST_F(Playlist, KeysDriveTheTransportAndDeleteRemovesTheSelection)
{
    list.AddItem("a", "00:01", WriteRampWav(dir.filePath("a.wav"), 48000));
    list.AddItem("b", "00:01", WriteRampWav(dir.filePath("b.wav"), 48000));
    list.fnChangeSong(0);
    auto sessionState = [this] { return dynamic_cast<MediaSession&>(*state.MediaControl).GetState(); };
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

    list.Model().SetSelected(1, true);
    QTest::keyClick(&list, Qt::Key_Delete);
    EXPECT_EQ(Texts(), QStringList{"a"});
}

TEST_F(Playlist, CommandsSortSelectAndTheSaveItemStaysUnreached)
{
    for (const char* text : {"Cherry", "apple", "Banana"})
        list.AddItem(text, "00:01", dir.filePath(text));
    list.Command("SortAsc");
    EXPECT_EQ(Texts(), (QStringList{"apple", "Banana", "Cherry"}));
    list.Command("SortDesc");
    EXPECT_EQ(Texts(), (QStringList{"Cherry", "Banana", "apple"}));
    list.Command("SelAll");
    list.Command("Rev");
    EXPECT_EQ(list.SelectedIndex(), -1);

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

TEST_F(Playlist, DroppedFilesAndFoldersAreProbedAndAdded)
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
    ASSERT_TRUE(WaitForRows(3));
    EXPECT_EQ(Texts(), (QStringList{"Artist One - Title One", "Ogg Artist - Ogg Title", "Artist Two - Title Two"}))
        << "the folder's audio files in name order, the text file left out";
}

TEST_F(Playlist, TheListIsSavedAtExitAndAnEmptyOneKeepsTheOldFile)
{
    const QString song = CopyFixture(MediaFixture("id3v1.mp3"), dir.path(), "kept.mp3");
    list.AddItem("Kept", "01:02", song);
    list.Unload();
    const QByteArray saved = ReadFileBytes(dir.filePath("Songweaver.ini"));
    EXPECT_EQ(saved, ("#EXTM3U\r\n#EXTINF:62,Kept\r\n" + song + "\r\n").toUtf8());
    EXPECT_TRUE(windows.inner.store.values.contains("userlist position"));

    UserList again{state, windows.inner.store, windows.inner.docking, transport, dir.filePath("Songweaver.ini")};
    again.LoadPlaylist(dir.filePath("Songweaver.ini"));
    ASSERT_EQ(again.ListCount(), 1);
    EXPECT_EQ(again.Model().Row(0).ItemString, "Kept") << "trusted, not probed";
    again.ClearList();
    again.Unload();
    EXPECT_EQ(ReadFileBytes(dir.filePath("Songweaver.ini")), saved);
}

TEST_F(Playlist, SavingAddsTheExtensionAndWritesPathsOfItsFolderBare)
{
    const QString here = CopyFixture(MediaFixture("id3v1.mp3"), dir.path(), "here.mp3");
    list.AddItem("Here", "00:01", here);
    list.AddItem("There", "00:02", "/elsewhere/there.mp3");
    ASSERT_TRUE(list.SaveListFile(dir.filePath("mine")));
    EXPECT_EQ(ReadFileBytes(dir.filePath("mine.m3u")),
              "#EXTM3U\r\n#EXTINF:1,Here\r\nhere.mp3\r\n#EXTINF:2,There\r\n/elsewhere/there.mp3\r\n");
    ASSERT_TRUE(list.SaveListFile(dir.filePath("again.M3U")));
    EXPECT_TRUE(QFileInfo::exists(dir.filePath("again.M3U"))) << "an .m3u ending in any case is kept";
    list.ClearList();
    EXPECT_FALSE(list.SaveListFile(dir.filePath("empty.m3u"))) << "an empty list writes nothing";
    EXPECT_FALSE(QFileInfo::exists(dir.filePath("empty.m3u")));
}
