#include "core/Monitors.h"

#include <QGuiApplication>
#include <QScreen>

std::vector<MonitorRecord> EnumerateMonitors()
{
    std::vector<MonitorRecord> monitors;
    if (!qobject_cast<QGuiApplication*>(QCoreApplication::instance()))
        return monitors;
    const QScreen* primary = QGuiApplication::primaryScreen();
    int number = 1;
    for (const QScreen* screen : QGuiApplication::screens()) {
        const QRect r = screen->geometry();
        MonitorRecord m;
        m.primary = screen == primary;
        m.name = QStringLiteral("Monitor %1").arg(number++);
        if (m.primary)
            m.name += QStringLiteral(" (primary)");
        m.left = r.left();
        m.top = r.top();
        m.right = r.left() + r.width();
        m.bottom = r.top() + r.height();
        monitors.push_back(m);
    }
    return monitors;
}
