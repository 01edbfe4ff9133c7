#pragma once
// The real main window with the other windows faked.

#include "core/FakeForms.h"
#include "playback/PlayerWindow.h"
#include "support/TestSupport.h"
#include "widgets/Docking.h"

class SessionWindows final : public FormProvider {
public:
    SessionWindows(AppState& state, Journal& j) : player(state, store, docking), userList(j), lyric(j), midiEq(j) {}
    PlayerForm& Player() override { return player; }
    PlaylistForm* UserList() override { return &userList; }
    ControlsForm* MidiEq() override { return &midiEq; }
    KaraokeForm* Lyric() override { return &lyric; }
    std::vector<Form*> LoadedForms() override { return {&player, &userList, &lyric, &midiEq}; }

    MemoryStore store;
    Docking docking;
    PlayerWindow player;
    FakePlaylist userList;
    FakeKaraoke lyric;
    FakeControls midiEq;
};

