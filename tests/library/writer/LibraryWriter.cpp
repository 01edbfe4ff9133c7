// Writes to a library without end, saying after each commit what is committed, for a test that
// kills it at a random moment:
//   library_writer queue DB          songs queued for a singer, one transaction each
//   library_writer scan DB FOLDER    a scan of the folder, a line per batch written

#include "library/LibraryDatabase.h"
#include "library/LibraryScan.h"
#include "library/SingerQueue.h"

#include <QGuiApplication>
#include <QFile>
#include <cstdio>

namespace {

int QueueForever(const QString& path)
{
    LibraryDatabase database(path);
    if (!database.Open().Usable())
        return 1;
    SingerQueue queue(database);
    const auto singer = queue.AddSinger(QStringLiteral("Ann"));
    if (!singer)
        return 1;
    for (long long i = 1;; ++i) {
        if (!queue.Enqueue(*singer, "/songs/" + QByteArray::number(i), QStringLiteral("Song %1").arg(i), QString()))
            return 1;
        std::printf("%lld\n", i);
        std::fflush(stdout);
    }
}

int ScanOnce(const QString& path, const QString& folder)
{
    LibraryScan scan(path, {QFile::encodeName(folder)}, false, path + QStringLiteral(".links"));
    scan.Progress = [](int done, int) {
        std::printf("%d\n", done);
        std::fflush(stdout);
    };
    const std::atomic<bool> cancel{false};
    return scan.Run(cancel).failed ? 1 : 0;
}

} // namespace

int main(int argc, char* argv[])
{
    // Lyrics are read as the player reads them, with the fonts they are measured in.
    QGuiApplication app(argc, argv);
    const QStringList args = QCoreApplication::arguments().mid(1);
    if (args.size() == 2 && args[0] == u"queue")
        return QueueForever(args[1]);
    if (args.size() == 3 && args[0] == u"scan")
        return ScanOnce(args[1], args[2]);
    return 2;
}
