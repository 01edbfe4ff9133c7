#pragma once
// The desktop services behind the player's commands (the tray icon and the open dialog), and
// the wiring of the main window's events.

#include "playback/PlayerCommands.h"

#include <QObject>
#include <QSystemTrayIcon>
#include <functional>

class PlayerTransport;
class PlayerWindow;
class QMenu;
class QWidget;

// The main window's events reach the commands and the transport.
void ConnectPlayerWindow(PlayerWindow& player, PlayerCommands& commands, PlayerTransport& transport);

class SystemTray final : public QObject, public TrayIcon {
    Q_OBJECT
public:
    // A double click on the icon restores; `menu` gives the tray's right-click menu.
    SystemTray(const QIcon& icon, std::function<QMenu*()> menu, std::function<void()> restore);

    bool Available() const override;
    void Show() override;
    void Hide() override { m_icon.hide(); }

private:
    QSystemTrayIcon m_icon;
    std::function<QMenu*()> m_menu;
    std::function<void()> m_restore;
    // A dialog or menu inside the handler pumps events; the handler must not run twice.
    bool m_inEvent = false;
};
