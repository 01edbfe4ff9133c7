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
// A WAV file's title and artist: its ID3v2 chunk, else its RIFF INFO list.
bool ReadWavTitle(const QString& path, QString& title, QString& artist);

// A file's first ID3v2 tag (empty when it has none) written anew from the fields, or removed
// when there are none. Frames the fields do not name stay, and so does the version of a tag
// that was there; a new tag is ID3v2.3. Nothing when TagLib cannot read the tag.
std::optional<QByteArray> WriteId3v2(const QByteArray& tag, const Id3v2Fields* fields);

struct ApeTagFields;
// A file's end tags (empty when it has none) with their APE tag written from the fields, or
// removed when there are none; a new APE tag goes before an ID3v1 tag.
std::optional<QByteArray> WriteApeTag(const QByteArray& endTags, const ApeTagFields* fields);
