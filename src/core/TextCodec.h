#pragma once
// Byte text of lyrics, playlists and language tables: UTF-8 when the bytes are valid UTF-8,
// else the legacy Windows code page of the user's language (1250 Polish, 1252 otherwise).

#include <QByteArray>
#include <QString>

QString DecodeText(const QByteArray& bytes, bool polish);
// Files are written as UTF-8 without a byte order mark.
QByteArray EncodeText(const QString& text);
