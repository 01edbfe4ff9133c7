#pragma once
// What the program asks of the desktop: messages, questions, file and folder choices, the
// colour and font pickers, and the browser. One implementation shows the desktop's dialogs;
// tests answer in place of a user.

#include <QColor>
#include <QFont>
#include <QString>
#include <QStringList>
#include <optional>

enum class SaveChoice { Save, Discard, Cancel };

// A question about changes that would be lost, with its three buttons in the user's language.
struct SaveQuestion {
    QString text, save, discard, cancel;
};

class Dialogs {
public:
    virtual ~Dialogs() = default;
    // A message box titled "Songweaver" with the critical icon.
    virtual void Critical(const QString& text) = 0;
    // A message box titled "Songweaver" that informs, or tells why a command did not run.
    virtual void Inform(const QString& text) = 0;
    // A question with Yes and No; true for Yes.
    virtual bool AskYesNo(const QString& text) = 0;
    // Changes that would be lost: Save, Don't save or Cancel.
    virtual SaveChoice AskSaveChanges(const SaveQuestion& question) = 0;
    // The chosen file or files, empty when the dialog was cancelled.
    virtual QString OpenFileName(const QString& title, const QString& filter) = 0;
    virtual QStringList OpenFileNames(const QString& title, const QString& folder, const QString& filter) = 0;
    virtual QString SaveFileName(const QString& title, const QString& suggested, const QString& filter) = 0;
    // The folder chosen, empty when the dialog was cancelled.
    virtual QString ChooseFolder(const QString& title, const QString& start) = 0;
    // The colour or font picked, nothing when the picker was cancelled.
    virtual std::optional<QColor> ChooseColor(const QColor& initial) = 0;
    virtual std::optional<QFont> ChooseFont(const QFont& initial) = 0;
    // The page or file in the user's browser.
    virtual void Browse(const QString& address) = 0;
};
