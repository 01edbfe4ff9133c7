#pragma once
// Scans on a worker thread for the program, and the music folders watched while it runs: a
// folder that changes is scanned again a moment after the last change, so a song copied in
// shows up and one taken away goes.

#include "library/LibraryScan.h"

#include <QFileSystemWatcher>
#include <QObject>
#include <QTimer>
#include <thread>

class LibraryScanner final : public QObject {
    Q_OBJECT
public:
    // At most this many folders are watched: the system's watches are few and shared.
    static constexpr int kWatchedFolders = 4000;
    // How often the interface thread looks at the worker's progress.
    static constexpr int kPollMs = 50;

    LibraryScanner(QString databasePath, bool polish, QString linkFolder, QObject* parent = nullptr);
    ~LibraryScanner() override;

    // Scans the folders on the worker; folders asked for during a scan are scanned after it.
    void Scan(const std::vector<QByteArray>& folders);
    // Stops the scan that runs and forgets the folders waiting.
    void Cancel();
    bool Busy() const { return m_running; }
    // How long a changed folder settles before it is scanned again.
    void SetSettleTime(int milliseconds) { m_settle.setInterval(milliseconds); }
    QStringList WatchedFolders() const { return m_watcher.directories(); }

signals:
    void progress(int done, int total);
    void finished(const ScanCounts& counts);

private:
    void StartWaiting();
    void Poll();
    void Done(const ScanCounts& counts);
    void Watch(const std::vector<QByteArray>& folders);

    QString m_databasePath;
    bool m_polish;
    QString m_linkFolder;
    std::thread m_worker;
    std::atomic<bool> m_cancel{false};
    std::atomic<int> m_done{0};
    std::atomic<int> m_total{0};
    std::atomic<bool> m_finished{false};
    ScanCounts m_result;  // the worker's, read once m_finished is set
    int m_shownDone = -1;
    QTimer m_poll;
    bool m_running = false;
    std::vector<QByteArray> m_waiting;
    QFileSystemWatcher m_watcher;
    QTimer m_settle;
    std::vector<QByteArray> m_changed;
};
