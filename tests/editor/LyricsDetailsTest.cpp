// The details dialog's rules: colours that equal the settings follow them, options write only when
// set, Clear and the placing defaults, the time text, the kept aspect, and the pictures that go to
// the display.

#include "editor/LyricsDetails.h"

#include "core/Colors.h"
#include "core/ThemeClass.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

namespace {

struct Settings {
    MemoryStore store;
    std::vector<MonitorRecord> monitors;
    ThemeClass theme{store, ThemeEnvironment{}, monitors};
};

} // namespace

TEST(LyricsDetails, AColourEqualToTheSettingIsStoredAsFollowingIt)
{
    Settings s;
    LyricItem header;
    header.ForeColor = RGB(1, 2, 3);  // pinned before
    std::vector<PictureItem> pictures(1);
    DetailsChoice choice = DetailsOf(header, pictures, s.theme);
    EXPECT_EQ(choice.Colors[0], RGB(1, 2, 3));
    EXPECT_EQ(choice.Colors[1], s.theme.LyricsHighlightColor) << "-1 shows the setting";
    EXPECT_EQ(choice.Colors[6], s.theme.LyricsBackColor);

    // The user picks the setting's own colour for the text on purpose: it follows the setting.
    choice.Colors[0] = s.theme.LyricsColor;
    choice.Colors[4] = RGB(200, 10, 10);
    AcceptDetails(choice, s.theme, header, pictures);
    EXPECT_EQ(header.ForeColor, -1);
    EXPECT_EQ(header.HighlightColor, -1);
    EXPECT_EQ(header.OutlineColor3, RGB(200, 10, 10));
    EXPECT_EQ(header.BackColor, -1);
}

TEST(LyricsDetails, AcceptingWritesOptionsOnlyWhenSetAndEverythingElseAsChosen)
{
    Settings s;
    LyricItem header;
    header.Alignment = 2;
    header.Layout = -1;
    header.LineText = QStringLiteral("kept");
    std::vector<PictureItem> pictures(1);
    DetailsChoice choice = DetailsOf(header, pictures, s.theme);
    choice.Header.Alignment = -1;  // no option set: the song keeps what it had
    choice.Header.Artist = QStringLiteral("Artist");
    choice.Header.Title = QStringLiteral("Title");
    choice.Header.Picture = QStringLiteral("back.jpg");
    choice.Header.ImageLayout = 2;
    choice.Header.ImagePosition = 1;
    choice.Header.ImageCustomX = 400;
    choice.Header.ImageCustomY = 300;
    choice.Header.ImageOffsetX = -5;
    choice.Header.ImageOffsetY = 7;
    choice.Pictures.push_back({QStringLiteral("a.png"), 12, QStringLiteral("Poker"), QStringLiteral("Vertical"), 4});
    AcceptDetails(choice, s.theme, header, pictures);
    EXPECT_EQ(header.Alignment, 2);
    EXPECT_EQ(header.Layout, -1);
    EXPECT_EQ(header.Artist, "Artist");
    EXPECT_EQ(header.Title, "Title");
    EXPECT_EQ(header.Picture, "back.jpg");
    EXPECT_EQ(header.ImageLayout, 2);
    EXPECT_EQ(header.ImagePosition, 1);
    EXPECT_EQ(header.ImageCustomX, 400);
    EXPECT_EQ(header.ImageCustomY, 300);
    EXPECT_EQ(header.ImageOffsetX, -5);
    EXPECT_EQ(header.ImageOffsetY, 7);
    EXPECT_EQ(header.LineText, "kept");
    ASSERT_EQ(pictures.size(), 2u);
    EXPECT_EQ(pictures[1].File, "a.png");
    EXPECT_EQ(pictures[1].Speed, 4);

    choice.Header.Alignment = 0;
    AcceptDetails(choice, s.theme, header, pictures);
    EXPECT_EQ(header.Alignment, 0);
}

TEST(LyricsDetails, ClearEmptiesNamesAndPicturesAndTakesTheSettingsColours)
{
    Settings s;
    s.theme.ImageSize = 2;
    s.theme.ImageSizeX = 640;
    s.theme.ImageSizeY = 480;
    s.theme.ImageAlign = 2;
    s.theme.ImageOffsetX = 3;
    LyricItem header;
    header.Artist = QStringLiteral("A");
    header.ForeColor = RGB(9, 9, 9);
    std::vector<PictureItem> pictures(2);
    DetailsChoice choice = DetailsOf(header, pictures, s.theme);
    ClearDetails(choice, s.theme);
    EXPECT_TRUE(choice.Header.Artist.isEmpty());
    EXPECT_EQ(choice.Pictures.size(), 1u);
    EXPECT_EQ(choice.Colors, SettingColors(s.theme));

    DefaultImagePlacing(choice, s.theme);
    EXPECT_EQ(choice.Header.ImageLayout, 2);
    EXPECT_EQ(choice.Header.ImageCustomX, 640);
    EXPECT_EQ(choice.Header.ImageCustomY, 480);
    EXPECT_EQ(choice.Header.ImagePosition, 2);
    EXPECT_EQ(choice.Header.ImageOffsetX, 3);
}

TEST(LyricsDetails, TimesReadAsMinutesAndSecondsAndTheAspectIsKept)
{
    EXPECT_EQ(PictureTimeText(0), "00:00");
    EXPECT_EQ(PictureTimeText(9), "00:09");
    EXPECT_EQ(PictureTimeText(61), "01:01");
    EXPECT_EQ(PictureTimeText(754), "12:34");
    EXPECT_EQ(PictureTimeText(6000), "100:00");
    EXPECT_EQ(KeptAspect(320, 640, 240), 480);
    EXPECT_EQ(KeptAspect(320, 100, 240), 75);
    EXPECT_EQ(KeptAspect(0, 100, 240), 240);
}

TEST(LyricsDetails, PicturesGoToTheDisplayWithNamesFromTheSongsFolder)
{
    LyricsState lyrics;
    lyrics.EditPictures = {PictureItem{}, {QStringLiteral("a.png"), 3, {}, {}, 0},
                           {QStringLiteral("/abs/b.png"), 5, {}, {}, 0}, {QStringLiteral("sub\\c.png"), 7, {}, {}, 0}};
    lyrics.PlayLyrics[0].Picture = QStringLiteral("back.jpg");
    ShowPicturesOnDisplay(lyrics, QStringLiteral("/songs"));
    ASSERT_EQ(lyrics.PlayPictures.size(), 4u);
    EXPECT_EQ(lyrics.PlayPictures[1].File, "/songs/a.png");
    EXPECT_EQ(lyrics.PlayPictures[2].File, "/abs/b.png");
    EXPECT_EQ(lyrics.PlayPictures[3].File, "/songs/sub/c.png");
    EXPECT_EQ(lyrics.PlayLyrics[0].Picture, "/songs/back.jpg");
    EXPECT_EQ(lyrics.EditPictures[1].File, "a.png") << "the editor keeps the names as written";
}
