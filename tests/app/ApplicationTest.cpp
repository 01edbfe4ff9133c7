#include "app/Application.h"
#include "app/AppState.h"
#include "library/LibraryDatabase.h"
#include "app/SingleInstance.h"
#include "core/WindowPosition.h"
#include "support/FakeForms.h"
#include "support/ScriptedDialogs.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSignalSpy>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QThread>
#include <QUuid>
#include <gtest/gtest.h>

namespace {

class FakeMixer final : public MixerAccess {
public:
    explicit FakeMixer(Journal& j) : m_journal(j) {}
    bool MasterMuted() const override { return muted; }
    bool LevelCaptureRunning() const override { return capturing; }
    void StopLevelCapture() override { m_journal(QStringLiteral("StopLevelCapture")); }
    bool muted = false;
    bool capturing = false;

private:
    Journal& m_journal;
};

QString UniqueServerName()
{
    return QStringLiteral("songweaver-test-") + QUuid::createUuid().toString(QUuid::Id128);
}

struct Program {
    Journal& journal;
    MemoryStore& store;
    QString dataFolder;
    AppState state;
    FakeWindows windows{journal, false};
    FakeTransport transport{journal};
    FakeMixer mixer{journal};
    ScriptedDialogs messages;
    SingleInstance instance;
    bool soundDevice = true;
    int ended = 0;
    QTemporaryDir shellHome;
    Application app;

    Program(Journal& j, MemoryStore& s, const QString& serverName, const QString& data)
        : journal(j), store(s), dataFolder(data), instance(serverName),
          app(state,
              Platform{store, Environment(), Shell(), QStringLiteral("/opt/songweaver"), data,
                       [this] { return soundDevice; }, [this] {
                           ++ended;
                           journal(QStringLiteral("EndProcess"));
                       }},
              windows, transport, &mixer, messages, instance)
    {
        messages.shown = [this](const QString& message) { journal(message); };
    }

    static ThemeEnvironment Environment()
    {
        ThemeEnvironment env;
        env.monitors = {{QStringLiteral("Monitor 1 (primary)"), 0, 0, 1920, 1080, true}};
        env.fontFamilies = {QStringLiteral("Arial")};
        return env;
    }
    ShellFolders Shell() const
    {
        return ShellFolders{shellHome.path() + QStringLiteral("/data"), shellHome.path() + QStringLiteral("/config"), {}};
    }
};

struct StartUp : testing::Test {
    Journal journal;
    MemoryStore store;
    QTemporaryDir data;
    QString server = UniqueServerName();
};

} // namespace

TEST_F(StartUp, FirstRunShowsTheWindowsSkinnedAndDocked)
{
    Program p(journal, store, server, data.path());
    ASSERT_TRUE(p.app.Main(QString()));

    EXPECT_EQ(p.windows.player.position, QPoint(760, 630)) << "centred across, raised so the playlist fits";
    EXPECT_EQ(p.windows.userList.geometry, QRect(760, 780, 360, 300)) << "the playlist docked under the player";
    const qsizetype shown = journal.IndexOf(QStringLiteral("Player.Show"));
    ASSERT_NE(shown, -1);
    for (const char* ready : {"Player.ApplySkin", "Player.BuildMenus", "Player.SetVolumeSlider 1"}) {
        const qsizetype at = journal.IndexOf(QLatin1String(ready));
        EXPECT_NE(at, -1) << ready;
        EXPECT_LT(at, shown) << ready << ": the window never shows unfinished";
    }
    EXPECT_NE(journal.IndexOf(QStringLiteral("UserList.Show")), -1);
    EXPECT_NE(journal.IndexOf(QStringLiteral("Lyric.Show")), -1);
    EXPECT_EQ(journal.calls.last(), "Player.Light 2,1") << "the Stop lamp lit last";
    EXPECT_EQ(p.windows.player.timeText, "00:00");
    EXPECT_TRUE(p.state.PlaylistOpen);
    EXPECT_TRUE(p.state.KaraokeOpen);
    EXPECT_EQ(p.state.SkinName, "Default");
    EXPECT_EQ(p.state.PlaybackRate, 1.0f);
    EXPECT_EQ(p.state.Lyrics.PlayLyrics.size(), 1u);
    ASSERT_TRUE(p.state.Theme);
    EXPECT_FALSE(p.state.Language.LanguageText.isEmpty());
    EXPECT_TRUE(store.writes.isEmpty()) << "nothing is written during a run";
}

