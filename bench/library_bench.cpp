// The song library's figures: scanning 10,000 generated songs (files a second, cold and warm,
// and the interface thread's longest stall meanwhile, beside the machine's own stalls), search
// latency on 100,000 rows for one-word, two-word and prefix queries, the database's size and
// the time it takes to open.

#include "BenchKit.h"
#include "library/LibraryDatabase.h"
#include "library/LibraryPaths.h"
#include "library/LibraryScanner.h"
#include "library/LibrarySongs.h"

#include <QGuiApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QTimer>
#include <algorithm>
#include <cstdio>
#include <thread>

namespace {

const QStringList kWords = [] {
    QStringList words;
    for (const char* word :
         {"love",   "night",  "heart",  "dance", "river",  "summer", "dream",  "fire",   "light", "rain",  "star",
          "road",   "home",   "blue",   "gold",  "wild",   "moon",   "sky",    "time",   "world", "song",  "baby",
          "crazy",  "angel",  "ocean",  "city",  "storm",  "shadow", "sweet",  "lonely", "happy", "girl",  "boy",
          "forever", "never", "tonight", "morning", "wind", "winter", "spring", "beautiful", "bohemian", "rhapsody",
          "yesterday", "wonder", "wall", "queen", "king", "żółta", "łódź", "café", "niño", "straße", "über"})
        words << QString::fromUtf8(word);
    return words;
}();

QString Words(QRandomGenerator& random, int count)
{
    QStringList picked;
    for (int i = 0; i < count; ++i)
        picked << kWords[random.bounded(int(kWords.size()))];
    return picked.join(u' ');
}

double Percentile(std::vector<double> values, double fraction)
{
    std::sort(values.begin(), values.end());
    return values[std::min(values.size() - 1, size_t(fraction * double(values.size())))];
}

// 10,000 files as a music folder holds them: MP3 and Ogg songs with tags, WAV songs without, KAR
// songs with words, in folders of 50.
void MakeMusicFolder(const QString& folder, int songs)
{
    const QString source = QStringLiteral(SONGWEAVER_SOURCE_DIR);
    const QStringList fixtures{source + "/tests/fixtures/media/id3v2.mp3", source + "/tests/fixtures/media/comments.ogg",
                               source + "/tests/fixtures/media/pcm8-mono.wav", source + "/resources/demo/twinkle.kar"};
    QList<QByteArray> bytes;
    for (const QString& fixture : fixtures) {
        QFile file(fixture);
        file.open(QIODevice::ReadOnly);
        bytes << file.readAll();
    }
    for (int i = 0; i < songs; ++i) {
        const QString dir = folder + QStringLiteral("/Artist %1").arg(i / 50);
        if (i % 50 == 0)
            QDir().mkpath(dir);
        const int kind = i % 4;
        QFile out(dir + QStringLiteral("/Song %1.").arg(i) + QFileInfo(fixtures[kind]).suffix());
        out.open(QIODevice::WriteOnly);
        out.write(bytes[kind]);
    }
}

struct ScanFigures {
    ScanCounts counts;
    double longestGapMs = 0;
    MachineStalls stalls;
};

// A scan on the scanner's worker while the interface thread ticks every millisecond and runs
// the library window's listing at each batch, as the window does.
ScanFigures ScanWithHeartbeat(const QString& database, const QString& folder, const QString& links)
{
    LibraryScanner scanner(database, false, links);
    LibraryDatabase reader(database);
    reader.Open();
    ScanFigures figures;
    QElapsedTimer beat;
    QTimer heart;
    heart.setTimerType(Qt::PreciseTimer);
    heart.setInterval(1);
    QObject::connect(&heart, &QTimer::timeout, [&] {
        if (beat.isValid())
            figures.longestGapMs = std::max(figures.longestGapMs, beat.nsecsElapsed() / 1e6);
        beat.restart();
    });
    QObject::connect(&scanner, &LibraryScanner::progress, [&](int, int) {
        LibraryQuery all;
        all.limit = kListedPage;
        SearchSongs(reader.Db(), all);
        CountListed(reader.Db(), all);
    });
    bool done = false;
    QObject::connect(&scanner, &LibraryScanner::finished, [&](const ScanCounts& counts) {
        figures.counts = counts;
        done = true;
    });
    // The probe takes no core from the scan on a machine of two.
    SleepingProbe probe;
    heart.start();
    scanner.Scan({RawPath(folder)});
    while (!done)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    figures.stalls = probe.Stop();
    return figures;
}

void PrintScan(const char* name, const ScanFigures& f, int files)
{
    std::printf("%-26s %7.2f s  %8.0f files/s  added %d updated %d unchanged %d unreadable %d\n", name, f.counts.seconds,
                files / f.counts.seconds, f.counts.added, f.counts.updated, f.counts.unchanged, f.counts.unreadable);
    std::printf("%-26s interface thread's longest gap %.1f ms; a sleeping probe woke late by over 1 ms %zu times, at most %.1f ms\n", "",
                f.longestGapMs, f.stalls.count, f.stalls.longestMs);
}

void BenchScan(const QTemporaryDir& dir)
{
    constexpr int kSongs = 10000;
    const QString folder = dir.filePath("music");
    MakeMusicFolder(folder, kSongs);
    const QString database = dir.filePath("scan.db");
    std::printf("== scanning %d songs (MP3, Ogg, WAV, KAR) in %d folders\n", kSongs, kSongs / 50);
    PrintScan("cold scan", ScanWithHeartbeat(database, folder, dir.filePath("links")), kSongs);
    PrintScan("warm rescan, no change", ScanWithHeartbeat(database, folder, dir.filePath("links")), kSongs);
    for (int i = 0; i < kSongs; i += 10) {
        QFile touched(folder + QStringLiteral("/Artist %1/Song %2.").arg(i / 50).arg(i) +
                      QStringList{"mp3", "ogg", "wav", "kar"}[i % 4]);
        touched.open(QIODevice::Append);
        touched.write("x");
    }
    PrintScan("rescan, 10% changed", ScanWithHeartbeat(database, folder, dir.filePath("links")), kSongs);
}

void BenchSearch(const QTemporaryDir& dir)
{
    constexpr int kRows = 100000;
    const QString path = dir.filePath("search.db");
    {
        LibraryDatabase database(path);
        database.Open();
        QRandomGenerator random(7);
        QElapsedTimer fill;
        fill.start();
        database.Write([&] {
            for (int i = 0; i < kRows; ++i) {
                LibrarySong song{"/music/" + QByteArray::number(i) + ".mp3", {i, i}, SongKinds::Audio,
                                 Words(random, 3), Words(random, 2), Words(random, 2), 200, "LRC", Words(random, 60)};
                if (!StoreSong(database.Db(), song))
                    return false;
            }
            return true;
        });
        std::printf("== search on %d rows (3-word titles, 60 words of lyrics each)\n", kRows);
        std::printf("%-26s %.1f s\n", "filled in", fill.nsecsElapsed() / 1e9);
        QSqlQuery(database.Db()).exec("PRAGMA wal_checkpoint(TRUNCATE)");
    }
    std::printf("%-26s %.1f MB\n", "database size", QFileInfo(path).size() / 1e6);
    QElapsedTimer opening;
    opening.start();
    LibraryDatabase database(path);
    database.Open();
    std::printf("%-26s %.0f ms (with its quick check)\n", "open", opening.nsecsElapsed() / 1e6);

    QRandomGenerator random(11);
    const auto measure = [&](const char* name, const std::function<QString()>& text, int limit) {
        std::vector<double> ms;
        size_t hits = 0;
        for (int i = 0; i < 300; ++i) {
            LibraryQuery query;
            query.text = text();
            query.limit = limit;
            QElapsedTimer clock;
            clock.start();
            hits += SearchSongs(database.Db(), query).size();
            ms.push_back(clock.nsecsElapsed() / 1e6);
        }
        std::printf("%-26s median %6.2f ms  p99 %6.2f ms  (%zu hits a query)\n", name, Percentile(ms, 0.5),
                    Percentile(ms, 0.99), hits / ms.size());
    };
    const auto word = [&] { return kWords[random.bounded(int(kWords.size()))]; };
    measure("one word", word, kSearchHits);
    measure("two words", [&] { return word() + u' ' + word(); }, kSearchHits);
    measure("two prefixes", [&] { return word().left(3) + u' ' + word().left(4); }, kSearchHits);
    measure("one letter (first key)", [&] { return word().left(1); }, kSearchHits);
    measure("every song, first page", [] { return QString(); }, kListedPage);
    std::vector<double> pages;
    for (int offset = 0; offset < 100000; offset += 5000) {
        LibraryQuery listing;
        listing.order = LibraryOrder::Title;
        listing.limit = kListedPage;
        listing.offset = offset;
        QElapsedTimer clock;
        clock.start();
        SearchSongs(database.Db(), listing);
        pages.push_back(clock.nsecsElapsed() / 1e6);
    }
    std::printf("%-26s median %6.2f ms  slowest %6.2f ms  (20 pages down to the last, by title)\n", "a page further down",
                Percentile(pages, 0.5), Percentile(pages, 1.0));
}

} // namespace

int main(int argc, char* argv[])
{
    // Lyrics are read as the player reads them, with the fonts they are measured in.
    QGuiApplication app(argc, argv);
    QTemporaryDir dir;
    // "search" alone skips the scan, which takes minutes.
    if (QCoreApplication::arguments().value(1) != u"search")
        BenchScan(dir);
    BenchSearch(dir);
    return 0;
}
