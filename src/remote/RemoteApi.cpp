#include "remote/RemoteApi.h"

#include "library/LibraryDatabase.h"
#include "library/LibrarySongs.h"
#include "remote/RemoteShared.h"

#include <QFile>
#include <QHostAddress>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QSqlQuery>
#include <limits>

const QByteArray RemoteApi::kCookie = QByteArrayLiteral("songweaver_guest");

namespace {

const QByteArray kJson = QByteArrayLiteral("application/json; charset=utf-8");

struct PageFile {
    const char* path;
    const char* resource;
    const char* type;
};

// Everything the page is made of; no other file is ever served.
constexpr PageFile kPageFiles[] = {
    {"/", ":/remote/index.html", "text/html; charset=utf-8"},
    {"/index.html", ":/remote/index.html", "text/html; charset=utf-8"},
    {"/remote.css", ":/remote/remote.css", "text/css; charset=utf-8"},
    {"/remote.js", ":/remote/remote.js", "text/javascript; charset=utf-8"},
};

RemoteReply JsonReply(int status, const QJsonObject& object)
{
    RemoteReply reply;
    reply.status = status;
    reply.contentType = kJson;
    reply.body = QJsonDocument(object).toJson(QJsonDocument::Compact);
    return reply;
}

QJsonObject SongObject(const QString& title, const QString& artist)
{
    return {{QStringLiteral("title"), title}, {QStringLiteral("artist"), artist}};
}

// The page is reached by the machine's address or a local name; any other name in Host is a
// page elsewhere rebinding its own name to this machine.
bool LocalHost(const QByteArray& hostHeader)
{
    QString host = QString::fromLatin1(hostHeader).trimmed().toLower();
    if (host.startsWith(u'[')) {
        const qsizetype end = host.indexOf(u']');
        return end > 0 && !QHostAddress(host.mid(1, end - 1)).isNull();
    }
    host = host.section(u':', 0, 0);
    return host == u"localhost" || host.endsWith(u".local") || !QHostAddress(host).isNull();
}

// A page of another origin may not change anything here, even with the guest's cookie.
bool SameOrigin(const RemoteCall& call)
{
    const QByteArray origin = call.headers.value("origin");
    return origin.isEmpty() || origin == "http://" + call.headers.value("host");
}

std::optional<QJsonObject> JsonBody(const RemoteCall& call)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(call.body, &error);
    if (error.error != QJsonParseError::NoError || !document.isObject())
        return std::nullopt;
    return document.object();
}

bool JsonType(const RemoteCall& call)
{
    return call.headers.value("content-type").split(';').first().trimmed().toLower() == "application/json";
}

QByteArray SessionCookie(const QByteArray& token)
{
    return RemoteApi::kCookie + '=' + token + "; Path=/; HttpOnly; SameSite=Strict; Max-Age=21600";
}

} // namespace

RemoteReply RemoteError(int status, const char* key)
{
    return JsonReply(status, {{QStringLiteral("error"), QLatin1String(key)}});
}

QByteArray ReasonPhrase(int status)
{
    switch (status) {
    case 200: return "OK";
    case 201: return "Created";
    case 400: return "Bad Request";
    case 401: return "Unauthorized";
    case 403: return "Forbidden";
    case 404: return "Not Found";
    case 405: return "Method Not Allowed";
    case 409: return "Conflict";
    case 413: return "Content Too Large";
    case 415: return "Unsupported Media Type";
    case 429: return "Too Many Requests";
    case 503: return "Service Unavailable";
    default: return "Error";
    }
}

RemoteApi::RemoteApi(LibraryDatabase& database, RemoteShared& shared)
    : m_database(database), m_shared(shared), m_queue(database)
{
    m_english.LoadTable(false);
    m_polish.LoadTable(true);
}

RemoteReply RemoteApi::Handle(const RemoteCall& call)
{
    if (!LocalHost(call.headers.value("host")))
        return RemoteError(403, "WebWrongAddress");
    const bool changes = call.method == "POST" || call.method == "DELETE";
    if (changes && !SameOrigin(call))
        return RemoteError(403, "WebWrongAddress");
    if (call.body.size() > kMostBodyBytes)
        return RemoteError(413, "WebTooLarge");
    if (call.method == "POST" && !JsonType(call))
        return RemoteError(415, "WebBadRequest");

    if (!call.path.startsWith(QLatin1String("/api/"))) {
        if (call.path == u"/texts.json")
            return call.method == "GET" ? Texts(call) : RemoteError(405, "WebBadRequest");
        return Page(call);
    }
    if (call.path == u"/api/join")
        return call.method == "POST" ? Join(call) : RemoteError(405, "WebBadRequest");

    static const QRegularExpression kRequestPath(QStringLiteral("^/api/requests/([0-9]{1,18})$"));
    const QRegularExpressionMatch request = kRequestPath.match(call.path);
    const bool known = request.hasMatch() || call.path == u"/api/me" || call.path == u"/api/search" ||
                       call.path == u"/api/queue" || call.path == u"/api/requests";
    if (!known)
        return RemoteError(404, "WebNotFound");

    RemoteReply refusal;
    Guest* guest = SessionGuest(call, refusal);
    if (!guest)
        return refusal;
    if (request.hasMatch())
        return call.method == "DELETE" ? Withdraw(request.captured(1).toLongLong(), *guest)
                                       : RemoteError(405, "WebBadRequest");
    if (call.path == u"/api/requests")
        return call.method == "POST" ? Ask(call, *guest) : RemoteError(405, "WebBadRequest");
    if (call.method != "GET")
        return RemoteError(405, "WebBadRequest");
    if (call.path == u"/api/me")
        return Me(*guest);
    if (call.path == u"/api/search")
        return Search(call);
    return QueueOf(*guest);
}

