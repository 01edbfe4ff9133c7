#pragma once
// What the main window's buttons, menus and keys do: the button table, the menu keys, the
// keyboard table in its order, the refusals while recording or editing, and the tray.

#include "core/Forms.h"
#include "core/KeyTable.h"

#include <QStringList>
#include <functional>
#include <qnamespace.h>

struct PlayerState;
class Dialogs;
class PlayerTransport;

// The icon in the desktop's system tray.
class TrayIcon {
public:
    virtual ~TrayIcon() = default;
    // False on a desktop without a system tray.
    virtual bool Available() const = 0;
    virtual void Show() = 0;
    virtual void Hide() = 0;
};

class PlayerCommands final {
public:
    PlayerCommands(PlayerState& state, FormProvider& forms, PlayerTransport& transport, TrayIcon& tray,
                   Dialogs& dialogs);

    // The program's orderly way out.
    std::function<void()> CloseApp;

    void ButtonAction(PlayerButton button);
    void MenuCommand(const QString& key);
    // True when the key matched a row of the key table and its command exists; the karaoke
    // window's keys come here too.
    bool KeyDown(int key, Qt::KeyboardModifiers modifiers, KeyWindow window = KeyWindow::Player);
    // A player command of the key table, from whichever window's key reached it.
    bool RunKeyCommand(KeyCommand command);
    // The information dialog of the playlist's selected row, by the kind of its file.
    void GetInfo();
    // The player's "Open file(s)" command.
    void OpenFileDialog();
    // The open dialog and the load behind that command, whatever window asks; false when cancelled.
    bool ChooseAndOpenFiles();
    // A song of the recent files by its place in the list, 0 the latest.
    void OpenRecent(int index);

    void MinimizeToTray();
    void RestoreFromTray();
    // The tray's own commands: "TrayRestore" and "TrayExit".
    void TrayCommand(const QString& key);

private:
    void ToggleKaraoke();
    void TogglePlaylist();
    void ToggleControls();
    void ToggleEditor();
    void SwapTimeStyle();
    void ToggleMute();
    void ToggleRecording();
    // The preferences, the about box and the tutorial wait while the voice is recorded.
    void ShowPreferences(int tab);

    PlayerState& m_state;
    FormProvider& m_forms;
    PlayerTransport& m_transport;
    TrayIcon& m_tray;
    Dialogs& m_dialogs;
    std::vector<Form*> m_hiddenInTray;
};
