#include "core/RecentFiles.h"

#include "core/SettingsStore.h"

namespace {

const QString kKey = QStringLiteral("recent files");
// A line break never stands in a path a file dialog gives.
constexpr char16_t kSeparator = u'\n';

} // namespace

void RecentFiles::Read(const SettingsStore& store)
{
    m_paths.clear();
    for (const QString& path : store.RegReadString(kKey).split(kSeparator, Qt::SkipEmptyParts))
        if (!m_paths.contains(path) && m_paths.size() < kKept)
            m_paths << path;
}

void RecentFiles::Write(SettingsStore& store) const
{
    store.RegWriteString(kKey, m_paths.join(kSeparator));
}

void RecentFiles::Add(const QString& path)
{
    if (path.isEmpty() || path.contains(kSeparator))
        return;
    m_paths.removeAll(path);
    m_paths.prepend(path);
    while (m_paths.size() > kKept)
        m_paths.removeLast();
}

void RecentFiles::Remove(const QString& path)
{
    m_paths.removeAll(path);
}