bool RemoteApi::Admits(const QByteArray& cookieHeader, qint64 now)
{
    const Guest* guest = m_guests.Find(CookieValue(cookieHeader, kCookie), now);
    return guest && !m_shared.Blocked(guest->id);
}

QByteArray RemoteApi::LiveState() const
{
    QSqlQuery query(m_database.Db());
    QByteArray state;
    if (query.exec(QStringLiteral("SELECT (SELECT count(*) || ':' || total(id * 31 + place * 7 + pending * 3 + semitones) "
                                  "FROM queue) || ':' || (SELECT total(turns * 7 + paused) FROM singers)")) &&
        query.next())
        state = query.value(0).toByteArray();
    const NowPlaying now = m_shared.Now();
    return state + '\n' + now.title.toUtf8() + '\n' + now.artist.toUtf8() + '\n' + now.singer.toUtf8();
}

RemoteReply RemoteApi::Page(const RemoteCall& call) const
{
    for (const PageFile& file : kPageFiles) {
        if (call.path != QLatin1String(file.path))
            continue;
        if (call.method != "GET" && call.method != "HEAD")
            return RemoteError(405, "WebBadRequest");
        QFile resource(QString::fromLatin1(file.resource));
        if (!resource.open(QIODevice::ReadOnly))
            return RemoteError(404, "WebNotFound");
        RemoteReply reply;
        reply.contentType = file.type;
        reply.body = call.method == "HEAD" ? QByteArray() : resource.readAll();
        return reply;
    }
    return RemoteError(404, "WebNotFound");
}

RemoteReply RemoteApi::Texts(const RemoteCall& call) const
{
    const bool polish = call.query.queryItemValue(QStringLiteral("lang")).toLower().startsWith(QLatin1String("pl"));
    const LanguageTable& table = polish ? m_polish : m_english;
    QJsonObject texts;
    for (const QString& key : table.Keys()) {
        if (key.startsWith(QLatin1String("Web")))
            texts.insert(key, table.GetRawText(key));
    }
    return JsonReply(200, {{QStringLiteral("language"), polish ? QStringLiteral("pl") : QStringLiteral("en")},
                           {QStringLiteral("texts"), texts}});
}

RemoteReply RemoteApi::Join(const RemoteCall& call)
{
    const std::optional<QJsonObject> body = JsonBody(call);
    if (!body || !(*body)[QStringLiteral("name")].isString() || !(*body)[QStringLiteral("pin")].isString())
        return RemoteError(400, "WebBadRequest");
    const RemoteSettings settings = m_shared.Settings();
    const GuestBook::JoinResult joined =
        m_guests.Join((*body)[QStringLiteral("name")].toString(), (*body)[QStringLiteral("pin")].toString(), call.address,
                      settings.pin, settings.mostGuests, call.now);
    switch (joined.outcome) {
    case GuestBook::Joining::Joined: {
        RemoteReply reply = JsonReply(200, {{QStringLiteral("name"), joined.guest->name}});
        reply.headers.emplace_back("Set-Cookie", SessionCookie(joined.guest->token));
        PublishGuests();
        return reply;
    }
    case GuestBook::Joining::BadName:
        return RemoteError(400, "WebBadName");
    case GuestBook::Joining::Full:
        return RemoteError(503, "WebFull");
    case GuestBook::Joining::WrongPin:
        if (joined.retryAfterMs == 0) {
            RemoteReply reply = RemoteError(403, "WebWrongPin");
            reply.delayMs = kWrongPinDelayMs;
            reply.close = true;
            return reply;
        }
        [[fallthrough]];
    case GuestBook::Joining::AddressBlocked:
        break;
    }
    if (joined.retryAfterMs == std::numeric_limits<qint64>::max())
        return RemoteError(403, "WebBlocked");
    RemoteReply reply = RemoteError(429, "WebWaitPin");
    reply.headers.emplace_back("Retry-After", QByteArray::number((joined.retryAfterMs + 999) / 1000));
    reply.delayMs = kWrongPinDelayMs;
    reply.close = true;
    return reply;
}

Guest* RemoteApi::SessionGuest(const RemoteCall& call, RemoteReply& refusal)
{
    Guest* guest = m_guests.Find(CookieValue(call.headers.value("cookie"), kCookie), call.now);
    if (!guest) {
        refusal = RemoteError(401, "WebJoinFirst");
        return nullptr;
    }
    if (m_shared.Blocked(guest->id)) {
        m_guests.Block(guest->id);
        PublishGuests();
        refusal = RemoteError(403, "WebBlocked");
        return nullptr;
    }
    if (!m_guests.MayCall(*guest, call.now)) {
        refusal = RemoteError(429, "WebSlowDown");
        refusal.headers.emplace_back("Retry-After", "1");
        return nullptr;
    }
    return guest;
}

