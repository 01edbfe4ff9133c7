// Which line stands on which row, in each display mode, across whole songs.

#include "KaraokeFixtures.h"
#include "karaoke/PageLayout.h"

#include <gtest/gtest.h>

namespace {

// The rows of each page of the song, syllable by syllable, as "row1/row2/row3" with the current
// row in brackets.
QStringList Walk(const std::vector<LyricItem>& song, int16_t mode)
{
    PageLayout layout;
    QStringList pages;
    for (int32_t i = 1; i < int32_t(song.size()); ++i) {
        const Page page = layout.Compose(song, i, false, mode);
        QStringList rows;
        for (const PageRow& row : page.Rows)
            rows << (row.Current ? u'[' + row.Text + u']' : row.Text);
        pages << rows.join(u'/');
    }
    return pages;
}

// Words as a karaoke MIDI file gives them: an empty lead-in line first, and a last line whose
// syllables carry no line text.
std::vector<LyricItem> MidiWords(int lines)
{
    auto song = NumberedLines(lines);
    LyricItem leadIn;
    leadIn.LineEnd = true;
    song.insert(song.begin() + 1, leadIn);
    song.back().LineText.clear();
    return song;
}

} // namespace

TEST(Layout, AMidiSongsFirstSungLineStandsOnTopAndItsLastLineShowsItsSyllables)
{
    EXPECT_EQ(Walk(MidiWords(4), 3), (QStringList{"[]/L1/L2", "[L1]/L2/L3", "L4/[L2]/L3", "L4/L2/[L3]", "[L4]//"}));
    EXPECT_EQ(Walk(MidiWords(2), 1), (QStringList{"[]/L1", "[L1]/L2", "[L2]/"}));
}

TEST(Layout, ThreeLinesRollDownAndRewriteARowOneLineAfterItWasSung)
{
    EXPECT_EQ(Walk(NumberedLines(7), 3), (QStringList{
                                             "[L1]/L2/L3",
                                             "L4/[L2]/L3",
                                             "L4/L5/[L3]",
                                             "[L4]/L5/L6",
                                             "L7/[L5]/L6",
                                             "L7/L5/[L6]",
                                             "[L7]//",
                                         }));
}

TEST(Layout, TwoLinesKeepTheCurrentLineOnTopAndSeparatedLinesTakeTurns)
{
    EXPECT_EQ(Walk(NumberedLines(4), 1), (QStringList{"[L1]/L2", "[L2]/L3", "[L3]/L4", "[L4]/"}));
    EXPECT_EQ(Walk(NumberedLines(5), 2), (QStringList{"[L1]/L2", "L3/[L2]", "[L3]/L4", "L5/[L4]", "[L5]/"}))
        << "each line is sung on the row where it was shown as the next, while the other is rewritten";
    EXPECT_EQ(Walk(NumberedLines(3), 0), (QStringList{"[L1]", "[L2]", "[L3]"}));
}

TEST(Layout, SyllablesOfALineShareThePageAndBuildTheSungText)
{
    const auto song = Song({{{1, "Hel"}, {2, "lo "}, {3, "world"}}, {{4, "Bye"}}});
    PageLayout layout;
    Page page = layout.Compose(song, 2, false, 3);
    EXPECT_EQ(page.SungText, "Hello ");
    EXPECT_EQ(page.Syllable, "lo ");
    EXPECT_EQ(page.LinesLeft, 2);
    page = layout.Compose(song, 3, false, 3);
    EXPECT_EQ(page.SungText, "Hello world");
    EXPECT_EQ(layout.RowCursor, 0) << "a syllable inside a line moves no row";
    page = layout.Compose(song, 4, false, 3);
    EXPECT_EQ(page.SungText, "Bye");
    EXPECT_EQ(layout.RowCursor, 1);
    EXPECT_EQ(page.LinesLeft, 1);
}

TEST(Layout, AOneLineSongShowsOneRowInEveryMode)
{
    const auto song = Song({{{1, "only "}, {2, "line"}}});
    for (int16_t mode = 0; mode <= 3; ++mode) {
        SCOPED_TRACE(mode);
        PageLayout layout;
        for (int32_t i = 1; i <= 2; ++i) {
            const Page page = layout.Compose(song, i, false, mode);
            EXPECT_EQ(page.LinesLeft, 1);
            EXPECT_EQ(int(page.Rows.size()), RowCount(mode));
            int filled = 0;
            for (const PageRow& row : page.Rows)
                filled += row.Text.isEmpty() ? 0 : 1;
            EXPECT_EQ(filled, 1);
        }
    }
}

TEST(Layout, AJumpKeepsTheRowCursorAndResetBringsItHome)
{
    const auto song = NumberedLines(8);
    PageLayout layout;
    layout.Compose(song, 1, false, 3);
    layout.Compose(song, 2, false, 3);
    EXPECT_EQ(layout.RowCursor, 1);
    layout.ClearRows();
    const Page page = layout.Compose(song, 5, true, 3);
    EXPECT_EQ(layout.RowCursor, 1) << "a jump advances no row";
    EXPECT_TRUE(page.Rows[1].Current);
    EXPECT_EQ(page.Rows[1].Text, "L5");
    EXPECT_EQ(page.Rows[0].Text, "L7") << "the row above gets the line after next";
    layout.Reset();
    EXPECT_EQ(layout.RowCursor, 0);
}

TEST(Layout, SungRowsAreMarkedForTheLinesHighlight)
{
    const auto song = NumberedLines(2);
    PageLayout layout;
    layout.Compose(song, 1, false, 2);
    const Page page = layout.Compose(song, 2, false, 2);
    ASSERT_EQ(page.Rows.size(), 2u);
    EXPECT_TRUE(page.Rows[1].Current);
    EXPECT_TRUE(page.Rows[0].Text.isEmpty());
    const Page three = PageLayout().Compose(NumberedLines(2), 2, true, 3);
    EXPECT_FALSE(three.Rows[0].Sung);
}
