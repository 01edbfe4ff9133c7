#include "remote/RemoteServer.h"

#include "library/LibraryDatabase.h"
#include "remote/RemoteApi.h"
#include "remote/RemoteShared.h"

#include <QAbstractHttpServer>
#include <QElapsedTimer>
#include <QHttpServerRequest>
#include <QNetworkInterface>
#include <QPointer>
#include <QTcpServer>
#include <QTcpSocket>
#include <QThread>
#include <QTimer>
#include <QWebSocket>
#include <algorithm>
#include <future>
#include <vector>

namespace {

QHostAddress Plain(const QHostAddress& address)
{
    bool mapped = false;
    const quint32 v4 = address.toIPv4Address(&mapped);
    return mapped ? QHostAddress(v4) : address;
}

QByteArray MethodName(QHttpServerRequest::Method method)
{
    switch (method) {
    case QHttpServerRequest::Method::Get: return "GET";
    case QHttpServerRequest::Method::Post: return "POST";
    case QHttpServerRequest::Method::Delete: return "DELETE";
    case QHttpServerRequest::Method::Head: return "HEAD";
    case QHttpServerRequest::Method::Put: return "PUT";
    case QHttpServerRequest::Method::Options: return "OPTIONS";
    case QHttpServerRequest::Method::Patch: return "PATCH";
    default: return "OTHER";
    }
}

QByteArray ReplyBytes(const RemoteReply& reply)
{
    QByteArray bytes = "HTTP/1.1 " + QByteArray::number(reply.status) + ' ' + ReasonPhrase(reply.status) + "\r\n";
    if (!reply.contentType.isEmpty())
        bytes += "Content-Type: " + reply.contentType + "\r\n";
    bytes += "Content-Length: " + QByteArray::number(reply.body.size()) + "\r\n"
             "Cache-Control: no-store\r\n"
             "X-Content-Type-Options: nosniff\r\n"
             "X-Frame-Options: DENY\r\n"
             "Referrer-Policy: no-referrer\r\n"
             "Content-Security-Policy: default-src 'none'; script-src 'self'; style-src 'self'; "
             "connect-src 'self'; img-src 'self' data:; base-uri 'none'; form-action 'none'; frame-ancestors 'none'\r\n";
    for (const auto& [name, value] : reply.headers)
        bytes += name + ": " + value + "\r\n";
    if (reply.close)
        bytes += "Connection: close\r\n";
    return bytes + "\r\n" + reply.body;
}

void Send(QTcpSocket* socket, const RemoteReply& reply)
{
    socket->write(ReplyBytes(reply));
    if (reply.close)
        socket->disconnectFromHost();
}

// Refuses connections from beyond the local network and more than the limits allow, and
// requests bigger than a guest's page ever sends, before the HTTP parser keeps them.
class GuardedTcpServer final : public QTcpServer {
public:
    explicit GuardedTcpServer(QObject* parent) : QTcpServer(parent)
    {
        m_sweep.setInterval(RemoteServer::kUnfinishedRequestMs / 2);
        connect(&m_sweep, &QTimer::timeout, this, [this] { DropUnfinished(); });
        m_sweep.start();
    }

protected:
    void incomingConnection(qintptr handle) override
    {
        auto* socket = new QTcpSocket(this);
        if (!socket->setSocketDescriptor(handle)) {
            delete socket;
            return;
        }
        const QString address = Plain(socket->peerAddress()).toString();
        if (!OnLocalNetwork(socket->peerAddress())) {
            socket->abort();
            socket->deleteLater();
            return;
        }
        std::erase_if(m_sockets, [](const Watched& w) { return w.socket.isNull(); });
        const auto fromAddress = std::count_if(m_sockets.begin(), m_sockets.end(),
                                               [&](const Watched& w) { return w.address == address; });
        // The host's own machine is not one phone among many.
        const bool oneOfMany = !Plain(socket->peerAddress()).isLoopback();
        if (m_sockets.size() >= size_t(RemoteServer::kMostConnections) ||
            (oneOfMany && fromAddress >= RemoteServer::kMostConnectionsPerAddress)) {
            RemoteReply full = RemoteError(503, "WebFull");
            full.close = true;
            Send(socket, full);
            connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
            return;
        }
        // Connected before the HTTP parser's own handler, so it sees a request before the parser.
        connect(socket, &QTcpSocket::readyRead, this, [socket] { RefuseOversized(socket); });
        m_sockets.push_back({socket, address, 0});
        addPendingConnection(socket);
    }

private:
    // The parser keeps an unfinished request in the socket's buffer, so what waits there is
    // the request so far.
    static void RefuseOversized(QTcpSocket* socket)
    {
        const qint64 waiting = socket->bytesAvailable();
        if (waiting > 4 * RemoteServer::kMostPendingBytes) {
            socket->abort();
        } else if (waiting > RemoteServer::kMostPendingBytes && socket->state() == QAbstractSocket::ConnectedState) {
            RemoteReply reply = RemoteError(413, "WebTooLarge");
            reply.close = true;
            Send(socket, reply);
        }
    }

