// The rows: duplicates, selection, sorting, the random order and the playing mark.

#include "playlist/PlaylistModel.h"

#include <gtest/gtest.h>

namespace {

PlaylistModel Rows(std::initializer_list<const char*> texts)
{
    PlaylistModel model;
    for (const char* text : texts)
        model.AddItem({QString::fromUtf8(text), {}, QStringLiteral("/songs/") + QString::fromUtf8(text)});
    return model;
}

QStringList Texts(const PlaylistModel& model)
{
    QStringList texts;
    for (int i = 0; i < model.ListCount(); ++i)
        texts << model.Row(i).ItemString;
    return texts;
}

} // namespace

TEST(PlaylistModel, DuplicatesSelectionAndRemoval)
{
    PlaylistModel model = Rows({"b", "a", "b"});
    EXPECT_EQ(model.ListCount(), 3) << "the same file twice is two rows";
    EXPECT_EQ(model.SelectedIndex(), -1);
    model.SetSelected(1, true);
    model.ReverseSelection();
    EXPECT_EQ(model.SelectedIndex(), 0);
    model.RemoveSelected();
    EXPECT_EQ(Texts(model), QStringList{"a"});
    model.SelectAll();
    model.SelectNone();
    EXPECT_EQ(model.SelectedIndex(), -1);
}

TEST(PlaylistModel, SortsKeepThePlayingMarkWithItsSong)
{
    PlaylistModel model = Rows({"Charlie", "alpha", "Bravo"});
    model.SetCurrentPlaying(0);
    model.SortFlatList(true);
    EXPECT_EQ(Texts(model), (QStringList{"alpha", "Bravo", "Charlie"}));
    EXPECT_EQ(model.CurrentPlaying(), 2);
    model.SortFlatList(false);
    EXPECT_EQ(Texts(model), (QStringList{"Charlie", "Bravo", "alpha"}));
    model.MoveDown(0);
    EXPECT_EQ(Texts(model), (QStringList{"Bravo", "Charlie", "alpha"}));
    model.MoveUp(0);
    EXPECT_EQ(Texts(model).first(), "Bravo") << "the top row cannot move up";
}

TEST(PlaylistModel, RandomOrderDrawsAgainForTakenPlaces)
{
    PlaylistModel model = Rows({"a", "b", "c", "d"});
    // Int(4 * r): 2, then 2 again (taken) and 0, then 3, then 0 (taken), 3 (taken) and 1.
    const std::vector<double> draws = {0.6, 0.6, 0.1, 0.9, 0.2, 0.8, 0.3};
    size_t next = 0;
    model.SortRandom([&] { return draws[next++]; });
    EXPECT_EQ(next, draws.size());
    EXPECT_EQ(Texts(model), (QStringList{"b", "d", "a", "c"}));
}
