#include "library/LibraryScanner.h"

#include "library/LibraryPaths.h"

#include <QFile>

namespace {

void AddOnce(std::vector<QByteArray>& list, const std::vector<QByteArray>& more)
{
    for (const QByteArray& folder : more) {
        if (std::find(list.begin(), list.end(), folder) == list.end())
            list.push_back(folder);
    }
}

} // namespace

LibraryScanner::LibraryScanner(QString databasePath, bool polish, QString linkFolder, QObject* parent)
    : QObject(parent), m_databasePath(std::move(databasePath)), m_polish(polish), m_linkFolder(std::move(linkFolder))
{
    m_settle.setSingleShot(true);
    m_settle.setInterval(2000);
    connect(&m_watcher, &QFileSystemWatcher::directoryChanged, this, [this](const QString& folder) {
        AddOnce(m_changed, {QFile::encodeName(folder)});
        m_settle.start();
    });
    // The worker's progress and end are polled: Qt's queued calls synchronise inside Qt, where
    // ThreadSanitizer cannot follow them.
    m_poll.setInterval(kPollMs);
    connect(&m_poll, &QTimer::timeout, this, &LibraryScanner::Poll);
    connect(&m_settle, &QTimer::timeout, this, [this] {
        Scan(m_changed);
        m_changed.clear();
    });
}

LibraryScanner::~LibraryScanner()
{
    m_cancel = true;
    if (m_worker.joinable())
        m_worker.join();
}

void LibraryScanner::Scan(const std::vector<QByteArray>& folders)
{
    AddOnce(m_waiting, folders);
    if (!m_running)
        StartWaiting();
}

void LibraryScanner::Cancel()
{
    m_waiting.clear();
    m_changed.clear();
    m_settle.stop();
    m_cancel = true;
}

void LibraryScanner::StartWaiting()
{
    if (m_waiting.empty())
        return;
    if (m_worker.joinable())
        m_worker.join();
    m_running = true;
    m_cancel = false;
    m_finished = false;
    m_done = 0;
    m_total = 0;
    m_shownDone = -1;
    auto scan = std::make_shared<LibraryScan>(m_databasePath, std::move(m_waiting), m_polish, m_linkFolder);
    m_waiting.clear();
    scan->Progress = [this](int done, int total) {
        m_total = total;
        m_done = done;
    };
    m_worker = std::thread([this, scan] {
        m_result = scan->Run(m_cancel);
        m_finished = true;
    });
    m_poll.start();
}

void LibraryScanner::Poll()
{
    if (const int done = m_done; done != m_shownDone) {
        m_shownDone = done;
        emit progress(done, m_total);
    }
    if (!m_finished)
        return;
    m_poll.stop();
    m_worker.join();
    Done(m_result);
}

void LibraryScanner::Done(const ScanCounts& counts)
{
    m_running = false;
    Watch(counts.folders);
    emit finished(counts);
    StartWaiting();
}

void LibraryScanner::Watch(const std::vector<QByteArray>& folders)
{
    const QStringList watched = m_watcher.directories();
    const int room = kWatchedFolders - int(watched.size());
    QStringList add;
    for (const QByteArray& folder : folders) {
        if (add.size() >= room)
            break;
        // A folder Qt cannot name is scanned with its parent.
        const QString name = QFile::decodeName(folder);
        if (IsUnicodePath(folder) && !watched.contains(name))
            add << name;
    }
    if (!add.isEmpty())
        m_watcher.addPaths(add);
}
