#include "ui/kit/Desktop.h"

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
