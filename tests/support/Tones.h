#pragma once
// The pitch of a steady tone in a stereo test recording.

#include <cstddef>
#include <vector>

// The left channel's frequency between two frames, from its rising zero crossings; 0 when it
// has fewer than two.
inline double ToneFrequency(const std::vector<float>& stereo, int rate, size_t fromFrame, size_t toFrame)
{
    double first = -1, last = -1;
    int cycles = -1;
    for (size_t i = fromFrame; i + 1 < toFrame && 2 * i + 2 < stereo.size(); ++i) {
        const float a = stereo[2 * i], b = stereo[2 * i + 2];
        if (a < 0 && b >= 0) {
            const double at = double(i) + a / (a - b);
            if (first < 0)
                first = at;
            last = at;
            ++cycles;
        }
    }
    return cycles > 0 ? cycles * rate / (last - first) : 0;
}
