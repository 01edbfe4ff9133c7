#pragma once
// The tag formats TagLib reads for us: the ID3v2 tag at the start of a file and the comment
// block of an Ogg Vorbis file.

#include <QByteArray>
#include <QByteArrayView>
#include <QString>
#include <optional>

// "TagLib" and the version the program is built with.
QString TagLibVersion();

struct Id3v2Fields {
    QString Title, Artist, Album, Track, Year, Genre, Comment;
    QString Composer, Encoded, Copyright, Url, OriginalArtist;
};
// The ID3v2 tag (or tags) at the start of the file bytes.
bool ReadId3v2(QByteArrayView bytes, Id3v2Fields& fields);

struct OggComment {
    QString Title, Artist, Album, Date, Genre, Comment, Track, Performer, Description;
};
bool ReadOggComment(const QString& path, OggComment& comment);

// The file image with its ID3v2 tag written from the fields, or removed when there are none.
// Frames the fields do not name stay, and so does the version of a tag that was there; a new
// tag is ID3v2.3. Nothing when TagLib cannot take the image as MPEG.
std::optional<QByteArray> WriteId3v2(const QByteArray& image, const Id3v2Fields* fields);

struct ApeTagFields;
// The image with its APE tag written from the fields, or removed when there are none; MPEG,
// Monkey's Audio and Musepack files by the format's name ("MP3", "APE", "MPC").
std::optional<QByteArray> WriteApeTag(const QByteArray& image, const QString& format, const ApeTagFields* fields);