TEST_F(StartUp, SavedPositionsLastPlaylistAndMutedMixer)
{
    WritePlayerPosition(store, {QRect(100, 50, 400, 150), false, true});
    WriteWindowPosition(store, QStringLiteral("userlist position"), QRect(10, 20, 300, 400));
    store.values[QStringLiteral("karaoke window")] = QStringLiteral("0");
    store.writes.clear();
    const QString song = WriteRampWav(data.filePath("kept.wav"), 4800);
    WriteFileBytes(PlaylistIniPath(data.path()), ("#EXTM3U\r\n#EXTINF:1,Kept\r\n" + song + "\r\n").toUtf8());

    Program p(journal, store, server, data.path());
    p.mixer.muted = true;
    ASSERT_TRUE(p.app.Main(QStringLiteral("%1")));

    EXPECT_EQ(p.windows.player.position, QPoint(100, 50));
    EXPECT_EQ(p.windows.userList.geometry, QRect(10, 20, 300, 400));
    EXPECT_FALSE(p.state.PlaylistOpen);
    EXPECT_TRUE(p.state.ControlsOpen);
    EXPECT_FALSE(p.state.KaraokeOpen);
    EXPECT_EQ(p.windows.Lyric(), nullptr) << "a window that is not shown is not loaded either";
    ASSERT_EQ(p.state.Songs.ListCount(), 1) << "\"%1\" counts as an empty command line";
    EXPECT_EQ(p.state.Songs.ItemPath(0), song);
    EXPECT_TRUE(p.state.Muted);
    EXPECT_EQ(journal.calls.last(), "Player.SetButton 6,0");
}

TEST_F(StartUp, CommandLineOpensTheSongInsteadOfTheLastPlaylist)
{
    const QString song = WriteRampWav(data.filePath("kept.wav"), 4800);
    WriteFileBytes(PlaylistIniPath(data.path()), ("#EXTM3U\r\n#EXTINF:1,Kept\r\n" + song + "\r\n").toUtf8());
    Program p(journal, store, server, data.path());
    ASSERT_TRUE(p.app.Main(QStringLiteral("/songs/my song.mp3")));
    EXPECT_NE(journal.IndexOf(QStringLiteral("OpenFromCommandLine /songs/my song.mp3")), -1);
    EXPECT_EQ(p.state.Songs.ListCount(), 0);
    EXPECT_LT(journal.IndexOf(QStringLiteral("OpenFromCommandLine /songs/my song.mp3")),
              journal.IndexOf(QStringLiteral("Player.Light 2,1")));
}

TEST_F(StartUp, NoSoundDeviceShowsTheMessageAndClosesInOrder)
{
    Program p(journal, store, server, data.path());
    p.soundDevice = false;
    ASSERT_TRUE(p.app.Main(QString()));
    const qsizetype message = journal.IndexOf(
        QStringLiteral("critical: No sound device found. Please buy soundcard first\r\nor install proper drivers if you have one."));
    ASSERT_NE(message, -1);
    EXPECT_EQ(journal.calls[message - 1], "Player.Show");
    EXPECT_EQ(journal.calls.last(), "EndProcess");
    EXPECT_EQ(journal.IndexOf(QStringLiteral("Lyric.Show")), -1);
    EXPECT_EQ(store.writes.size(), 53) << "the settings and the recent files";
}

