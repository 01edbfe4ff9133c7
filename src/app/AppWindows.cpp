#include "app/AppWindows.h"

#include "playback/PlayerWindow.h"

AppWindows::AppWindows(AppState& state, SettingsStore& store) : m_state(state), m_store(store) {}

AppWindows::~AppWindows() = default;

PlayerWindow& AppWindows::PlayerWidget()
{
    if (!m_player) {
        m_player = std::make_unique<PlayerWindow>(m_state, m_store, m_docking);
        m_loaded.push_back(m_player.get());
    }
    return *m_player;
}

PlayerForm& AppWindows::Player()
{
    return PlayerWidget();
}
