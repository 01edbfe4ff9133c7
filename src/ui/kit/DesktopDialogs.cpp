#include "ui/kit/DesktopDialogs.h"

#include "ui/kit/Desktop.h"

#include <QApplication>
#include <QColorDialog>
#include <QDesktopServices>
#include <QFileDialog>
#include <QFontDialog>
#include <QMessageBox>
#include <QPushButton>
#include <QUrl>

namespace {

const QString kTitle = QStringLiteral("Songweaver");

QWidget* Owner()
{
    return QApplication::activeWindow();
}

} // namespace

void DesktopDialogs::Critical(const QString& text)
{
    QMessageBox::critical(Owner(), kTitle, DisplayText(text));
}

void DesktopDialogs::Inform(const QString& text)
{
    QMessageBox::information(Owner(), kTitle, DisplayText(text));
}

bool DesktopDialogs::AskYesNo(const QString& text)
{
    return QMessageBox::question(Owner(), kTitle, DisplayText(text), QMessageBox::Yes | QMessageBox::No)
           == QMessageBox::Yes;
}

SaveChoice DesktopDialogs::AskSaveChanges(const SaveQuestion& question)
{
    QMessageBox box(QMessageBox::Warning, kTitle, DisplayText(question.text), QMessageBox::NoButton, Owner());
    QPushButton* save = box.addButton(question.save, QMessageBox::AcceptRole);
    QPushButton* discard = box.addButton(question.discard, QMessageBox::DestructiveRole);
    QPushButton* cancel = box.addButton(question.cancel, QMessageBox::RejectRole);
    box.setDefaultButton(save);
    box.setEscapeButton(cancel);
    box.exec();
    if (box.clickedButton() == save)
        return SaveChoice::Save;
    return box.clickedButton() == discard ? SaveChoice::Discard : SaveChoice::Cancel;
}

QString DesktopDialogs::OpenFileName(const QString& title, const QString& filter)
{
    return QFileDialog::getOpenFileName(Owner(), title, QString(), filter);
}

QStringList DesktopDialogs::OpenFileNames(const QString& title, const QString& folder, const QString& filter)
{
    return QFileDialog::getOpenFileNames(Owner(), title, folder, filter);
}

QString DesktopDialogs::SaveFileName(const QString& title, const QString& suggested, const QString& filter)
{
    return QFileDialog::getSaveFileName(Owner(), title, suggested, filter);
}

QString DesktopDialogs::ChooseFolder(const QString& title, const QString& start)
{
    return QFileDialog::getExistingDirectory(Owner(), title, start);
}

std::optional<QColor> DesktopDialogs::ChooseColor(const QColor& initial)
{
    const QColor colour = QColorDialog::getColor(initial, Owner());
    if (!colour.isValid())
        return std::nullopt;
    return colour;
}

std::optional<QFont> DesktopDialogs::ChooseFont(const QFont& initial)
{
    bool chosen = false;
    const QFont font = QFontDialog::getFont(&chosen, initial, Owner());
    if (!chosen)
        return std::nullopt;
    return font;
}

void DesktopDialogs::Browse(const QString& address)
{
    QDesktopServices::openUrl(QUrl::fromUserInput(address));
}
