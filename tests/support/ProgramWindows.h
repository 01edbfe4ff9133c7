#pragma once
// The program's real windows and commands over a settings store in memory, with the desktop's
// dialogs answered by the test: what the player's main puts together, without its platform.

#include "app/AppState.h"
#include "app/AppWindows.h"
#include "playback/PlayerCommands.h"
#include "playback/PlayerTransport.h"
#include "support/FakeForms.h"
#include "support/ScriptedDialogs.h"

struct ProgramWindows {
    ProgramWindows() { windows.Attach(transport, commands); }

    MemoryStore store;
    AppState state;
    ScriptedDialogs dialogs;
    AppWindows windows{state, store, dialogs};
    FakeTray tray;
    PlayerTransport transport{state, windows, state.Songs, &dialogs};
    PlayerCommands commands{state, windows, transport, tray, dialogs};
};
