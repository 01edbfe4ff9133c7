#include "playback/PlayerCommands.h"

#include "core/AppState.h"
#include "playback/PlayerTransport.h"
#include "playback/PlayerWindow.h"

#include <QMenu>
#include <QSystemTrayIcon>

PlayerCommands::PlayerCommands(AppState& state, FormProvider& forms, PlayerTransport& transport, PlayerWindow& player)
    : m_state(state), m_forms(forms), m_transport(transport), m_player(player)
{
    connect(&player, &PlayerWindow::buttonAction, this, &PlayerCommands::ButtonAction);
    connect(&player, &PlayerWindow::menuCommand, this, &PlayerCommands::MenuCommand);
    connect(&player, &PlayerWindow::keyPressed, this, [this](int key, Qt::KeyboardModifiers m) { KeyDown(key, m); });
    connect(&player, &PlayerWindow::minimizeRequested, this, &PlayerCommands::MinimizeToTray);
}

PlayerCommands::~PlayerCommands() = default;

void PlayerCommands::ButtonAction(int button)
{
    const bool recording = m_state.Recording;
    bool resume = false;
    if (button == 12)
        m_player.SetButton(12, 0);
    switch (button) {
    case 1:
        if (!recording)
            m_transport.WSTECZ();
        break;
    case 2:
        m_transport.PlaySong(resume);
        break;
    case 3:
        m_transport.PauseSong();
        break;
    case 4:
        m_transport.StopSong();
        break;
    case 5:
        if (!recording)
            m_transport.DALEJ();
        break;
    case 6:
        if (!recording) {
            m_transport.SetMuted(!m_state.Muted);
            m_player.SetButton(6, 0);
        }
        break;
    case 8:
        if (!recording && !m_state.EditorOpen)
            m_transport.OpenFileDialog();
        break;
    case 10:
        TogglePlaylist();
        break;
    case 15:
        ToggleKaraoke();
        break;
    default:
        // Preferences, the MIDI window, microphone, recording, voice and the editor come with
        // their own windows.
        break;
    }
}

void PlayerCommands::ToggleKaraoke()
{
    KaraokeForm* lyric = m_forms.Lyric();
    if (!lyric)
        return;
    if (m_state.KaraokeOpen) {
        lyric->Unload();
        m_state.KaraokeOpen = false;
        return;
    }
    lyric->Show();
    m_state.KaraokeOpen = true;
    if (m_state.MediaControl || m_state.IsMidi) {
        // The window may have missed the song's lyrics while it was closed.
        lyric->ChangeLyrics();
        lyric->GetLastPos();
    }
}

void PlayerCommands::TogglePlaylist()
{
    PlaylistForm* list = m_forms.UserList();
    if (!list)
        return;
    m_state.PlaylistOpen = !m_state.PlaylistOpen;
    if (m_state.PlaylistOpen)
        list->Show();
    else
        list->Hide();
}

void PlayerCommands::SwapTimeStyle()
{
    m_player.SetTimeStyle(m_player.TimeStyle() == u"CURRENT" ? QStringLiteral("ELAPSED") : QStringLiteral("CURRENT"));
}

void PlayerCommands::MenuCommand(const QString& key)
{
    static const std::map<QString, int> kButtons = {
        {QStringLiteral("Previous"), 1}, {QStringLiteral("Play"), 2},     {QStringLiteral("Pause"), 3},
        {QStringLiteral("Stop"), 4},     {QStringLiteral("Next"), 5},     {QStringLiteral("Open"), 8},
        {QStringLiteral("List"), 10},    {QStringLiteral("Microphone"), 11}, {QStringLiteral("Record"), 12},
        {QStringLiteral("Voice"), 13},   {QStringLiteral("Editor"), 14},  {QStringLiteral("Karaoke"), 15},
        {QStringLiteral("Prefs"), 7},    {QStringLiteral("Keyboard"), 7},
    };
    if (const auto it = kButtons.find(key); it != kButtons.end()) {
        ButtonAction(it->second);
    } else if (key == u"Current") {
        m_player.SetTimeStyle(QStringLiteral("CURRENT"));
    } else if (key == u"Elapsed") {
        m_player.SetTimeStyle(QStringLiteral("ELAPSED"));
    } else if (key == u"Exit" || key == u"TrayExit") {
        if (key == u"TrayExit" && m_tray)
            m_tray->hide();
        if (CloseApp)
            CloseApp();
    } else if (key == u"TrayRestore") {
        RestoreFromTray();
    }
    // "Control" stays inert: the dispatcher has always looked for "Controls", which no item has.
    // "About", "Info" and "HelpMe" open windows that later parts of the program bring.
}

