#pragma once
// Windows docked to the main window: when the first registered window moves, every window
// whose edge touched it moves along by the same distance.

#include <QObject>
#include <QRect>
#include <QWidget>
#include <vector>

// True when two window rectangles share a stretch of edge (within gap pixels).
bool EdgesTouch(const QRect& a, const QRect& b, int gap = 4);

class Docking final : public QObject {
    Q_OBJECT
public:
    // The first window registered leads; the others follow it.
    void Register(QWidget* window);
    void Unregister(QWidget* window);
    const std::vector<QWidget*>& Windows() const { return m_windows; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    std::vector<QWidget*> m_windows;
};
