#include "tags/EndTags.h"

#include "tags/Bytes.h"
#include "core/TextCodec.h"

#include <optional>

namespace {

constexpr qsizetype kId3v1Size = 128;
constexpr qsizetype kApeFooterSize = 32;
constexpr uint32_t kApeHasHeader = 0x80000000u;
constexpr qsizetype kLyrics3v1MaxText = 5100;
const QByteArrayView kLyricsBegin("LYRICSBEGIN");

std::optional<EndTag> ApeTagEndingAt(QByteArrayView bytes, qsizetype end)
{
    const qsizetype footer = end - kApeFooterSize;
    if (!HasAt(bytes, footer, "APETAGEX"))
        return std::nullopt;
    const qsizetype size = LittleEndian(bytes, footer + 12, 4);
    const bool header = LittleEndian(bytes, footer + 20, 4) & kApeHasHeader;
    const qsizetype length = size + (header ? kApeFooterSize : 0);
    if (size < kApeFooterSize || length > end)
        return std::nullopt;
    return EndTag{EndTag::Ape, end - length, length};
}

std::optional<EndTag> Lyrics3EndingAt(QByteArrayView bytes, qsizetype end)
{
    if (end >= 15 && HasAt(bytes, end - 9, "LYRICS200")) {
        bool ok = false;
        const qsizetype size = QByteArray(bytes.sliced(end - 15, 6).data(), 6).toLongLong(&ok);
        const qsizetype begin = end - 15 - size;
        if (ok && size >= kLyricsBegin.size() && begin >= 0 && HasAt(bytes, begin, kLyricsBegin))
            return EndTag{EndTag::Lyrics3v2, begin, end - begin};
        return std::nullopt;
    }
    if (HasAt(bytes, end - 9, "LYRICSEND")) {
        const qsizetype from = std::max<qsizetype>(0, end - 9 - kLyrics3v1MaxText - kLyricsBegin.size());
        const qsizetype begin = bytes.sliced(from, end - 9 - from).lastIndexOf(kLyricsBegin);
        if (begin >= 0)
            return EndTag{EndTag::Lyrics3v1, from + begin, end - from - begin};
    }
    return std::nullopt;
}

} // namespace

std::vector<EndTag> FindEndTags(QByteArrayView bytes)
{
    std::vector<EndTag> tags;
    qsizetype end = bytes.size();
    if (Id3v1Span(bytes) > 0) {
        tags.push_back({EndTag::Id3v1, end - kId3v1Size, kId3v1Size});
        end -= kId3v1Size;
    }
    while (true) {
        // Lyrics3 first: its marker is the very last bytes, while an APE footer's marker stands
        // 32 bytes back, where lyrics text may happen to spell it.
        auto tag = Lyrics3EndingAt(bytes, end);
        if (!tag)
            tag = ApeTagEndingAt(bytes, end);
        if (!tag)
            break;
        tags.push_back(*tag);
        end = tag->Begin;
    }
    return tags;
}

qsizetype EndTagSpan(QByteArrayView bytes)
{
    const auto tags = FindEndTags(bytes);
    return tags.empty() ? 0 : bytes.size() - tags.back().Begin;
}

std::optional<KeptRange> EndTagRegions(const QString& path)
{
    const FileBytes file(path);
    if (!file.IsOpen())
        return std::nullopt;
    return KeptRange{0, file.View().size() - EndTagSpan(file.View())};
}

BaseTag RemoveBaseTag(QByteArray& image)
{
    BaseTag removed;
    const auto tags = FindEndTags(image);
    if (tags.empty())
        return removed;
    for (const EndTag& tag : tags) {
        if (tag.Type == EndTag::Ape)
            removed.Kind = QStringLiteral("APE");
        else if (tag.Type == EndTag::Id3v1 && removed.Kind.isEmpty())
            removed.Kind = QStringLiteral("ID3v1");
    }
    removed.Bytes = image.sliced(tags.back().Begin);
    image.truncate(tags.back().Begin);
    return removed;
}

void SaveBaseTag(QByteArray& image, const BaseTag& tag)
{
    image.append(tag.Bytes);
}

qsizetype Id3v1Span(QByteArrayView bytes)
{
    return HasAt(bytes, bytes.size() - kId3v1Size, "TAG") ? kId3v1Size : 0;
}

