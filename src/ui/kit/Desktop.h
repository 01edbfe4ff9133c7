#pragma once
// Small bridges between the core's texts and flags and Qt widgets.

#include "core/Forms.h"

#include <QObject>
#include <QString>

class QMargins;
class QRect;
class QWidget;

// Language texts break lines with CR LF; widgets want "\n".
QString DisplayText(const QString& text);

// Keeps a window above the others, or lets it go back among them.
void SetTopMost(QWidget& window, bool flag);

// The available area of the screen that holds most of `geometry`, else of the primary screen.
QRect AvailableScreenAt(const QRect& geometry);
// The window's frame around its own rectangle; none before the window has shown.
QMargins FrameMargins(const QWidget& window);
// Puts a window at `geometry`, its frame whole on that screen: moved in, and cut to the screen's
// size when larger.
void PlaceOnScreen(QWidget& window, const QRect& geometry);
// Keeps every window and dialog of the program whole on its screen each time it shows, wherever
// it was put before: a saved place, a dialog centred on a window near the screen's edge.
class ScreenKeeper final : public QObject {
public:
    ScreenKeeper();
    bool eventFilter(QObject* watched, QEvent* event) override;
};

// A page that scrolls when the screen is too low or narrow for it.
QWidget* ScrollingPage(QWidget* page);
