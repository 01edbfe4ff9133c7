#pragma once
// The picture of a song's sound for the timing editor: the lowest and highest sample of every
// millisecond and the energy of the voice band (about 200 Hz to 3.5 kHz, where singing shows),
// computed once from the whole file and kept in a cache file per song, and the rule of a stamp
// dragged on it.

#include <QString>
#include <cstdint>
#include <optional>
#include <vector>

struct WaveformPeaks {
    static constexpr int kPeaksPerSecond = 1000;
    std::vector<int8_t> low, high;  // per millisecond, full scale at 127
    std::vector<uint8_t> voice;     // the voice band's level per millisecond, full scale at 255

    double Seconds() const { return double(high.size()) / kPeaksPerSecond; }
    // The lowest and highest sample from `from` to `to` seconds, -1 to 1; 0, 0 outside the song.
    std::pair<float, float> Range(double from, double to) const;
    // The voice band's highest level from `from` to `to` seconds, 0 to 1.
    float VoiceLevel(double from, double to) const;
};

// The peaks of a song file's sound, decoded whole; nothing when it cannot be decoded.
std::optional<WaveformPeaks> ComputePeaks(const QString& songPath);

// Peaks kept in `folder` under the song's key (its size and the hash of its first megabyte), so
// a second opening, even of the song moved, reads them back instead of decoding. A damaged or
// foreign cache file reads as none.
std::optional<WaveformPeaks> CachedPeaks(const QString& folder, const QString& songKey);
bool KeepPeaks(const QString& folder, const QString& songKey, const WaveformPeaks& peaks);
// The cached peaks, else computed and kept.
std::optional<WaveformPeaks> PeaksOfSong(const QString& folder, const QString& songPath, const QString& songKey);

// Where a row's stamp dragged to `seconds` lands: never before the stamp of a row above it nor
// after one below it (rows without a time are passed over), never below 0.
double DraggedStamp(const std::vector<double>& stamps, int index, double seconds);
