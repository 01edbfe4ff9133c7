#pragma once
// The program's windows, each created on first use, in the order they were loaded.

#include "core/Forms.h"
#include "widgets/Docking.h"

#include <memory>

struct AppState;
class LyricWindow;
class PlayerWindow;
class SettingsStore;

class AppWindows final : public FormProvider {
public:
    AppWindows(AppState& state, SettingsStore& store);
    ~AppWindows() override;

    PlayerForm& Player() override;
    PlayerWindow& PlayerWidget();
    PlaylistForm* UserList() override { return nullptr; }
    ControlsForm* MidiEq() override { return nullptr; }
    KaraokeForm* Lyric() override;
    LyricWindow& LyricWidget();
    std::vector<Form*> LoadedForms() override { return m_loaded; }

private:
    AppState& m_state;
    SettingsStore& m_store;
    Docking m_docking;
    std::unique_ptr<PlayerWindow> m_player;
    std::unique_ptr<LyricWindow> m_lyric;
    std::vector<Form*> m_loaded;
};
