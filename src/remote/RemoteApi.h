#pragma once
// The guests' web page and its JSON API, as answers to calls: no sockets here, so every rule
// (the PIN, the limits, whose request is whose, which files may be served) can be tested
// directly. Runs on the server's thread with a library connection of its own.

#include "core/Language.h"
#include "library/SingerQueue.h"
#include "remote/GuestBook.h"

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QPair>
#include <QString>
#include <QUrlQuery>
#include <utility>
#include <vector>

class LibraryDatabase;
class RemoteShared;

struct RemoteCall {
    QByteArray method;
    QString path;
    QUrlQuery query;
    QHash<QByteArray, QByteArray> headers;  // names in lower case
    QByteArray body;
    QString address;  // the guest's
    qint64 now = 0;   // milliseconds of a steady clock
};

struct RemoteReply {
    int status = 200;
    QByteArray contentType;
    QByteArray body;
    std::vector<std::pair<QByteArray, QByteArray>> headers;
    int delayMs = 0;     // answered this much later: a wrong PIN
    bool close = false;  // the connection closes after the answer
};

class RemoteApi {
public:
    static constexpr qsizetype kMostBodyBytes = 4096;
    static constexpr int kSearchHitsShown = 50;
    static constexpr int kWrongPinDelayMs = 1000;
    static constexpr int kMostSemitones = 6;
    static constexpr qsizetype kMostQueryLength = 100;

    RemoteApi(LibraryDatabase& database, RemoteShared& shared);

    RemoteReply Handle(const RemoteCall& call);
    // The live channel is for guests with a session.
    bool Admits(const QByteArray& cookieHeader, qint64 now);
    // Changes whenever the queue or the song that plays does.
    QByteArray LiveState() const;

    // The session cookie's name.
    static const QByteArray kCookie;

private:
    RemoteReply Page(const RemoteCall& call) const;
    RemoteReply Texts(const RemoteCall& call) const;
    RemoteReply Join(const RemoteCall& call);
    RemoteReply Me(const Guest& guest) const;
    RemoteReply Search(const RemoteCall& call);
    RemoteReply Ask(const RemoteCall& call, Guest& guest);
    RemoteReply Withdraw(qint64 songId, const Guest& guest);
    RemoteReply QueueOf(const Guest& guest) const;
    // The guest whose session the call carries; an error reply when there is none or they
    // may not call now.
    Guest* SessionGuest(const RemoteCall& call, RemoteReply& refusal);
    void PublishGuests();

    LibraryDatabase& m_database;
    RemoteShared& m_shared;
    SingerQueue m_queue;
    GuestBook m_guests;
    LanguageTable m_english, m_polish;
};

// An error as the page reads it: {"error": key} where key names a text of the page.
RemoteReply RemoteError(int status, const char* key);
// The HTTP reason phrase of a status this server sends.
QByteArray ReasonPhrase(int status);
