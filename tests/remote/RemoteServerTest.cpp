// The server on loopback as phones meet it: HTTP with cookies, the live channel, answers to
// requests too big or not HTTP at all, a slow wrong PIN that holds up nobody else, and every
// connection closed when the host switches the remote off.

#include "RemoteApiFixture.h"
#include "remote/RemoteServer.h"

#include <QEventLoop>
#include <QJsonArray>
#include <QNetworkAccessManager>
#include <QNetworkCookie>
#include <QNetworkCookieJar>
#include <QNetworkReply>
#include <QSignalSpy>
#include <QTcpSocket>
#include <QTimer>
#include <QWebSocket>

namespace {

struct Answer {
    int status = 0;
    QByteArray body;
    QNetworkReply* reply = nullptr;
};

struct RemoteServerTest : testing::Test, RemoteParty {
    RemoteServerTest() : RemoteParty(QStringLiteral("2468"))
    {
        const RemoteListening listening = server.Start({QHostAddress(QHostAddress::LocalHost)}, 0);
        EXPECT_TRUE(listening.Listening()) << listening.error.toStdString();
        base = QStringLiteral("http://127.0.0.1:%1").arg(listening.port);
    }

    QNetworkReply* Send(QNetworkAccessManager& phone, const QByteArray& method, const QString& path,
                        const QByteArray& body = {})
    {
        QNetworkRequest request(QUrl(base + path));
        if (!body.isEmpty())
            request.setHeader(QNetworkRequest::ContentTypeHeader, "application/json");
        return phone.sendCustomRequest(request, method, body);
    }
    static Answer Wait(QNetworkReply* reply)
    {
        if (!reply->isFinished()) {
            QEventLoop loop;
            QObject::connect(reply, &QNetworkReply::finished, &loop, &QEventLoop::quit);
            QTimer::singleShot(10'000, &loop, &QEventLoop::quit);
            loop.exec();
        }
        reply->deleteLater();
        return {reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt(), reply->readAll(), reply};
    }
    Answer Fetch(QNetworkAccessManager& phone, const QByteArray& method, const QString& path, const QByteArray& body = {})
    {
        return Wait(Send(phone, method, path, body));
    }
    // What the server answers to these bytes, until it closes or goes quiet.
    QByteArray Raw(const QByteArray& bytes)
    {
        QTcpSocket socket;
        socket.connectToHost(QHostAddress::LocalHost, server.Listening().port);
        EXPECT_TRUE(socket.waitForConnected(5000));
        socket.write(bytes);
        socket.flush();
        QByteArray answer;
        while (socket.state() == QAbstractSocket::ConnectedState && socket.waitForReadyRead(1500))
            answer += socket.readAll();
        return answer + socket.readAll();
    }
    static QJsonObject Json(const Answer& answer) { return QJsonDocument::fromJson(answer.body).object(); }

    RemoteServer server{dir.filePath("library.db"), shared};
    SingerQueue queue{database};
    QString base;
};

} // namespace

TEST_F(RemoteServerTest, APhoneJoinsSearchesAsksAndSeesItsSongInTheQueue)
{
    QNetworkAccessManager phone;
    const Answer page = Fetch(phone, "GET", "/");
    ASSERT_EQ(page.status, 200);
    EXPECT_TRUE(page.reply->rawHeader("Content-Security-Policy").contains("script-src 'self'"));
    EXPECT_EQ(page.reply->rawHeader("X-Content-Type-Options"), "nosniff");

    EXPECT_EQ(Fetch(phone, "GET", "/api/queue").status, 401);
    ASSERT_EQ(Fetch(phone, "POST", "/api/join", R"({"name":"Zoe","pin":"2468"})").status, 200);
    const QJsonArray hits = Json(Fetch(phone, "GET", "/api/search?q=water"))["songs"].toArray();
    ASSERT_EQ(hits.size(), 1);
    const Answer asked = Fetch(phone, "POST", "/api/requests",
                               QStringLiteral(R"({"song":%1})").arg(hits[0].toObject()["id"].toInteger()).toUtf8());
    ASSERT_EQ(asked.status, 201);
    const QJsonArray turns = Json(Fetch(phone, "GET", "/api/queue"))["turns"].toArray();
    ASSERT_EQ(turns.size(), 1);
    EXPECT_EQ(turns[0].toObject()["title"].toString(), "Waterloo");
    EXPECT_EQ(turns[0].toObject()["singer"].toString(), "Zoe");

    // The host's own connection to the library sees it at once.
    const std::optional<Turn> next = queue.Next();
    ASSERT_TRUE(next);
    EXPECT_EQ(next->singer.name, "Zoe");
    EXPECT_EQ(next->song.path, "/music/abba/waterloo.kar");
    EXPECT_GT(shared.GuestChanges(), 0u);
}

TEST_F(RemoteServerTest, RequestsTooBigOrNotHttpAreRefusedAndTheServerGoesOn)
{
    const QByteArray huge = "POST /api/join HTTP/1.1\r\nHost: 127.0.0.1\r\nContent-Type: application/json\r\n"
                            "Content-Length: 10000000\r\n\r\n" + QByteArray(200'000, 'x');
    const QByteArray refused = Raw(huge);
    EXPECT_TRUE(refused.isEmpty() || refused.startsWith("HTTP/1.1 413")) << refused.left(80).constData();

    const QByteArray body(5000, ' ');
    const QByteArray overLimit = Raw("POST /api/join HTTP/1.1\r\nHost: 127.0.0.1\r\nContent-Type: application/json\r\n"
                                     "Content-Length: 5000\r\n\r\n" + body);
    EXPECT_TRUE(overLimit.startsWith("HTTP/1.1 413")) << overLimit.left(80).constData();

    const char garbage[] = "\x00\x01\x02 GARBAGE \xff\xfe\r\n\r\n";
    Raw(QByteArray(garbage, sizeof garbage - 1));
    Raw("GET /" + QByteArray(20'000, 'a') + " HTTP/1.1\r\nHost: 127.0.0.1\r\n\r\n");
    EXPECT_TRUE(Raw("GET /../../etc/passwd HTTP/1.1\r\nHost: 127.0.0.1\r\n\r\n").startsWith("HTTP/1.1 404"));
    EXPECT_TRUE(Raw("GET /%2e%2e/%2e%2e/etc/passwd HTTP/1.1\r\nHost: 127.0.0.1\r\n\r\n").startsWith("HTTP/1.1 404"));

    QNetworkAccessManager phone;
    EXPECT_EQ(Fetch(phone, "GET", "/remote.css").status, 200) << "still serving";
}

TEST_F(RemoteServerTest, AWrongPinIsAnsweredLateWithoutHoldingUpOtherGuests)
{
    QNetworkAccessManager mallory, ann;
    QNetworkReply* wrong = Send(mallory, "POST", "/api/join", R"({"name":"M","pin":"0000"})");
    const Answer page = Fetch(ann, "GET", "/");
    EXPECT_EQ(page.status, 200);
    EXPECT_FALSE(wrong->isFinished()) << "the wrong PIN is still waiting for its answer";
    EXPECT_EQ(Wait(wrong).status, 403);
}

TEST_F(RemoteServerTest, TheLiveChannelTellsAGuestOfChangesAndSwitchingOffClosesIt)
{
    QNetworkAccessManager phone;
    ASSERT_EQ(Fetch(phone, "POST", "/api/join", R"({"name":"Liv","pin":"2468"})").status, 200);
    const QList<QNetworkCookie> cookies = phone.cookieJar()->cookiesForUrl(QUrl(base));
    ASSERT_EQ(cookies.size(), 1);
    EXPECT_TRUE(cookies[0].isHttpOnly());

    QWebSocket stranger;
    QSignalSpy strangerClosed(&stranger, &QWebSocket::disconnected);
    stranger.open(QUrl(QStringLiteral("ws://127.0.0.1:%1/live").arg(server.Listening().port)));
    EXPECT_TRUE(strangerClosed.wait(5000)) << "no session, no live channel";

    QNetworkRequest request(QUrl(QStringLiteral("ws://127.0.0.1:%1/live").arg(server.Listening().port)));
    request.setRawHeader("Cookie", cookies[0].toRawForm(QNetworkCookie::NameAndValueOnly));
    QWebSocket live;
    QSignalSpy messages(&live, &QWebSocket::textMessageReceived);
    QSignalSpy closed(&live, &QWebSocket::disconnected);
    live.open(request);
    ASSERT_TRUE(messages.wait(5000));
    messages.clear();

    const std::optional<qint64> singer = queue.AddSinger("Host's friend");
    ASSERT_TRUE(singer);
    ASSERT_TRUE(queue.Enqueue(*singer, "/music/prince/rain.mp3", "Purple Rain", "Prince"));
    ASSERT_TRUE(messages.wait(5000)) << "a change the host made reaches the phone";
    EXPECT_TRUE(messages.front().front().toString().contains("changed"));

    messages.clear();
    shared.SetNowPlaying({"Purple Rain", "Prince", "Host's friend"});
    EXPECT_TRUE(messages.wait(5000)) << "so does the song that starts";

    server.Stop();
    EXPECT_TRUE(closed.count() > 0 || closed.wait(5000));
    EXPECT_NE(Fetch(phone, "GET", "/").status, 200);
}
