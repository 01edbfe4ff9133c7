#include "ui/player/PlayerServices.h"

#include "playback/PlayerTransport.h"
#include "ui/player/PlayerWindow.h"


void ConnectPlayerWindow(PlayerWindow& player, PlayerCommands& commands, PlayerTransport& transport)
{
    QObject::connect(&player, &PlayerWindow::progressMoved, &player, [&transport](double f) { transport.SeekTo(f); });
    QObject::connect(&player, &PlayerWindow::volumeMoved, &player, [&transport](double v) { transport.VolumeMoved(v); });
    QObject::connect(&player, &PlayerWindow::buttonAction, &player, [&commands](PlayerButton button) { commands.ButtonAction(button); });
    QObject::connect(&player, &PlayerWindow::menuCommand, &player,
                     [&commands](const QString& key) { commands.MenuCommand(key); });
    QObject::connect(&player, &PlayerWindow::keyPressed, &player,
                     [&commands](int key, Qt::KeyboardModifiers m) { commands.KeyDown(key, m); });
    QObject::connect(&player, &PlayerWindow::minimizeRequested, &player, [&commands] { commands.MinimizeToTray(); });
}

SystemTray::SystemTray(const QIcon& icon, std::function<QMenu*()> menu, std::function<void()> restore)
    : m_icon(icon), m_menu(std::move(menu)), m_restore(std::move(restore))
{
    m_icon.setToolTip(QStringLiteral("Songweaver"));
    connect(&m_icon, &QSystemTrayIcon::activated, this, [this](QSystemTrayIcon::ActivationReason reason) {
        if (m_inEvent || reason != QSystemTrayIcon::DoubleClick)
            return;
        m_inEvent = true;
        m_restore();
        m_inEvent = false;
    });
}

void SystemTray::Show()
{
    m_icon.setContextMenu(m_menu());
    m_icon.show();
}

bool SystemTray::Available() const
{
    return QSystemTrayIcon::isSystemTrayAvailable();
}
