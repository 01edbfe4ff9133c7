// Feeds arbitrary bytes to the reader of the waveform's cache files, then asks the peaks it took
// for ranges in and out of the song. The sanitizers and the time limit are the checks.

#include "editor/Waveform.h"

#include <QFile>
#include <QTemporaryDir>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("song.peaks")));
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return 0;
    file.write(reinterpret_cast<const char*>(data), qint64(size));
    file.close();
    if (const auto peaks = CachedPeaks(folder.path(), QStringLiteral("song")))
        for (const double at : {0.0, peaks->Seconds() / 2, peaks->Seconds(), -1.0})
            peaks->Range(at, at + 0.5);
    return 0;
}
