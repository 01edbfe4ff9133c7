#include "lyrics/LyricsLoader.h"
#include "support/TestSupport.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

class TagsWithLyrics final : public SongTags {
public:
    TagLyrics tag;
    int reads = 0;
    void ReadTag() override { ++reads; }
    QString Artist() const override { return "Tag Artist"; }
    QString Title() const override { return "Tag Title"; }
    QString BaseName() const override { return "song"; }
    TagLyrics LyricsTag() const override { return tag; }
};

QByteArray Block(const QByteArray& body)
{
    return "#Songweaver\r\n" + body + "\r\n#End Songweaver\r\n";
}

class LyricsLoaderTest : public testing::Test {
protected:
    QTemporaryDir dir;
    QString song = dir.filePath("song.mp3");
    QString lrs = dir.filePath("song.lrs");
    TagsWithLyrics tags;
    LyricsState lyrics;
    LyricsEnvironment env{QFont(), false, &tags, {}};

    QString FirstText() const { return lyrics.PlayLyrics.size() > 1 ? lyrics.PlayLyrics[1].Text : QString(); }
};

} // namespace

TEST_F(LyricsLoaderTest, SongBlockThenSiblingFileThenTagLyrics)
{
    tags.tag = {true, 2, "[00:01]tag line", "", "", ""};
    WriteFileBytes(song, QByteArray(4000, '\xff') + "audio");
    ASSERT_TRUE(LoadLyrics(lyrics, song, env));
    EXPECT_EQ(lyrics.PlayLyrics[0].FormatName, "Lyrics 2.00");
    EXPECT_TRUE(lyrics.PlayLyrics[0].LineTimed) << "tag lyrics light whole lines";
    EXPECT_EQ(FirstText(), "tag line");
    EXPECT_EQ(lyrics.LyricsTitleText, "Tag Artist|Tag Title");

    WriteFileBytes(lrs, Block("#TITLE=From file\r\n[1]lrs line"));
    ASSERT_TRUE(LoadLyrics(lyrics, song, env));
    EXPECT_EQ(lyrics.PlayLyrics[0].FormatName, "Songweaver (*LRS)");
    EXPECT_FALSE(lyrics.PlayLyrics[0].LineTimed);
    EXPECT_EQ(FirstText(), "lrs line");
    EXPECT_EQ(lyrics.LyricsTitleText, "From file");

    // Two blocks inside the song: the last opening and closing markers win.
    WriteFileBytes(song, "ID3" + QByteArray(100, '\0') + Block("[1]old") + "\r\n" + Block("#ARTIST=New\r\n[2]inside") +
                             QByteArray("TAG") + QByteArray(125, ' '));
    ASSERT_TRUE(LoadLyrics(lyrics, song, env));
    EXPECT_EQ(lyrics.PlayLyrics[0].FormatName, "Songweaver (internal)");
    EXPECT_EQ(FirstText(), "inside");
    EXPECT_EQ(lyrics.PlayLyrics.size(), 2u);
    EXPECT_EQ(lyrics.LyricsTitleText, "New");
}

TEST_F(LyricsLoaderTest, DamagedBlockInTheSongStopsTheSearch)
{
    tags.tag = {true, 2, "[00:01]tag line", "", "", ""};
    WriteFileBytes(lrs, Block("[1]lrs line"));
    WriteFileBytes(song, "audio" + Block("stray text[1]x"));
    EXPECT_FALSE(LoadLyrics(lyrics, song, env));
    EXPECT_EQ(lyrics.PlayLyrics.size(), 1u);
    EXPECT_EQ(tags.reads, 0);
    EXPECT_EQ(lyrics.LyricsTitleText, "Tag Artist|Tag Title");

    // An opening marker without its end is no block: the sibling file is read.
    WriteFileBytes(song, "audio#Songweaver\r\n[1]unfinished");
    ASSERT_TRUE(LoadLyrics(lyrics, song, env));
    EXPECT_EQ(FirstText(), "lrs line");
}

TEST_F(LyricsLoaderTest, NoLyricsLeavesAnEmptyDocumentTitledFromTheTags)
{
    WriteFileBytes(song, "audio");
    ASSERT_TRUE(ParseLyricsText(lyrics, Block("#ARTIST=Previous\r\n[1]old"), dir.path(), QFont()));
    EXPECT_FALSE(LoadLyrics(lyrics, song, env));
    EXPECT_EQ(lyrics.PlayLyrics.size(), 1u);
    EXPECT_EQ(tags.reads, 1);
    EXPECT_EQ(lyrics.LyricsTitleText, "Tag Artist|Tag Title");

    WriteFileBytes(lrs, "");
    EXPECT_TRUE(LoadLyrics(lyrics, song, env));
    EXPECT_EQ(lyrics.PlayLyrics.size(), 1u);
}

