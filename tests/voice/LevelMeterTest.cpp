// The level bar's rule and the voice fader's law.

#include "voice/LevelMeter.h"

#include <gtest/gtest.h>

#include <array>

namespace {

std::array<uint8_t, 4> Frame(int16_t left, int16_t right)
{
    return {uint8_t(left & 0xFF), uint8_t((left >> 8) & 0xFF), uint8_t(right & 0xFF), uint8_t((right >> 8) & 0xFF)};
}

} // namespace

TEST(LevelMeter, SamplesAreSignedSixteenBitFromTheirTwoBytes)
{
    EXPECT_EQ(Amplitud(0x34, 0x12), 0x1234);
    EXPECT_EQ(Amplitud(0xFF, 0x7F), 32767);
    EXPECT_EQ(Amplitud(0x00, 0x80), -32768);
    EXPECT_EQ(Amplitud(0xFF, 0xFF), -1);
}

TEST(LevelMeter, LevelsRiseAtOnceAndOnSilenceFallByAtMostAThousandInSum)
{
    LevelMeter meter;
    auto loud = Frame(-30000, 20000);
    EXPECT_EQ(meter.Monitor(loud.data(), 4), 50000);
    EXPECT_EQ(meter.Left(), 30000);
    EXPECT_EQ(meter.Right(), 20000);

    auto silence = Frame(0, 0);
    int sum = meter.Sum();
    for (int call = 0; call < 100 && sum > 0; ++call) {
        const int next = meter.Monitor(silence.data(), 4);
        EXPECT_GE(next, sum - 1000);
        EXPECT_LT(next, sum);
        sum = next;
    }
    EXPECT_EQ(sum, 0);

    // A fall of up to 500 is taken whole; a rise is never held back.
    auto some = Frame(400, 600);
    meter.Monitor(some.data(), 4);
    auto less = Frame(0, 200);
    EXPECT_EQ(meter.Monitor(less.data(), 4), 0 + 200);
    auto peak = Frame(32767, 32767);
    EXPECT_EQ(meter.Monitor(peak.data(), 4), 65534);
    EXPECT_EQ(meter.Monitor(peak.data(), 3), 65534) << "a buffer under two samples changes nothing";
}

TEST(LevelMeter, TheBarLightsSixtyThreePixelsAtTheTop)
{
    EXPECT_EQ(changeVolume(0), 0);
    EXPECT_EQ(changeVolume(1031), 0);
    EXPECT_EQ(changeVolume(1032), 1);
    EXPECT_EQ(changeVolume(32500), 31);
    EXPECT_EQ(changeVolume(65000), 63);
    EXPECT_EQ(changeVolume(65534), 63);
}

TEST(LevelMeter, TheVoiceFadersTableAndItsStepBetweenEightAndNine)
{
    const int table[] = {-10000, -8000, -7000, -5500, -4500, -4000, -3500, -3000, -2700};
    for (int i = 0; i <= 8; ++i)
        EXPECT_EQ(readVol(91 - i), table[i]) << "i = " << i;
    EXPECT_EQ(readVol(91 - 9), -2500);
    EXPECT_EQ(readVol(91 - 10), -2450);
    EXPECT_EQ(readVol(91 - 58), -50);
    EXPECT_EQ(readVol(33), -50) << "the default fader";
    EXPECT_EQ(readVol(91 - 59), 0);
    EXPECT_EQ(readVol(0), 0);
    // The step: 8 gives -2700, 9 already -2500, where the line would give -2550.
    EXPECT_EQ(readVol(83) - readVol(82), -200);
}
