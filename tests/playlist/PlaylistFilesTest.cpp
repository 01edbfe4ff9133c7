// Playlist files: the time texts, M3U written and read, the auto-saved list, and PLS.

#include "playlist/PlaylistFiles.h"
#include "playlist/SongProber.h"
#include "support/TestSupport.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

std::vector<PlaylistRow> Read(const QString& text, const QString& folder, bool saved = false, bool pls = false)
{
    std::vector<PlaylistRow> rows;
    const auto add = [&rows](const PlaylistRow& row) { rows.push_back(row); };
    const SongProbe probe = [](const QString& path) { return ProbeSong(path, false); };
    const QStringList lines = text.split(QStringLiteral("\r\n"));
    if (saved)
        ReadSavedList(lines, folder, add);
    else if (pls)
        ReadPls(lines, folder, probe, add);
    else
        ReadM3U(lines, folder, probe, add);
    return rows;
}

} // namespace

TEST(PlaylistFiles, TimeTextsKeepTheirTwoCharacterReading)
{
    EXPECT_EQ(FormatListSeconds("185"), "03:05");
    EXPECT_EQ(FormatListSeconds("3600"), "60:00");
    EXPECT_EQ(FormatListSeconds("5"), "00:05");
    EXPECT_EQ(ListTimeToSeconds("03:05"), "185");
    EXPECT_EQ(ListTimeToSeconds("60:00"), "3600") << "a 3600 s row comes back as 3600";
    EXPECT_EQ(ListTimeToSeconds("100:10"), "610") << "the two characters on the left are \"10\"";
}

TEST(PlaylistFiles, M3UIsWrittenWithExtInfLinesAndTheSkipRule)
{
    const std::vector<PlaylistRow> rows = {
        {"Artist - Title", "03:05", "/music/a.mp3"},
        {"", "", "/music/no-time-no-text.mp3"},
        {"No time", "", "/elsewhere/b.ogg"},
        {"No path", "01:00", ""},
        {"", "01:00", "/music/c.wav"},
    };
    EXPECT_EQ(WriteM3U(rows), "#EXTM3U\r\n#EXTINF:185,Artist - Title\r\n/music/a.mp3\r\n#EXTINF,No time\r\n"
                              "/elsewhere/b.ogg\r\n#EXTINF:60\r\n/music/c.wav\r\n");
    EXPECT_EQ(WriteM3U(rows, "/music"), "#EXTM3U\r\n#EXTINF:185,Artist - Title\r\na.mp3\r\n#EXTINF,No time\r\n"
                                        "/elsewhere/b.ogg\r\n#EXTINF:60\r\nc.wav\r\n")
        << "a saved list names the files of its own folder without the folder";
}

TEST(PlaylistFiles, M3UReadingProbesExistingFilesAndTagsWin)
{
    QTemporaryDir dir;
    CopyFixture(MediaFixture("id3v1.mp3"), dir.path(), "tagged.mp3");
    CopyFixture(MediaFixture("plain.mp3"), dir.path(), "untagged.mp3");
    const auto rows = Read("#EXTM3U\r\n#EXTINF:185,List Text\r\ntagged.mp3\r\n"
                           "#EXTINF:185,Kept Text\r\nsub\\..\\untagged.mp3\r\n"
                           "#EXTINF:185\r\n/no/such/song.mp3\r\n#EXTINF:12,Never read",
                           dir.path());
    ASSERT_EQ(rows.size(), 3u) << "the last line is never an #EXTINF line";
    EXPECT_EQ(rows[0].ItemString, "Artist One - Title One") << "tag text beats list text";
    EXPECT_EQ(rows[0].ItemTime, "00:01") << "and the probed length beats the list's";
    EXPECT_EQ(rows[0].ItemPath, dir.filePath("tagged.mp3")) << "relative to the playlist's folder";
    EXPECT_EQ(rows[1].ItemString, "Kept Text") << "a file without tags keeps the list's text";
    EXPECT_EQ(rows[1].ItemPath, dir.filePath("untagged.mp3")) << "backslashes separate folders too";
    EXPECT_EQ(rows[2].ItemString, "song") << "no comma: the file's name";
    EXPECT_EQ(rows[2].ItemTime, "03:05");

    EXPECT_EQ(Read("#EXTINF:1,a\r\nx.mp3\r\n#EXTINF,b:2\r\ny.mp3\r\n#EXTINF:3,c\r\nz.mp3\r\n", dir.path()).size(), 1u)
        << "a line that cannot be read ends the reading; rows before it stay";
}

