#pragma once
// The program's windows, each created on first use, in the order they were loaded.

#include "core/Forms.h"
#include "widgets/Docking.h"

#include <memory>

struct AppState;
class LyricWindow;
class PlayerTransport;
class UserList;
class PlayerWindow;
class SettingsStore;

class AppWindows final : public FormProvider {
public:
    AppWindows(AppState& state, SettingsStore& store);
    ~AppWindows() override;

    PlayerForm& Player() override;
    PlayerWindow& PlayerWidget();
    // The playlist window exists once the transport it plays through is known.
    PlaylistForm* UserList() override;
    void AttachPlaylist(PlayerTransport& transport, const QString& savedListPath);
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
    std::unique_ptr<::UserList> m_userList;
    PlayerTransport* m_transport = nullptr;
    QString m_savedListPath;
    std::vector<Form*> m_loaded;
};
