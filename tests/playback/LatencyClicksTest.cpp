// The preferences' latency test: clicks on the beats through the engine, and a light that the
// time offset moves against them.

#include "playback/LatencyClicks.h"

#include "audio/AudioEngine.h"
#include "audio/ManualDevice.h"

#include <cmath>
#include <gtest/gtest.h>

TEST(LatencyClicks, TheLightFollowsTheLyricsClock)
{
    EXPECT_TRUE(BeatLit(0.0, 0));
    EXPECT_TRUE(BeatLit(0.55, 0));
    EXPECT_FALSE(BeatLit(0.65, 0));
    EXPECT_FALSE(BeatLit(0.55, 0.2)) << "a later offset lights later";
    EXPECT_TRUE(BeatLit(0.75, 0.2));
    EXPECT_TRUE(BeatLit(0.35, -0.2)) << "an earlier one sooner";
    EXPECT_FALSE(BeatLit(0.1, 0.2)) << "nothing before the clock starts";
}

TEST(LatencyClicks, ClicksSoundOnTheBeatsAndTheLightWithThem)
{
    constexpr int kRate = 48000;
    auto* device = new ManualDevice(kRate);
    AudioEngine engine{std::unique_ptr<AudioDevice>(device)};
    ASSERT_TRUE(engine.Start());
    {
        LatencyClicks test(engine);
        QString error;
        ASSERT_TRUE(test.Start(error)) << error.toStdString();

        double loudest[4] = {};
        bool litAtBeat = false, litBetween = true;
        for (int block = 0; block < 4 * 10; ++block) {  // 2 s in twentieths
            const std::vector<float>& out = device->Step(kRate / 20, 480);
            const int beat = block / 10;
            for (int i = 0; i < kRate / 20; ++i)
                if (block % 10 == 0)
                    loudest[beat] = std::max(loudest[beat], double(std::abs(out[2 * i])));
                else if (std::abs(out[2 * i]) > 0.01)
                    FAIL() << "sound between the clicks at block " << block;
            if (block % 10 == 0)
                litAtBeat = test.Lit(0);
            if (block % 10 == 4)
                litBetween = test.Lit(0);
        }
        for (double peak : loudest)
            EXPECT_GT(peak, 0.3);
        EXPECT_TRUE(litAtBeat);
        EXPECT_FALSE(litBetween);
        device->Step(kRate / 50);  // 20 ms past the fifth click
        EXPECT_TRUE(test.Lit(0));
        EXPECT_FALSE(test.Lit(0.25)) << "an offset moves the light off the clicks";
        EXPECT_TRUE(test.Lit(0.5)) << "a whole beat later it meets them again";

        // A user may listen for minutes while turning the offset: the clicks never run out.
        device->Step(kRate * 180 - kRate / 50, 4800);
        float later = 0;
        for (float sample : device->Step(kRate / 20, 480))
            later = std::max(later, std::abs(sample));
        EXPECT_GT(later, 0.3f) << "a click three minutes in";
    }
    device->Step(480);
    EXPECT_EQ(device->Step(480)[0], 0.0f) << "the clicks stop with the test";
}
