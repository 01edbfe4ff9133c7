// Music folders scanned into the library the way a user fills it: songs of every kind found and
// read, a file that cannot be read listed with its reason, a rescan that reads only what
// changed and follows renames, a name whose bytes are not UTF-8, and a folder watched while
// the program runs.

#include "library/LibraryDatabase.h"
#include "library/LibraryPaths.h"
#include "library/LibraryScan.h"
#include "library/LibraryScanner.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>
#include <utime.h>

namespace {

struct Scanning : testing::Test {
    void SetUp() override
    {
        QDir().mkpath(music.filePath("Albums/Disc"));
        WriteRampWav(music.filePath("ramp.wav"), 48000);
        CopyFixture(SourcePath("resources/demo/twinkle.kar"), music.path());
        CopyFixture(MediaFixture("id3v2.mp3"), music.filePath("Albums"), "tagged.mp3");
        CopyFixture(MediaFixture("plain.mp3"), music.filePath("Albums/Disc"), "disc.mp3");
        WriteFileBytes(music.filePath("Albums/Disc/disc.cdg"), CdgPacket(1, {0}).repeated(300));
        WriteFileBytes(music.filePath("broken.mp3"), QByteArray(4000, 'x'));
        WriteFileBytes(music.filePath("notes.txt"), "not a song");
    }
    ScanCounts Scan()
    {
        LibraryScan scan(dbPath, {RawPath(music.path())}, false, links.path());
        const std::atomic<bool> cancel{false};
        return scan.Run(cancel);
    }
    std::optional<LibraryHit> Song(const QString& relative)
    {
        return SongAt(database.Db(), RawPath(music.filePath(relative)));
    }
    QTemporaryDir music, data, links;
    QString dbPath = data.filePath("library.db");
    LibraryDatabase database{dbPath};
};

void SetTime(const QString& path, qint64 seconds)
{
    const utimbuf times{seconds, seconds};
    ASSERT_EQ(::utime(QFile::encodeName(path).constData(), &times), 0);
}

} // namespace

TEST_F(Scanning, EverySongIsReadWithItsKindAndAFileThatIsNoSongSaysWhy)
{
    const ScanCounts counts = Scan();
    EXPECT_EQ(counts.found, 5) << "the text file and the graphics are no songs of their own";
    EXPECT_EQ(counts.added, 4);
    EXPECT_EQ(counts.unreadable, 1);
    EXPECT_FALSE(counts.failed || counts.cancelled);
    ASSERT_TRUE(database.Open().Usable());

    const auto ramp = Song("ramp.wav");
    ASSERT_TRUE(ramp);
    EXPECT_EQ(ramp->kind, SongKinds::Audio);
    EXPECT_EQ(ramp->title, "ramp") << "a song without tags is named by its file";
    EXPECT_NEAR(ramp->length, 1.0, 0.05);
    const auto kar = Song("twinkle.kar");
    ASSERT_TRUE(kar);
    EXPECT_EQ(kar->kind, SongKinds::Midi);
    EXPECT_FALSE(kar->lyricsSource.isEmpty());
    EXPECT_EQ(Song("Albums/Disc/disc.mp3")->kind, SongKinds::Disc);

    LibraryQuery query;
    query.text = "twink litt";
    ASSERT_EQ(SearchSongs(database.Db(), query).size(), 1u);
    query.text = "diamond sky";
    EXPECT_EQ(SearchSongs(database.Db(), query).size(), 1u) << "the words the KAR file sings";

    const auto unreadable = UnreadableFiles(database.Db());
    ASSERT_EQ(unreadable.size(), 1u);
    EXPECT_EQ(ShownPath(unreadable[0].first), music.filePath("broken.mp3"));
    EXPECT_EQ(unreadable[0].second, "LibraryNotASong");
    EXPECT_FALSE(Song("broken.mp3"));
}

