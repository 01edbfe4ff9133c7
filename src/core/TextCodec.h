#pragma once
// Byte text of lyrics, playlists and language tables: UTF-8 when the bytes are valid UTF-8,
// else the legacy Windows code page of the user's language (1250 Polish, 1252 otherwise).

#include <QByteArray>
#include <QString>
#include <QStringList>

QString DecodeText(const QByteArray& bytes, bool polish);
// Text from elsewhere, in whatever encoding it came: UTF-8 (with or without a byte order mark)
// when valid, UTF-16 with a mark, else what the bytes look like (KOI8-R, Windows-1251, Shift-JIS,
// GB18030 ...), else, when that is unsure, the legacy code page of DecodeText.
QString DecodeAnyText(const QByteArray& bytes, bool polish);
// Short texts of one source (the text events of a MIDI track) read alike, by what their bytes
// together look like: each alone is too short to tell its encoding.
QStringList DecodeTexts(const QList<QByteArray>& texts, bool polish);
// Files are written as UTF-8 without a byte order mark.
QByteArray EncodeText(const QString& text);

// Text for a fixed-size legacy field: the user's code page when every character has a byte
// there, else UTF-8, which the reader above takes back first; cut to the field at a character's
// end.
QByteArray EncodeLegacyField(const QString& text, bool polish, qsizetype size);

// Central European text in its Windows code page, "?" for a character the page lacks.
QByteArray EncodeWindows1250(const QString& text);
QString DecodeWindows1250(const QByteArray& bytes);
