#pragma once
// The time texts of lyrics: "mm:ss,fff" of the editor, the seconds of the block's time tags,
// and the picture paths of a block, which are relative to the song's folder.

#include <QString>

// "mm:ss", "mm:ss,fff" or "mm:ss.fff" in seconds; positional, so three-digit minutes misread.
double ParseLyricTime(const QString& text);

// "mm:ss,fff" (minutes shown) or "ss,fff" with 1, 2 or 3 fraction digits; the mark is always ",".
QString FormatLyricTime(double seconds, int digits, bool showMinutes);

// The time of a block's time tag: seconds rounded to 3 decimals, trailing zeros dropped,
// written with the given decimal mark ("12.5", "12,345", "12").
QString FormatBlockTime(double seconds, const QString& decimalMark);

// A name with a drive colon or a leading "/" stands as it is; any other is joined to the folder.
QString ResolvePicturePath(const QString& baseFolder, const QString& name);
