#pragma once
// The songs the user opened by name (the Open dialog, the command line, this list itself), most
// recent first, kept between runs.

#include <QStringList>

class SettingsStore;

class RecentFiles {
public:
    static constexpr int kKept = 10;

    void Read(const SettingsStore& store);
    void Write(SettingsStore& store) const;

    // To the top; a path already listed moves up instead of showing twice.
    void Add(const QString& path);
    void Remove(const QString& path);
    void Clear() { m_paths.clear(); }
    const QStringList& Paths() const { return m_paths; }

private:
    QStringList m_paths;
};
