// A host's evening with the song library: the music folder scanned from the library window, a
// song found in a few keystrokes, singers queued, "Next" playing a turn in the singer's key, and
// the end of a song counting down to the next singer in the karaoke window.

#include "library/KaraokeEvening.h"
#include "library/LibraryPaths.h"
#include "library/SingerQueue.h"
#include "support/PlayerSetup.h"
#include "support/ProgramWindows.h"
#include "ui/library/LibraryWindow.h"
#include "ui/library/SingersWindow.h"
#include "ui/player/PlayerWindow.h"

#include <QLabel>
#include <QPushButton>
#include <QTabWidget>
#include <QTreeWidget>
#include <QLineEdit>
#include <QTableView>
#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>

namespace {

constexpr int kRate = 48000;

class KaraokeNight : public testing::Test, protected ProgramWindows {
protected:
    KaraokeNight()
    {
        LoadDefaults(state, store);
        device = &StartManualEngine(state, kRate);
        windows.PlayerWidget().ApplySkin();
        windows.PlayerWidget().BuildMenus();
        QDir().mkpath(dir.filePath("music"));
        first = Song("Dancing Queen", 2);
        second = Song("Wonderwall", 3);
        state.Theme->LibraryFolders = dir.filePath("music");
        state.Library = std::make_unique<LibraryDatabase>(dir.filePath("data/library.db"));
        EXPECT_TRUE(state.Library->Open().Usable());
        windows.StartLibrary();
    }

    QString Song(const QString& title, int seconds)
    {
        const QString song = WriteRampWav(dir.filePath("music/" + title + ".wav"), kRate * seconds, kRate);
        WriteFileBytes(dir.filePath("music/" + title + ".lrs"),
                       "#Songweaver\r\n#TITLE=" + title.toUtf8() + "\r\n[0.2]La [0.4]la\r\n#End Songweaver\r\n");
        return song;
    }

    // 10 ms steps with both ticks; the end of a song is looked for at each step, so no step
    // waits for audio past the end of the file.
    void Play(double seconds)
    {
        for (int i = 0; i < int(seconds * 100 + 0.5); ++i) {
            PlayDecoded(*device, state, 0.01);
            if (!transport.Ticks().Running())
                continue;
            transport.Ticks().PlaybackTick();
            transport.Ticks().mmTimer();
        }
    }

    QTemporaryDir dir;
    ManualDevice* device = nullptr;
    QString first, second;
};

} // namespace

TEST_F(KaraokeNight, TheFolderIsScannedAndASongFoundInAFewKeystrokes)
{
    windows.ShowLibrary();
    LibraryWindow& library = *windows.LibraryWidget();
    library.StartScan();
    ASSERT_TRUE(QTest::qWaitFor([&] { return library.Model().rowCount() == 2; }, 20000));
    EXPECT_TRUE(QTest::qWaitFor([&] { return library.Status().text() == "2 of 2 songs"; }, 5000))
        << library.Status().text().toStdString();

    QTest::keyClicks(&library.SearchBox(), "wond");
    ASSERT_EQ(library.Model().rowCount(), 1);
    EXPECT_EQ(library.Model().Hit(0)->title, "Wonderwall");
    EXPECT_EQ(library.Model().Hit(0)->lyricsSource, "Songweaver (*LRS)");

    QTest::keyClick(&library.SearchBox(), Qt::Key_Return);
    EXPECT_EQ(state.CurrentFile, second) << "Enter plays the song found";
    EXPECT_EQ(library.Model().Hit(0)->playCount, 1) << "the play is in the history";
}

