#pragma once
// A song read the way the player reads the current song: ReadFile, then ReadTag.

#include "tags/MP3Class.h"

#include <memory>

inline std::unique_ptr<MP3Class> Tagged(const QString& path)
{
    auto song = std::make_unique<MP3Class>();
    song->SetFilename(path);
    song->ReadFile();
    song->ReadTag();
    return song;
}
