// Feeds arbitrary bytes to the playlist readers as a list file reaches them (M3U, PLS and the
// auto-saved list), and checks that a list written from the rows read gives the same rows.

#include "playlist/PlaylistFiles.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <cstdint>
#include <cstdlib>

namespace {

std::vector<PlaylistRow> ReadBack(const QString& text, const QString& folder)
{
    std::vector<PlaylistRow> rows;
    ReadM3U(text.split(QStringLiteral("\r\n")), folder, {}, [&](const PlaylistRow& row) { rows.push_back(row); });
    return rows;
}

} // namespace

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
    std::vector<PlaylistRow> m3u;
    ReadM3U(lines, folder.path(), none, [&](const PlaylistRow& row) { m3u.push_back(row); });
    ReadPls(lines, folder.path(), none, [](const PlaylistRow&) {});
    ReadSavedList(lines, folder.path(), [](const PlaylistRow&) {});

    // What the writer keeps of a row reads back as it was written.
    const QString written = WriteM3U(m3u);
    const QString again = WriteM3U(ReadBack(written, folder.path()));
    if (again != written)
        std::abort();
    return 0;
}
