#include "midi/MidiKnobs.h"

#include <algorithm>
#include <cmath>

int KnobValue(int top)
{
    return (std::clamp(top, kKnobTop, kKnobBottom) - kKnobTop) * 2;
}

QString KnobLabel(int v)
{
    if (v > 70)
        return u'+' + QString::number(int(std::floor((v - 64) / 64.0 * 10)));
    if (v >= 58)
        return QStringLiteral("0");
    return u'-' + QString::number(int(std::floor((64 - v) / 64.0 * 10)));
}

int TransposeSemitones(int v)
{
    return int(std::floor((24.0 / 127 * v - 12) / 2)) * 2;
}

double MasterTempo(int v)
{
    return std::floor(30.0 / 127 * v) * 2 / 30;
}

double AudioRateOfKnob(int top)
{
    return (std::clamp(top, kKnobTop, kKnobBottom) - kKnobTop) / 64.0 * 2;
}

int AudioSemitonesOfKnob(int top)
{
    return int(std::lround((KnobValue(top) - 64) / 64.0 * 12));
}

double AudioTempoOfKnob(int top)
{
    return std::pow(2.0, (KnobValue(top) - 64) / 64.0);
}

int SongPanOfBalance(int value)
{
    return int(std::clamp(value, 0, 2 * kBalanceCentre) / 20000.0 * 127);
}

int MediaBalanceOfKnob(int value)
{
    return (std::clamp(value, 0, 2 * kBalanceCentre) - kBalanceCentre) / 2;
}

int MidiVolumeOfSlider(double value)
{
    return int(std::lround(std::clamp(value, 0.0, 1.0) * 100 * 39 - 3000));
}

QString BalanceText(int value, int centre)
{
    if (value == centre || centre <= 0)
        return QStringLiteral("C");
    const long share = std::lround(std::abs(value - centre) * 100.0 / centre);
    return (value < centre ? QStringLiteral("L %1") : QStringLiteral("R %1")).arg(share);
}
