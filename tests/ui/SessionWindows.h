#pragma once
// The real main window with the other windows faked, and the desktop services faked.

#include "support/FakeForms.h"
#include "ui/kit/Docking.h"
#include "ui/player/PlayerWindow.h"

class SessionWindows final : public FormProvider {
public:
    SessionWindows(CoreState& state, Journal& j) : player(state, store, docking), userList(j), lyric(j), midiEq(j), editor(j) {}
    PlayerForm& Player() override { return player; }
    PlaylistForm* UserList() override { return &userList; }
    KaraokeForm* Lyric() override { return &lyric; }
    ControlsForm* MidiEq() override { return &midiEq; }
    EditorForm* Editor() override { return &editor; }
    PlaylistForm& LoadUserList() override { return userList; }
    KaraokeForm& LoadLyric() override { return lyric; }
    ControlsForm& LoadMidiEq() override { return midiEq; }
    EditorForm& LoadEditor() override { return editor; }
    std::vector<Form*> LoadedForms() override { return {&player, &userList, &lyric, &midiEq, &editor}; }
    void ShowFileInfo(const QString& format, const QString& path) override { shownInfo << format + u' ' + path; }
    void ShowPreferences(int tab) override { shownInfo << QStringLiteral("Preferences %1").arg(tab); }
    void ShowAbout() override { shownInfo << QStringLiteral("About"); }
    void ShowLibrary() override { shownInfo << QStringLiteral("Library"); }
    void ShowSingers() override { shownInfo << QStringLiteral("Singers"); }
    void ShowRemote() override { shownInfo << QStringLiteral("Remote"); }
    void ShowTutorial() override { shownInfo << QStringLiteral("Tutorial"); }
    QStringList shownInfo;  // the dialogs and pages shown, in order

    MemoryStore store;
    Docking docking;
    PlayerWindow player;
    FakePlaylistWindow userList;
    FakeKaraoke lyric;
    FakeControls midiEq;
    FakeEditor editor;
};
