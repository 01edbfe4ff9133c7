#include "tags/Lyrics3.h"

#include "tags/EndTags.h"
#include "core/TextCodec.h"

namespace {

constexpr qsizetype kFieldHeader = 8;  // three-letter id, five-digit size
constexpr qsizetype kMaxFieldSize = 99999;
const QByteArrayView kBegin("LYRICSBEGIN");

QString* FieldOf(Lyrics3Tag& tag, QByteArrayView id)
{
    if (id == "LYR")
        return &tag.Lyrics;
    if (id == "AUT")
        return &tag.Author;
    if (id == "EAL")
        return &tag.Album;
    if (id == "EAR")
        return &tag.Artist;
    if (id == "ETT")
        return &tag.Title;
    if (id == "IMG")
        return &tag.Images;
    return nullptr;
}

bool ReadFields(QByteArrayView body, bool polish, Lyrics3Tag& tag)
{
    qsizetype at = 0;
    while (at < body.size()) {
        if (at + kFieldHeader > body.size())
            return false;
        bool ok = false;
        const qsizetype size = body.sliced(at + 3, 5).toByteArray().toLongLong(&ok);
        if (!ok || size < 0 || at + kFieldHeader + size > body.size())
            return false;
        if (QString* field = FieldOf(tag, body.sliced(at, 3)))
            *field = DecodeText(body.sliced(at + kFieldHeader, size).toByteArray(), polish);
        at += kFieldHeader + size;
    }
    return true;
}

void AppendField(QByteArray& body, const char* id, const QString& text)
{
    if (text.isEmpty())
        return;
    const QByteArray bytes = EncodeText(text).left(kMaxFieldSize);
    body += id + QByteArray::number(bytes.size()).rightJustified(5, '0') + bytes;
}

} // namespace

bool ReadLyrics3(QByteArrayView bytes, bool polish, Lyrics3Tag& tag)
{
    for (const EndTag& end : FindEndTags(bytes)) {
        const QByteArrayView whole = bytes.sliced(end.Begin, end.Length);
        if (end.Type == EndTag::Lyrics3v2) {
            tag = Lyrics3Tag{};
            tag.Version = 2;
            tag.Size = int32_t(end.Length);
            return ReadFields(whole.sliced(kBegin.size(), end.Length - kBegin.size() - 15), polish, tag);
        }
        if (end.Type == EndTag::Lyrics3v1) {
            tag = Lyrics3Tag{};
            tag.Version = 1;
            tag.Size = int32_t(end.Length);
            tag.Lyrics = DecodeText(whole.sliced(kBegin.size(), end.Length - kBegin.size() - 9).toByteArray(), polish);
            return true;
        }
    }
    return false;
}

QByteArray BuildLyrics3(const Lyrics3Tag& tag)
{
    QByteArray body = kBegin.toByteArray();
    const bool timed = tag.Lyrics.contains(u'[');
    body += "IND00003" + QByteArray(tag.Lyrics.isEmpty() ? "0" : "1") + (timed ? "1" : "0") + "0";
    AppendField(body, "LYR", tag.Lyrics);
    AppendField(body, "AUT", tag.Author);
    AppendField(body, "EAL", tag.Album);
    AppendField(body, "EAR", tag.Artist);
    AppendField(body, "ETT", tag.Title);
    AppendField(body, "IMG", tag.Images);
    return body + QByteArray::number(body.size()).rightJustified(6, '0') + "LYRICS200";
}

QByteArray ReplaceLyrics3(QByteArrayView image, const Lyrics3Tag& tag)
{
    const auto ends = FindEndTags(image);
    const qsizetype audioEnd = ends.empty() ? image.size() : ends.back().Begin;
    QByteArray result = image.first(audioEnd).toByteArray();
    QByteArray id3v1;
    // Walk the end tags in file order, dropping old Lyrics3 tags and holding ID3v1 for the last place.
    for (auto it = ends.rbegin(); it != ends.rend(); ++it) {
        const QByteArrayView bytes = image.sliced(it->Begin, it->Length);
        if (it->Type == EndTag::Id3v1)
            id3v1 = bytes.toByteArray();
        else if (it->Type == EndTag::Ape)
            result += bytes;
    }
    return result + BuildLyrics3(tag) + id3v1;
}
