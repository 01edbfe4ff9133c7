// The playlist of a run without its window: rows arriving in order from the probe, the list
// saved at exit, and playlist files saved by hand.

#include "playlist/Playlist.h"
#include "playlist/PlaylistFiles.h"
#include "support/PlaylistRows.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>
#include <gmock/gmock.h>

namespace {

class Rows : public testing::Test {
protected:
    Rows() { language.LoadTable(false); }

    QTemporaryDir dir;
    LanguageTable language;
    Playlist songs{language};
};

} // namespace

TEST_F(Rows, ProbedRowsArriveInTheOrderOfTheFile)
{
    QStringList lines{"#EXTM3U"};
    for (int i = 0; i < 12; ++i) {
        const char* fixture = i % 3 == 0 ? "id3v1.mp3" : i % 3 == 1 ? "comments.ogg" : "pcm8-mono.wav";
        CopyFixture(MediaFixture(fixture), dir.path(), QStringLiteral("%1.%2").arg(i).arg(QString(fixture).section('.', -1)));
        lines << QStringLiteral("#EXTINF:1,Row %1").arg(i) << QStringLiteral("%1.%2").arg(i).arg(QString(fixture).section('.', -1));
    }
    WriteListFile(dir.filePath("many.m3u"), lines.join("\r\n") + "\r\n");
    songs.LoadListFile(dir.filePath("many.m3u"));
    ASSERT_TRUE(WaitForProbedRows(songs, 12));
    const QStringList texts = RowTexts(songs);
    for (int i = 0; i < 12; ++i) {
        const QString expected = i % 3 == 0 ? "Artist One - Title One" : i % 3 == 1 ? "Ogg Artist - Ogg Title" : QStringLiteral("Row %1").arg(i);
        EXPECT_EQ(texts[i], expected) << i;
        EXPECT_TRUE(songs.ItemPath(i).endsWith(QStringLiteral("/%1.").arg(i) + songs.ItemPath(i).section('.', -1)));
    }
}

TEST_F(Rows, TheListIsSavedAtExitAndOneTheUserEmptiedIsSavedEmpty)
{
    const QString song = CopyFixture(MediaFixture("id3v1.mp3"), dir.path(), "kept.mp3");
    // A fresh install: the data folder does not exist yet.
    const QString ini = dir.filePath("data/Tonehaven/Songweaver/Songweaver.ini");
    songs.AddItem("Kept", "01:02", song);
    songs.SaveAtExit(ini);
    const QByteArray saved = ReadFileBytes(ini);
    EXPECT_EQ(saved, ("#EXTM3U\r\n#EXTINF:62,Kept\r\n" + song + "\r\n").toUtf8());

    Playlist again{language};
    again.LoadSavedList(ini);
    ASSERT_EQ(again.ListCount(), 1);
    EXPECT_EQ(again.Model().Row(0).ItemString, "Kept") << "trusted, not probed";
    Playlist untouched{language};
    untouched.SaveAtExit(ini);
    EXPECT_EQ(ReadFileBytes(ini), saved) << "a list that was never filled keeps the old file";
    again.RowCommand(QStringLiteral("RemAll"));
    again.SaveAtExit(ini);
    EXPECT_EQ(ReadFileBytes(ini), "#EXTM3U\r\n") << "the user emptied it: it stays empty after a restart";
    Playlist restarted{language};
    restarted.LoadSavedList(ini);
    EXPECT_EQ(restarted.ListCount(), 0);

    // A folder that cannot be made: nothing is written, and the run still ends.
    WriteFileBytes(dir.filePath("blocker"), "a file where a folder should be");
    testing::internal::CaptureStderr();
    songs.SaveAtExit(dir.filePath("blocker/Songweaver.ini"));
    EXPECT_THAT(testing::internal::GetCapturedStderr(), testing::HasSubstr("playlist could not be saved"));
}

TEST_F(Rows, AListFileWithNoSongsLeavesTheListAlone)
{
    songs.AddItem("Mine", "00:01", dir.filePath("mine.mp3"));
    WriteFileBytes(dir.filePath("empty.m3u"), "#EXTM3U\r\n# nothing here\r\n");
    WriteFileBytes(dir.filePath("bare.m3u"), "song.mp3\r\n");
    EXPECT_FALSE(songs.LoadListFile(dir.filePath("empty.m3u")));
    ASSERT_EQ(songs.ListCount(), 1);
    EXPECT_EQ(songs.ItemPath(0), dir.filePath("mine.mp3"));
    EXPECT_TRUE(songs.LoadListFile(dir.filePath("bare.m3u")));
    ASSERT_TRUE(WaitForProbedRows(songs, 1));
    EXPECT_EQ(songs.ItemPath(0), dir.filePath("song.mp3")) << "a list with songs replaces the current one";
}

TEST_F(Rows, SavingAddsTheExtensionAndWritesPathsOfItsFolderBare)
{
    const QString here = CopyFixture(MediaFixture("id3v1.mp3"), dir.path(), "here.mp3");
    songs.AddItem("Here", "00:01", here);
    songs.AddItem("There", "00:02", "/elsewhere/there.mp3");
    ASSERT_TRUE(songs.SaveListFile(dir.filePath("mine")));
    EXPECT_EQ(ReadFileBytes(dir.filePath("mine.m3u")),
              "#EXTM3U\r\n#EXTINF:1,Here\r\nhere.mp3\r\n#EXTINF:2,There\r\n/elsewhere/there.mp3\r\n");
    ASSERT_TRUE(songs.SaveListFile(dir.filePath("again.M3U")));
    EXPECT_TRUE(QFileInfo::exists(dir.filePath("again.M3U"))) << "an .m3u ending in any case is kept";
    songs.ClearList();
    EXPECT_FALSE(songs.SaveListFile(dir.filePath("empty.m3u"))) << "an empty list writes nothing";
    EXPECT_FALSE(QFileInfo::exists(dir.filePath("empty.m3u")));
}

TEST_F(Rows, DiscSongsAndVideosJoinFromFoldersNamedByTheAudioTheyPlay)
{
    const QByteArray tagged = ReadFileBytes(MediaFixture("id3v2.mp3"));
    WriteZip(dir.filePath("songs/Disc 1.zip"), {{"track.mp3", tagged}, {"track.cdg", QByteArray(24 * 300, '\0')}});
    WriteFileBytes(dir.filePath("songs/beside.mp3"), tagged);
    WriteFileBytes(dir.filePath("songs/beside.CDG"), QByteArray(24, '\0'));
    WriteFileBytes(dir.filePath("songs/clip.MKV"), "not looked into here");
    WriteFileBytes(dir.filePath("songs/notes.txt"), "no song");

    EXPECT_EQ(AudioFilesIn({dir.filePath("songs")}),
              (QStringList{dir.filePath("songs/beside.mp3"), dir.filePath("songs/clip.MKV"), dir.filePath("songs/Disc 1.zip")}))
        << "a graphics file beside its audio is no second song";

    const auto zipped = ProbeSong(dir.filePath("songs/Disc 1.zip"), false);
    ASSERT_TRUE(zipped);
    EXPECT_EQ(zipped->Title, "Title Two");
    EXPECT_EQ(zipped->Artist, "Artist Two");
    EXPECT_GT(zipped->Length, 1.0);
    const auto graphics = ProbeSong(dir.filePath("songs/beside.CDG"), false);
    ASSERT_TRUE(graphics);
    EXPECT_EQ(graphics->Title, "Title Two") << "a graphics file is named by its audio";
}
