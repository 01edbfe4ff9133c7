// Two inputs of the song library a user or a disk can get wrong. With a first byte below 128
// the rest is typed into the search box: every query must reach the index as words, never as
// its syntax, so the search always runs (a failed query would show an empty list as if nothing
// matched). Otherwise the bytes are the library's file: it opens, is refused or is moved aside
// and started again; a file the program opened is usable. The sanitizers and the time limit are
// the other checks.

#include "library/LibraryDatabase.h"
#include "library/LibrarySongs.h"
#include "library/SearchText.h"

#include <QCoreApplication>
#include <QFile>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <cstdint>
#include <cstdlib>

namespace {

LibraryDatabase& SearchedLibrary(const QTemporaryDir& folder)
{
    // Never destroyed: a static one would close after Qt's registry of connections is gone.
    static auto& library = *new LibraryDatabase(folder.filePath(QStringLiteral("searched.db")));
    if (!library.IsOpen()) {
        library.Open();
        library.Write([] {
            return StoreSong(library.Db(), LibrarySong{"/m/a.mp3", {1, 1}, SongKinds::Audio, QStringLiteral("Żółta łódź"),
                                                       QStringLiteral("Beyoncé"), QString(), 1, QString(),
                                                       QStringLiteral("is this the real life")});
        });
    }
    return library;
}

void Search(const QTemporaryDir& folder, const QByteArray& typed)
{
    LibraryDatabase& library = SearchedLibrary(folder);
    const QString text = QString::fromUtf8(typed);
    const QString expression = SearchExpression(text);
    if (expression.isEmpty())
        return;
    QSqlQuery query(library.Db());
    query.prepare(QStringLiteral("SELECT count(*) FROM songs_fts WHERE songs_fts MATCH ?"));
    query.addBindValue(expression);
    if (!query.exec())
        std::abort();
    LibraryQuery asked;
    asked.text = text;
    SearchSongs(library.Db(), asked);
}

void OpenFile(const QTemporaryDir& folder, const QByteArray& bytes)
{
    const QString path = folder.filePath(QStringLiteral("library.db"));
    for (const char* leftover : {"", "-wal", "-shm"})
        QFile::remove(path + QLatin1String(leftover));
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return;
    file.write(bytes);
    file.close();
    LibraryDatabase library(path);
    const LibraryOpening opening = library.Open();
    if (opening.Usable() && CountSongs(library.Db()).songs < 0)
        std::abort();
    if (!opening.movedTo.isEmpty())
        QFile::remove(opening.movedTo);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static int argc = 1;
    static char name[] = "library_fuzz";
    static char* argv[] = {name, nullptr};
    static QCoreApplication app(argc, argv);
    static QTemporaryDir folder;
    if (size == 0)
        return 0;
    const QByteArray rest(reinterpret_cast<const char*>(data) + 1, qsizetype(size - 1));
    if (data[0] < 128)
        Search(folder, rest);
    else
        OpenFile(folder, rest);
    return 0;
}
