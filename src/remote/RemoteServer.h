#pragma once
// The guests' web server: on a thread of its own, so nothing a guest does can hold up the
// interface or the sound; on the machine's local network addresses only. Stopping it closes
// every connection.

#include <QHostAddress>
#include <QList>
#include <QString>
#include <memory>

class RemoteShared;
class QThread;

// The addresses of this machine a phone on the same network can reach, loopback first.
QList<QHostAddress> LocalNetworkAddresses();
// Loopback, private and link-local addresses: the only peers the server talks to.
bool OnLocalNetwork(const QHostAddress& address);
// The page's address as a guest types it: the first address that is not loopback, else loopback.
QString RemoteAddressText(const QList<QHostAddress>& addresses, quint16 port);

struct RemoteListening {
    QList<QHostAddress> addresses;
    quint16 port = 0;
    QString error;  // why it does not listen, empty when it does
    bool Listening() const { return port != 0; }
};

class RemoteServer {
public:
    // The most connections at once, and from one address.
    static constexpr int kMostConnections = 400;
    static constexpr int kMostConnectionsPerAddress = 32;
    // Bytes of a request not yet answered; more is refused with 413.
    static constexpr qint64 kMostPendingBytes = 16 * 1024;
    // A request left unfinished this long is dropped.
    static constexpr int kUnfinishedRequestMs = 10'000;
    // How often the live channel looks for changes of the queue and the song.
    static constexpr int kLiveIntervalMs = 200;

    RemoteServer(QString databasePath, RemoteShared& shared);
    ~RemoteServer();
    RemoteServer(const RemoteServer&) = delete;
    RemoteServer& operator=(const RemoteServer&) = delete;

    // Listens on the addresses at the port (0: any free one); what it listens on, or why not.
    RemoteListening Start(const QList<QHostAddress>& addresses, quint16 port);
    void Stop();
    bool Running() const;
    const RemoteListening& Listening() const { return m_listening; }

private:
    QString m_databasePath;
    RemoteShared& m_shared;
    std::unique_ptr<QThread> m_thread;
    RemoteListening m_listening;
};
