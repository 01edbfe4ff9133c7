#pragma once
// Where sounds start in a song, found by aubio's onset detector on the song's voice band, and
// the editor's "Snap to onsets": a stamp moves to the nearest onset close enough to it.

#include "lyrics/LyricsData.h"

#include <QString>
#include <vector>

// A stamp further than this from every onset stays where it is.
inline constexpr double kSnapSeconds = 0.080;

// The onsets of a song file in seconds, rising; empty when it cannot be decoded.
std::vector<double> FindOnsets(const QString& songPath);

// The onset nearest `seconds` within kSnapSeconds; `seconds` itself when none is that near.
double SnappedStamp(const std::vector<double>& onsets, double seconds);
// Each of the rows with a time moves to its nearest onset within kSnapSeconds, never past the
// stamp of a row beside it; returns how many moved.
int SnapRows(std::vector<LyricItem>& rows, const std::vector<int>& selected, const std::vector<double>& onsets);
