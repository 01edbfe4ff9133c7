#pragma once
// The lyrics block: "#Songweaver", "#KEY=value" header lines, "[time]text" syllable lines,
// "#End Songweaver". A ".lrs" file holds it alone; an audio file may carry it at its end.

#include "lyrics/TagLyrics.h"

#include <QFile>
#include <QFont>
#include <QLocale>
#include <functional>
#include <optional>

// The offset and length of the block cut out of a file's bytes: from the last "#Songweaver"
// to the last CR LF "#End Songweaver", two bytes short of the marker's end.
struct BlockSpan {
    qsizetype Begin = 0;
    qsizetype Length = 0;
};
std::optional<BlockSpan> FindLyricsBlock(const QByteArray& bytes);
// The text of that block, decoded as lyrics files are; nothing when the bytes hold no block.
std::optional<QString> LyricsBlockText(const QByteArray& bytes, bool polish);

// A block longer than this is taken for damage rather than read into memory.
inline constexpr qsizetype kLargestLyricsBlock = qsizetype(16) << 20;
// The same span in a song file, searched from its end in bounded pieces.
std::optional<BlockSpan> FindLyricsBlockInFile(QFile& file);
enum class BlockRead { None, Read, TooLarge };
// The bytes of the song file's block.
BlockRead ReadLyricsBlock(const QString& path, QByteArray& block);

// Header lines 1 to 20 into a header and picture list; picture paths joined to the base folder.
void ParseLyricsHeader(const QString& text, const QString& baseFolder, LyricItem& header,
                       std::vector<PictureItem>& pictures);

// The block into PlayLyrics and PlayPictures; false on a piece without "]", and then no
// syllable of the text reaches PlayLyrics.
bool ParseLyricsText(LyricsState& lyrics, const QString& text, const QString& baseFolder,
                     const QFont& font, const LyricsRefit& refit = {});

extern const char* const kInvalidLyricsMessage;  // "Lyrics format doesn't seem to be valid."

// The block into EditLyrics and EditPictures, header paths as they stand; a "#LAYOUT=" line or
// a piece without "]" fails with the message naming its line, and changes nothing.
bool ParseEditorLyrics(LyricsState& lyrics, const QString& text,
                       const std::function<void(const QString&)>& critical);

// The import's reader of a block into EditLyrics and EditPictures: every header key of lines 1
// to 20, syllables only from the line after that window; false on a piece without "]".
bool getMyLyrics(LyricsState& lyrics, const QString& text);

// The whole block as the file writer writes it, CR LF line ends, times with the decimal mark.
QString BuildLyricsBlock(const std::vector<LyricItem>& lyrics, const std::vector<PictureItem>& pictures,
                         const QString& decimalMark = QLocale().decimalPoint());

// Writes the block as UTF-8 without a byte order mark, replacing the file whole or not at all.
bool SaveLrsFile(const QString& path, const std::vector<LyricItem>& lyrics,
                 const std::vector<PictureItem>& pictures);
