// Undo and redo of the editor's document: each kind of change taken back and done again, a
// mixed run undone to the start, and a new change after an undo dropping what was undone.

#include "editor/EditorDocument.h"
#include "editor/EditorHistory.h"

#include <gtest/gtest.h>

namespace {

struct Document {
    LyricsState lyrics;
    EditorDocument document{lyrics};
    EditorHistory history{lyrics};

    Document()
    {
        document.Split(QStringLiteral("One two three\r\nFour five"));
        history.Reset();
    }
    std::vector<LyricItem>& Rows() { return lyrics.EditLyrics; }
};

} // namespace

TEST(EditorHistory, EachKindOfChangeIsTakenBackAndDoneAgain)
{
    const std::vector<std::pair<const char*, std::function<void(Document&)>>> changes = {
        {"Capture", [](Document& d) { d.document.SetTime(2, 1.25); }},
        {"EditTextChange", [](Document& d) { d.document.EditText(3, QStringLiteral("tree ")); }},
        {"LineBreak", [](Document& d) { d.document.SetBreak(1, true); }},
        {"MenuInsert", [](Document& d) { d.document.Insert(2); }},
        {"MenuDelete", [](Document& d) { d.document.Delete({1, 4}); }},
        {"Offset", [](Document& d) { d.document.Offset({1, 2, 3}, 0.5); }},
        {"MenuSplitText", [](Document& d) { d.document.Split(QStringLiteral("Other words")); }},
        {"MenuDetails", [](Document& d) { d.Rows()[0].Title = QStringLiteral("Title"); }},
        {"MenuDetails", [](Document& d) { d.lyrics.EditPictures.push_back({QStringLiteral("a.jpg"), 12, {}, {}, 5}); }},
        {"MenuClear", [](Document& d) { d.document.Clear(); }},
    };
    for (const auto& [name, change] : changes) {
        SCOPED_TRACE(name);
        Document d;
        const auto before = d.Rows();
        const auto pictures = d.lyrics.EditPictures;
        change(d);
        const auto after = d.Rows();
        const auto picturesAfter = d.lyrics.EditPictures;
        ASSERT_TRUE(d.history.Record(QString::fromLatin1(name)));
        EXPECT_EQ(d.history.UndoChange(), name);

        ASSERT_TRUE(d.history.Undo());
        EXPECT_EQ(d.Rows(), before);
        EXPECT_EQ(d.lyrics.EditPictures, pictures);
        EXPECT_FALSE(d.history.CanUndo());
        EXPECT_EQ(d.history.RedoChange(), name);

        ASSERT_TRUE(d.history.Redo());
        EXPECT_EQ(d.Rows(), after);
        EXPECT_EQ(d.lyrics.EditPictures, picturesAfter);
        EXPECT_FALSE(d.history.CanRedo());
    }
}

TEST(EditorHistory, AMixedRunUndoesToTheStartAndANewChangeDropsWhatWasUndone)
{
    Document d;
    const auto start = d.Rows();
    std::vector<std::vector<LyricItem>> states{start};
    for (int i = 1; i <= 40; ++i) {
        switch (i % 4) {
        case 0: d.document.SetTime(1 + i % d.document.Count(), i * 0.1); break;
        case 1: d.document.EditText(1 + i % d.document.Count(), QString::number(i)); break;
        case 2: d.document.Insert(1); break;
        default: d.document.Delete({d.document.Count()}); break;
        }
        ASSERT_TRUE(d.history.Record(QStringLiteral("step")));
        states.push_back(d.Rows());
    }
    EXPECT_FALSE(d.history.Record(QStringLiteral("nothing"))) << "no change, no step";
    for (size_t i = states.size() - 1; i > 0; --i) {
        ASSERT_TRUE(d.history.Undo());
        ASSERT_EQ(d.Rows(), states[i - 1]) << i;
    }
    EXPECT_FALSE(d.history.Undo());
    EXPECT_EQ(d.Rows(), start);

    d.history.Redo();
    d.history.Redo();
    EXPECT_EQ(d.Rows(), states[2]);
    d.document.SetTime(1, 9.0);
    ASSERT_TRUE(d.history.Record(QStringLiteral("Capture")));
    EXPECT_FALSE(d.history.CanRedo()) << "what was undone goes with a new change";
    d.history.Undo();
    EXPECT_EQ(d.Rows(), states[2]);
}
