#include "tags/TagBridge.h"

#include "tags/StreamFacts.h"

#include <QFile>
#include <taglib/id3v2tag.h>
#include <taglib/mpegfile.h>
#include <taglib/tbytevectorstream.h>
#include <taglib/vorbisfile.h>
#include <taglib/xiphcomment.h>

namespace {

QString ToQString(const TagLib::String& text)
{
    return QString::fromStdWString(text.toWString());
}

QString FrameText(const TagLib::ID3v2::Tag& tag, const char* id)
{
    const auto& frames = tag.frameListMap()[id];
    return frames.isEmpty() ? QString() : ToQString(frames.front()->toString());
}

QString FieldText(const TagLib::Ogg::XiphComment& comment, const char* key)
{
    const auto& fields = comment.fieldListMap();
    const auto it = fields.find(key);
    return it == fields.end() || it->second.isEmpty() ? QString() : ToQString(it->second.front());
}

} // namespace

bool ReadId3v2(QByteArrayView bytes, Id3v2Fields& fields)
{
    const qsizetype span = Id3v2Span(bytes);
    if (span == 0)
        return false;
    TagLib::ByteVector head(bytes.data(), static_cast<unsigned int>(span));
    TagLib::ByteVectorStream stream(head);
    TagLib::MPEG::File file(&stream, TagLib::ID3v2::FrameFactory::instance(), false);
    const TagLib::ID3v2::Tag* tag = file.isValid() ? file.ID3v2Tag() : nullptr;
    if (!tag)
        return false;
    fields = Id3v2Fields{};
    fields.Title = ToQString(tag->title());
    fields.Artist = ToQString(tag->artist());
    fields.Album = ToQString(tag->album());
    fields.Track = FrameText(*tag, "TRCK");
    fields.Year = FrameText(*tag, "TDRC");
    if (fields.Year.isEmpty())
        fields.Year = FrameText(*tag, "TYER");
    fields.Genre = ToQString(tag->genre());
    fields.Comment = ToQString(tag->comment());
    fields.Composer = FrameText(*tag, "TCOM");
    fields.Encoded = FrameText(*tag, "TENC");
    fields.Copyright = FrameText(*tag, "TCOP");
    fields.Url = FrameText(*tag, "WXXX");
    if (fields.Url.isEmpty())
        fields.Url = FrameText(*tag, "WOAR");
    fields.OriginalArtist = FrameText(*tag, "TOPE");
    return true;
}

bool ReadOggComment(const QString& path, OggComment& comment)
{
    TagLib::Ogg::Vorbis::File file(QFile::encodeName(path).constData(), false);
    const TagLib::Ogg::XiphComment* tag = file.isValid() ? file.tag() : nullptr;
    if (!tag)
        return false;
    comment = OggComment{};
    comment.Title = FieldText(*tag, "TITLE");
    comment.Artist = FieldText(*tag, "ARTIST");
    comment.Album = FieldText(*tag, "ALBUM");
    comment.Date = FieldText(*tag, "DATE");
    comment.Genre = FieldText(*tag, "GENRE");
    comment.Comment = FieldText(*tag, "COMMENT");
    comment.Track = FieldText(*tag, "TRACKNUMBER");
    comment.Performer = FieldText(*tag, "PERFORMER");
    comment.Description = FieldText(*tag, "DESCRIPTION");
    return true;
}
