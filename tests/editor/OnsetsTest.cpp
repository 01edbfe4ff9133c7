// Where sounds start: tone bursts found at their seconds, and Snap to onsets moving only the
// selected stamps that are within 80 ms of one, never past a neighbour.

#include "editor/Onsets.h"
#include "support/TestSupport.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

// Bursts of a tone starting at 1.0, 2.0 and 3.5 s, silence between.
QString Bursts(const QTemporaryDir& dir)
{
    const QString path = dir.filePath("bursts.wav");
    RunProgram("sox", {"-n", "-r", "44100", "-c", "1", path, "synth", "1", "sine", "0", ":", "synth", "0.3", "sine", "440",
                       ":", "synth", "0.7", "sine", "0", ":", "synth", "0.3", "sine", "660", ":", "synth", "1.2", "sine",
                       "0", ":", "synth", "0.3", "sine", "550", ":", "synth", "0.5", "sine", "0"});
    return path;
}

std::vector<LyricItem> Rows(std::initializer_list<double> times)
{
    std::vector<LyricItem> rows(1);
    for (double time : times) {
        LyricItem row;
        row.Time = time;
        rows.push_back(row);
    }
    return rows;
}

} // namespace

TEST(Onsets, ToneBurstsAreFoundWhereTheyStart)
{
    QTemporaryDir dir;
    const std::vector<double> onsets = FindOnsets(Bursts(dir));
    ASSERT_EQ(onsets.size(), 3u) << ::testing::PrintToString(onsets);
    EXPECT_NEAR(onsets[0], 1.0, 0.03);
    EXPECT_NEAR(onsets[1], 2.0, 0.03);
    EXPECT_NEAR(onsets[2], 3.5, 0.03);
    EXPECT_TRUE(FindOnsets(MediaFixture("not-audio.txt")).empty());
    EXPECT_TRUE(FindOnsets(dir.filePath("missing.wav")).empty());
}

TEST(Onsets, OnlySelectedStampsWithin80MsMoveAndNeverPastANeighbour)
{
    const std::vector<double> onsets{1.0, 2.0, 3.5};
    EXPECT_DOUBLE_EQ(SnappedStamp(onsets, 1.07), 1.0);
    EXPECT_DOUBLE_EQ(SnappedStamp(onsets, 1.95), 2.0);
    EXPECT_DOUBLE_EQ(SnappedStamp(onsets, 2.09), 2.09) << "90 ms is too far";
    EXPECT_DOUBLE_EQ(SnappedStamp({}, 2.0), 2.0);

    auto rows = Rows({1.05, 1.97, 3.45, 0});
    EXPECT_EQ(SnapRows(rows, {1, 3, 4}, onsets), 2);
    EXPECT_DOUBLE_EQ(rows[1].Time, 1.0);
    EXPECT_DOUBLE_EQ(rows[2].Time, 1.97) << "not selected";
    EXPECT_DOUBLE_EQ(rows[3].Time, 3.5);
    EXPECT_DOUBLE_EQ(rows[4].Time, 0) << "a row without a time stays without";

    auto close = Rows({1.93, 1.96});
    EXPECT_EQ(SnapRows(close, {1}, onsets), 1);
    EXPECT_DOUBLE_EQ(close[1].Time, 1.96) << "held at the row below";
}
