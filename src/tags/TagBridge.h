#pragma once
// The tag formats TagLib reads for us: the ID3v2 tag at the start of a file and the comment
// block of an Ogg Vorbis file.

#include <QByteArrayView>
#include <QString>

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
