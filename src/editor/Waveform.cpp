#include "editor/Waveform.h"

#include "audio/PcmConversion.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QSaveFile>
#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr int kDecodeRate = 8000;
constexpr int kFramesPerPeak = kDecodeRate / WaveformPeaks::kPeaksPerSecond;
constexpr char kMagic[8] = {'S', 'W', 'P', 'E', 'A', 'K', 'S', '2'};
// Ten hours of peaks: a larger cache file is none of ours.
constexpr qint64 kLargestPeaks = qint64(10) * 3600 * WaveformPeaks::kPeaksPerSecond;

int8_t Level(float sample)
{
    return int8_t(std::lround(std::clamp(sample, -1.0f, 1.0f) * 127.0f));
}

// A second-order filter (high or low pass, Butterworth) at `corner` Hz for the decode rate.
struct Biquad {
    double b0, b1, b2, a1, a2, x1 = 0, x2 = 0, y1 = 0, y2 = 0;
    Biquad(double corner, bool highPass)
    {
        const double w = 2 * M_PI * corner / kDecodeRate, cosw = std::cos(w), alpha = std::sin(w) / std::sqrt(2.0);
        const double a0 = 1 + alpha;
        b0 = (highPass ? (1 + cosw) / 2 : (1 - cosw) / 2) / a0;
        b1 = (highPass ? -(1 + cosw) : 1 - cosw) / a0;
        b2 = b0;
        a1 = -2 * cosw / a0;
        a2 = (1 - alpha) / a0;
    }
    double operator()(double x)
    {
        const double y = b0 * x + b1 * x1 + b2 * x2 - a1 * y1 - a2 * y2;
        x2 = x1;
        x1 = x;
        y2 = y1;
        y1 = y;
        return y;
    }
};

// The voice band's level of each millisecond: the band's RMS over 10 ms around it.
std::vector<uint8_t> VoiceLevels(const std::vector<float>& samples, size_t count)
{
    Biquad highPass(200, true), lowPass(3500, false);
    std::vector<double> energy(count, 0.0);
    for (size_t i = 0; i < samples.size(); ++i) {
        const double band = lowPass(highPass(samples[i]));
        energy[i / kFramesPerPeak] += band * band;
    }
    constexpr size_t kAround = 5;
    std::vector<uint8_t> levels(count);
    double sum = 0;
    for (size_t i = 0; i < count + kAround; ++i) {
        if (i < count)
            sum += energy[i];
        if (i >= 2 * kAround + 1)
            sum -= energy[i - 2 * kAround - 1];
        if (i >= kAround) {
            const double rms = std::sqrt(std::max(sum, 0.0) / ((2 * kAround + 1) * kFramesPerPeak));
            levels[i - kAround] = uint8_t(std::lround(std::clamp(rms * std::sqrt(2.0), 0.0, 1.0) * 255));
        }
    }
    return levels;
}

QString CacheFile(const QString& folder, const QString& songKey)
{
    QString name = songKey;
    name.replace(QRegularExpression(QStringLiteral("[^A-Za-z0-9_-]")), QStringLiteral("_"));
    return QDir(folder).filePath(name + QStringLiteral(".peaks"));
}

} // namespace

std::pair<float, float> WaveformPeaks::Range(double from, double to) const
{
    const auto first = qsizetype(std::max(0.0, std::floor(from * kPeaksPerSecond)));
    const auto last = qsizetype(std::min(double(high.size()), std::ceil(to * kPeaksPerSecond)));
    if (first >= last)
        return {0.0f, 0.0f};
    const auto lowest = *std::min_element(low.begin() + first, low.begin() + last);
    const auto highest = *std::max_element(high.begin() + first, high.begin() + last);
    return {lowest / 127.0f, highest / 127.0f};
}

