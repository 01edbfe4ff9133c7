// Feeds arbitrary bytes to the playlist readers as a list file reaches them (M3U, PLS and the
// auto-saved list), and the rows read to the writer and back. The sanitizers and the time limit
// are the checks: list times follow the old program's two-digit arithmetic, so a damaged list
// need not come back as it went.

#include "playlist/PlaylistFiles.h"

#include <QFile>
#include <QTemporaryDir>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("list.m3u"));
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return 0;
    file.write(reinterpret_cast<const char*>(data), qint64(size));
    file.close();

    const QStringList lines = ReadListLines(path, size % 2 == 0);
    const SongProbe none = [](const QString&) { return std::optional<SongFacts>(); };
    std::vector<PlaylistRow> rows;
    ReadM3U(lines, folder.path(), none, [&](const PlaylistRow& row) { rows.push_back(row); });
    ReadPls(lines, folder.path(), none, [&](const PlaylistRow& row) { rows.push_back(row); });
    ReadSavedList(lines, folder.path(), [](const PlaylistRow&) {});
    const QString written = WriteM3U(rows, folder.path());
    ReadM3U(written.split(QStringLiteral("\r\n")), folder.path(), none, [](const PlaylistRow&) {});
    return 0;
}
