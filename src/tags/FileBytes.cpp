#include "tags/FileBytes.h"

#include "core/FilePieces.h"

#include <QFileInfo>
#include <QTemporaryFile>
#include <cstdio>
#include <unistd.h>

FileBytes::FileBytes(const QString& path) : m_file(path)
{
    if (!m_file.open(QIODevice::ReadOnly))
        return;
    m_open = true;
    if (m_file.size() == 0)
        return;
    if (uchar* mapped = m_file.map(0, m_file.size())) {
        m_view = QByteArrayView(reinterpret_cast<const char*>(mapped), m_file.size());
        return;
    }
    m_copy = m_file.readAll();
    m_view = m_copy;
}

namespace {

// A file marked read-only keeps its bytes, though its folder would allow a rename and the user
// may be one whom no permission stops.
bool MarkedWritable(const QString& path)
{
    const QFileInfo info(path);
    const auto anyWrite = QFileDevice::WriteOwner | QFileDevice::WriteGroup | QFileDevice::WriteOther;
    return info.isWritable() && (info.permissions() & anyWrite);
}

bool WriteSplice(QFile& old, const KeptRange& kept, const QByteArray& head, const QByteArray& tail,
                 QFileDevice& target)
{
    return target.write(head) == head.size() && CopyFileBytes(old, kept.From, kept.To - kept.From, target)
           && target.write(tail) == tail.size() && target.flush() && ::fsync(target.handle()) == 0;
}

// The kept bytes stand right after the new head, outside every region the save manages, and
// read back as they were.
bool KeptBytesSurvive(QFile& old, const KeptRange& kept, const QString& written, qint64 headSize,
                      const RegionFinder& find)
{
    const qint64 length = kept.To - kept.From;
    const auto found = find(written);
    if (!found || found->From != headSize || found->To < headSize + length)
        return false;
    QFile copy(written);
    return copy.open(QIODevice::ReadOnly) && SameFileBytes(old, kept.From, copy, headSize, length);
}

} // namespace

SpliceResult SpliceFile(const QString& link, const RegionFinder& find, const RegionEdit& edit)
{
    // A link stays a link: the file it points to is the one replaced.
    const QString path = QFileInfo(link).isSymLink() ? QFileInfo(link).canonicalFilePath() : link;
    if (path.isEmpty() || !MarkedWritable(path))
        return SpliceResult::Refused;
    QFile old(path);
    const auto kept = find(path);
    if (!kept || !old.open(QIODevice::ReadOnly) || kept->From < 0 || kept->From > kept->To || kept->To > old.size()
        || kept->From > kLargestManagedRegion || old.size() - kept->To > kLargestManagedRegion)
        return SpliceResult::Refused;
    auto head = ReadFileRange(old, 0, kept->From);
    auto tail = ReadFileRange(old, kept->To, old.size() - kept->To);
    if (!head || !tail)
        return SpliceResult::Refused;
    const QByteArray oldHead = *head;
    const QByteArray oldTail = *tail;
    if (!edit(*head, *tail))
        return SpliceResult::Refused;
    if (*head == oldHead && *tail == oldTail)
        return SpliceResult::Unchanged;

    const QFileInfo info(path);
    QTemporaryFile temp(info.absolutePath() + u'/' + info.fileName() + QStringLiteral(".XXXXXX"));
    if (!temp.open() || !WriteSplice(old, *kept, *head, *tail, temp)
        || !KeptBytesSurvive(old, *kept, temp.fileName(), head->size(), find))
        return SpliceResult::Refused;
    temp.setPermissions(info.permissions());
    if (std::rename(QFile::encodeName(temp.fileName()).constData(), QFile::encodeName(path).constData()) != 0)
        return SpliceResult::Refused;
    temp.setAutoRemove(false);
    return SpliceResult::Written;
}