    void DropUnfinished()
    {
        std::erase_if(m_sockets, [](const Watched& w) { return w.socket.isNull(); });
        for (Watched& watched : m_sockets) {
            const bool waiting = watched.socket->bytesAvailable() > 0;
            watched.sweepsWaiting = waiting ? watched.sweepsWaiting + 1 : 0;
            if (watched.sweepsWaiting > 2)
                watched.socket->abort();
        }
    }

    // Every connection, the live channel's too: the parser takes every connection of a socket
    // away when it hands it to the WebSocket server, so they are counted here, not by signals.
    struct Watched {
        QPointer<QTcpSocket> socket;
        QString address;
        int sweepsWaiting = 0;
    };
    QTimer m_sweep;
    std::vector<Watched> m_sockets;
};

class GuestHttpServer final : public QAbstractHttpServer {
public:
    explicit GuestHttpServer(RemoteApi& api) : m_api(api)
    {
        m_clock.start();
        connect(this, &QAbstractHttpServer::newWebSocketConnection, this, [this] { TakeLiveSockets(); });
        m_live.setInterval(RemoteServer::kLiveIntervalMs);
        connect(&m_live, &QTimer::timeout, this, [this] { TellChanges(); });
        m_live.start();
    }

protected:
    bool handleRequest(const QHttpServerRequest& request, QTcpSocket* socket) override
    {
        RemoteCall call;
        call.method = MethodName(request.method());
        call.path = request.url().path(QUrl::FullyDecoded);
        call.query = request.query();
        for (const auto& [name, value] : request.headers())
            call.headers.insert(name.toLower(), value);
        call.body = request.body();
        // The live channel's handshake is answered by the WebSocket server.
        if (call.headers.value("upgrade").compare("websocket", Qt::CaseInsensitive) == 0)
            return true;
        call.address = Plain(socket->peerAddress()).toString();
        call.now = m_clock.elapsed();
        const RemoteReply reply = m_api.Handle(call);
        if (reply.delayMs > 0)
            QTimer::singleShot(reply.delayMs, socket, [socket, reply] { Send(socket, reply); });
        else
            Send(socket, reply);
        return true;
    }

    void missingHandler(const QHttpServerRequest&, QTcpSocket* socket) override
    {
        Send(socket, RemoteError(404, "WebNotFound"));
    }

private:
    void TakeLiveSockets()
    {
        while (hasPendingWebSocketConnections()) {
            std::unique_ptr<QWebSocket> socket = nextPendingWebSocketConnection();
            const QNetworkRequest handshake = socket->request();
            if (socket->requestUrl().path() != u"/live" ||
                !m_api.Admits(handshake.rawHeader("Cookie"), m_clock.elapsed()) ||
                int(m_sockets.size()) >= RemoteServer::kMostConnections) {
                socket->close(QWebSocketProtocol::CloseCodePolicyViolated);
                socket.release()->deleteLater();
                continue;
            }
            socket->setMaxAllowedIncomingMessageSize(1024);
            socket->setMaxAllowedIncomingFrameSize(1024);
            QWebSocket* live = socket.get();
            connect(live, &QWebSocket::disconnected, this, [this, live] {
                std::erase_if(m_sockets, [live](const auto& s) { return s.get() == live; });
            });
            live->sendTextMessage(QStringLiteral(R"({"type":"changed"})"));
            m_sockets.push_back(QSharedPointer<QWebSocket>(socket.release(), &QObject::deleteLater));
        }
    }

    void TellChanges()
    {
        // Nobody listens: the library is not read. A guest who connects is told at once anyway.
        if (m_sockets.empty())
            return;
        const QByteArray state = m_api.LiveState();
        if (state == m_lastState)
            return;
        m_lastState = state;
        for (const auto& socket : m_sockets)
            socket->sendTextMessage(QStringLiteral(R"({"type":"changed"})"));
    }

