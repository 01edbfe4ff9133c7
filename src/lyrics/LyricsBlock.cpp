#include "lyrics/LyricsBlock.h"

#include "lyrics/LyricTime.h"
#include "core/FilePieces.h"
#include "core/Numbers.h"
#include "core/TextCodec.h"

#include <QRegularExpression>
#include <QSaveFile>
#include <array>

const char* const kInvalidLyricsMessage = "Lyrics format doesn't seem to be valid.";

namespace {

const QByteArray kBeginMarker = QByteArrayLiteral("#Songweaver");
const QByteArray kEndMarker = QByteArrayLiteral("\r\n#End Songweaver");
constexpr qsizetype kEndCut = 15;
constexpr int kHeaderLines = 20;

// The player resolves picture paths; the editor takes them as written and refuses "#LAYOUT=";
// the import reads every key with its value.
enum class Reader { Playing, Editor, Import };

// The header stops the editor's reader where the old program's did.
struct HeaderRejected {
    qsizetype line = 0;  // counted from 0
};

struct HeaderTarget {
    LyricItem& header;
    std::vector<PictureItem>& pictures;
    Reader reader;
    const QString& baseFolder;

    QString PicturePath(const QString& name) const
    {
        return reader == Reader::Playing ? ResolvePicturePath(baseFolder, name) : name;
    }
};

int32_t Long(const QString& value) { return ToInt32(NumericValue(value)); }
int16_t Short(const QString& value) { return ToInt16(NumericValue(value)); }

PictureItem ImageValue(const QString& value, const HeaderTarget& target)
{
    const QStringList fields = value.split(u'%');
    PictureItem picture;
    picture.File = target.PicturePath(fields[0]);
    if (fields.size() > 1)
        picture.Time = Long(fields[1]);
    if (fields.size() > 2) {
        picture.Effect = fields[2];
        picture.Speed = fields.size() > 3 ? Short(fields[3]) : int16_t(0);
    }
    if (fields.size() > 4)
        picture.Detail = fields[4];
    return picture;
}

void ReadLayout(HeaderTarget& t, const QString& line)
{
    if (t.reader == Reader::Editor)
        throw HeaderRejected{};
    if (t.reader == Reader::Import) {
        t.header.Layout = Short(line.mid(8));
        return;
    }
    // One character short: the value read is "=n", which always gives 0.
    t.header.Layout = Short(line.mid(7));
}

using ValueReader = void (*)(HeaderTarget&, const QString& value);

struct HeaderKey {
    QLatin1String name;
    ValueReader read;  // nullptr for LAYOUT, which reads the whole line
};

const std::array<HeaderKey, 19> kHeaderKeys{{
    {QLatin1String("ARTIST"), [](HeaderTarget& t, const QString& v) { t.header.Artist = v; }},
    {QLatin1String("TITLE"), [](HeaderTarget& t, const QString& v) { t.header.Title = v; }},
    {QLatin1String("PICTURE"), [](HeaderTarget& t, const QString& v) { t.header.Picture = t.PicturePath(v); }},
    {QLatin1String("FORE COLOR"), [](HeaderTarget& t, const QString& v) { t.header.ForeColor = Long(v); }},
    {QLatin1String("HIGHLIGHT COLOR"), [](HeaderTarget& t, const QString& v) { t.header.HighlightColor = Long(v); }},
    {QLatin1String("OUTLINE COLOR 1"), [](HeaderTarget& t, const QString& v) { t.header.OutlineColor1 = Long(v); }},
    {QLatin1String("OUTLINE COLOR 2"), [](HeaderTarget& t, const QString& v) { t.header.OutlineColor2 = Long(v); }},
    {QLatin1String("OUTLINE COLOR 3"), [](HeaderTarget& t, const QString& v) { t.header.OutlineColor3 = Long(v); }},
    {QLatin1String("OUTLINE COLOR 4"), [](HeaderTarget& t, const QString& v) { t.header.OutlineColor4 = Long(v); }},
    {QLatin1String("ALIGNMENT"), [](HeaderTarget& t, const QString& v) { t.header.Alignment = Short(v); }},
    {QLatin1String("LAYOUT"), nullptr},
    {QLatin1String("BACK COLOR"), [](HeaderTarget& t, const QString& v) { t.header.BackColor = Long(v); }},
    {QLatin1String("IMAGE"), [](HeaderTarget& t, const QString& v) { t.pictures.push_back(ImageValue(v, t)); }},
    {QLatin1String("IMG LAYOUT"), [](HeaderTarget& t, const QString& v) { t.header.ImageLayout = Short(v); }},
    {QLatin1String("IMG POSITION"), [](HeaderTarget& t, const QString& v) { t.header.ImagePosition = Short(v); }},
    {QLatin1String("IMG CUSTOM X"), [](HeaderTarget& t, const QString& v) { t.header.ImageCustomX = Short(v); }},
    {QLatin1String("IMG CUSTOM Y"), [](HeaderTarget& t, const QString& v) { t.header.ImageCustomY = Short(v); }},
    {QLatin1String("IMG OFFSET X"), [](HeaderTarget& t, const QString& v) { t.header.ImageOffsetX = Short(v); }},
    {QLatin1String("IMG OFFSET Y"), [](HeaderTarget& t, const QString& v) { t.header.ImageOffsetY = Short(v); }},
}};

// CR LF separates lines; a lone LF, as editors on this system write, does too.
QStringList SplitLines(const QString& text)
{
    static const QRegularExpression lineEnd(QStringLiteral("\r?\n"));
    return text.split(lineEnd);
}

void ResetHeader(LyricItem& header)
{
    const LyricItem defaults;
    header.ForeColor = header.HighlightColor = -1;
    header.OutlineColor1 = header.OutlineColor2 = header.OutlineColor3 = header.OutlineColor4 = -1;
    header.BackColor = -1;
    header.Title.clear();
    header.Artist.clear();
    header.Picture.clear();
    header.Alignment = header.Layout = -1;
    header.ImageLayout = defaults.ImageLayout;
    header.ImagePosition = defaults.ImagePosition;
    header.ImageCustomX = defaults.ImageCustomX;
    header.ImageCustomY = defaults.ImageCustomY;
    header.ImageOffsetX = defaults.ImageOffsetX;
    header.ImageOffsetY = defaults.ImageOffsetY;
}

// "#KEY=value": the key from the line's second character, and something behind the "=".
bool LineHasKey(const QString& line, QLatin1String key)
{
    return line.size() > key.size() + 2 && QStringView(line).mid(1, key.size()) == key;
}

// Every key is tried on every line, so any order of header lines reads the same.
void ApplyHeaderLine(const QString& line, HeaderTarget& target)
{
    for (const HeaderKey& key : kHeaderKeys) {
        if (!LineHasKey(line, key.name))
            continue;
        if (key.read)
            key.read(target, line.mid(key.name.size() + 2));
        else
            ReadLayout(target, line);
    }
}

void ParseHeader(const QString& text, HeaderTarget& target)
{
    ResetHeader(target.header);
    const QStringList lines = SplitLines(text);
    const qsizetype last = std::min<qsizetype>(kHeaderLines, lines.size() - 1);
    for (qsizetype i = 1; i <= last; ++i) {
        if (lines[i].isEmpty())
            continue;
        try {
            ApplyHeaderLine(lines[i], target);
        } catch (HeaderRejected& rejected) {
            rejected.line = i;
            throw;
        }
    }
}

// The syllables of the lines from `firstLine` on into the array; false on a piece without "]",
// whose line (counted from 0) goes into `badLine` when one is given.
bool ReadSyllables(const QString& text, std::vector<LyricItem>& lyrics, qsizetype firstLine = 0,
                   qsizetype* badLine = nullptr)
{
    const QStringList lines = SplitLines(text);
    for (qsizetype l = firstLine; l < lines.size(); ++l) {
        const QString& line = lines[l];
        if (line.isEmpty() || line.startsWith(u'#'))
            continue;
        const size_t firstOfLine = lyrics.size();
        const QStringList pieces = line.split(u'[');
        QString lineText;
        for (qsizetype p = 0; p < pieces.size(); ++p) {
            const QString& piece = pieces[p];
            if (piece.isEmpty())
                continue;
            const qsizetype close = piece.indexOf(u']');
            if (close < 0) {
                if (badLine)
                    *badLine = l;
                return false;
            }
            LyricItem item;
            item.Time = NumericValue(piece.left(close).replace(u',', u'.'));
            item.Text = piece.mid(close + 1);
            item.LineEnd = p == pieces.size() - 1;
            lineText += item.Text;
            lyrics.push_back(std::move(item));
        }
        for (size_t i = firstOfLine; i < lyrics.size(); ++i)
            lyrics[i].LineText = lineText;
    }
    if (lyrics.size() > 1)
        lyrics.back().LineEnd = false;
    return true;
}

void AppendLine(QString& block, const QString& line)
{
    block += line;
    block += QLatin1String("\r\n");
}

void AppendKey(QString& block, const char* key, const QString& value)
{
    AppendLine(block, u'#' + QLatin1String(key) + u'=' + value);
}

void AppendSetKey(QString& block, const char* key, int32_t value)
{
    if (value != -1)
        AppendKey(block, key, QString::number(value));
}

QString ImageLine(const PictureItem& picture)
{
    QString value = picture.File + u'%' + QString::number(picture.Time);
    if (!picture.Effect.isEmpty())
        value += u'%' + picture.Effect + u'%' + QString::number(picture.Speed) + u'%' + picture.Detail;
    return value;
}

} // namespace

