#pragma once
// The editor's file commands as rules: the size limits of what it opens, the names it saves
// under, text files read and written whole, and the version page handed to the browser.

#include "lyrics/LyricsData.h"

#include <QString>

// Bytes; a file larger than its limit is refused with the message of 600 kB, whatever the limit.
constexpr qint64 kLyricsFileLimit = 300000;
constexpr qint64 kTextFileLimit = 500000;
bool FileTooLarge(const QString& path, qint64 limit);

// A chosen name without an extension gets `extension` ("txt", "lrs"); one with an extension
// keeps it.
QString NameWithExtension(const QString& chosen, const QString& extension);
// The text file the editor offers for its lyrics' file: the same name ending in ".txt".
QString DefaultTextName(const QString& editorFile);

// The song's artist and title, as its tags were read, where the header has none.
void TakeTitleFromTags(LyricItem& header, const SongTags& tags);

// A text file's contents as the editor shows them, decoded as lyrics files are.
QString ReadTextFile(const QString& path, bool polish);
// The text and one CR LF, replacing the file whole or not at all.
bool WriteTextFile(const QString& path, const QString& text);

// The page that posts the program's version to the vendor's version check and submits itself.
QString VersionCheckPage(const QString& address, const QString& version);
