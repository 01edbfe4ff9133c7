#include "editor/Onsets.h"

#include "audio/PcmConversion.h"
#include "editor/Waveform.h"

#include <QFile>
#include <aubio/aubio.h>
#include <algorithm>
#include <cmath>
#include <memory>

namespace {

constexpr int kRate = 16000;
constexpr uint_t kWindow = 1024;
constexpr uint_t kHop = 256;

struct OnsetFreer {
    void operator()(aubio_onset_t* onset) const { del_aubio_onset(onset); }
};
struct VectorFreer {
    void operator()(fvec_t* vector) const { del_fvec(vector); }
};

} // namespace

std::vector<double> FindOnsets(const QString& songPath)
{
    std::string error;
    const std::vector<float> samples = DecodeWholeFile(QFile::encodeName(songPath).toStdString(), kRate, 1, error);
    if (samples.empty())
        return {};
    // The high-frequency content placed tone bursts within 10 ms where the spectral flux and the
    // complex domain also marked the inside of a held note; syllables come no closer than 0.1 s.
    const std::unique_ptr<aubio_onset_t, OnsetFreer> detector(new_aubio_onset("hfc", kWindow, kHop, kRate));
    const std::unique_ptr<fvec_t, VectorFreer> hop(new_fvec(kHop)), found(new_fvec(1));
    if (!detector || !hop || !found)
        return {};
    aubio_onset_set_minioi_s(detector.get(), 0.1f);
    aubio_onset_set_threshold(detector.get(), 0.3f);
    aubio_onset_set_silence(detector.get(), -50.0f);
    std::vector<double> onsets;
    for (size_t at = 0; at + kHop <= samples.size(); at += kHop) {
        std::copy_n(samples.begin() + qsizetype(at), kHop, hop->data);
        aubio_onset_do(detector.get(), hop.get(), found.get());
        if (found->data[0] > 0) {
            const double seconds = aubio_onset_get_last_s(detector.get());
            if (onsets.empty() || seconds > onsets.back())
                onsets.push_back(seconds);
        }
    }
    return onsets;
}

double SnappedStamp(const std::vector<double>& onsets, double seconds)
{
    const auto next = std::lower_bound(onsets.begin(), onsets.end(), seconds);
    double best = seconds, bestMiss = kSnapSeconds + 1e-9;
    for (auto it : {next, next == onsets.begin() ? onsets.end() : std::prev(next)}) {
        if (it == onsets.end())
            continue;
        if (const double miss = std::abs(*it - seconds); miss <= bestMiss) {
            best = *it;
            bestMiss = miss;
        }
    }
    return best;
}

int SnapRows(std::vector<LyricItem>& rows, const std::vector<int>& selected, const std::vector<double>& onsets)
{
    std::vector<double> stamps;
    stamps.reserve(rows.size());
    for (const LyricItem& row : rows)
        stamps.push_back(row.Time);
    int moved = 0;
    for (int index : selected) {
        if (index < 1 || size_t(index) >= rows.size() || rows[size_t(index)].Time <= 0)
            continue;
        const double snapped = DraggedStamp(stamps, index, SnappedStamp(onsets, rows[size_t(index)].Time));
        if (snapped != rows[size_t(index)].Time) {
            rows[size_t(index)].Time = snapped;
            stamps[size_t(index)] = snapped;
            ++moved;
        }
    }
    return moved;
}