std::optional<BlockSpan> FindLyricsBlock(const QByteArray& bytes)
{
    const qsizetype begin = bytes.lastIndexOf(kBeginMarker);
    const qsizetype end = bytes.lastIndexOf(kEndMarker);
    if (begin < 0 || end < 0 || end + kEndCut < begin)
        return std::nullopt;
    return BlockSpan{begin, end + kEndCut - begin};
}

std::optional<BlockSpan> FindLyricsBlockInFile(QFile& file)
{
    const qint64 end = LastIndexOfInFile(file, kEndMarker, file.size());
    if (end < 0)
        return std::nullopt;
    const qint64 begin = LastIndexOfInFile(file, kBeginMarker, file.size());
    if (begin < 0 || end + kEndCut < begin)
        return std::nullopt;
    return BlockSpan{begin, end + kEndCut - begin};
}

BlockRead ReadLyricsBlock(const QString& path, QByteArray& block)
{
    QFile file(path);
    const auto span = file.open(QIODevice::ReadOnly) ? FindLyricsBlockInFile(file) : std::nullopt;
    if (!span)
        return BlockRead::None;
    if (span->Length > kLargestLyricsBlock)
        return BlockRead::TooLarge;
    const auto bytes = ReadFileRange(file, span->Begin, span->Length);
    if (!bytes)
        return BlockRead::None;
    block = *bytes;
    return BlockRead::Read;
}