TEST_F(StartUp, ShutdownReleasesInOrderAndWritesSettingsOnce)
{
    // A fresh install: the data folder is made when the playlist is first saved.
    const QString freshData = data.filePath("new/Tonehaven/Songweaver");
    Program p(journal, store, server, freshData);
    ASSERT_TRUE(p.app.Main(QString()));
    p.state.Songs.AddItem(QStringLiteral("Song"), QStringLiteral("00:01"), QStringLiteral("/songs/song.mp3"));
    journal.calls.clear();
    p.state.Session = std::make_unique<FakeSession>(journal, QStringLiteral("Media"));
    p.state.VoiceControl = std::make_unique<FakeSession>(journal, QStringLiteral("Voice"));
    p.state.IsMidi = true;
    p.mixer.capturing = true;
    p.state.KaraokeOpen = false;
    p.state.Lyrics.PlayLyrics.resize(5);

    p.app.CloseApp();
    p.app.CloseApp();

    const QStringList expected{"StopLevelCapture", "Media.Stop", "Media.Release", "Voice.Stop", "Voice.Release",
                               "Lyric.Unload", "UserList.Unload", "Player.Unload", "EndProcess"};
    EXPECT_EQ(journal.calls, expected);
    EXPECT_EQ(p.ended, 1);
    EXPECT_TRUE(p.state.Lyrics.PlayLyrics.empty());
    EXPECT_FALSE(p.state.Theme);
    EXPECT_EQ(store.writes.size(), 53) << "every setting and the recent files written exactly once";
    EXPECT_EQ(store.values[QStringLiteral("karaoke window")], "0") << "the karaoke window's state is kept";
    EXPECT_EQ(ReadFileBytes(PlaylistIniPath(freshData)), "#EXTM3U\r\n#EXTINF:1,Song\r\n/songs/song.mp3\r\n");
}

TEST_F(StartUp, ChangedLyricsInTheEditorAreAskedAboutBeforeTheProgramEnds)
{
    Program p(journal, store, server, data.path());
    ASSERT_TRUE(p.app.Main(QString()));
    p.windows.LoadEditor();
    p.state.EditorOpen = true;
    p.windows.editor.closes = false;
    p.app.CloseApp();
    EXPECT_EQ(p.ended, 0) << "Cancel keeps the program running";
    EXPECT_TRUE(p.state.Theme) << "nothing was released";
    p.windows.editor.closes = true;
    p.app.CloseApp();
    EXPECT_EQ(p.ended, 1);
}

TEST_F(StartUp, SecondStartHandsOverAndEnds)
{
    Program first(journal, store, server, data.path());
    ASSERT_TRUE(first.app.Main(QString()));
    QSignalSpy handed(&first.instance, &SingleInstance::commandLineReceived);

    Journal secondJournal;
    MemoryStore secondStore;
    {
        Program second(secondJournal, secondStore, server, data.path());
        EXPECT_FALSE(second.app.Main(QStringLiteral("/songs/next song.ogg")));
        EXPECT_EQ(secondJournal.calls, QStringList{"Player.DockAsFirstWindow"}) << "the second start shows nothing";
        EXPECT_TRUE(secondStore.writes.isEmpty()) << "and saves nothing";
    }
    ASSERT_TRUE(handed.wait(2000));
    EXPECT_EQ(handed.first().first().toString(), "/songs/next song.ogg");

    {
        Program relative(secondJournal, secondStore, server, data.path());
        EXPECT_FALSE(relative.app.Main(QStringLiteral("../songs/third.mp3")));
    }
    ASSERT_TRUE(handed.wait(2000));
    EXPECT_EQ(handed.last().first().toString(), QDir::cleanPath(QDir::current().absoluteFilePath("../songs/third.mp3")))
        << "a path from the second start's folder, made absolute there";

    {
        Program third(secondJournal, secondStore, server, data.path());
        EXPECT_FALSE(third.app.Main(QStringLiteral("%1")));
        Program fourth(secondJournal, secondStore, server, data.path());
        EXPECT_FALSE(fourth.app.Main(QString()));
    }
    EXPECT_FALSE(handed.wait(300)) << "\"%1\" and an empty command line hand nothing over";
    EXPECT_EQ(handed.size(), 2);
}

