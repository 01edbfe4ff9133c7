#pragma once
// One running program per user. A second start hands its command line to the first and ends.

#include <QLocalServer>
#include <QObject>
#include <QString>

class SingleInstance : public QObject {
    Q_OBJECT
public:
    // The per-user name of the hand-over channel.
    static QString DefaultServerName();
    static bool IsEmptyCommandLine(const QString& commandLine);
    // The path of a command line made absolute against this process's working folder, which
    // the running instance does not share.
    static QString AbsoluteCommandLine(const QString& commandLine);

    explicit SingleInstance(QString serverName = DefaultServerName());

    // True when another instance runs; it has been sent the command line, made absolute, unless
    // that is empty or "%1". Otherwise this instance starts listening and reports hand-overs by commandLineReceived.
    bool HandOffCommandLine(const QString& commandLine);

signals:
    void commandLineReceived(const QString& commandLine);

private:
    void AcceptConnection();

    QString m_serverName;
    QLocalServer m_server;
};
