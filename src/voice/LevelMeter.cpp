#include "voice/LevelMeter.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>

int Amplitud(uint8_t low, uint8_t high)
{
    const int sample = high * 256 + low;
    return high >= 128 ? sample - 65536 : sample;
}

int LevelMeter::Follow(int previous, int sample)
{
    const int level = std::abs(sample);
    return previous - level > kMaxFall ? previous - kMaxFall : level;
}

int LevelMeter::Monitor(const uint8_t* buffer, int length)
{
    if (length < 4)
        return Sum();
    m_left = Follow(m_left, Amplitud(buffer[0], buffer[1]));
    m_right = Follow(m_right, Amplitud(buffer[2], buffer[3]));
    return Sum();
}

int changeVolume(int level)
{
    const int lit = int(std::floor(level / 65000.0 * kLevelBarHeight));
    return std::clamp(lit, 0, kLevelBarHeight);
}

int readVol(int slider)
{
    static constexpr std::array<int, 9> kSteps = {-10000, -8000, -7000, -5500, -4500, -4000, -3500, -3000, -2700};
    const int i = 91 - slider;
    if (i < 0)
        return kSteps[0];
    if (i <= 8)
        return kSteps[size_t(i)];
    if (i <= 58)
        return -(2500 - 50 * (i - 9));
    return 0;
}
