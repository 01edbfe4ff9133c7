// The library's file: made new, brought up from the first schema, refused untouched when a newer
// program wrote it, moved aside and started again when damaged; the song choices kept in it
// and taken over from the file they were kept in before.

#include "core/Language.h"
#include "library/LibraryChoices.h"
#include "library/LibraryDatabase.h"
#include "library/LibrarySongs.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

using Outcome = LibraryOpening::Outcome;

int Count(LibraryDatabase& database, const QString& table)
{
    QSqlQuery query(database.Db());
    if (!query.exec(QStringLiteral("SELECT count(*) FROM ") + table) || !query.next())
        return -1;
    return query.value(0).toInt();
}

// The first released schema, as a library of that version holds it, with one song.
void WriteFirstSchema(const QString& path)
{
    LibraryDatabase database(path);
    QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("first-schema"));
    db.setDatabaseName(path);
    ASSERT_TRUE(db.open());
    QSqlQuery query(db);
    for (const char* statement : {
             "CREATE TABLE songs(id INTEGER PRIMARY KEY, path BLOB NOT NULL UNIQUE, size INTEGER NOT NULL, "
             "mtime INTEGER NOT NULL, kind TEXT NOT NULL, title TEXT NOT NULL DEFAULT '', artist TEXT NOT NULL "
             "DEFAULT '', album TEXT NOT NULL DEFAULT '', length REAL NOT NULL DEFAULT 0, lyrics_source TEXT NOT NULL "
             "DEFAULT '', play_count INTEGER NOT NULL DEFAULT 0, last_played INTEGER)",
             "CREATE VIRTUAL TABLE songs_fts USING fts5(title, artist, album, lyrics, tokenize = 'unicode61 "
             "remove_diacritics 2')",
             "INSERT INTO songs(path, size, mtime, kind, title, artist, play_count) VALUES(X'2F612E6D7033', 10, 20, "
             "'audio', 'Old Song', 'Old Band', 7)",
             "INSERT INTO songs_fts(rowid, title, artist, album, lyrics) VALUES(1, 'old song', 'old band', '', '')",
             "PRAGMA user_version = 1"})
        ASSERT_TRUE(query.exec(QString::fromLatin1(statement))) << statement;
    query = QSqlQuery();
    db.close();
    db = QSqlDatabase();
    QSqlDatabase::removeDatabase(QStringLiteral("first-schema"));
}

struct LibraryFile : testing::Test {
    QTemporaryDir dir;
    QString path = dir.filePath("data/library.db");
    LanguageTable english = [] {
        LanguageTable table;
        table.LoadTable(false);
        return table;
    }();
};

} // namespace

TEST_F(LibraryFile, ANewLibraryHasEveryTableAndOpensAgainAsItWas)
{
    {
        LibraryDatabase database(path);
        const LibraryOpening opening = database.Open();
        EXPECT_EQ(opening.outcome, Outcome::Created);
        EXPECT_EQ(LibraryOpeningMessage(opening, path, english), "");
        for (const char* table : {"songs", "songs_fts", "unreadable", "song_choices", "singers", "queue", "history"})
            EXPECT_EQ(Count(database, QString::fromLatin1(table)), 0) << table;
        ASSERT_TRUE(database.Write([&] {
            return StoreSong(database.Db(), LibrarySong{"/m/a.mp3", {1, 2}, SongKinds::Audio, "A", "", "", 1, "", ""});
        }));
        EXPECT_FALSE(database.Write([&] {
            StoreSong(database.Db(), LibrarySong{"/m/b.mp3", {1, 2}, SongKinds::Audio, "B", "", "", 1, "", ""});
            return false;
        })) << "a transaction whose work fails";
    }
    LibraryDatabase again(path);
    EXPECT_EQ(again.Open().outcome, Outcome::Opened);
    EXPECT_EQ(Count(again, "songs"), 1) << "the failed transaction left nothing";
    QSqlQuery mode(again.Db());
    ASSERT_TRUE(mode.exec("PRAGMA journal_mode") && mode.next());
    EXPECT_EQ(mode.value(0).toString(), "wal");
}

TEST_F(LibraryFile, TheFirstSchemaIsBroughtUpWithItsSongsKept)
{
    QDir().mkpath(dir.filePath("data"));
    WriteFirstSchema(path);
    LibraryDatabase database(path);
    const LibraryOpening opening = database.Open();
    EXPECT_EQ(opening.outcome, Outcome::Opened);
    EXPECT_EQ(opening.foundVersion, 1);
    QSqlQuery version(database.Db());
    ASSERT_TRUE(version.exec("PRAGMA user_version") && version.next());
    EXPECT_EQ(version.value(0).toInt(), LibraryDatabase::kSchemaVersion);
    const auto song = SongAt(database.Db(), "/a.mp3");
    ASSERT_TRUE(song);
    EXPECT_EQ(song->title, "Old Song");
    EXPECT_EQ(song->playCount, 7);
    LibraryQuery query;
    query.text = "old ban";
    EXPECT_EQ(SearchSongs(database.Db(), query).size(), 1u);
    EXPECT_EQ(Count(database, "queue"), 0) << "the tables of the second version are there";
}

