#pragma once
// The state of the whole run, owned by the application and handed by reference to what reads
// it: the player's state and the playlist's rows.

#include "library/LibraryDatabase.h"
#include "playback/PlayerState.h"
#include "playlist/Playlist.h"

struct AppState final : PlayerState {
    // Built after the flags and the language it reads songs with.
    Playlist Songs{Language};
    // The song library, opened at start-up; null when it could not be opened.
    std::unique_ptr<LibraryDatabase> Library;
};
