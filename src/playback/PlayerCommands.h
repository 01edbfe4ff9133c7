#pragma once
// What the main window's buttons, menus and keys do: the button table, the menu keys, the
// keyboard table in its order, the refusals while recording or editing, and the tray.

#include "core/Forms.h"

#include <QObject>
#include <functional>

struct AppState;
class PlayerTransport;
class PlayerWindow;
class QSystemTrayIcon;

class PlayerCommands final : public QObject {
    Q_OBJECT
public:
    PlayerCommands(AppState& state, FormProvider& forms, PlayerTransport& transport, PlayerWindow& player);
    ~PlayerCommands() override;

    // The program's orderly way out.
    std::function<void()> CloseApp;

    void ButtonAction(int button);
    void MenuCommand(const QString& key);
    // True when the key matched a row of the keyboard table.
    bool KeyDown(int key, Qt::KeyboardModifiers modifiers);

    void MinimizeToTray();
    void RestoreFromTray();
    bool InTray() const;

private:
    void ToggleKaraoke();
    void TogglePlaylist();
    void SwapTimeStyle();

    AppState& m_state;
    FormProvider& m_forms;
    PlayerTransport& m_transport;
    PlayerWindow& m_player;
    QSystemTrayIcon* m_tray = nullptr;
    std::vector<Form*> m_hiddenInTray;
    bool m_inTrayEvent = false;
};