bool PlayerCommands::KeyDown(int key, Qt::KeyboardModifiers modifiers)
{
    const bool ctrl = modifiers & Qt::ControlModifier;
    const bool alt = modifiers & Qt::AltModifier;
    const bool recording = m_state.Recording;
    bool resume = false;
    // First match only, in this order; plain letters fire with Ctrl or Alt held too.
    switch (key) {
    case Qt::Key_V:
        m_transport.StopSong();
        return true;
    case Qt::Key_X:
        m_transport.PlaySong(resume);
        return true;
    case Qt::Key_C:
        m_transport.PauseSong();
        return true;
    case Qt::Key_Z:
        if (!recording)
            m_transport.WSTECZ();
        return true;
    case Qt::Key_B:
        if (!recording)
            m_transport.DALEJ();
        return true;
    default:
        break;
    }
    if (key == Qt::Key_O && ctrl) {
        if (!recording && !m_state.EditorOpen)
            m_transport.OpenFileDialog();
        return true;
    }
    if (key == Qt::Key_3 && alt)
        return true;  // file information: its dialogs come later
    if (key == Qt::Key_M || key == Qt::Key_R || key == Qt::Key_S)
        return true;  // microphone, record and voice come with the voice recorder
    if (key == Qt::Key_L && alt) {
        TogglePlaylist();
        return true;
    }
    if (key == Qt::Key_P && ctrl)
        return true;  // preferences
    if (key == Qt::Key_K && ctrl) {
        ToggleKaraoke();
        return true;
    }
    if (key == Qt::Key_E && ctrl)
        return true;  // the editor
    if (key == Qt::Key_T && ctrl) {
        SwapTimeStyle();
        return true;
    }
    return false;
}

bool PlayerCommands::InTray() const
{
    return m_state.InTray;
}

void PlayerCommands::MinimizeToTray()
{
    m_state.InTray = true;
    if (!m_tray) {
        m_tray = new QSystemTrayIcon(m_player.windowIcon(), this);
        m_tray->setToolTip(QStringLiteral("Songweaver"));
        m_tray->setContextMenu(m_player.Menu(QStringLiteral("TrayMenu")));
        connect(m_tray, &QSystemTrayIcon::activated, this, [this](QSystemTrayIcon::ActivationReason reason) {
            if (m_inTrayEvent || reason != QSystemTrayIcon::DoubleClick)
                return;
            m_inTrayEvent = true;
            RestoreFromTray();
            m_inTrayEvent = false;
        });
    }
    m_tray->show();
    m_player.Hide();
    m_hiddenInTray.clear();
    if (m_state.PlaylistOpen)
        if (PlaylistForm* list = m_forms.UserList())
            m_hiddenInTray.push_back(list);
    if (m_state.KaraokeOpen)
        if (KaraokeForm* lyric = m_forms.Lyric())
            m_hiddenInTray.push_back(lyric);
    for (Form* form : m_hiddenInTray)
        form->Hide();
}

void PlayerCommands::RestoreFromTray()
{
    m_player.Show();
    for (Form* form : m_hiddenInTray)
        form->Show();
    m_hiddenInTray.clear();
    if (m_tray)
        m_tray->hide();
    KaraokeForm* lyric = m_forms.Lyric();
    if (lyric && m_state.KaraokeOpen && (m_state.MediaControl || m_state.IsMidi))
        lyric->GetLastPos();
    m_state.InTray = false;
}
