#pragma once
// Lyrics3 tags: v2 ("LYRICSBEGIN", three-letter fields with five-digit sizes, a six-digit size,
// "LYRICS200") read and written, v1 ("LYRICSBEGIN" text "LYRICSEND") read. The tag stands
// among the end tags of the file, usually right before ID3v1.

#include "lyrics/TagLyrics.h"

#include <QByteArray>
#include <QByteArrayView>

struct Lyrics3Tag {
    int16_t Version = 0;  // 1 or 2
    int32_t Size = 0;     // bytes of the whole tag
    QString Lyrics;       // "[mm:ss]text" lines, CR LF
    QString Author;
    QString Album;
    QString Artist;
    QString Title;
    QString Images;       // "file||description||[time]" lines, CR LF
};

// The Lyrics3 tag among the file's end tags; false when there is none or it is damaged.
bool ReadLyrics3(QByteArrayView bytes, bool polish, Lyrics3Tag& tag);

// A v2 tag holding the non-empty fields, as UTF-8 like every text the program writes.
QByteArray BuildLyrics3(const Lyrics3Tag& tag);

// The file image with its Lyrics3 tag replaced by `tag` (or added): the new tag goes right
// before the ID3v1 tag, behind the other end tags, or at the end when there is no ID3v1.
QByteArray ReplaceLyrics3(QByteArrayView image, const Lyrics3Tag& tag);
