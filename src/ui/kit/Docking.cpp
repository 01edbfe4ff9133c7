#include "ui/kit/Docking.h"

#include <QMoveEvent>
#include <algorithm>

bool EdgesTouch(const QRect& a, const QRect& b, int gap)
{
    const bool overlapAcross = a.left() <= b.right() && b.left() <= a.right();
    const bool overlapDown = a.top() <= b.bottom() && b.top() <= a.bottom();
    const bool verticalEdge = std::abs(a.right() + 1 - b.left()) <= gap || std::abs(b.right() + 1 - a.left()) <= gap;
    const bool horizontalEdge = std::abs(a.bottom() + 1 - b.top()) <= gap || std::abs(b.bottom() + 1 - a.top()) <= gap;
    return (verticalEdge && overlapDown) || (horizontalEdge && overlapAcross);
}

void Docking::Register(QWidget* window)
{
    if (std::find(m_windows.begin(), m_windows.end(), window) != m_windows.end())
        return;
    m_windows.push_back(window);
    if (m_windows.size() == 1)
        window->installEventFilter(this);
}

void Docking::Unregister(QWidget* window)
{
    const auto found = std::find(m_windows.begin(), m_windows.end(), window);
    if (found == m_windows.end())
        return;
    if (found == m_windows.begin())
        window->removeEventFilter(this);
    m_windows.erase(found);
    if (!m_windows.empty() && found == m_windows.begin())
        m_windows.front()->installEventFilter(this);
}

bool Docking::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() != QEvent::Move || m_windows.empty() || watched != m_windows.front())
        return false;
    const auto* move = static_cast<QMoveEvent*>(event);
    const QPoint delta = move->pos() - move->oldPos();
    if (delta.isNull())
        return false;
    const QRect before = m_windows.front()->frameGeometry().translated(-delta);
    for (auto it = m_windows.begin() + 1; it != m_windows.end(); ++it) {
        QWidget* follower = *it;
        if (follower->isVisible() && EdgesTouch(before, follower->frameGeometry()))
            follower->move(follower->pos() + delta);
    }
    return false;
}
