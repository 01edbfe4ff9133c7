#pragma once
// A library of three songs, the guests' API over it with the PIN 4321, and calls as a phone
// on the local network makes them.

#include "library/LibraryDatabase.h"
#include "library/LibrarySongs.h"
#include "library/SingerQueue.h"
#include "remote/RemoteApi.h"
#include "remote/RemoteShared.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <gtest/gtest.h>

inline std::vector<qint64> StoreRemoteSongs(LibraryDatabase& database)
{
    std::vector<qint64> ids;
    const std::vector<std::tuple<const char*, const char*, const char*>> songs{
        {"/music/queen/bohemian.mp3", "Bohemian Rhapsody", "Queen"},
        {"/music/prince/rain.mp3", "Purple Rain", "Prince"},
        {"/music/abba/waterloo.kar", "Waterloo", "ABBA"}};
    database.Write([&] {
        for (const auto& [path, title, artist] : songs) {
            LibrarySong song;
            song.path = path;
            song.stamp = {1000, 1};
            song.kind = SongKinds::Audio;
            song.title = QString::fromUtf8(title);
            song.artist = QString::fromUtf8(artist);
            song.length = 200;
            if (!StoreSong(database.Db(), song))
                return false;
            ids.push_back(SongAt(database.Db(), path)->id);
        }
        return true;
    });
    return ids;
}

// The three songs' library and the settings a host chose, with the PIN.
struct RemoteParty {
    explicit RemoteParty(const QString& pin)
    {
        EXPECT_TRUE(database.Open().Usable());
        songs = StoreRemoteSongs(database);
        RemoteSettings settings;
        settings.pin = pin;
        shared.SetSettings(settings);
    }
    QTemporaryDir dir;
    LibraryDatabase database{dir.filePath("library.db")};
    std::vector<qint64> songs;
    RemoteShared shared;
};

struct RemoteApiTest : testing::Test, RemoteParty {
    RemoteApiTest() : RemoteParty(QStringLiteral("4321")) {}

    RemoteCall Call(const char* method, const QString& path, const QByteArray& cookie, const QString& address) const
    {
        RemoteCall call;
        call.method = method;
        const QUrl url(QStringLiteral("http://192.168.1.20:8777") + path);
        call.path = url.path(QUrl::FullyDecoded);
        call.query = QUrlQuery(url);
        call.headers["host"] = "192.168.1.20:8777";
        if (!cookie.isEmpty())
            call.headers["cookie"] = cookie;
        call.address = address;
        call.now = now;
        return call;
    }
    RemoteCall Get(const QString& path, const QByteArray& cookie = {}, const QString& address = "192.168.1.30") const
    {
        return Call("GET", path, cookie, address);
    }
    RemoteCall Delete(const QString& path, const QByteArray& cookie) const
    {
        return Call("DELETE", path, cookie, QStringLiteral("192.168.1.30"));
    }
    RemoteCall Post(const QString& path, const QByteArray& body, const QByteArray& cookie = {},
                    const QString& address = "192.168.1.30") const
    {
        RemoteCall call = Call("POST", path, cookie, address);
        call.headers["content-type"] = "application/json";
        call.headers["origin"] = "http://192.168.1.20:8777";
        call.body = body;
        return call;
    }
    static QJsonObject Json(const RemoteReply& reply) { return QJsonDocument::fromJson(reply.body).object(); }
    static QJsonObject Json(const RemoteCall& call, RemoteApi& api) { return Json(api.Handle(call)); }

    // The guest's Cookie header.
    QByteArray JoinAs(const QString& name, const QString& address = "192.168.1.30")
    {
        const QByteArray body = QJsonDocument(QJsonObject{{"name", name}, {"pin", "4321"}}).toJson();
        const RemoteReply reply = api.Handle(Post("/api/join", body, {}, address));
        EXPECT_EQ(reply.status, 200) << reply.body.constData();
        return reply.headers.empty() ? QByteArray() : reply.headers.front().second.split(';').first();
    }
    qint64 Ask(const QByteArray& cookie, qint64 song)
    {
        const RemoteReply reply = api.Handle(Post("/api/requests", QStringLiteral(R"({"song":%1})").arg(song).toUtf8(), cookie));
        EXPECT_EQ(reply.status, 201) << reply.body.constData();
        return Json(reply)["id"].toInteger();
    }

    RemoteApi api{database, shared};
    SingerQueue queue{database};
    qint64 now = 1'000'000;
};