TEST_F(LibraryFile, ALibraryOfANewerVersionIsRefusedAndLeftUntouched)
{
    QDir().mkpath(dir.filePath("data"));
    {
        LibraryDatabase database(path);
        ASSERT_TRUE(database.Open().Usable());
        QSqlQuery(database.Db()).exec("PRAGMA user_version = 99");
        QSqlQuery(database.Db()).exec("PRAGMA wal_checkpoint(TRUNCATE)");
    }
    const QByteArray before = ReadFileBytes(path);
    LibraryDatabase database(path);
    const LibraryOpening opening = database.Open();
    EXPECT_EQ(opening.outcome, Outcome::Refused);
    EXPECT_EQ(opening.foundVersion, 99);
    EXPECT_FALSE(database.IsOpen());
    EXPECT_EQ(ReadFileBytes(path), before);
    EXPECT_TRUE(LibraryOpeningMessage(opening, path, english).startsWith("The song library was written by a newer"));
}

TEST_F(LibraryFile, ADamagedLibraryIsMovedAsideAndANewOneStarted)
{
    QDir().mkpath(dir.filePath("data"));
    const QByteArray garbage = QByteArray("not a database at all ") + QByteArray(5000, '\x7f');
    WriteFileBytes(path, garbage);
    {
        LibraryDatabase database(path);
        const LibraryOpening opening = database.Open();
        EXPECT_EQ(opening.outcome, Outcome::Rebuilt);
        EXPECT_EQ(ReadFileBytes(opening.movedTo), garbage) << "the damaged file is kept as it was";
        EXPECT_EQ(Count(database, "songs"), 0);
        EXPECT_TRUE(LibraryOpeningMessage(opening, path, english).contains(QDir::toNativeSeparators(opening.movedTo)));
        ASSERT_TRUE(database.Write([&] {
            for (int i = 0; i < 3000; ++i) {
                if (!StoreSong(database.Db(), LibrarySong{"/m/" + QByteArray::number(i), {i, i}, SongKinds::Audio,
                                                          "Song " + QString::number(i), "", "", 1, "", ""}))
                    return false;
            }
            return true;
        }));
        QSqlQuery(database.Db()).exec("PRAGMA wal_checkpoint(TRUNCATE)");
    }
    // Pages lost from the middle of a file that starts well.
    QByteArray bytes = ReadFileBytes(path);
    ASSERT_GT(bytes.size(), 64 * 1024);
    for (qsizetype i = 8192; i < bytes.size() - 4096; i += 7)
        bytes[i] = char(i * 31);
    WriteFileBytes(path, bytes);
    LibraryDatabase database(path);
    EXPECT_EQ(database.Open().outcome, Outcome::Rebuilt);
    EXPECT_EQ(Count(database, "songs"), 0);
}

TEST_F(LibraryFile, SongChoicesAreKeptInRangeAndTheOldFileIsTakenOverOnce)
{
    LibraryDatabase database(path);
    ASSERT_TRUE(database.Open().Usable());
    LibraryChoices choices(database);
    ASSERT_TRUE(choices.Remember("100-ab", SongChoice{40, 9.0, false}));
    EXPECT_EQ(choices.Recall("100-ab"), (SongChoice{12, 2.0, false}));
    ASSERT_TRUE(choices.Remember("100-ab", SongChoice{-3, std::nan(""), true}));
    EXPECT_EQ(choices.Recall("100-ab"), (SongChoice{-3, 1.0, true}));
    EXPECT_FALSE(choices.Remember("", SongChoice{1, 1, false})) << "a song that could not be read";
    ASSERT_TRUE(choices.Remember("100-ab", SongChoice{}));
    EXPECT_EQ(Count(database, "song_choices"), 0) << "back to the song as it is: forgotten";

    const QString old = dir.filePath("data/song settings.txt");
    WriteFileBytes(old, "#Songweaver song settings 1\n1-aa\t2\t0.8\t1\n2-bb\tx\t1\t0\ngarbage\n3-cc\t0\t1\t0\n"
                        "4-dd\t-30\t1\t0\n" + QByteArray(100000, '\t') + "\n");
    EXPECT_EQ(ImportSongChoicesFile(database, old), 2) << "the good lines that change something";
    EXPECT_EQ(choices.Recall("1-aa"), (SongChoice{2, 0.8, true}));
    EXPECT_EQ(choices.Recall("4-dd"), (SongChoice{-12, 1.0, false}));
    EXPECT_FALSE(QFile::exists(old));
    EXPECT_TRUE(QFile::exists(old + ".imported"));
    EXPECT_EQ(ImportSongChoicesFile(database, old), std::nullopt) << "taken once";

    WriteFileBytes(old, "not the header\n5-ee\t5\t1\t0\n");
    EXPECT_EQ(ImportSongChoicesFile(database, old), 0) << "a file of something else";
}
