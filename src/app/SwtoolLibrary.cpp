// swtool library: the song library from the command line: a scan of folders, a search as the
// library window searches, and what the library holds.

#include "app/SwtoolCommands.h"
#include "library/LibraryDatabase.h"
#include "library/LibraryPaths.h"
#include "library/LibraryScan.h"
#include "library/LibrarySongs.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTextStream>

namespace {

struct LibraryArgs {
    QString database = DefaultLibraryPath();
    int limit = 50;
    QStringList rest;
};

std::optional<LibraryArgs> ParseLibraryArgs(const QStringList& args)
{
    LibraryArgs parsed;
    for (qsizetype i = 0; i < args.size(); ++i) {
        if (args[i] == u"--db" && i + 1 < args.size()) {
            parsed.database = args[++i];
        } else if (args[i] == u"--limit" && i + 1 < args.size()) {
            bool ok = false;
            parsed.limit = args[++i].toInt(&ok);
            if (!ok || parsed.limit < 1)
                return std::nullopt;
        } else if (args[i].startsWith(QLatin1String("--"))) {
            return std::nullopt;
        } else {
            parsed.rest << args[i];
        }
    }
    return parsed;
}

// The library opened, or the message why not on the error stream.
bool OpenLibrary(LibraryDatabase& database, const LanguageTable& language)
{
    const LibraryOpening opening = database.Open();
    const QString message = LibraryOpeningMessage(opening, database.Path(), language);
    if (!message.isEmpty())
        QTextStream(stderr) << message << '\n';
    return opening.Usable();
}

int Scan(const LibraryArgs& args, const LanguageTable& language)
{
    if (args.rest.isEmpty())
        return 2;
    std::vector<QByteArray> folders;
    for (const QString& folder : args.rest) {
        if (!QFileInfo(folder).isDir())
            return Fail(QStringLiteral("Folder not found: ") + folder);
        folders.push_back(RawPath(QDir(folder).absolutePath()));
    }
    {
        LibraryDatabase database(args.database);
        if (!OpenLibrary(database, language))
            return 1;
    }
    QTemporaryDir links;
    LibraryScan scan(args.database, folders, language.IsPolish, links.path());
    const std::atomic<bool> cancel{false};
    const ScanCounts counts = scan.Run(cancel);
    if (counts.failed)
        return Fail(QStringLiteral("The library could not be written: ") + args.database);
    QTextStream(stdout) << "found\t" << counts.found << "\nadded\t" << counts.added << "\nupdated\t" << counts.updated
                        << "\nunchanged\t" << counts.unchanged << "\nremoved\t" << counts.removed << "\nunreadable\t"
                        << counts.unreadable << "\nseconds\t" << QString::number(counts.seconds, 'f', 3) << '\n';
    return 0;
}

int Search(const LibraryArgs& args, const LanguageTable& language)
{
    if (args.rest.isEmpty())
        return 2;
    LibraryDatabase database(args.database);
    if (!OpenLibrary(database, language))
        return 1;
    LibraryQuery query;
    query.text = args.rest.join(u' ');
    query.limit = args.limit;
    QElapsedTimer clock;
    clock.start();
    const std::vector<LibraryHit> hits = SearchSongs(database.Db(), query);
    const double milliseconds = clock.nsecsElapsed() / 1e6;
    QTextStream out(stdout);
    for (const LibraryHit& hit : hits)
        out << hit.kind << '\t' << hit.title << '\t' << hit.artist << '\t' << ShownPath(hit.path) << '\n';
    out << "# " << hits.size() << " found in " << QString::number(milliseconds, 'f', 2) << " ms\n";
    return 0;
}

int Stats(const LibraryArgs& args, const LanguageTable& language)
{
    if (!args.rest.isEmpty())
        return 2;
    LibraryDatabase database(args.database);
    if (!OpenLibrary(database, language))
        return 1;
    const LibraryStats stats = CountSongs(database.Db());
    QTextStream out(stdout);
    out << "songs\t" << stats.songs << "\nwith lyrics\t" << stats.withLyrics << "\nunreadable\t" << stats.unreadable
        << "\nhours\t" << QString::number(stats.seconds / 3600, 'f', 1) << "\nsung\t" << stats.sung << '\n';
    QStringList kinds = stats.byKind.keys();
    kinds.sort();
    for (const QString& kind : kinds)
        out << "kind " << kind << '\t' << stats.byKind.value(kind) << '\n';
    out << "file bytes\t" << QFileInfo(args.database).size() << '\n';
    for (const auto& [path, reason] : UnreadableFiles(database.Db()))
        out << "unreadable\t" << ShownPath(path) << '\t' << language.GetText(reason) << '\n';
    return 0;
}

} // namespace

int LibraryCommand(const QStringList& args)
{
    if (args.isEmpty())
        return 2;
    const auto parsed = ParseLibraryArgs(args.mid(1));
    if (!parsed)
        return 2;
    QSettingsStore store;
    LanguageTable language;
    language.LoadLanguage(store);
    if (args[0] == u"scan")
        return Scan(*parsed, language);
    if (args[0] == u"search")
        return Search(*parsed, language);
    if (args[0] == u"stats")
        return Stats(*parsed, language);
    return 2;
}