RemoteReply RemoteApi::Me(const Guest& guest) const
{
    return JsonReply(200, {{QStringLiteral("name"), guest.name}});
}

RemoteReply RemoteApi::Search(const RemoteCall& call)
{
    LibraryQuery query;
    query.text = call.query.queryItemValue(QStringLiteral("q"), QUrl::FullyDecoded).left(kMostQueryLength);
    query.limit = kSearchHitsShown;
    if (query.text.trimmed().isEmpty())
        query.order = LibraryOrder::Title;
    QJsonArray songs;
    for (const LibraryHit& hit : SearchSongs(m_database.Db(), query)) {
        QJsonObject song = SongObject(hit.title, hit.artist);
        song.insert(QStringLiteral("id"), hit.id);
        song.insert(QStringLiteral("length"), qRound(hit.length));
        songs.append(song);
    }
    return JsonReply(200, {{QStringLiteral("songs"), songs}});
}

RemoteReply RemoteApi::Ask(const RemoteCall& call, Guest& guest)
{
    const std::optional<QJsonObject> body = JsonBody(call);
    const QJsonValue songId = body ? (*body)[QStringLiteral("song")] : QJsonValue();
    const QJsonValue key = body ? (*body)[QStringLiteral("key")] : QJsonValue();
    if (!songId.isDouble() || !(key.isUndefined() || key.isNull() || key.isDouble()))
        return RemoteError(400, "WebBadRequest");
    const int semitones = key.toInt();
    if (semitones < -kMostSemitones || semitones > kMostSemitones || key.toDouble() != double(semitones))
        return RemoteError(400, "WebBadRequest");

    const RemoteSettings settings = m_shared.Settings();
    if (int(m_queue.SongsOfGuest(guest.id).size()) >= settings.songsPerGuest)
        return RemoteError(409, "WebTooManySongs");
    const std::optional<LibraryHit> song = SongWithId(m_database.Db(), songId.toInteger());
    if (!song)
        return RemoteError(404, "WebNoSong");
    if (!m_guests.MayAsk(guest, settings.requestsPerMinute, call.now)) {
        RemoteReply reply = RemoteError(429, "WebSlowDown");
        reply.headers.emplace_back("Retry-After", "60");
        return reply;
    }
    const std::optional<qint64> singer = m_queue.SingerNamed(guest.name);
    const std::optional<qint64> queued =
        singer ? m_queue.Enqueue(*singer, song->path, song->title, song->artist,
                                 key.isDouble() ? std::optional<int>(semitones) : std::nullopt, guest.id,
                                 settings.approveEach)
               : std::nullopt;
    if (!queued)
        return RemoteError(503, "WebNotQueued");
    m_shared.GuestChangedQueue();
    return JsonReply(201, {{QStringLiteral("id"), *queued}, {QStringLiteral("pending"), settings.approveEach}});
}

RemoteReply RemoteApi::Withdraw(qint64 songId, const Guest& guest)
{
    for (const QueuedSong& song : m_queue.SongsOfGuest(guest.id)) {
        if (song.id == songId && m_queue.Remove(songId)) {
            m_shared.GuestChangedQueue();
            return JsonReply(200, {{QStringLiteral("id"), songId}});
        }
    }
    return RemoteError(404, "WebNoRequest");
}

RemoteReply RemoteApi::QueueOf(const Guest& guest) const
{
    const NowPlaying now = m_shared.Now();
    QJsonValue playing;
    if (!now.title.isEmpty()) {
        QJsonObject object = SongObject(now.title, now.artist);
        object.insert(QStringLiteral("singer"), now.singer);
        playing = object;
    }
    QJsonArray turns;
    for (const Turn& turn : m_queue.Upcoming()) {
        QJsonObject object = SongObject(turn.song.title, turn.song.artist);
        object.insert(QStringLiteral("singer"), turn.singer.name);
        if (turn.song.guest == guest.id)
            object.insert(QStringLiteral("id"), turn.song.id);
        turns.append(object);
    }
    QJsonArray waiting;
    for (const QueuedSong& song : m_queue.SongsOfGuest(guest.id)) {
        if (!song.pending)
            continue;
        QJsonObject object = SongObject(song.title, song.artist);
        object.insert(QStringLiteral("id"), song.id);
        waiting.append(object);
    }
    return JsonReply(200, {{QStringLiteral("now"), playing},
                           {QStringLiteral("turns"), turns},
                           {QStringLiteral("waiting"), waiting}});
}

void RemoteApi::PublishGuests()
{
    std::vector<GuestSummary> guests;
    for (const Guest& guest : m_guests.Guests())
        guests.push_back({guest.id, guest.name, guest.address});
    std::sort(guests.begin(), guests.end(), [](const auto& a, const auto& b) { return a.name < b.name; });
    m_shared.SetGuests(std::move(guests));
}
