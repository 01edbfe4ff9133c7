#include "app/AppWindows.h"

#include "karaoke/LyricWindow.h"
#include "playback/PlayerWindow.h"
#include "playlist/UserList.h"

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

LyricWindow& AppWindows::LyricWidget()
{
    if (!m_lyric) {
        m_lyric = std::make_unique<LyricWindow>(m_state, m_store, [this] {
            ControlsForm* midi = MidiEq();
            return midi ? midi->MidiTime() : 0.0;
        });
        m_loaded.push_back(m_lyric.get());
    }
    return *m_lyric;
}

KaraokeForm* AppWindows::Lyric()
{
    return &LyricWidget();
}

void AppWindows::AttachPlaylist(PlayerTransport& transport, const QString& savedListPath)
{
    m_transport = &transport;
    m_savedListPath = savedListPath;
}

PlaylistForm* AppWindows::UserList()
{
    if (!m_userList && m_transport) {
        m_userList = std::make_unique<::UserList>(m_state, m_store, m_docking, *m_transport, m_savedListPath);
        m_loaded.push_back(m_userList.get());
    }
    return m_userList.get();
}
