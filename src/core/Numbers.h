#pragma once
// Number and time texts as the settings, language, lyrics and playlist files hold them.

#include <QString>
#include <cstdint>

// The leading number of a text, read the way the old Basic's Val did: blanks anywhere are
// skipped, "&H"/"&O" prefixes read hex and octal, reading stops at the first other character,
// and a text without a number gives 0.
double NumericValue(const QString& text);

// Rounds half to even (Basic's CInt) and saturates to the 16-bit range.
int16_t ToInt16(double value);
int32_t ToInt32(double value);

// "mm:ss" of a position in seconds; minutes have at least two digits, a negative input is
// clamped to 0.
QString FormatTime(double seconds);