bool ReadId3v1(QByteArrayView bytes, bool polish, Id3v1Fields& fields)
{
    if (Id3v1Span(bytes) == 0)
        return false;
    const qsizetype at = bytes.size() - kId3v1Size;
    auto text = [&](qsizetype offset, qsizetype length) {
        QByteArrayView field = bytes.sliced(at + offset, length);
        const qsizetype nul = field.indexOf('\0');
        return DecodeText(field.first(nul < 0 ? length : nul).toByteArray(), polish);
    };
    fields.Title = text(3, 30);
    fields.Artist = text(33, 30);
    fields.Album = text(63, 30);
    fields.Year = text(93, 4);
    // ID3v1.1 keeps the track in the last byte of a comment whose 29th byte is zero.
    const bool hasTrack = bytes[at + 125] == 0 && bytes[at + 126] != 0;
    fields.Comment = text(97, hasTrack ? 28 : 30);
    fields.Track = hasTrack ? int16_t(uint8_t(bytes[at + 126])) : 0;
    fields.Genre = int16_t(uint8_t(bytes[at + 127]));
    return true;
}

bool RemoveId3v1(QByteArray& image)
{
    if (Id3v1Span(image) == 0)
        return false;
    image.truncate(image.size() - kId3v1Size);
    return true;
}

void AppendId3v1(QByteArray& image, const Id3v1Fields& fields, bool polish)
{
    QByteArray tag(kId3v1Size, '\0');
    auto put = [&](qsizetype offset, qsizetype length, const QString& text) {
        const QByteArray bytes = EncodeLegacyField(text, polish, length);
        std::copy(bytes.begin(), bytes.end(), tag.begin() + offset);
    };
    tag.replace(0, 3, "TAG");
    put(3, 30, fields.Title);
    put(33, 30, fields.Artist);
    put(63, 30, fields.Album);
    put(93, 4, fields.Year);
    const bool hasTrack = fields.Track > 0 && fields.Track < 256;
    put(97, hasTrack ? 28 : 30, fields.Comment);
    if (hasTrack)
        tag[126] = char(fields.Track);
    tag[127] = char(fields.Genre >= 0 && fields.Genre < 256 ? fields.Genre : 0);
    image += tag;
}

namespace {

constexpr uint32_t kApeItemKindMask = 0x6;  // 0 is UTF-8 text; binary and links are skipped

QString* ApeFieldOf(ApeTagFields& fields, const QByteArray& key)
{
    const QByteArray k = key.toLower();
    if (k == "title")
        return &fields.Title;
    if (k == "artist")
        return &fields.Artist;
    if (k == "album")
        return &fields.Album;
    if (k == "track")
        return &fields.Track;
    if (k == "year")
        return &fields.Year;
    if (k == "genre")
        return &fields.Genre;
    if (k == "comment")
        return &fields.Comment;
    return nullptr;
}

} // namespace

bool ReadApeTag(QByteArrayView bytes, ApeTagFields& fields)
{
    for (const EndTag& tag : FindEndTags(bytes)) {
        if (tag.Type != EndTag::Ape)
            continue;
        const qsizetype footer = tag.Begin + tag.Length - kApeFooterSize;
        fields = ApeTagFields{};
        fields.Version = int16_t(LittleEndian(bytes, footer + 8, 4));
        const uint32_t count = LittleEndian(bytes, footer + 16, 4);
        const qsizetype itemsEnd = footer;
        qsizetype at = footer - (LittleEndian(bytes, footer + 12, 4) - kApeFooterSize);
        for (uint32_t i = 0; i < count && at + 8 < itemsEnd; ++i) {
            const qsizetype size = LittleEndian(bytes, at, 4);
            const uint32_t flags = LittleEndian(bytes, at + 4, 4);
            const qsizetype keyEnd = bytes.sliced(at + 8, itemsEnd - at - 8).indexOf('\0');
            if (keyEnd < 0 || size > itemsEnd - (at + 9 + keyEnd))
                break;
            const QByteArray key = bytes.sliced(at + 8, keyEnd).toByteArray();
            const qsizetype value = at + 9 + keyEnd;
            if ((flags & kApeItemKindMask) == 0)
                if (QString* field = ApeFieldOf(fields, key))
                    *field = QString::fromUtf8(bytes.sliced(value, size)).section(QChar(0), 0, 0);
            at = value + size;
        }
        return true;
    }
    return false;
}