TEST(PlaylistFiles, PlainM3UListsAreTheirPathLines)
{
    QTemporaryDir dir;
    CopyFixture(MediaFixture("id3v1.mp3"), dir.path(), "tagged.mp3");
    const auto rows = Read("#EXTM3U\r\ntagged.mp3\r\n# a comment\r\n\r\n/music/Other Song.ogg\r\n"
                           "#EXTINF:185,Titled\r\nsub/titled.mp3\r\n  \r\n",
                           dir.path());
    ASSERT_EQ(rows.size(), 3u) << "comments and blank lines are no songs";
    EXPECT_EQ(rows[0].ItemString, "Artist One - Title One") << "a bare path is probed like any other";
    EXPECT_EQ(rows[0].ItemPath, dir.filePath("tagged.mp3"));
    EXPECT_EQ(rows[1].ItemString, "Other Song");
    EXPECT_EQ(rows[1].ItemTime, "") << "no time is known of a missing file";
    EXPECT_EQ(rows[2].ItemString, "Titled");
    EXPECT_EQ(rows[2].ItemTime, "03:05");
}

TEST(PlaylistFiles, TheSavedListIsTrustedAndLosesMissingFiles)
{
    QTemporaryDir dir;
    const QString song = CopyFixture(MediaFixture("id3v1.mp3"), dir.path(), "long.mp3");
    const std::vector<PlaylistRow> rows = {{"Long Song", "60:00", song}, {"Gone", "01:00", dir.filePath("gone.mp3")}};
    ASSERT_TRUE(WriteListFile(dir.filePath("Songweaver.ini"), WriteM3U(rows)));
    const auto back = Read(ReadListLines(dir.filePath("Songweaver.ini"), false).join("\r\n"), dir.path(), true);
    ASSERT_EQ(back.size(), 1u);
    EXPECT_EQ(back[0].ItemString, "Long Song") << "not probed: the list's text stands";
    EXPECT_EQ(back[0].ItemTime, "60:00");
    EXPECT_EQ(WriteM3U(back), "#EXTM3U\r\n#EXTINF:3600,Long Song\r\n" + song + "\r\n");
}

TEST(PlaylistFiles, PlsEntriesNeedOnlyTheirFile)
{
    QTemporaryDir dir;
    CopyFixture(MediaFixture("plain.mp3"), dir.path(), "one.mp3");
    const auto rows = Read("[playlist]\r\nFile1=one.mp3\r\nTitle1=First\r\nLength1=61\r\n"
                           "File2=/x/two.mp3\r\nTitle2=Second\r\n"
                           "Length3=30\r\nfile3=C:\\Music\\three.mp3\r\nTitle3=Third\r\n"
                           "File4=/x/Fourth Song.mp3\r\nTitle9=No file\r\nNumberOfEntries=4\r\nVersion=2",
                           dir.path(), false, true);
    ASSERT_EQ(rows.size(), 4u) << "a title without its file gives no row";
    EXPECT_EQ(rows[0].ItemString, "First");
    EXPECT_EQ(rows[0].ItemTime, "00:01") << "an existing file is probed";
    EXPECT_EQ(rows[1].ItemString, "Second");
    EXPECT_EQ(rows[1].ItemTime, "") << "no length: no time";
    EXPECT_EQ(rows[2].ItemString, "Third") << "keys in any order and letter case";
    EXPECT_EQ(rows[2].ItemTime, "00:30");
    EXPECT_EQ(rows[2].ItemPath, "C:/Music/three.mp3");
    EXPECT_EQ(rows[3].ItemString, "Fourth Song") << "no title: the file's name";
}
