#pragma once
// A file's bytes for the readers (mapped, so only the pages read are loaded), and the one way
// tag and lyrics writers change a song: its managed regions are rewritten, everything between
// them is copied as it was, and the new file is checked before it replaces the old one.

#include <QByteArray>
#include <QByteArrayView>
#include <QFile>
#include <functional>
#include <optional>

class FileBytes {
public:
    explicit FileBytes(const QString& path);
    QByteArrayView View() const { return m_view; }
    bool IsOpen() const { return m_open; }

private:
    QFile m_file;
    QByteArray m_copy;
    QByteArrayView m_view;
    bool m_open = false;
};

// The bytes a save keeps: the file's managed head is everything before From, its managed tail
// everything from To on.
struct KeptRange {
    qint64 From = 0;
    qint64 To = 0;
};
// Where one kind of save finds its regions in a file; nothing when it cannot tell, and then the
// save is refused.
using RegionFinder = std::function<std::optional<KeptRange>(const QString& path)>;
// Makes the new head and tail from the old ones; false leaves the file as it is.
using RegionEdit = std::function<bool(QByteArray& head, QByteArray& tail)>;

// A managed region larger than this is refused rather than read into memory.
inline constexpr qint64 kLargestManagedRegion = qint64(16) << 20;

enum class SpliceResult { Unchanged, Written, Refused };

// Rewrites the head and tail of the file through `edit` and copies the kept bytes between them
// from the old file. The new file goes to a temporary file beside the old one, and replaces it
// only when `find` locates, in the new file, the kept bytes right after the new head, and they
// are byte for byte what they were. A file marked read-only is refused.
SpliceResult SpliceFile(const QString& path, const RegionFinder& find, const RegionEdit& edit);
