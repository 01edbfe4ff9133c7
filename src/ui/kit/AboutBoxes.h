#pragma once
// The about box (the program, its version and licence, the libraries it runs on) and the
// feedback box (an invitation to write, and the ways to do it). Their links go to the browser
// handed in.

#include <QDialog>
#include <functional>

class LanguageTable;
class SettingsStore;

using BrowseAddress = std::function<void(const QString& address)>;

class AboutBox final : public QDialog {
    Q_OBJECT
public:
    AboutBox(const LanguageTable& language, const SettingsStore& store, BrowseAddress browse,
             QWidget* parent = nullptr);
};

class FeedbackBox final : public QDialog {
    Q_OBJECT
public:
    FeedbackBox(const LanguageTable& language, const SettingsStore& store, BrowseAddress browse,
                QWidget* parent = nullptr);
};

// "Qt 6.4.2", "FFmpeg …", …: the libraries as the about box lists them.
QStringList LibraryVersions();
