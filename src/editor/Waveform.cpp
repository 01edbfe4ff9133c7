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
constexpr char kMagic[8] = {'S', 'W', 'P', 'E', 'A', 'K', 'S', '1'};
// Ten hours of peaks: a larger cache file is none of ours.
constexpr qint64 kLargestPeaks = qint64(10) * 3600 * WaveformPeaks::kPeaksPerSecond;

int8_t Level(float sample)
{
    return int8_t(std::lround(std::clamp(sample, -1.0f, 1.0f) * 127.0f));
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
    return peaks;
}

std::optional<WaveformPeaks> CachedPeaks(const QString& folder, const QString& songKey)
{
    QFile file(CacheFile(folder, songKey));
    if (songKey.isEmpty() || !file.open(QIODevice::ReadOnly))
        return std::nullopt;
    const qint64 count = (file.size() - qint64(sizeof kMagic)) / 2;
    if (count <= 0 || count > kLargestPeaks || file.size() != qint64(sizeof kMagic) + 2 * count ||
        file.read(sizeof kMagic) != QByteArray(kMagic, sizeof kMagic))
        return std::nullopt;
    WaveformPeaks peaks;
    const QByteArray low = file.read(count), high = file.read(count);
    peaks.low.assign(low.begin(), low.end());
    peaks.high.assign(high.begin(), high.end());
    return peaks;
}

bool KeepPeaks(const QString& folder, const QString& songKey, const WaveformPeaks& peaks)
{
    if (songKey.isEmpty() || !QDir().mkpath(folder))
        return false;
    QSaveFile file(CacheFile(folder, songKey));
    if (!file.open(QIODevice::WriteOnly))
        return false;
    file.write(kMagic, sizeof kMagic);
    file.write(reinterpret_cast<const char*>(peaks.low.data()), qint64(peaks.low.size()));
    file.write(reinterpret_cast<const char*>(peaks.high.data()), qint64(peaks.high.size()));
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
