#pragma once
// The microphone's level bar and the voice fader's law.

#include <cstdint>

// A 16-bit sample from its two bytes: high * 256 + low, less 65536 when high is 128 or more.
int Amplitud(uint8_t low, uint8_t high);

// Two channels whose levels rise at once and fall by at most 500 per buffer.
class LevelMeter {
public:
    static constexpr int kMaxFall = 500;

    // Takes the first two samples of a buffer of 16-bit sound; returns the sum of both levels.
    // A buffer shorter than two samples leaves the levels as they were.
    int Monitor(const uint8_t* buffer, int length);
    int Left() const { return m_left; }
    int Right() const { return m_right; }
    int Sum() const { return m_left + m_right; }

private:
    static int Follow(int previous, int sample);

    int m_left = 0;
    int m_right = 0;
};

// The bar is 8 by 63 pixels; this many of them, from the bottom, are lit for a level sum.
constexpr int kLevelBarHeight = 63;
int changeVolume(int level);

// The voice fader (0 loudest to 91 silent and past) in hundredths of a decibel for the voice's
// session. The step between 91 - 8 and 91 - 9 is not smooth, and is kept.
int readVol(int slider);