float WaveformPeaks::VoiceLevel(double from, double to) const
{
    const auto first = qsizetype(std::max(0.0, std::floor(from * kPeaksPerSecond)));
    const auto last = qsizetype(std::min(double(voice.size()), std::ceil(to * kPeaksPerSecond)));
    if (first >= last)
        return 0.0f;
    return *std::max_element(voice.begin() + first, voice.begin() + last) / 255.0f;
}

std::optional<WaveformPeaks> ComputePeaks(const QString& songPath)
{
    std::string error;
    const std::vector<float> samples = DecodeWholeFile(QFile::encodeName(songPath).toStdString(), kDecodeRate, 1, error);
    if (samples.empty())
        return std::nullopt;
    WaveformPeaks peaks;
    const size_t count = (samples.size() + kFramesPerPeak - 1) / kFramesPerPeak;
    peaks.low.reserve(count);
    peaks.high.reserve(count);
    for (size_t at = 0; at < samples.size(); at += kFramesPerPeak) {
        const auto end = samples.begin() + qsizetype(std::min(samples.size(), at + kFramesPerPeak));
        const auto [lowest, highest] = std::minmax_element(samples.begin() + qsizetype(at), end);
        peaks.low.push_back(Level(*lowest));
        peaks.high.push_back(Level(*highest));
    }
    peaks.voice = VoiceLevels(samples, count);
    return peaks;
}

std::optional<WaveformPeaks> CachedPeaks(const QString& folder, const QString& songKey)
{
    QFile file(CacheFile(folder, songKey));
    if (songKey.isEmpty() || !file.open(QIODevice::ReadOnly))
        return std::nullopt;
    const qint64 count = (file.size() - qint64(sizeof kMagic)) / 3;
    if (count <= 0 || count > kLargestPeaks || file.size() != qint64(sizeof kMagic) + 3 * count ||
        file.read(sizeof kMagic) != QByteArray(kMagic, sizeof kMagic))
        return std::nullopt;
    WaveformPeaks peaks;
    const QByteArray low = file.read(count), high = file.read(count), voice = file.read(count);
    peaks.low.assign(low.begin(), low.end());
    peaks.high.assign(high.begin(), high.end());
    peaks.voice.assign(voice.begin(), voice.end());
    return peaks;
}

bool KeepPeaks(const QString& folder, const QString& songKey, const WaveformPeaks& peaks)
{
    if (songKey.isEmpty() || peaks.low.size() != peaks.high.size() || peaks.voice.size() != peaks.high.size() ||
        !QDir().mkpath(folder))
        return false;
    QSaveFile file(CacheFile(folder, songKey));
    if (!file.open(QIODevice::WriteOnly))
        return false;
    file.write(kMagic, sizeof kMagic);
    file.write(reinterpret_cast<const char*>(peaks.low.data()), qint64(peaks.low.size()));
    file.write(reinterpret_cast<const char*>(peaks.high.data()), qint64(peaks.high.size()));
    file.write(reinterpret_cast<const char*>(peaks.voice.data()), qint64(peaks.voice.size()));
    return file.commit();
}

std::optional<WaveformPeaks> PeaksOfSong(const QString& folder, const QString& songPath, const QString& songKey)
{
    if (auto cached = CachedPeaks(folder, songKey))
        return cached;
    auto peaks = ComputePeaks(songPath);
    if (peaks)
        KeepPeaks(folder, songKey, *peaks);
    return peaks;
}

double DraggedStamp(const std::vector<double>& stamps, int index, double seconds)
{
    double earliest = 0, latest = std::numeric_limits<double>::infinity();
    for (int i = index - 1; i >= 0; --i)
        if (stamps[size_t(i)] > 0) {
            earliest = stamps[size_t(i)];
            break;
        }
    for (size_t i = size_t(index) + 1; i < stamps.size(); ++i)
        if (stamps[i] > 0) {
            latest = stamps[i];
            break;
        }
    return std::clamp(seconds, earliest, std::max(earliest, latest));
}
