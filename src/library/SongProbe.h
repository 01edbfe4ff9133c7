#pragma once
// A file of a music folder as the library lists it: its kind, tags, length and the words of its
// lyrics, or why it cannot be played.

#include "library/LibrarySongs.h"

#include <variant>

// Why a file with a song's name is no song the player can play; the language key of the reason.
struct UnreadableSong {
    QString reason;
};

// `openable` is a path Qt can open for the file (see OpenablePath); `song.path` and
// `song.stamp` come filled in.
std::variant<LibrarySong, UnreadableSong> ProbeLibrarySong(LibrarySong song, const QString& openable, bool polish);

// Names of files the library lists, by suffix: songs, zipped MP3+G songs and videos.
bool IsLibrarySuffix(const QString& suffix);
