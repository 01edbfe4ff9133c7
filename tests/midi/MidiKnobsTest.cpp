// The transpose and tempo knobs: labels, semitones and tempo from the knob's place, with the
// rounding that puts V = 60 two semitones down under a label of "0".

#include "midi/MidiKnobs.h"

#include <gtest/gtest.h>

TEST(MidiKnobs, LabelsSemitonesAndTempoOfTheKnob)
{
    struct Case {
        int v;
        const char* label;
        int semitones;
        double tempo;
    };
    const Case cases[] = {
        {0, "-10", -12, 0.0},   {57, "-1", -2, 13 * 2 / 30.0}, {58, "0", -2, 13 * 2 / 30.0},
        {60, "0", -2, 14 * 2 / 30.0}, {64, "0", 0, 1.0},        {70, "0", 0, 16 * 2 / 30.0},
        {71, "+1", 0, 16 * 2 / 30.0}, {128, "+10", 12, 2.0},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(KnobLabel(c.v), QString::fromLatin1(c.label)) << c.v;
        EXPECT_EQ(TransposeSemitones(c.v), c.semitones) << c.v;
        EXPECT_DOUBLE_EQ(MasterTempo(c.v), c.tempo) << c.v;
    }
    EXPECT_EQ(KnobValue(118), 64) << "the centre";
    EXPECT_EQ(KnobValue(40), 0);
    EXPECT_EQ(KnobValue(200), 128);
    EXPECT_DOUBLE_EQ(AudioRateOfKnob(118), 1.0);
    EXPECT_DOUBLE_EQ(AudioRateOfKnob(150), 2.0);
    EXPECT_DOUBLE_EQ(AudioRateOfKnob(86), 0.0);
}