TEST_F(StartUp, ATakeLeftByARunKilledInMidTakeIsGoneAtTheNextStart)
{
    QTemporaryDir temp;
    const bool hadTemp = qEnvironmentVariableIsSet("TMPDIR");
    const QByteArray oldTemp = qgetenv("TMPDIR");
    qputenv("TMPDIR", temp.path().toLocal8Bit());
    const QString left = temp.filePath(QStringLiteral("11222026231500PM.WAV"));
    {
        QFile take(left);
        ASSERT_TRUE(take.open(QIODevice::WriteOnly));
        take.write("RIFF");
        take.flush();
        take.setFileTime(QDateTime::currentDateTime().addSecs(-3600), QFileDevice::FileModificationTime);
    }
    {
        Program p(journal, store, server, data.path());
        ASSERT_TRUE(p.app.Main(QString()));
    }
    if (hadTemp)
        qputenv("TMPDIR", oldTemp);
    else
        qunsetenv("TMPDIR");
    EXPECT_FALSE(QFile::exists(left));
}

TEST_F(StartUp, TheLyricsTypeIsRegisteredBesideTheFirstWindowNotBeforeIt)
{
    Program p(journal, store, server, data.path());
    ASSERT_TRUE(p.app.Main(QString()));
    EXPECT_TRUE(journal.calls.contains(QStringLiteral("Player.Show"))) << "the window is up";
    const QString package = p.Shell().dataHome + QStringLiteral("/mime/packages/songweaver.xml");
    for (int i = 0; i < 1000 && !QFileInfo::exists(package); ++i)
        QThread::msleep(10);
    EXPECT_TRUE(QFileInfo::exists(package));
}

TEST_F(StartUp, TheSongLibraryOpensWithTheOldChoicesAndADamagedOneIsStartedAgain)
{
    WriteFileBytes(SongChoicesPath(data.path()), "#Songweaver song settings 1\n100-ab\t3\t1\t0\n");
    {
        Program p(journal, store, server, data.path());
        ASSERT_TRUE(p.app.Main(QString()));
        ASSERT_TRUE(p.state.Library);
        ASSERT_TRUE(p.state.SongChoices);
        EXPECT_EQ(p.state.SongChoices->Recall("100-ab"), (SongChoice{3, 1.0, false})) << "carried over from the old file";
        EXPECT_TRUE(p.messages.messages.isEmpty());
        p.app.CloseApp();
    }
    EXPECT_TRUE(QFileInfo::exists(LibraryPath(data.path())));

    WriteFileBytes(LibraryPath(data.path()), QByteArray(8192, 'z'));
    Program p(journal, store, server, data.path());
    ASSERT_TRUE(p.app.Main(QString()));
    ASSERT_EQ(p.messages.messages.size(), 1);
    EXPECT_TRUE(p.messages.messages[0].startsWith("info: The song library was damaged.")) << p.messages.messages[0].toStdString();
    ASSERT_TRUE(p.state.Library);
    EXPECT_TRUE(p.state.SongChoices->Recall("100-ab").IsNeutral()) << "a new library";
    p.app.CloseApp();
}

TEST_F(StartUp, ALibraryOfANewerVersionIsLeftAloneAndTheProgramRunsWithout)
{
    {
        LibraryDatabase newer(LibraryPath(data.path()));
        ASSERT_TRUE(newer.Open().Usable());
        newer.Db().exec("PRAGMA user_version = 7");
    }
    Program p(journal, store, server, data.path());
    ASSERT_TRUE(p.app.Main(QString()));
    ASSERT_EQ(p.messages.messages.size(), 1);
    EXPECT_TRUE(p.messages.messages[0].startsWith("critical: The song library was written by a newer version"))
        << p.messages.messages[0].toStdString();
    EXPECT_FALSE(p.state.Library);
    EXPECT_FALSE(p.state.SongChoices);
    p.app.CloseApp();
}