TEST_F(LyricsLoaderTest, LegacyCodePageAndLoneLineFeedsAreRead)
{
    WriteFileBytes(song, "audio");
    WriteFileBytes(lrs, "#Songweaver\n#TITLE=Caf\xe9\n[1]\xb3\xf3" "d\x9f\n#End Songweaver\n");
    env.Polish = true;
    ASSERT_TRUE(LoadLyrics(lyrics, song, env));
    EXPECT_EQ(lyrics.PlayLyrics[0].Title, QString::fromUtf8("Café"));
    EXPECT_EQ(FirstText(), QString::fromUtf8("łódź"));

    env.Polish = false;
    ASSERT_TRUE(LoadLyrics(lyrics, song, env));
    EXPECT_EQ(FirstText(), QString::fromUtf8("³ódŸ"));
}

TEST_F(LyricsLoaderTest, EmbeddedLyricsOfAMidiSongNeedTheSiblingFileButReadTheSong)
{
    const QString midi = dir.filePath("song.kar");
    const QString sibling = dir.filePath("song.lrs");
    WriteFileBytes(midi, "MThd" + Block("[1]in midi"));
    EXPECT_FALSE(LoadEmbeddedLyrics(lyrics, midi, env));
    EXPECT_EQ(lyrics.PlayLyrics.size(), 1u);

    WriteFileBytes(sibling, Block("[1]in sibling"));
    ASSERT_TRUE(LoadEmbeddedLyrics(lyrics, midi, env));
    EXPECT_EQ(FirstText(), "in midi");
    EXPECT_EQ(lyrics.PlayLyrics[0].FormatName, "Songweaver (internal)");

    WriteFileBytes(midi, "MThd" + Block("bad[1]x"));
    EXPECT_FALSE(LoadEmbeddedLyrics(lyrics, midi, env));
}

TEST(TagLyricsImport, TimedLinesBecomeSyllablesAndPicturesTakeTheirBracketTimes)
{
    LyricsState lyrics;
    lyrics.PlayPictures.resize(3);
    TagLyrics tag{true, 2, "intro text\r\n[00:01]First\r\n[01:02]\r\n\r\n[00:05.5]Last\r\nnot timed", "",
                  "Artist", "Title"};
    tag.LyricsPicture = "cover.jpg\r\n\r\nslide.png||||Fade [12]\r\nother.png||||no time";
    bool refitted = false;
    ImportTagLyrics(lyrics, tag, QFont(), [&] { refitted = true; });

    EXPECT_TRUE(refitted);
    EXPECT_EQ(lyrics.PlayLyrics[0].Artist, "Artist");
    EXPECT_EQ(lyrics.PlayLyrics[0].Title, "Title");
    ASSERT_EQ(lyrics.PlayLyrics.size(), 4u);
    EXPECT_EQ(lyrics.PlayLyrics[1].Text, "First");
    EXPECT_DOUBLE_EQ(lyrics.PlayLyrics[1].Time, 1);
    EXPECT_TRUE(lyrics.PlayLyrics[1].LineEnd);
    EXPECT_EQ(lyrics.PlayLyrics[2].Text, "");
    EXPECT_DOUBLE_EQ(lyrics.PlayLyrics[2].Time, 62);
    EXPECT_EQ(lyrics.PlayLyrics[3].LineText, "Last");
    EXPECT_DOUBLE_EQ(lyrics.PlayLyrics[3].Time, 5.5);
    EXPECT_FALSE(lyrics.PlayLyrics[3].LineEnd);

    ASSERT_EQ(lyrics.PlayPictures.size(), 4u);
    EXPECT_EQ(lyrics.PlayPictures[1].File, "cover.jpg");
    EXPECT_EQ(lyrics.PlayPictures[1].Time, 0);
    EXPECT_EQ(lyrics.PlayPictures[2].File, "slide.png");
    EXPECT_EQ(lyrics.PlayPictures[2].Time, 12);
    EXPECT_EQ(lyrics.PlayPictures[3].Time, 0);
    EXPECT_EQ(lyrics.PictureTimes.size(), 4u);
}
