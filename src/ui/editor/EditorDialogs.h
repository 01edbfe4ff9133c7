#pragma once
// What the editor asks of the desktop: file dialogs, questions and messages, and the browser.
// The window's tests answer them in place of a user.

#include <QColor>
#include <QFont>
#include <QString>
#include <optional>

class EditorDialogs {
public:
    virtual ~EditorDialogs() = default;
    // The chosen file, empty when the dialog was cancelled.
    virtual QString OpenFileName(const QString& title, const QString& filter) = 0;
    virtual QString SaveFileName(const QString& title, const QString& suggested, const QString& filter) = 0;
    // A question with Yes and No; true for Yes.
    virtual bool AskYesNo(const QString& text) = 0;
    virtual void Information(const QString& text) = 0;
    virtual void Critical(const QString& text) = 0;
    // The page or file in the user's browser.
    virtual void Browse(const QString& address) = 0;
    // The colour picked, nothing when the picker was cancelled.
    virtual std::optional<QColor> ChooseColor(const QColor& initial) = 0;
    // The font picked, nothing when the picker was cancelled.
    virtual std::optional<QFont> ChooseFont(const QFont& initial) = 0;
    // The folder chosen, empty when the dialog was cancelled.
    virtual QString ChooseFolder(const QString& title, const QString& start) = 0;
};

// The desktop's dialogs, over the window that is active when they are asked for.
class WidgetEditorDialogs final : public EditorDialogs {
public:
    QString OpenFileName(const QString& title, const QString& filter) override;
    QString SaveFileName(const QString& title, const QString& suggested, const QString& filter) override;
    bool AskYesNo(const QString& text) override;
    void Information(const QString& text) override;
    void Critical(const QString& text) override;
    void Browse(const QString& address) override;
    std::optional<QColor> ChooseColor(const QColor& initial) override;
    std::optional<QFont> ChooseFont(const QFont& initial) override;
    QString ChooseFolder(const QString& title, const QString& start) override;
};
