#pragma once
// File names as the system holds them. Qt's file names are Unicode: a name whose bytes are not
// UTF-8 cannot be listed or opened through Qt, so the library walks folders, stores paths and
// reaches such files by their raw bytes.

#include <QByteArray>
#include <QString>

// The bytes of a Qt path.
QByteArray RawPath(const QString& path);
// The path to show and to search, bytes that are not UTF-8 shown as replacement characters.
QString ShownPath(const QByteArray& raw);
// True when Qt can open the file by the path it would show.
bool IsUnicodePath(const QByteArray& raw);
// A path Qt opens for the file: its own when it is UTF-8, else a symbolic link to it with a
// Unicode name in `linkFolder`, made once; empty when no link can be made.
QString OpenablePath(const QByteArray& raw, const QString& linkFolder);
// The suffix in lower case, "" without one.
QString RawSuffix(const QByteArray& raw);
// True when `raw` is `folder` itself or a file below it.
bool IsUnderFolder(const QByteArray& raw, const QByteArray& folder);
