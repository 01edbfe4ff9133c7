// Feeds arbitrary bytes to the reader of zipped MP3+G songs as a zip file on disk, then reads
// the graphics of whatever pair it took out. The sanitizers and the time limit are the checks.

#include "cdg/CdgSong.h"

#include <QFile>
#include <QTemporaryDir>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("song.zip"));
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return 0;
    file.write(reinterpret_cast<const char*>(data), qint64(size));
    file.close();
    std::unique_ptr<ZipSong> zip;
    const QString audio = AudioOfKaraokeFile(path, zip);
    if (!audio.isEmpty())
        if (const auto graphics = ReadCdgFile(CdgFileOf(audio)))
            graphics->ScreenAt(graphics->Seconds());
    return 0;
}
