#include "library/LibraryDatabase.h"

#include "core/Language.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSqlError>
#include <QSqlQuery>
#include <QStandardPaths>
#include <QStringList>
#include <atomic>

namespace {

// Each step takes the schema one version up; a step is never changed once released.
const QStringList& Migrations()
{
    static const QStringList steps{
        QStringLiteral(R"(
CREATE TABLE songs(
    id INTEGER PRIMARY KEY,
    path BLOB NOT NULL UNIQUE,
    size INTEGER NOT NULL,
    mtime INTEGER NOT NULL,
    kind TEXT NOT NULL,
    title TEXT NOT NULL DEFAULT '',
    artist TEXT NOT NULL DEFAULT '',
    album TEXT NOT NULL DEFAULT '',
    length REAL NOT NULL DEFAULT 0,
    lyrics_source TEXT NOT NULL DEFAULT '',
    play_count INTEGER NOT NULL DEFAULT 0,
    last_played INTEGER);
CREATE VIRTUAL TABLE songs_fts USING fts5(title, artist, album, lyrics,
    tokenize = 'unicode61 remove_diacritics 2');
)"),
        QStringLiteral(R"(
CREATE TABLE unreadable(
    path BLOB PRIMARY KEY,
    size INTEGER NOT NULL,
    mtime INTEGER NOT NULL,
    reason TEXT NOT NULL);
CREATE TABLE song_choices(
    song_key TEXT PRIMARY KEY,
    semitones INTEGER NOT NULL,
    tempo REAL NOT NULL,
    vocals_off INTEGER NOT NULL,
    chosen_at INTEGER NOT NULL);
CREATE TABLE singers(
    id INTEGER PRIMARY KEY,
    name TEXT NOT NULL,
    turns INTEGER NOT NULL DEFAULT 0,
    place INTEGER NOT NULL,
    paused INTEGER NOT NULL DEFAULT 0);
CREATE TABLE queue(
    id INTEGER PRIMARY KEY,
    singer_id INTEGER NOT NULL REFERENCES singers(id) ON DELETE CASCADE,
    path BLOB NOT NULL,
    title TEXT NOT NULL,
    artist TEXT NOT NULL,
    place REAL NOT NULL,
    semitones INTEGER NOT NULL DEFAULT 0);
CREATE INDEX queue_of_singer ON queue(singer_id, place);
CREATE TABLE singer_keys(
    singer TEXT NOT NULL,
    path BLOB NOT NULL,
    semitones INTEGER NOT NULL,
    PRIMARY KEY(singer, path));
CREATE TABLE history(
    id INTEGER PRIMARY KEY,
    path BLOB NOT NULL,
    title TEXT NOT NULL,
    artist TEXT NOT NULL,
    singer TEXT NOT NULL DEFAULT '',
    sung_at INTEGER NOT NULL);
CREATE INDEX history_of_song ON history(path);
CREATE INDEX songs_by_artist ON songs(artist COLLATE NOCASE, title COLLATE NOCASE);
CREATE INDEX songs_by_title ON songs(title COLLATE NOCASE);
CREATE INDEX songs_by_plays ON songs(play_count, title COLLATE NOCASE);
)"),
        QStringLiteral(R"(
ALTER TABLE queue ADD COLUMN guest TEXT NOT NULL DEFAULT '';
ALTER TABLE queue ADD COLUMN pending INTEGER NOT NULL DEFAULT 0;
)"),
    };
    return steps;
}

QString NextConnectionName()
{
    static std::atomic<int> counter{0};
    return QStringLiteral("songweaver-library-%1").arg(++counter);
}

bool Run(QSqlDatabase& db, const QString& statement)
{
    QSqlQuery query(db);
    return query.exec(statement);
}

QVariant Single(QSqlDatabase& db, const QString& statement)
{
    QSqlQuery query(db);
    if (!query.exec(statement) || !query.next())
        return {};
    return query.value(0);
}

// A file that is not empty and does not start as an SQLite file does.
bool LooksForeign(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const QByteArray start = file.read(16);
    return !start.isEmpty() && start != QByteArray("SQLite format 3\0", 16);
}

QString MoveAside(const QString& path)
{
    const QString aside = path + QStringLiteral(".damaged-") +
                          QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd-HHmmss"));
    QFile::rename(path, aside);
    for (const char* companion : {"-wal", "-shm"})
        QFile::remove(path + QLatin1String(companion));
    return aside;
}

} // namespace

