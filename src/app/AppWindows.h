#pragma once
// The program's windows, each loaded by an explicit call and kept to the end of the run, and
// the wiring of their events to the commands and the transport.

#include "core/Forms.h"
#include "ui/kit/Desktop.h"
#include "ui/kit/Docking.h"

#include "remote/RemoteShared.h"

#include <QImage>
#include <QTemporaryDir>
#include <QTimer>
#include <functional>
#include <memory>

struct AppState;
struct PlayerState;
class LyricOptions;
class LyricWindow;
class PlayerCommands;
class PlayerTransport;
class PlayerWindow;
class SettingsStore;
class UserList;
class MidiEq;
class Editor;
class Dialogs;
class Equalizer;
class VoiceCommands;
class LibraryScanner;
class LibraryWindow;
class SingerQueue;
class SingersWindow;
class KaraokeEvening;
class RemoteServer;
class RemoteWindow;

class AppWindows final : public FormProvider {
public:
    AppWindows(AppState& state, SettingsStore& store, Dialogs& dialogs);
    ~AppWindows() override;

    // The transport and the commands that the windows' events reach; before any window but the
    // main one is loaded.
    void Attach(PlayerTransport& transport, PlayerCommands& commands);
    // The equaliser and the voice commands the MIDI window's microphone part works through.
    void AttachVoice(Equalizer& equalizer, VoiceCommands& voice);
    // Called with each karaoke window as it is loaded.
    std::function<void(LyricWindow&)> LyricLoaded;

    PlayerForm& Player() override;
    PlayerWindow& PlayerWidget();
    PlaylistForm* UserList() override;
    KaraokeForm* Lyric() override;
    LyricWindow* LyricWidget() { return m_lyric.get(); }
    ControlsForm* MidiEq() override;
    EditorForm* Editor() override;
    ::Editor* EditorWidget() { return m_editor.get(); }
    PlaylistForm& LoadUserList() override;
    KaraokeForm& LoadLyric() override;
    ControlsForm& LoadMidiEq() override;
    EditorForm& LoadEditor() override;
    std::vector<Form*> LoadedForms() override { return m_loaded; }
    void ShowFileInfo(const QString& format, const QString& path) override;
    void ShowPreferences(int tab) override;
    void ShowAbout() override;
    void ShowTutorial() override;
    void ShowLibrary() override;
    void ShowSingers() override;
    void ShowRemote() override;
    // Once the library is open: the evening's turn at each song's end, and a rescan of the
    // music folders in the background, after which they are watched.
    void StartLibrary();
    LibraryWindow* LibraryWidget() { return m_libraryWindow.get(); }
    SingersWindow* SingersWidget() { return m_singersWindow.get(); }
    RemoteWindow* RemoteWidget() { return m_remoteWindow.get(); }
    RemoteServer* Remote() { return m_remote.get(); }
    RemoteShared& RemoteState() { return m_remoteShared; }
    // The guests' page switched on or off, and its settings taken, as the preferences say.
    void ApplyRemote();
    KaraokeEvening* Evening() { return m_evening.get(); }
    SingerQueue* Queue() { return m_queue.get(); }
    LyricOptions* Preferences() { return m_options.get(); }

private:
    // The part of the screen the player and, when open, the playlist cover.
    QRect ShownToolsArea();
    // A window loaded: where it was last, else beside the player and the playlist, covering
    // neither where the screen has room.
    void PlaceFirstTime(QWidget& window, const QString& placeKey);
    // The library's parts started; false, with a message, when the library could not be opened.
    bool LibraryReady();
    // The music folders scanned when they are not those scanned last.
    void ScanChangedMusicFolders();
    // The page's address when it listens, else empty.
    QString RemoteAddress() const;
    // The song that plays told to the guests; the host's windows shown again after guests'
    // changes.
    void WatchRemote();
    void BlockGuest(const QString& guestId);
    // The page's QR code in the karaoke window between songs while the page listens.
    void ShowInvitation();
    // A command of a window's menu, for the player's commands once they are attached.
    void RunPlayerCommand(const QString& key);

    AppState& m_state;
    SettingsStore& m_store;
    ScreenKeeper m_screenKeeper;
    Docking m_docking;
    std::unique_ptr<PlayerWindow> m_player;
    std::unique_ptr<LyricWindow> m_lyric;
    std::unique_ptr<::UserList> m_userList;
    std::unique_ptr<::MidiEq> m_midiEq;
    Dialogs& m_dialogs;
    std::unique_ptr<::Editor> m_editor;
    std::unique_ptr<LyricOptions> m_options;
    PlayerTransport* m_transport = nullptr;
    PlayerCommands* m_commands = nullptr;
    Equalizer* m_equalizer = nullptr;
    VoiceCommands* m_voice = nullptr;
    std::vector<Form*> m_loaded;
    QTemporaryDir m_links;  // links to songs whose names are not UTF-8
    std::unique_ptr<LibraryScanner> m_scanner;
    std::vector<QByteArray> m_scannedFolders;
    std::unique_ptr<SingerQueue> m_queue;
    std::unique_ptr<KaraokeEvening> m_evening;
    std::unique_ptr<LibraryWindow> m_libraryWindow;
    std::unique_ptr<SingersWindow> m_singersWindow;
    RemoteShared m_remoteShared;
    std::unique_ptr<RemoteServer> m_remote;
    QString m_remoteFailure;
    QTimer m_remoteWatch;
    quint64 m_guestChangesSeen = 0;
    std::unique_ptr<RemoteWindow> m_remoteWindow;
    QString m_invitationAddress;
    QImage m_invitationCode;
};
