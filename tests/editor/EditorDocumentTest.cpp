// The lyrics editor's document: what Split, Merge and the row commands make of the entries, and
// the steps of a held correction key.

#include "editor/EditorDocument.h"
#include "lyrics/LyricsBlock.h"

#include "support/TestSupport.h"

#include <QStringList>
#include <gtest/gtest.h>

namespace {

QStringList Texts(const EditorDocument& document)
{
    QStringList texts;
    for (int row = 1; row <= document.Count(); ++row)
        texts << document.Entry(row).Text + (document.Entry(row).LineEnd ? QStringLiteral("|") : QString());
    return texts;
}

} // namespace

TEST(EditorDocument, SplitMakesAWordARowAndMergeGivesTheLinesBack)
{
    LyricsState lyrics;
    EditorDocument document(lyrics);
    EXPECT_FALSE(document.Split(QString()));
    ASSERT_TRUE(document.Split("Twinkle twinkle  little star\r\nHow I wonder\r\n\r\nwhat you are"));
    EXPECT_EQ(Texts(document), (QStringList{"Twinkle ", "twinkle ", "little ", "star |", "How ", "I ", "wonder |",
                                            "what ", "you ", "are |"}));
    EXPECT_EQ(document.TimeText(1), "0");
    EXPECT_EQ(lyrics.EditLyrics[0].FormatName, "Songweaver (editor)") << "syllables light one by one";
    EXPECT_EQ(document.Entry(2).LineText, "Twinkle twinkle little star ");
    EXPECT_EQ(document.Entry(5).LineText, "How I wonder ");
    EXPECT_EQ(document.Merge(), "Twinkle twinkle little star \r\nHow I wonder \r\nwhat you are \r\n");

    // Merged and split again, the rows are the same.
    const QStringList before = Texts(document);
    document.Split(document.Merge());
    EXPECT_EQ(Texts(document), before);
}

TEST(EditorDocument, RowCommandsKeepRowsAndLineTextsTogether)
{
    LyricsState lyrics;
    EditorDocument document(lyrics);
    document.Split("one two\r\nthree four");
    for (int row = 1; row <= 4; ++row)
        document.SetTime(row, row);

    document.Insert(3);
    EXPECT_EQ(Texts(document), (QStringList{"one ", "two |", "", "three ", "four |"}));
    EXPECT_EQ(document.Merge(), "one two \r\n\r\nthree four \r\n") << "an empty entry is an empty line";
    document.Delete({3});
    EXPECT_EQ(document.AddNew(), 5);
    document.EditText(5, "five ");
    document.SetBreak(4, false);
    document.SetBreak(5, true);
    EXPECT_EQ(document.Entry(3).LineText, "three four five ");

    document.Copy({1, 2});
    document.Paste(5);
    EXPECT_EQ(Texts(document), (QStringList{"one ", "two |", "three ", "four ", "one ", "two |", "five |"}));
    EXPECT_EQ(document.Entry(5).Time, 0) << "pasted entries have no time";
    EXPECT_EQ(document.Entry(6).Time, 0);
    EXPECT_EQ(document.Entry(1).Time, 1);

    document.Cut({5, 6});
    EXPECT_EQ(Texts(document).size(), 5);
    EXPECT_TRUE(document.Paste(99)) << "cut keeps the rows for a paste";
    EXPECT_EQ(Texts(document).last(), "two |");

    document.Offset({1, 2}, 0.5);
    EXPECT_DOUBLE_EQ(document.Entry(1).Time, 1.5);
    EXPECT_DOUBLE_EQ(document.Entry(3).Time, 3);
    document.Offset({}, 0.5);
    EXPECT_DOUBLE_EQ(document.Entry(3).Time, 3) << "nothing selected, nothing moves";
    EXPECT_EQ(document.TimeText(1), "00:01,500");

    document.Clear();
    EXPECT_EQ(document.Count(), 0);
    EXPECT_FALSE(EditorDocument(lyrics).Paste(1)) << "nothing copied";
}

TEST(EditorDocument, AHeldKeyMovesByThousandthsThenATenthOnceThenHundredthsThenTenths)
{
    // The count is one up when the first step is chosen.
    double moved = 0;
    for (int tick = 1; tick <= 25; ++tick)
        moved += CorrectionStep(tick);
    EXPECT_NEAR(moved, 9 * 0.001 + 0.1 + 9 * 0.01 + 6 * 0.1, 1e-12);
    EXPECT_DOUBLE_EQ(CorrectionStep(9), 0.001);
    EXPECT_DOUBLE_EQ(CorrectionStep(10), 0.1);
    EXPECT_DOUBLE_EQ(CorrectionStep(11), 0.01);
    EXPECT_DOUBLE_EQ(CorrectionStep(30), 0.1);
}

TEST(EditorDocument, AnEditOfTheLastLineReachesItsLineText)
{
    LyricsState lyrics;
    ASSERT_TRUE(ParseEditorLyrics(lyrics, QStringLiteral("[1]one [2]two\r\n[3]three [4]four\r\n"),
                                  [](const QString&) {}));
    EditorDocument document(lyrics);
    ASSERT_FALSE(document.Entry(4).LineEnd) << "a read song's last syllable ends no line";
    document.EditText(4, QStringLiteral("more "));
    EXPECT_EQ(document.Entry(3).LineText, "three more ");
    EXPECT_EQ(document.Entry(4).LineText, "three more ");
    EXPECT_EQ(document.Entry(1).LineText, "one two");
}