std::optional<QString> LyricsBlockText(const QByteArray& bytes, bool polish)
{
    const auto span = FindLyricsBlock(bytes);
    if (!span)
        return std::nullopt;
    return DecodeText(bytes.mid(span->Begin, span->Length), polish);
}

void ParseLyricsHeader(const QString& text, const QString& baseFolder, LyricItem& header,
                       std::vector<PictureItem>& pictures)
{
    HeaderTarget target{header, pictures, Reader::Playing, baseFolder};
    ParseHeader(text, target);
}

bool ParseLyricsText(LyricsState& lyrics, const QString& text, const QString& baseFolder, const QFont& font,
                     const LyricsRefit& refit)
{
    std::vector<LyricItem> stage(1);
    ResetLyricsData(lyrics);
    ParseLyricsHeader(text, baseFolder, stage[0], lyrics.PlayPictures);
    if (!ReadSyllables(text, stage))
        return false;

    lyrics.PlayLyrics = std::move(stage);
    BuildPictureOrder(lyrics);
    lyrics.LongestLine = FindLongestLine(lyrics.PlayLyrics, font);
    if (refit)
        refit();
    return true;
}

bool ParseEditorLyrics(LyricsState& lyrics, const QString& text, const std::function<void(const QString&)>& critical)
{
    std::vector<LyricItem> edit(1);
    std::vector<PictureItem> pictures(1);
    const QString noFolder;
    HeaderTarget target{edit[0], pictures, Reader::Editor, noFolder};
    qsizetype badLine = -1;
    try {
        ParseHeader(text, target);
        ReadSyllables(text, edit, 0, &badLine);
    } catch (const HeaderRejected& rejected) {
        badLine = rejected.line;
    }
    if (badLine >= 0) {
        if (critical)
            critical(QString::fromLatin1(kInvalidLyricsMessage) +
                     QStringLiteral("\r\nLine %1: %2").arg(badLine + 1).arg(SplitLines(text).value(badLine)));
        return false;
    }
    edit[0].LineEnd = true;
    lyrics.EditLyrics = std::move(edit);
    lyrics.EditPictures = std::move(pictures);
    return true;
}

