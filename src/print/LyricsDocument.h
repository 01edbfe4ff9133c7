#pragma once
// The printed lyrics as a small HTML page: built from the editor's lyrics and the print
// settings, written to the temporary folder, and read back for laying out.

#include <QByteArray>
#include <QString>
#include <cstdint>
#include <optional>
#include <vector>

struct LyricItem;
struct PrintSettings;

// A Win32 colour number as an HTML colour. Its hex digits read blue, green, red; a length of
// 3, 5, 7 or 8 digits passes as it stands, without "#".
QString HexColor(int32_t colour);

// The page, CR LF between its parts; element 0 gives the title and artist. Lyric text goes in
// unescaped.
QString BuildDocument(const std::vector<LyricItem>& lyrics, const PrintSettings& settings);

// The page as its file holds it: 8-bit text in the code page its META line names.
QByteArray DocumentBytes(const QString& html);

// Writes the page as its file holds it, replacing the file whole or not at all.
bool WriteDocumentFile(const QString& path, const QString& html);
// Writes the page to the temporary folder as NAME.htm, replacing an earlier one; the path, or
// nothing when the file cannot be written.
std::optional<QString> WriteDocument(const QString& name, const QString& html);
// The page of a written file, as a browser reads it.
QString ReadDocument(const QString& path);
