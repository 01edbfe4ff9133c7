#include "tags/FileBytes.h"

#include <QSaveFile>

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

bool ReplaceFileContent(const QString& path, const QByteArray& bytes)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    if (file.write(bytes) != bytes.size()) {
        file.cancelWriting();
        return false;
    }
    return file.commit();
}
