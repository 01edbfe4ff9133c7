#pragma once
// The desktop's dialogs, over the window that is active when they are asked for.

#include "core/Dialogs.h"

class DesktopDialogs final : public Dialogs {
public:
    void Critical(const QString& text) override;
    void Inform(const QString& text) override;
    bool AskYesNo(const QString& text) override;
    SaveChoice AskSaveChanges(const SaveQuestion& question) override;
    QString OpenFileName(const QString& title, const QString& filter) override;
    QStringList OpenFileNames(const QString& title, const QString& folder, const QString& filter) override;
    QString SaveFileName(const QString& title, const QString& suggested, const QString& filter) override;
    QString ChooseFolder(const QString& title, const QString& start) override;
    std::optional<QColor> ChooseColor(const QColor& initial) override;
    std::optional<QFont> ChooseFont(const QFont& initial) override;
    void Browse(const QString& address) override;
};
