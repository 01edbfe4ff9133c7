#pragma once
// The songs of the library as rows of its database: stored, found again by a search, counted,
// and marked as sung.

#include <QByteArray>
#include <QHash>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QString>
#include <QVariant>
#include <optional>
#include <vector>

// What kind of song a file is, as the library names and filters them.
namespace SongKinds {
inline const QString Audio = QStringLiteral("audio");
inline const QString Midi = QStringLiteral("midi");
inline const QString Disc = QStringLiteral("mp3+g");  // audio with CD+G graphics beside it
inline const QString Zip = QStringLiteral("zip");     // audio and CD+G in one zip
inline const QString Video = QStringLiteral("video");
inline const QString UltraStar = QStringLiteral("ultrastar");  // audio with an UltraStar file naming it
} // namespace SongKinds

struct FileStamp {
    qint64 size = 0;
    qint64 mtime = 0;  // seconds since the epoch
    bool operator==(const FileStamp&) const = default;
};

struct LibrarySong {
    QByteArray path;
    FileStamp stamp;
    QString kind;
    QString title, artist, album;
    double length = 0;
    QString lyricsSource;  // the format the lyrics come in, empty without lyrics
    QString words;         // the lyrics' text, for the search
};

struct LibraryHit {
    qint64 id = 0;
    QByteArray path;
    QString kind, title, artist, album;
    double length = 0;
    QString lyricsSource;
    int playCount = 0;
};

enum class LibraryOrder { Relevance, Title, Artist, Album, Length, Kind, MostSung, LastPlayed };

// The most songs a search shows, and the songs a listing of every song reads at a time.
inline constexpr int kSearchHits = 500;
inline constexpr int kListedPage = 500;

struct LibraryQuery {
    QString text;                 // typed words; empty lists every song
    QString kind;                 // one of SongKinds, empty for all
    bool withLyricsOnly = false;  // words or graphics to sing from
    LibraryOrder order = LibraryOrder::Relevance;
    bool descending = false;
    int limit = kSearchHits;
    int offset = 0;  // songs of a listing passed over; a ranked search always starts at its best
};

struct LibraryStats {
    int songs = 0;
    int withLyrics = 0;
    int unreadable = 0;
    double seconds = 0;
    QHash<QString, int> byKind;
    int sung = 0;  // rows of the play history
};

// A known file of the library: a song, or one that could not be read and why.
struct KnownFile {
    FileStamp stamp;
    bool unreadable = false;
};

// A statement prepared on the connection, for binding.
QSqlQuery PreparedQuery(QSqlDatabase& db, const QString& statement);

// A text for a NOT NULL column: Qt binds a null QString as NULL.
inline QVariant SqlText(const QString& text)
{
    return text.isNull() ? QVariant(QStringLiteral("")) : QVariant(text);
}

bool StoreSong(QSqlDatabase& db, const LibrarySong& song);
bool StoreUnreadable(QSqlDatabase& db, const QByteArray& path, const FileStamp& stamp, const QString& reason);
// The song or unreadable file of the path goes from the library.
bool ForgetFile(QSqlDatabase& db, const QByteArray& path);
// A file moved: its play count, history, queue entries and kept keys follow it.
bool CarryOver(QSqlDatabase& db, const QByteArray& from, const QByteArray& to);
QHash<QByteArray, KnownFile> KnownFiles(QSqlDatabase& db);

std::vector<LibraryHit> SearchSongs(QSqlDatabase& db, const LibraryQuery& query);
// How many songs a listing without words holds with the query's filters.
int CountListed(QSqlDatabase& db, const LibraryQuery& query);
std::optional<LibraryHit> SongAt(QSqlDatabase& db, const QByteArray& path);
std::optional<LibraryHit> SongWithId(QSqlDatabase& db, qint64 id);
// The unreadable files and why, by path.
std::vector<std::pair<QByteArray, QString>> UnreadableFiles(QSqlDatabase& db);
LibraryStats CountSongs(QSqlDatabase& db);

// One more play of the song, by a singer of the queue or by nobody named; in the history.
bool RecordPlay(QSqlDatabase& db, const QByteArray& path, const QString& title, const QString& artist,
                const QString& singer, qint64 when);
struct HistoryRow {
    QByteArray path;
    QString title, artist, singer;
    qint64 when = 0;
};
// The latest first.
std::vector<HistoryRow> PlayHistory(QSqlDatabase& db, int limit);
