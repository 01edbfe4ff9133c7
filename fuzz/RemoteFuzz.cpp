// The guests' API from any bytes a phone on the network can send: the first byte picks the
// method, then lines give the path and query, the Cookie header and the body. Every answer
// must carry a status the server knows, a JSON answer must be JSON, and no answer may name a
// song's file. A guest who joined is kept, so the calls also reach past the session check.

#include "library/LibraryDatabase.h"
#include "library/LibrarySongs.h"
#include "remote/RemoteApi.h"
#include "remote/RemoteShared.h"

#include <QCoreApplication>
#include <QJsonDocument>
#include <QTemporaryDir>
#include <QUrl>
#include <cstdint>
#include <cstdlib>

namespace {

struct Party {
    Party()
    {
        database.Open();
        database.Write([this] {
            return StoreSong(database.Db(), LibrarySong{"/secret/music/a.mp3", {1, 1}, SongKinds::Audio,
                                                        QStringLiteral("Waterloo"), QStringLiteral("ABBA"), QString(),
                                                        1, QString(), QString()});
        });
        RemoteSettings settings;
        settings.pin = QStringLiteral("1234");
        shared.SetSettings(settings);
        RemoteCall join;
        join.method = "POST";
        join.path = QStringLiteral("/api/join");
        join.headers = {{"host", "127.0.0.1:8777"}, {"content-type", "application/json"}};
        join.body = R"({"name":"Fuzz","pin":"1234"})";
        join.address = QStringLiteral("127.0.0.1");
        const RemoteReply reply = api.Handle(join);
        cookie = reply.headers.empty() ? QByteArray() : reply.headers.front().second.split(';').first();
    }
    QTemporaryDir folder;
    LibraryDatabase database{folder.filePath(QStringLiteral("fuzz.db"))};
    RemoteShared shared;
    RemoteApi api{database, shared};
    QByteArray cookie;
    qint64 now = 0;
};

Party& ThePartyOnce()
{
    // Never destroyed: a static one would close after Qt's registry of connections is gone.
    static auto& party = *new Party;
    return party;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static int argc = 1;
    static char name[] = "remote_fuzz";
    static char* argv[] = {name, nullptr};
    static QCoreApplication app(argc, argv);
    Party& party = ThePartyOnce();
    if (size == 0)
        return 0;
    static const char* const kMethods[] = {"GET", "POST", "DELETE", "HEAD", "PUT", "OPTIONS"};
    const QByteArray bytes(reinterpret_cast<const char*>(data) + 1, qsizetype(size - 1));
    const QList<QByteArray> lines = bytes.split('\n');
    RemoteCall call;
    call.method = kMethods[data[0] % 6];
    const QUrl url(QStringLiteral("http://127.0.0.1:8777") + QString::fromUtf8(lines.value(0)));
    call.path = url.path(QUrl::FullyDecoded);
    call.query = QUrlQuery(url);
    call.headers = {{"host", "127.0.0.1:8777"}, {"content-type", "application/json"},
                    {"cookie", data[0] & 0x80 ? lines.value(1) : party.cookie}};
    call.body = lines.mid(2).join('\n');
    call.address = QStringLiteral("127.0.0.1");
    party.now += 1000;
    call.now = party.now;

    const RemoteReply reply = party.api.Handle(call);
    if (ReasonPhrase(reply.status) == "Error" || reply.body.contains("/secret/"))
        std::abort();
    if (reply.contentType.startsWith("application/json") && QJsonDocument::fromJson(reply.body).isNull())
        std::abort();
    return 0;
}
