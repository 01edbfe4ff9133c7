#include "ui/kit/Desktop.h"

#include "core/WindowPosition.h"

#include <QApplication>
#include <QEvent>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QWidget>

QString DisplayText(const QString& text)
{
    QString display = text;
    return display.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
}

void SetTopMost(QWidget& window, bool flag)
{
    const bool visible = window.isVisible();
    window.setWindowFlag(Qt::WindowStaysOnTopHint, flag);
    if (visible)
        window.show();
}

QRect AvailableScreenAt(const QRect& geometry)
{
    const QScreen* best = QGuiApplication::primaryScreen();
    int bestArea = 0;
    for (const QScreen* screen : QGuiApplication::screens()) {
        const QRect common = screen->geometry() & geometry;
        if (common.width() * common.height() > bestArea) {
            bestArea = common.width() * common.height();
            best = screen;
        }
    }
    return best ? best->availableGeometry() : geometry;
}

QMargins FrameMargins(const QWidget& window)
{
    return QMargins(window.geometry().left() - window.frameGeometry().left(),
                    window.geometry().top() - window.frameGeometry().top(),
                    window.frameGeometry().right() - window.geometry().right(),
                    window.frameGeometry().bottom() - window.geometry().bottom());
}

void PlaceOnScreen(QWidget& window, const QRect& geometry)
{
    const QMargins frame = FrameMargins(window);
    const QRect framed = geometry.marginsAdded(frame);
    const QRect fitted = KeepOnScreen(framed, AvailableScreenAt(framed)).marginsRemoved(frame);
    window.setGeometry(QRect(fitted.topLeft(), fitted.size().expandedTo(window.minimumSize())));
}

ScreenKeeper::ScreenKeeper()
{
    qApp->installEventFilter(this);
}

bool ScreenKeeper::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() != QEvent::Show || !watched->isWidgetType())
        return false;
    auto* window = static_cast<QWidget*>(watched);
    const Qt::WindowType type = window->windowType();
    const bool framed = !(window->windowState() & (Qt::WindowFullScreen | Qt::WindowMaximized | Qt::WindowMinimized));
    if (!framed || (type != Qt::Dialog && type != Qt::Window))
        return false;
    // After the window's own show, which centres a dialog on its parent.
    QMetaObject::invokeMethod(
        window,
        [window, type] {
            // Qt opens a dialog at most two thirds of the screen; one with more to show may take it all.
            const QSize size = type == Qt::Dialog ? window->size().expandedTo(window->sizeHint()) : window->size();
            PlaceOnScreen(*window, QRect(window->geometry().topLeft(), size));
        },
        Qt::QueuedConnection);
    return false;
}

namespace {

// Asks for the whole page, so that a dialog with room to spare shows no scroll bars, and for the
// width of the vertical bar, so that a low screen needs no sideways scrolling besides.
class WholePageArea final : public QScrollArea {
public:
    QSize sizeHint() const override
    {
        if (!widget())
            return QScrollArea::sizeHint();
        return widget()->sizeHint() + QSize(verticalScrollBar()->sizeHint().width(), 0);
    }
};

} // namespace

QWidget* ScrollingPage(QWidget* page)
{
    auto* area = new WholePageArea;
    area->setFrameShape(QFrame::NoFrame);
    area->setWidgetResizable(true);
    area->setWidget(page);
    return area;
}
