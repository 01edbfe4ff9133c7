#pragma once
// Colours as the settings and lyrics files hold them: Win32 colour numbers, red in the low byte.

#include <QColor>
#include <cstdint>

constexpr int32_t RGB(int r, int g, int b)
{
    return (r & 0xFF) | (g & 0xFF) << 8 | (b & 0xFF) << 16;
}

inline QColor ColorFromWin32(int32_t colour)
{
    return QColor(colour & 0xFF, (colour >> 8) & 0xFF, (colour >> 16) & 0xFF);
}

inline int32_t Win32FromColor(const QColor& colour)
{
    return RGB(colour.red(), colour.green(), colour.blue());
}
