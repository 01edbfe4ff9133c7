#include "lyrics/LyricTime.h"
#include "lyrics/LyricsData.h"
#include "lyrics/TagLyrics.h"

#include <QFont>
#include <gtest/gtest.h>

TEST(LyricTime, ParsesPositionalMinutesSecondsAndEitherFractionMark)
{
    EXPECT_DOUBLE_EQ(ParseLyricTime("01:02"), 62);
    EXPECT_DOUBLE_EQ(ParseLyricTime("01:02,5"), 62.5);
    EXPECT_DOUBLE_EQ(ParseLyricTime("01:02.250"), 62.25);
    EXPECT_DOUBLE_EQ(ParseLyricTime("00:05.5,25"), 5.25);  // the last "," marks the fraction
    EXPECT_DOUBLE_EQ(ParseLyricTime("ab:cd"), 0);
    EXPECT_DOUBLE_EQ(ParseLyricTime("100:10"), 10 * 60 + 0);  // three-digit minutes misread
}

TEST(LyricTime, FormatsTheThreeDigitCountsWithAndWithoutMinutes)
{
    EXPECT_EQ(FormatLyricTime(0, 3, true), "00:00,000");
    EXPECT_EQ(FormatLyricTime(125.5, 3, true), "02:05,500");
    EXPECT_EQ(FormatLyricTime(125.5, 2, true), "02:05,50");
    EXPECT_EQ(FormatLyricTime(125.56, 1, true), "02:05,6");
    EXPECT_EQ(FormatLyricTime(3725.0004, 3, true), "62:05,000");
    EXPECT_EQ(FormatLyricTime(125.5, 3, false), "05,500");
    EXPECT_EQ(FormatLyricTime(60, 3, false), "00,000");
    EXPECT_EQ(FormatLyricTime(-1.5, 3, true), "- 00:01,500");
    EXPECT_EQ(FormatLyricTime(-1.5, 3, false), "- 01,500");
    EXPECT_EQ(FormatLyricTime(1.0005, 3, true), "00:01,001");
}

TEST(LyricTime, BlockTimesDropTrailingZerosAndUseTheGivenMark)
{
    EXPECT_EQ(FormatBlockTime(12.5, "."), "12.5");
    EXPECT_EQ(FormatBlockTime(12.345, ","), "12,345");
    EXPECT_EQ(FormatBlockTime(12, "."), "12");
    EXPECT_EQ(FormatBlockTime(12.3456, "."), "12.346");
    EXPECT_EQ(FormatBlockTime(0.0001, "."), "0");
}

TEST(LyricTime, PicturePathsAreAbsoluteOrJoinedToTheSongFolder)
{
    EXPECT_EQ(ResolvePicturePath("/songs", "bg.jpg"), "/songs/bg.jpg");
    EXPECT_EQ(ResolvePicturePath("/songs/", "pics\\bg.jpg"), "/songs/pics/bg.jpg");
    EXPECT_EQ(ResolvePicturePath("/songs", "/home/me/bg.jpg"), "/home/me/bg.jpg");
    EXPECT_EQ(ResolvePicturePath("/songs", "C:\\pics\\bg.jpg"), "C:\\pics\\bg.jpg");
}

namespace {

std::vector<PictureItem> PicturesAt(std::initializer_list<int32_t> times)
{
    std::vector<PictureItem> pictures(1);
    for (int32_t t : times) {
        PictureItem p;
        p.Time = t;
        pictures.push_back(p);
    }
    return pictures;
}

class FixedTags final : public SongTags {
public:
    QString artist, title, baseName;
    void ReadTag() override {}
    QString Artist() const override { return artist; }
    QString Title() const override { return title; }
    QString BaseName() const override { return baseName; }
    TagLyrics LyricsTag() const override { return {}; }
};

} // namespace

