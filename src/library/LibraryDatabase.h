#pragma once
// The song library's SQLite file: opened on the thread that uses it (one connection a thread),
// its schema brought up to date, a file of a newer program left alone, a damaged one moved
// aside and started again. Every change goes through Write, one transaction each.

#include <QSqlDatabase>
#include <QString>
#include <functional>

struct LibraryOpening {
    enum class Outcome { Opened, Created, Rebuilt, Refused, Failed };
    Outcome outcome = Outcome::Failed;
    int foundVersion = 0;  // the schema version the file had
    QString movedTo;       // where a damaged file went
    QString error;         // what SQLite said when it could not be opened

    bool Usable() const { return outcome == Outcome::Opened || outcome == Outcome::Created || outcome == Outcome::Rebuilt; }
};

class LibraryDatabase {
public:
    // 1: songs and their search index. 2: unreadable files, song choices, singers, the queue
    // and the history of what was sung; the orders of the song list indexed. 3: songs asked for
    // by guests' phones, waiting for the host's approval or not.
    static constexpr int kSchemaVersion = 3;

    explicit LibraryDatabase(QString path);
    ~LibraryDatabase();
    LibraryDatabase(const LibraryDatabase&) = delete;
    LibraryDatabase& operator=(const LibraryDatabase&) = delete;

    LibraryOpening Open();
    bool IsOpen() const { return m_db.isOpen(); }
    const QString& Path() const { return m_path; }
    QSqlDatabase& Db() { return m_db; }

    // Runs `work` in one transaction: committed when it returns true, rolled back otherwise.
    bool Write(const std::function<bool()>& work);

private:
    bool Connect();
    void Disconnect();
    bool Migrate(int from);
    LibraryOpening StartAgain(LibraryOpening::Outcome outcome);

    QString m_path;
    QString m_connection;
    QSqlDatabase m_db;
};

// The user's library in the per-user data folder.
QString DefaultLibraryPath();

class LanguageTable;
// The message a user reads about an opening that did not simply succeed; empty when it did.
QString LibraryOpeningMessage(const LibraryOpening& opening, const QString& path, const LanguageTable& language);
