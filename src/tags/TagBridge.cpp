#include "tags/TagBridge.h"

#include "tags/StreamFacts.h"

#include <QFile>
#include "tags/EndTags.h"

#include <taglib/taglib.h>
#include <taglib/apetag.h>
#include <taglib/id3v2tag.h>
#include <taglib/mpegfile.h>
#include <taglib/textidentificationframe.h>
#include <taglib/urllinkframe.h>
#include <taglib/tbytevectorstream.h>
#include <taglib/vorbisfile.h>
#include <taglib/wavfile.h>
#include <taglib/xiphcomment.h>

QString TagLibVersion()
{
    return QStringLiteral("TagLib %1.%2.%3").arg(TAGLIB_MAJOR_VERSION).arg(TAGLIB_MINOR_VERSION).arg(TAGLIB_PATCH_VERSION);
}

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

TagLib::String ToTagString(const QString& text)
{
    return TagLib::String(text.toStdString(), TagLib::String::UTF8);
}

QByteArray ImageOf(TagLib::ByteVectorStream& stream)
{
    const TagLib::ByteVector* data = stream.data();
    return QByteArray(data->data(), qsizetype(data->size()));
}

void SetTextFrame(TagLib::ID3v2::Tag& tag, const char* id, const QString& text)
{
    tag.removeFrames(id);
    if (text.isEmpty())
        return;
    auto* frame = new TagLib::ID3v2::TextIdentificationFrame(id, TagLib::String::UTF8);
    frame->setText(ToTagString(text));
    tag.addFrame(frame);
}

void SetUrl(TagLib::ID3v2::Tag& tag, const QString& url)
{
    tag.removeFrames("WXXX");
    if (url.isEmpty())
        return;
    auto* frame = new TagLib::ID3v2::UserUrlLinkFrame(TagLib::String::UTF8);
    frame->setUrl(ToTagString(url));
    tag.addFrame(frame);
}

// The five fields every tag kind has; an empty text removes its field.
template <typename Fields>
void FillCommon(TagLib::Tag& tag, const Fields& f)
{
    tag.setTitle(ToTagString(f.Title));
    tag.setArtist(ToTagString(f.Artist));
    tag.setAlbum(ToTagString(f.Album));
    tag.setComment(ToTagString(f.Comment));
    tag.setGenre(ToTagString(f.Genre));
}

void FillId3v2(TagLib::ID3v2::Tag& tag, const Id3v2Fields& f)
{
    FillCommon(tag, f);
    SetTextFrame(tag, "TRCK", f.Track);
    tag.removeFrames("TYER");
    SetTextFrame(tag, "TDRC", f.Year);
    SetTextFrame(tag, "TCOM", f.Composer);
    SetTextFrame(tag, "TENC", f.Encoded);
    SetTextFrame(tag, "TCOP", f.Copyright);
    SetTextFrame(tag, "TOPE", f.OriginalArtist);
    SetUrl(tag, f.Url);
}

void FillApe(TagLib::APE::Tag& tag, const ApeTagFields& f)
{
    FillCommon(tag, f);
    tag.addValue("TRACK", ToTagString(f.Track), true);
    tag.addValue("YEAR", ToTagString(f.Year), true);
    if (f.Track.isEmpty())
        tag.removeItem("TRACK");
    if (f.Year.isEmpty())
        tag.removeItem("YEAR");
}

// A file image opened by TagLib in memory; the stream holds the bytes as they are edited.
template <typename File>
struct Opened {
    TagLib::ByteVector data;
    TagLib::ByteVectorStream stream;
    File file;

    template <typename... Options>
    explicit Opened(const QByteArray& image, Options... options)
        : data(image.constData(), static_cast<unsigned int>(image.size())), stream(data), file(&stream, options...)
    {
    }
    QByteArray Image() { return ImageOf(stream); }
};

struct OpenedMpeg : Opened<TagLib::MPEG::File> {
    explicit OpenedMpeg(const QByteArray& image)
        : Opened<TagLib::MPEG::File>(image, TagLib::ID3v2::FrameFactory::instance(), false)
    {
    }
};

} // namespace

std::optional<QByteArray> WriteId3v2(const QByteArray& tag, const Id3v2Fields* fields)
{
    OpenedMpeg opened(tag);
    TagLib::MPEG::File& file = opened.file;
    if (!file.isValid())
        return std::nullopt;
    if (!fields) {
        if (file.hasID3v2Tag())
            file.strip(TagLib::MPEG::File::ID3v2);
        return opened.Image();
    }
    const bool had = file.hasID3v2Tag();
    TagLib::ID3v2::Tag* id3 = file.ID3v2Tag(true);
    const auto version = had && id3->header()->majorVersion() == 4 ? TagLib::ID3v2::v4 : TagLib::ID3v2::v3;
    FillId3v2(*id3, *fields);
    if (!file.save(TagLib::MPEG::File::ID3v2, TagLib::File::StripNone, version, TagLib::File::DoNotDuplicate))
        return std::nullopt;
    return opened.Image();
}

std::optional<QByteArray> WriteApeTag(const QByteArray& endTags, const ApeTagFields* fields)
{
    OpenedMpeg opened(endTags);
    TagLib::MPEG::File& file = opened.file;
    if (!file.isValid())
        return std::nullopt;
    if (!fields) {
        file.strip(TagLib::MPEG::File::APE);
        return opened.Image();
    }
    FillApe(*file.APETag(true), *fields);
    if (!file.save(TagLib::MPEG::File::APE, TagLib::File::StripNone, TagLib::ID3v2::v4, TagLib::File::DoNotDuplicate))
        return std::nullopt;
    return opened.Image();
}

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

bool ReadWavTitle(const QString& path, QString& title, QString& artist)
{
    TagLib::RIFF::WAV::File file(QFile::encodeName(path).constData(), false);
    if (!file.isValid())
        return false;
    const TagLib::Tag* tag = nullptr;
    if (file.hasID3v2Tag())
        tag = file.ID3v2Tag();
    else if (file.hasInfoTag())
        tag = file.InfoTag();
    if (!tag)
        return false;
    title = ToQString(tag->title());
    artist = ToQString(tag->artist());
    return true;
}
