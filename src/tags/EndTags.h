#pragma once
// The tags that stand at the end of an audio file, behind its audio: ID3v1 (the last 128
// bytes), APE (found by its footer) and Lyrics3 (v1 or v2), in whatever order they were added.

#include "tags/FileBytes.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QString>
#include <vector>

struct EndTag {
    enum Kind { Id3v1, Ape, Lyrics3v1, Lyrics3v2 };
    Kind Type;
    qsizetype Begin;
    qsizetype Length;
};

// The end tags from the last one backwards; stops at the first bytes that are no tag.
std::vector<EndTag> FindEndTags(QByteArrayView bytes);
// Bytes taken by all of them together.
qsizetype EndTagSpan(QByteArrayView bytes);
// The file with its end tags as the regions a save manages (APE, Musepack and Lyrics3 saves).
std::optional<KeptRange> EndTagRegions(const QString& path);

// The end-of-file tags taken off a file image before an append, and put back after it as the
// very bytes they were. Kind is "APE" when an APE tag was among them, else "ID3v1" when an ID3v1
// tag was, else empty.
struct BaseTag {
    QString Kind;
    QByteArray Bytes;
};
BaseTag RemoveBaseTag(QByteArray& image);
void SaveBaseTag(QByteArray& image, const BaseTag& tag);

struct Id3v1Fields {
    QString Title, Artist, Album, Year, Comment;
    int16_t Track = 0;
    int16_t Genre = 0;
};
// Bytes taken by the ID3v1 tag in the last 128 bytes: 128, or 0 when there is none.
qsizetype Id3v1Span(QByteArrayView bytes);
// The ID3v1 tag of the last 128 bytes; texts decoded as the user's legacy text is.
bool ReadId3v1(QByteArrayView bytes, bool polish, Id3v1Fields& fields);
// Takes off the ID3v1 tag at the end of a file image, if there is one.
bool RemoveId3v1(QByteArray& image);
// Adds an ID3v1.1 tag at the end (a track of 1 to 255 takes the comment's last two bytes).
void AppendId3v1(QByteArray& image, const Id3v1Fields& fields, bool polish);

struct ApeTagFields {
    int16_t Version = 0;  // 1000 or 2000
    QString Title, Artist, Album, Track, Year, Genre, Comment;
};
// The APE tag among the end tags; text items by their usual keys, in any letter case.
bool ReadApeTag(QByteArrayView bytes, ApeTagFields& fields);
