#include "ui/editor/EditorDialogs.h"

#include "ui/kit/Desktop.h"

#include <QApplication>
#include <QColorDialog>
#include <QDesktopServices>
#include <QFileDialog>
#include <QFontDialog>
#include <QMessageBox>
#include <QUrl>

namespace {

const QString kTitle = QStringLiteral("Songweaver");

} // namespace

QString WidgetEditorDialogs::OpenFileName(const QString& title, const QString& filter)
{
    return QFileDialog::getOpenFileName(QApplication::activeWindow(), title, QString(), filter);
}

QString WidgetEditorDialogs::SaveFileName(const QString& title, const QString& suggested, const QString& filter)
{
    return QFileDialog::getSaveFileName(QApplication::activeWindow(), title, suggested, filter);
}

bool WidgetEditorDialogs::AskYesNo(const QString& text)
{
    return QMessageBox::question(QApplication::activeWindow(), kTitle, DisplayText(text), QMessageBox::Yes | QMessageBox::No)
           == QMessageBox::Yes;
}

void WidgetEditorDialogs::Information(const QString& text)
{
    QMessageBox::information(QApplication::activeWindow(), kTitle, DisplayText(text));
}

void WidgetEditorDialogs::Critical(const QString& text)
{
    QMessageBox::critical(QApplication::activeWindow(), kTitle, DisplayText(text));
}

void WidgetEditorDialogs::Browse(const QString& address)
{
    const QUrl url = QUrl::fromUserInput(address);
    QDesktopServices::openUrl(url);
}

std::optional<QColor> WidgetEditorDialogs::ChooseColor(const QColor& initial)
{
    const QColor colour = QColorDialog::getColor(initial, QApplication::activeWindow());
    if (!colour.isValid())
        return std::nullopt;
    return colour;
}

std::optional<QFont> WidgetEditorDialogs::ChooseFont(const QFont& initial)
{
    bool chosen = false;
    const QFont font = QFontDialog::getFont(&chosen, initial, QApplication::activeWindow());
    if (!chosen)
        return std::nullopt;
    return font;
}

QString WidgetEditorDialogs::ChooseFolder(const QString& title, const QString& start)
{
    return QFileDialog::getExistingDirectory(QApplication::activeWindow(), title, start);
}