    RemoteApi& m_api;
    QElapsedTimer m_clock;
    QTimer m_live;
    QByteArray m_lastState;
    std::vector<QSharedPointer<QWebSocket>> m_sockets;
};

class ServerThread final : public QThread {
public:
    ServerThread(QString databasePath, RemoteShared& shared, QList<QHostAddress> addresses, quint16 port)
        : m_databasePath(std::move(databasePath)), m_shared(shared), m_addresses(std::move(addresses)), m_port(port)
    {
    }

    std::future<RemoteListening> Listening() { return m_listening.get_future(); }

protected:
    void run() override
    {
        RemoteListening listening;
        LibraryDatabase database(m_databasePath);
        if (!database.Open().Usable()) {
            listening.error = QStringLiteral("the song library cannot be opened");
            m_listening.set_value(listening);
            return;
        }
        RemoteApi api(database, m_shared);
        GuestHttpServer http(api);
        quint16 port = m_port;
        for (const QHostAddress& address : m_addresses) {
            auto* tcp = new GuardedTcpServer(&http);
            if (!tcp->listen(address, port)) {
                listening.error = tcp->errorString();
                delete tcp;
                continue;
            }
            port = tcp->serverPort();
            listening.addresses.append(address);
            http.bind(tcp);
        }
        if (!listening.addresses.isEmpty()) {
            listening.port = port;
            listening.error.clear();
        }
        const bool serving = listening.Listening();
        m_listening.set_value(listening);
        if (serving)
            exec();
    }

private:
    QString m_databasePath;
    RemoteShared& m_shared;
    QList<QHostAddress> m_addresses;
    quint16 m_port;
    std::promise<RemoteListening> m_listening;
};

bool InRange(const QHostAddress& address, const char* subnet)
{
    return address.isInSubnet(QHostAddress::parseSubnet(QLatin1String(subnet)));
}

} // namespace

bool OnLocalNetwork(const QHostAddress& address)
{
    const QHostAddress plain = Plain(address);
    if (plain.isLoopback())
        return true;
    for (const char* subnet : {"10.0.0.0/8", "172.16.0.0/12", "192.168.0.0/16", "169.254.0.0/16", "fe80::/10", "fc00::/7"}) {
        if (InRange(plain, subnet))
            return true;
    }
    return false;
}

QList<QHostAddress> LocalNetworkAddresses()
{
    QList<QHostAddress> addresses{QHostAddress(QHostAddress::LocalHost)};
    for (const QNetworkInterface& face : QNetworkInterface::allInterfaces()) {
        if (!face.flags().testFlag(QNetworkInterface::IsUp) || face.flags().testFlag(QNetworkInterface::IsLoopBack))
            continue;
        for (const QNetworkAddressEntry& entry : face.addressEntries()) {
            const QHostAddress ip = entry.ip();
            if (ip.protocol() == QAbstractSocket::IPv4Protocol && OnLocalNetwork(ip))
                addresses.append(ip);
        }
    }
    return addresses;
}

QString RemoteAddressText(const QList<QHostAddress>& addresses, quint16 port)
{
    QHostAddress shown = addresses.isEmpty() ? QHostAddress(QHostAddress::LocalHost) : addresses.front();
    for (const QHostAddress& address : addresses) {
        if (!address.isLoopback()) {
            shown = address;
            break;
        }
    }
    return QStringLiteral("http://%1:%2/").arg(shown.toString()).arg(port);
}

RemoteServer::RemoteServer(QString databasePath, RemoteShared& shared)
    : m_databasePath(std::move(databasePath)), m_shared(shared)
{
}

RemoteServer::~RemoteServer()
{
    Stop();
}

RemoteListening RemoteServer::Start(const QList<QHostAddress>& addresses, quint16 port)
{
    Stop();
    auto thread = std::make_unique<ServerThread>(m_databasePath, m_shared, addresses, port);
    std::future<RemoteListening> listening = thread->Listening();
    thread->start();
    m_listening = listening.get();
    if (m_listening.Listening())
        m_thread = std::move(thread);
    else
        thread->wait();
    return m_listening;
}

void RemoteServer::Stop()
{
    if (!m_thread)
        return;
    m_thread->quit();
    m_thread->wait();
    m_thread.reset();
    m_listening = {};
}

bool RemoteServer::Running() const
{
    return m_thread != nullptr;
}
