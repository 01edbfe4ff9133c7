#pragma once
// The life of the program: start-up in its fixed order, the hand-over to a running instance,
// and the one orderly way out.

#include "core/Shell.h"
#include "core/ThemeClass.h"

#include <QString>
#include <functional>
#include <future>

struct AppState;
class FormProvider;
class Dialogs;
class MixerAccess;
class SettingsStore;
class SingleInstance;
class SongTransport;

// What start-up needs of the running system; tests give their own.
struct Platform {
    SettingsStore& store;
    ThemeEnvironment environment;
    ShellFolders shell;
    QString programPath;
    QString dataFolder;
    std::function<bool()> hasSoundDevice;
    std::function<void()> endProcess;
};

// The last playlist of a run, in M3U form, in the data folder.
QString PlaylistIniPath(const QString& dataFolder);
// The key, tempo and vocals chosen for each song, in the data folder, before the song library
// kept them.
QString SongChoicesPath(const QString& dataFolder);
// The song library's database in the data folder.
QString LibraryPath(const QString& dataFolder);

class Application {
public:
    Application(AppState& state, Platform platform, FormProvider& forms, SongTransport& transport,
                MixerAccess* mixer, Dialogs& messages, SingleInstance& instance);

    // Runs the start-up. False when another instance runs: this one has handed its command line
    // over and must end at once, with nothing saved.
    bool Main(const QString& commandLine);
    void CloseApp();

private:
    bool LoadPlayer();
    void FormShow();
    void RestoreWindowPositions();
    // The song library opened, the choices of the old file taken over; a library that cannot
    // be used is named in a message and the program goes on without it.
    void OpenLibrary();
    void ShowToolWindows();
    // What start-up need not wait for (the takes a killed run left, the lyrics type's
    // registration, which reads the system's MIME database) runs beside the first window; the
    // program waits for it only on the way out.
    void StartHousekeeping();

    AppState& m_state;
    Platform m_platform;
    FormProvider& m_forms;
    SongTransport& m_transport;
    MixerAccess* m_mixer;
    Dialogs& m_messages;
    SingleInstance& m_instance;
    bool m_closing = false;
    std::future<void> m_housekeeping;
};
