// The process killed at random moments of queue edits and of a scan: the library always opens
// again, undamaged, with everything committed before the kill.

#include "library/LibraryDatabase.h"
#include "library/LibraryScan.h"
#include "library/LibrarySongs.h"
#include "library/SingerQueue.h"
#include "support/TestSupport.h"

#include <QProcess>
#include <QRandomGenerator>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

// Starts the writer and kills it once it has said it committed `after` times; the last count it said.
long long KillAfter(const QStringList& arguments, int after)
{
    QProcess writer;
    writer.start(QStringLiteral(LIBRARY_WRITER_PATH), arguments);
    EXPECT_TRUE(writer.waitForStarted());
    long long last = 0;
    int lines = 0;
    while (lines < after && writer.waitForReadyRead(30000)) {
        while (writer.canReadLine()) {
            last = writer.readLine().trimmed().toLongLong();
            ++lines;
        }
    }
    writer.kill();
    writer.waitForFinished();
    // What it wrote after the last line read counts too.
    for (const QByteArray& line : writer.readAllStandardOutput().split('\n')) {
        if (!line.trimmed().isEmpty())
            last = line.trimmed().toLongLong();
    }
    return last;
}

void ExpectWhole(LibraryDatabase& database)
{
    const LibraryOpening opening = database.Open();
    ASSERT_EQ(opening.outcome, LibraryOpening::Outcome::Opened);
    QSqlQuery check(database.Db());
    ASSERT_TRUE(check.exec("PRAGMA integrity_check") && check.next());
    EXPECT_EQ(check.value(0).toString(), "ok");
}

int Rows(LibraryDatabase& database, const QString& table)
{
    QSqlQuery query(database.Db());
    return query.exec("SELECT count(*) FROM " + table) && query.next() ? query.value(0).toInt() : -1;
}

} // namespace

TEST(KilledWriter, TheQueueKeepsEverySongCommittedBeforeTheKill)
{
    QTemporaryDir dir;
    const QString path = dir.filePath("library.db");
    auto* random = QRandomGenerator::global();
    long long committed = 0;
    for (int round = 0; round < 4; ++round) {
        const long long said = KillAfter({"queue", path}, 5 + random->bounded(150));
        ASSERT_GT(said, 0);
        committed += said;
        LibraryDatabase database(path);
        ExpectWhole(database);
        EXPECT_GE(Rows(database, "queue"), committed) << "round " << round;
        EXPECT_LE(Rows(database, "queue"), committed + 1) << "at most the one it had not said yet";
        committed = Rows(database, "queue");
    }
}

TEST(KilledWriter, AScanKilledAnywhereLeavesAWholeLibraryThatTheNextScanCompletes)
{
    QTemporaryDir dir;
    const QString path = dir.filePath("library.db");
    const QString music = dir.filePath("music");
    QDir().mkpath(music);
    const int songs = LibraryScan::kBatch * 3 + 17;
    const QString first = WriteRampWav(music + "/song 0.wav", 4800);
    for (int i = 1; i < songs; ++i)
        QFile::copy(first, music + QStringLiteral("/song %1.wav").arg(i));
    auto* random = QRandomGenerator::global();
    for (int round = 0; round < 3; ++round) {
        const long long said = KillAfter({"scan", path, music}, 1 + random->bounded(3));
        LibraryDatabase database(path);
        ExpectWhole(database);
        EXPECT_GE(CountSongs(database.Db()).songs, said) << "round " << round;
    }
    LibraryScan scan(path, {QFile::encodeName(music)}, false, dir.filePath("links"));
    const std::atomic<bool> cancel{false};
    EXPECT_FALSE(scan.Run(cancel).failed);
    LibraryDatabase database(path);
    ExpectWhole(database);
    EXPECT_EQ(CountSongs(database.Db()).songs, songs);
}
