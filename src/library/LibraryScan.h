#pragma once
// A scan of music folders into the library: every song file found, the new and changed ones
// probed, the vanished ones forgotten, written in batches so a scan stopped at any moment keeps
// all it wrote. Runs on the thread that calls Run, with a connection of its own.

#include "library/LibrarySongs.h"

#include <QStringList>
#include <atomic>
#include <functional>

struct ScanCounts {
    int found = 0;      // song files in the folders
    int added = 0;
    int updated = 0;
    int unchanged = 0;
    int removed = 0;
    int unreadable = 0;  // of those probed this time
    bool cancelled = false;
    bool failed = false;  // the database could not be written
    double seconds = 0;
    std::vector<QByteArray> folders;  // every folder walked, for watching
};

class LibraryScan {
public:
    // Files written in one transaction.
    static constexpr int kBatch = 200;

    // `linkFolder` holds links to files whose names are not UTF-8 (see OpenablePath).
    LibraryScan(QString databasePath, std::vector<QByteArray> folders, bool polish, QString linkFolder);

    // Files probed so far and files to probe; called on the scanning thread.
    std::function<void(int done, int total)> Progress;

    ScanCounts Run(const std::atomic<bool>& cancel);

private:
    QString m_databasePath;
    std::vector<QByteArray> m_folders;
    bool m_polish;
    QString m_linkFolder;
};

// The song files under the folders with their sizes and times, and the folders walked.
struct FolderWalk {
    QHash<QByteArray, FileStamp> files;
    std::vector<QByteArray> folders;
    // The folders asked for that were there and walked to the end: only under these may a file
    // missing from the walk be forgotten (an unplugged drive forgets nothing).
    std::vector<QByteArray> whole;
};
FolderWalk WalkFolders(const std::vector<QByteArray>& folders, const std::atomic<bool>& cancel);
