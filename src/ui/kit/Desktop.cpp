#include "ui/kit/Desktop.h"

#include <QMessageBox>
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

void WidgetMessageBoxes::Critical(const QString& text)
{
    QMessageBox::critical(nullptr, QStringLiteral("Songweaver"), DisplayText(text));
}

void WidgetMessageBoxes::Inform(const QString& text)
{
    QMessageBox::information(nullptr, QStringLiteral("Songweaver"), DisplayText(text));
}