TEST_F(Scanning, ARescanReadsOnlyWhatChangedAndFollowsARename)
{
    Scan();
    ASSERT_TRUE(database.Open().Usable());
    ASSERT_TRUE(database.Write([&] {
        return RecordPlay(database.Db(), RawPath(music.filePath("Albums/Disc/disc.mp3")), "disc", "", "Ann", 10);
    }));
    const ScanCounts again = Scan();
    EXPECT_EQ(again.unchanged, 5);
    EXPECT_EQ(again.added + again.updated + again.removed + again.unreadable, 0);

    WriteRampWav(music.filePath("ramp.wav"), 48000 * 3);
    WriteRampWav(music.filePath("Albums/new.wav"), 48000);
    ASSERT_TRUE(QFile::remove(music.filePath("broken.mp3")));
    ASSERT_TRUE(QFile::rename(music.filePath("Albums/Disc/disc.mp3"), music.filePath("Albums/Disc/renamed.mp3")));
    const ScanCounts changed = Scan();
    EXPECT_EQ(changed.updated, 1);
    EXPECT_EQ(changed.added, 2) << "the new file and the renamed one";
    EXPECT_EQ(changed.removed, 2) << "the deleted file and the old name";
    EXPECT_NEAR(Song("ramp.wav")->length, 3.0, 0.05);
    EXPECT_TRUE(Song("Albums/new.wav"));
    EXPECT_FALSE(Song("Albums/Disc/disc.mp3"));
    EXPECT_TRUE(UnreadableFiles(database.Db()).empty());
    const auto renamed = Song("Albums/Disc/renamed.mp3");
    ASSERT_TRUE(renamed);
    EXPECT_EQ(renamed->playCount, 1) << "the play count follows the file";
    EXPECT_EQ(ShownPath(PlayHistory(database.Db(), 1).at(0).path), music.filePath("Albums/Disc/renamed.mp3"));

    // The same size and a new time: read again.
    SetTime(music.filePath("ramp.wav"), 1000000);
    EXPECT_EQ(Scan().updated, 1);
}

TEST_F(Scanning, ANameThatIsNotUtf8IsStoredFoundAndPlayableThroughALink)
{
    const QByteArray raw = RawPath(music.path()) + "/caf\xe9 \xff song.wav";
    const QString written = WriteRampWav(music.filePath("plain.wav"), 48000);
    const QByteArray bytes = ReadFileBytes(written);
    ASSERT_EQ(::rename(QFile::encodeName(written).constData(), raw.constData()), 0);
    ASSERT_FALSE(IsUnicodePath(raw));
    Scan();
    ASSERT_TRUE(database.Open().Usable());
    LibraryQuery query;
    query.text = "caf song";
    const std::vector<LibraryHit> hits = SearchSongs(database.Db(), query);
    ASSERT_EQ(hits.size(), 1u);
    EXPECT_EQ(hits[0].path, raw) << "the bytes come back as they were";
    const QString openable = OpenablePath(hits[0].path, links.filePath("songs"));
    ASSERT_FALSE(openable.isEmpty());
    EXPECT_EQ(ReadFileBytes(openable), bytes);
    EXPECT_EQ(OpenablePath(hits[0].path, links.filePath("songs")), openable) << "one link a file";

    ::unlink(raw.constData());
    EXPECT_EQ(Scan().removed, 1);
}

TEST_F(Scanning, AFolderThatIsGoneForgetsNothing)
{
    Scan();
    const QString unplugged = music.path() + ".unplugged";
    ASSERT_TRUE(QDir().rename(music.path(), unplugged)) << "as a drive taken away";
    const ScanCounts gone = Scan();
    QDir().rename(unplugged, music.path());
    EXPECT_EQ(gone.found, 0);
    EXPECT_EQ(gone.removed, 0);
    ASSERT_TRUE(database.Open().Usable());
    EXPECT_TRUE(Song("ramp.wav"));
}

TEST_F(Scanning, AStoppedScanKeepsWhatItWroteAndForgetsNothing)
{
    Scan();
    ASSERT_TRUE(QFile::remove(music.filePath("ramp.wav")));
    LibraryScan scan(dbPath, {RawPath(music.path())}, false, links.path());
    const std::atomic<bool> cancel{true};
    const ScanCounts counts = scan.Run(cancel);
    EXPECT_TRUE(counts.cancelled);
    EXPECT_EQ(counts.removed, 0) << "a walk stopped early has not seen every file";
    ASSERT_TRUE(database.Open().Usable());
    EXPECT_TRUE(Song("ramp.wav"));
}

TEST_F(Scanning, ASongCopiedIntoAWatchedFolderShowsUp)
{
    LibraryScanner scanner(dbPath, false, links.path());
    scanner.SetSettleTime(50);
    QSignalSpy finished(&scanner, &LibraryScanner::finished);
    scanner.Scan({RawPath(music.path())});
    ASSERT_TRUE(finished.wait(20000));
    EXPECT_TRUE(scanner.WatchedFolders().contains(music.filePath("Albums/Disc")));

    WriteRampWav(music.filePath("Albums/Disc/copied in.wav"), 48000);
    ASSERT_TRUE(finished.wait(20000)) << "the changed folder is scanned again";
    const auto counts = finished.last().at(0).value<ScanCounts>();
    EXPECT_EQ(counts.added, 1);
    ASSERT_TRUE(database.Open().Usable());
    EXPECT_TRUE(Song("Albums/Disc/copied in.wav"));
}