QString BuildLyricsBlock(const std::vector<LyricItem>& lyrics, const std::vector<PictureItem>& pictures,
                         const QString& decimalMark)
{
    const LyricItem& h = lyrics[0];
    QString block;
    AppendLine(block, QString::fromLatin1(kBeginMarker));
    if (!h.Artist.isEmpty())
        AppendKey(block, "ARTIST", h.Artist);
    if (!h.Title.isEmpty())
        AppendKey(block, "TITLE", h.Title);
    if (!h.Picture.isEmpty())
        AppendKey(block, "PICTURE", h.Picture);
    AppendSetKey(block, "FORE COLOR", h.ForeColor);
    AppendSetKey(block, "HIGHLIGHT COLOR", h.HighlightColor);
    AppendSetKey(block, "OUTLINE COLOR 1", h.OutlineColor1);
    AppendSetKey(block, "OUTLINE COLOR 2", h.OutlineColor2);
    AppendSetKey(block, "OUTLINE COLOR 3", h.OutlineColor3);
    AppendSetKey(block, "OUTLINE COLOR 4", h.OutlineColor4);
    AppendSetKey(block, "ALIGNMENT", h.Alignment);
    AppendSetKey(block, "LAYOUT", h.Layout);
    AppendSetKey(block, "BACK COLOR", h.BackColor);
    if (pictures.size() > 1) {
        for (size_t i = 1; i < pictures.size(); ++i)
            AppendKey(block, "IMAGE", ImageLine(pictures[i]));
        AppendKey(block, "IMG LAYOUT", QString::number(h.ImageLayout));
        AppendKey(block, "IMG POSITION", QString::number(h.ImagePosition));
        AppendKey(block, "IMG CUSTOM X", QString::number(h.ImageCustomX));
        AppendKey(block, "IMG CUSTOM Y", QString::number(h.ImageCustomY));
        AppendKey(block, "IMG OFFSET X", QString::number(h.ImageOffsetX));
        AppendKey(block, "IMG OFFSET Y", QString::number(h.ImageOffsetY));
    }

    const size_t last = lyrics.size() - 1;
    for (size_t i = 1; i <= last; ++i) {
        block += u'[' + FormatBlockTime(lyrics[i].Time, decimalMark) + u']' + lyrics[i].Text;
        if (lyrics[i].LineEnd && i != last)
            block += QLatin1String("\r\n");
    }
    block += QLatin1String("\r\n#End Songweaver\r\n");
    return block;
}

bool SaveLrsFile(const QString& path, const std::vector<LyricItem>& lyrics, const std::vector<PictureItem>& pictures)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    file.write(EncodeText(BuildLyricsBlock(lyrics, pictures)));
    return file.commit();
}

bool getMyLyrics(LyricsState& lyrics, const QString& text)
{
    std::vector<LyricItem> edit(1);
    std::vector<PictureItem> pictures(1);
    const QString noFolder;
    HeaderTarget target{edit[0], pictures, Reader::Import, noFolder};
    ParseHeader(text, target);
    // The line count goes on from the header window: the first 20 lines never give syllables.
    const qsizetype lastLine = SplitLines(text).size() - 1;
    if (!ReadSyllables(text, edit, std::min<qsizetype>(lastLine, kHeaderLines) + 1))
        return false;
    lyrics.EditLyrics = std::move(edit);
    lyrics.EditPictures = std::move(pictures);
    return true;
}