TEST_F(KaraokeNight, SingersTakeTurnsWithACountdownAndKeepTheirKeys)
{
    SingerQueue& queue = *windows.Queue();
    const qint64 ann = *queue.AddSinger("Ann");
    const qint64 bob = *queue.AddSinger("Bob");
    queue.Enqueue(ann, RawPath(first), "Dancing Queen", "ABBA");
    queue.Enqueue(bob, RawPath(second), "Wonderwall", "Oasis");
    windows.ShowSingers();
    SingersWindow& singers = *windows.SingersWidget();
    EXPECT_EQ(singers.NextLabel().text(), "Next: Ann - ABBA - Dancing Queen");

    KaraokeEvening& evening = *windows.Evening();
    ASSERT_TRUE(evening.PlayNext());
    EXPECT_EQ(state.CurrentFile, first);
    commands.KeyDown(Qt::Key_Up, Qt::AltModifier);  // Ann sings it a semitone higher
    Play(2.5);
    ASSERT_TRUE(evening.CountingDown()) << "the end of Ann's song hands over to the queue, not the playlist";
    EXPECT_EQ(state.Lyrics.LyricsTitleText, "Next: Bob - Oasis - Wonderwall|Starts in 15 s");
    EXPECT_EQ(singers.NextLabel().text(), "Next: Bob - Oasis - Wonderwall Starts in 15 s");
    QPushButton* hold = nullptr;
    for (QPushButton* button : singers.findChildren<QPushButton*>())
        if (button->text() == "Hold")
            hold = button;
    ASSERT_NE(hold, nullptr);
    EXPECT_TRUE(hold->isVisibleTo(&singers));
    hold->click();
    EXPECT_FALSE(evening.CountingDown()) << "the host holds the evening";
    EXPECT_FALSE(hold->isVisibleTo(&singers));
    EXPECT_EQ(singers.NextLabel().text(), "Next: Bob - Oasis - Wonderwall");

    ASSERT_TRUE(evening.PlayNext());
    EXPECT_EQ(state.CurrentFile, second);
    EXPECT_EQ(evening.Current()->singer.name, "Bob");

    state.Songs.AddItem("playlist song", "00:02", first);
    Play(3.5);
    EXPECT_FALSE(evening.CountingDown()) << "nobody waits";
    EXPECT_FALSE(state.Session && state.Session->GetState() == SongSession::Running)
        << "the last turn ends the music, no playlist song starts in a singer's place";
    EXPECT_FALSE(evening.Current());

    queue.Enqueue(ann, RawPath(first), "Dancing Queen", "ABBA");
    EXPECT_EQ(queue.SongsOf(ann).at(0).semitones, 1) << "the key Ann sang it in";

    singers.findChild<QTabWidget*>()->setCurrentIndex(1);
    QTreeWidget& history = singers.History();
    ASSERT_EQ(history.topLevelItemCount(), 2);
    EXPECT_EQ(history.topLevelItem(0)->text(1), "Bob") << "the latest first";
    EXPECT_EQ(history.topLevelItem(1)->text(2), "ABBA - Dancing Queen");

    singers.move(40, 50);
    singers.Unload();
    EXPECT_TRUE(store.values.contains("singers position")) << "the window's place is kept for the next run";
}

TEST_F(KaraokeNight, ASongOpenedInATurnsPlaceEndsAsAnySong)
{
    SingerQueue& queue = *windows.Queue();
    const qint64 ann = *queue.AddSinger("Ann");
    queue.Enqueue(ann, RawPath(first), "Dancing Queen", "ABBA");
    queue.Enqueue(ann, RawPath(first), "Dancing Queen", "ABBA");
    KaraokeEvening& evening = *windows.Evening();
    ASSERT_TRUE(evening.PlayNext());

    // The host plays a song of the playlist instead, in another key.
    state.Songs.AddItem("Wonderwall", "00:03", second);
    transport.fnChangeSong(0);
    commands.KeyDown(Qt::Key_Down, Qt::AltModifier);
    Play(3.5);
    EXPECT_FALSE(evening.CountingDown()) << "the playlist's song hands over as any song";
    EXPECT_FALSE(evening.Current());
    EXPECT_EQ(queue.SongsOf(ann).at(0).semitones, 0) << "the key of another song is not Ann's";
}
