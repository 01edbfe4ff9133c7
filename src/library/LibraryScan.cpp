#include "library/LibraryScan.h"

#include "library/LibraryDatabase.h"
#include "library/LibraryPaths.h"
#include "library/SongProbe.h"

#include <QElapsedTimer>
#include <chrono>
#include <filesystem>

namespace {

namespace fs = std::filesystem;

qint64 SecondsOf(fs::file_time_type time)
{
    const auto system = std::chrono::file_clock::to_sys(time);
    return std::chrono::duration_cast<std::chrono::seconds>(system.time_since_epoch()).count();
}

bool IsUnderAny(const QByteArray& path, const std::vector<QByteArray>& folders)
{
    for (const QByteArray& folder : folders) {
        if (IsUnderFolder(path, folder))
            return true;
    }
    return false;
}

// Same size, same time, same suffix: the file was moved or renamed.
std::optional<QByteArray> MovedTo(const QByteArray& gone, const FileStamp& stamp, const std::vector<QByteArray>& added,
                                  const QHash<QByteArray, FileStamp>& files)
{
    for (const QByteArray& path : added) {
        if (files.value(path) == stamp && RawSuffix(path) == RawSuffix(gone))
            return path;
    }
    return std::nullopt;
}

} // namespace

FolderWalk WalkFolders(const std::vector<QByteArray>& folders, const std::atomic<bool>& cancel)
{
    FolderWalk walk;
    for (const QByteArray& folder : folders) {
        std::error_code error;
        const fs::path root(folder.toStdString());
        if (!fs::is_directory(root, error))
            continue;
        walk.folders.push_back(folder);
        fs::recursive_directory_iterator it(root, fs::directory_options::skip_permission_denied, error);
        for (; !error && it != fs::recursive_directory_iterator(); it.increment(error)) {
            if (cancel)
                return walk;
            const fs::directory_entry& entry = *it;
            const std::string& native = entry.path().native();
            const QByteArray path(native.data(), qsizetype(native.size()));
            std::error_code statError;
            if (entry.is_directory(statError)) {
                walk.folders.push_back(path);
                continue;
            }
            if (!entry.is_regular_file(statError) || !IsLibrarySuffix(RawSuffix(path)))
                continue;
            const auto size = entry.file_size(statError);
            const auto time = entry.last_write_time(statError);
            if (!statError)
                walk.files.insert(path, FileStamp{qint64(size), SecondsOf(time)});
        }
        if (!error)
            walk.whole.push_back(folder);
    }
    return walk;
}

LibraryScan::LibraryScan(QString databasePath, std::vector<QByteArray> folders, bool polish, QString linkFolder)
    : m_databasePath(std::move(databasePath)),
      m_folders(std::move(folders)),
      m_polish(polish),
      m_linkFolder(std::move(linkFolder))
{
}

ScanCounts LibraryScan::Run(const std::atomic<bool>& cancel)
{
    QElapsedTimer clock;
    clock.start();
    ScanCounts counts;
    LibraryDatabase database(m_databasePath);
    if (!database.Open().Usable()) {
        counts.failed = true;
        return counts;
    }
    QSqlDatabase& db = database.Db();
    const FolderWalk walk = WalkFolders(m_folders, cancel);
    counts.folders = walk.folders;
    counts.found = int(walk.files.size());
    const QHash<QByteArray, KnownFile> known = KnownFiles(db);

    std::vector<QByteArray> toProbe, added;
    for (auto it = walk.files.cbegin(); it != walk.files.cend(); ++it) {
        const auto was = known.constFind(it.key());
        if (was == known.cend())
            added.push_back(it.key());
        if (was == known.cend() || was->stamp != it.value())
            toProbe.push_back(it.key());
        else
            ++counts.unchanged;
    }
    std::sort(toProbe.begin(), toProbe.end());

    size_t next = 0;
    while (next < toProbe.size() && !cancel) {
        const size_t end = std::min(toProbe.size(), next + kBatch);
        ScanCounts batch;
        const bool written = database.Write([&] {
            for (size_t i = next; i < end; ++i) {
                const QByteArray& path = toProbe[i];
                LibrarySong song;
                song.path = path;
                song.stamp = walk.files.value(path);
                const auto probed = ProbeLibrarySong(song, OpenablePath(path, m_linkFolder), m_polish);
                bool stored = false;
                if (const auto* found = std::get_if<LibrarySong>(&probed)) {
                    stored = StoreSong(db, *found);
                    ++(known.contains(path) ? batch.updated : batch.added);
                } else {
                    stored = StoreUnreadable(db, path, song.stamp, std::get<UnreadableSong>(probed).reason);
                    ++batch.unreadable;
                }
                if (!stored)
                    return false;
            }
            return true;
        });
        if (!written) {
            counts.failed = true;
            break;
        }
        counts.added += batch.added;
        counts.updated += batch.updated;
        counts.unreadable += batch.unreadable;
        next = end;
        if (Progress)
            Progress(int(next), int(toProbe.size()));
    }

    // Forgetting waits for a whole scan: a cancelled walk has not seen every file.
    if (!cancel && !counts.failed) {
        const bool written = database.Write([&] {
            for (auto it = known.cbegin(); it != known.cend(); ++it) {
                if (walk.files.contains(it.key()) || !IsUnderAny(it.key(), walk.whole))
                    continue;
                if (const auto moved = MovedTo(it.key(), it->stamp, added, walk.files); moved && !it->unreadable) {
                    if (!CarryOver(db, it.key(), *moved))
                        return false;
                }
                if (!ForgetFile(db, it.key()))
                    return false;
                ++counts.removed;
            }
            return true;
        });
        counts.failed = !written;
    }
    counts.cancelled = cancel;
    counts.seconds = clock.nsecsElapsed() / 1e9;
    return counts;
}