LibraryDatabase::LibraryDatabase(QString path) : m_path(std::move(path)), m_connection(NextConnectionName()) {}

LibraryDatabase::~LibraryDatabase()
{
    Disconnect();
}

bool LibraryDatabase::Connect()
{
    m_db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), m_connection);
    m_db.setDatabaseName(m_path);
    // Another thread's or program's transaction is waited for, not failed on.
    m_db.setConnectOptions(QStringLiteral("QSQLITE_BUSY_TIMEOUT=10000"));
    return m_db.open();
}

void LibraryDatabase::Disconnect()
{
    if (!m_db.isValid())
        return;
    m_db.close();
    m_db = QSqlDatabase();
    QSqlDatabase::removeDatabase(m_connection);
}

LibraryOpening LibraryDatabase::Open()
{
    Disconnect();
    QDir().mkpath(QFileInfo(m_path).absolutePath());
    const bool existed = QFileInfo(m_path).size() > 0;
    if (existed && LooksForeign(m_path))
        return StartAgain(LibraryOpening::Outcome::Rebuilt);
    if (!Connect()) {
        LibraryOpening failed;
        failed.error = m_db.lastError().text();
        Disconnect();
        return failed;
    }
    const QVariant version = Single(m_db, QStringLiteral("PRAGMA user_version"));
    if (!version.isValid())
        return StartAgain(LibraryOpening::Outcome::Rebuilt);
    LibraryOpening opening;
    opening.foundVersion = version.toInt();
    if (opening.foundVersion > kSchemaVersion) {
        Disconnect();
        opening.outcome = LibraryOpening::Outcome::Refused;
        return opening;
    }
    if (existed && Single(m_db, QStringLiteral("PRAGMA quick_check")).toString() != u"ok")
        return StartAgain(LibraryOpening::Outcome::Rebuilt);
    // Committed is on disk: the queue of an evening survives a power cut.
    Run(m_db, QStringLiteral("PRAGMA journal_mode = WAL"));
    Run(m_db, QStringLiteral("PRAGMA synchronous = FULL"));
    Run(m_db, QStringLiteral("PRAGMA foreign_keys = ON"));
    if (!Migrate(opening.foundVersion)) {
        opening.error = m_db.lastError().text();
        Disconnect();
        return opening;
    }
    opening.outcome = existed ? LibraryOpening::Outcome::Opened : LibraryOpening::Outcome::Created;
    return opening;
}

LibraryOpening LibraryDatabase::StartAgain(LibraryOpening::Outcome outcome)
{
    Disconnect();
    const QString aside = MoveAside(m_path);
    LibraryOpening opening = Open();
    if (opening.Usable()) {
        opening.outcome = outcome;
        opening.movedTo = aside;
    }
    return opening;
}

bool LibraryDatabase::Migrate(int from)
{
    const QStringList& steps = Migrations();
    for (int version = from + 1; version <= kSchemaVersion; ++version) {
        const bool done = Write([&] {
            for (const QString& statement : steps[version - 1].split(u';', Qt::SkipEmptyParts)) {
                if (!statement.trimmed().isEmpty() && !Run(m_db, statement))
                    return false;
            }
            return Run(m_db, QStringLiteral("PRAGMA user_version = %1").arg(version));
        });
        if (!done)
            return false;
    }
    return true;
}

bool LibraryDatabase::Write(const std::function<bool()>& work)
{
    if (!m_db.isOpen() || !m_db.transaction())
        return false;
    if (work() && m_db.commit())
        return true;
    m_db.rollback();
    return false;
}

QString DefaultLibraryPath()
{
    return QStandardPaths::writableLocation(QStandardPaths::AppDataLocation) + QStringLiteral("/library.db");
}

QString LibraryOpeningMessage(const LibraryOpening& opening, const QString& path, const LanguageTable& language)
{
    switch (opening.outcome) {
    case LibraryOpening::Outcome::Opened:
    case LibraryOpening::Outcome::Created:
        return {};
    case LibraryOpening::Outcome::Rebuilt:
        return MessageNamingFile(language.GetText(QStringLiteral("LibraryDamaged")), opening.movedTo);
    case LibraryOpening::Outcome::Refused:
        return MessageNamingFile(language.GetText(QStringLiteral("LibraryNewer")), path);
    case LibraryOpening::Outcome::Failed:
        break;
    }
    return MessageNamingFile(language.GetText(QStringLiteral("LibraryCannotOpen")), path) + QStringLiteral("\r\n") +
           opening.error;
}
