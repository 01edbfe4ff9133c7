#include "app/SingleInstance.h"

#include <QCryptographicHash>
#include <QDataStream>
#include <QDir>
#include <QFileInfo>
#include <QLocalSocket>

namespace {
constexpr int kTimeoutMs = 2000;
}

QString SingleInstance::DefaultServerName()
{
    // The home folder tells users apart on a shared machine without reaching for their name.
    const QByteArray home = QDir::homePath().toUtf8();
    return QStringLiteral("songweaver-") +
           QString::fromLatin1(QCryptographicHash::hash(home, QCryptographicHash::Sha1).toHex().left(12));
}

bool SingleInstance::IsEmptyCommandLine(const QString& commandLine)
{
    const QString trimmed = commandLine.trimmed();
    return trimmed.isEmpty() || trimmed == QLatin1String("%1");
}

QString SingleInstance::AbsoluteCommandLine(const QString& commandLine)
{
    if (IsEmptyCommandLine(commandLine))
        return commandLine;
    return QFileInfo(commandLine.trimmed()).absoluteFilePath();
}

SingleInstance::SingleInstance(QString serverName) : m_serverName(std::move(serverName))
{
    connect(&m_server, &QLocalServer::newConnection, this, &SingleInstance::AcceptConnection);
}

bool SingleInstance::HandOffCommandLine(const QString& commandLine)
{
    QLocalSocket first;
    first.connectToServer(m_serverName);
    if (first.waitForConnected(kTimeoutMs)) {
        if (!IsEmptyCommandLine(commandLine)) {
            QDataStream out(&first);
            out << AbsoluteCommandLine(commandLine);
            first.waitForBytesWritten(kTimeoutMs);
        }
        first.disconnectFromServer();
        return true;
    }

    // Nobody answers: a name left behind by a crashed run is taken over.
    QLocalServer::removeServer(m_serverName);
    m_server.setSocketOptions(QLocalServer::UserAccessOption);
    m_server.listen(m_serverName);
    return false;
}

void SingleInstance::AcceptConnection()
{
    while (QLocalSocket* socket = m_server.nextPendingConnection()) {
        connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
        connect(socket, &QLocalSocket::readyRead, this, [this, socket] {
            QDataStream in(socket);
            in.startTransaction();
            QString commandLine;
            in >> commandLine;
            if (!in.commitTransaction())
                return;
            if (!IsEmptyCommandLine(commandLine))
                emit commandLineReceived(commandLine);
        });
    }
}