TEST(LyricsModel, PictureOrderSortsByTimeWithUntimedPicturesFirst)
{
    LyricsState lyrics;
    lyrics.PlayPictures = PicturesAt({30, 0, 10, -5, 20});
    BuildPictureOrder(lyrics);
    ASSERT_EQ(lyrics.PictureTimes.size(), 6u);
    std::vector<int32_t> times;
    for (size_t i = 1; i < 6; ++i)
        times.push_back(lyrics.PictureTimes[i].Time);
    EXPECT_EQ(times, (std::vector<int32_t>{-1, -1, 10, 20, 30}));
    EXPECT_EQ(lyrics.PictureTimes[3].Index, 3);
    EXPECT_EQ(lyrics.PictureTimes[5].Index, 1);

    lyrics.PlayPictures.resize(1);
    BuildPictureOrder(lyrics);
    EXPECT_EQ(lyrics.PictureTimes.size(), 1u);
}

TEST(LyricsModel, TitleComesFromTheHeaderThenTheTagsThenTheFileName)
{
    LyricsState lyrics;
    FixedTags tags;
    tags.baseName = "Song";
    EXPECT_EQ(MakeLyricsTitle(lyrics, &tags), "Song");
    EXPECT_EQ(MakeLyricsTitle(lyrics, nullptr), "");
    tags.title = "Tag title";
    EXPECT_EQ(MakeLyricsTitle(lyrics, &tags), "Tag title");
    tags.artist = "Tag artist";
    EXPECT_EQ(MakeLyricsTitle(lyrics, &tags), "Tag artist|Tag title");
    lyrics.PlayLyrics[0].Artist = "Queen";
    EXPECT_EQ(MakeLyricsTitle(lyrics, &tags), "Queen");
    lyrics.PlayLyrics[0].Title = "Bohemian";
    EXPECT_EQ(MakeLyricsTitle(lyrics, &tags), "Queen|Bohemian");
    lyrics.PlayLyrics[0].Artist.clear();
    EXPECT_EQ(MakeLyricsTitle(lyrics, &tags), "Bohemian");
}

TEST(LyricsModel, LongestLineIsMeasuredInTheFontAndTheEarlierLineWinsATie)
{
    std::vector<LyricItem> lyrics(1);
    for (const char* line : {"iiiiiiii", "WWWWW", "MMMMM", "WWWWW"}) {
        LyricItem item;
        item.LineText = line;
        lyrics.push_back(item);
    }
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setPointSize(20);
    const QString longest = FindLongestLine(lyrics, font);
    EXPECT_TRUE(longest == "WWWWW" || longest == "MMMMM") << longest.toStdString();
    EXPECT_EQ(FindLongestLine(std::vector<LyricItem>(1), font), "");

    lyrics.resize(1);
    LyricItem same;
    same.LineText = "abc";
    same.Text = "first";
    lyrics.push_back(same);
    same.Text = "second";
    lyrics.push_back(same);
    EXPECT_EQ(FindLongestLine(lyrics, font), "abc");
}

TEST(LyricsModel, ResetKeepsArtistTitleAndImageFieldsForTheReaders)
{
    LyricsState lyrics;
    LyricItem& h = lyrics.PlayLyrics[0];
    h.Artist = "A";
    h.Title = "T";
    h.Picture = "p.jpg";
    h.ForeColor = h.BackColor = h.OutlineColor3 = 5;
    h.Alignment = h.Layout = 1;
    h.ImageCustomX = 9;
    h.FormatName = "x";
    lyrics.PlayLyrics.resize(4);
    lyrics.PlayPictures.resize(3);
    lyrics.LyricsTitleText = "A|T";
    ResetLyricsData(lyrics);
    const LyricItem& r = lyrics.PlayLyrics[0];
    EXPECT_EQ(lyrics.PlayLyrics.size(), 1u);
    EXPECT_EQ(lyrics.PlayPictures.size(), 1u);
    EXPECT_EQ(lyrics.LyricsTitleText, "");
    EXPECT_EQ(r.Picture, "");
    EXPECT_EQ(r.ForeColor, -1);
    EXPECT_EQ(r.BackColor, -1);
    EXPECT_EQ(r.OutlineColor3, -1);
    EXPECT_EQ(r.Alignment, -1);
    EXPECT_EQ(r.Layout, -1);
    EXPECT_EQ(r.FormatName, "");
    EXPECT_EQ(r.Artist, "A");
    EXPECT_EQ(r.ImageCustomX, 9);
}
