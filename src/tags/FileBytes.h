#pragma once
// A file's bytes for the readers (mapped when the system allows it, else read whole), and the
// one way tag and lyrics writers replace a file: whole or not at all.

#include <QByteArray>
#include <QByteArrayView>
#include <QFile>

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

// Writes the bytes to a temporary file beside the target and renames it over the target, so a
// failure leaves the old file as it was.
bool ReplaceFileContent(const QString& path, const QByteArray& bytes);
