#include "app/AppWindows.h"

#include "app/AppState.h"
#include "core/Dialogs.h"
#include "core/SiteAddresses.h"
#include "core/WindowPosition.h"
#include "playback/PlayerCommands.h"
#include "playback/PlayerTransport.h"
#include "ui/editor/Editor.h"
#include "ui/info/InfoDialogs.h"
#include "ui/karaoke/LyricWindow.h"
#include "ui/kit/AboutBoxes.h"
#include "ui/kit/Desktop.h"
#include "ui/midi/MidiEq.h"
#include "ui/options/LyricOptions.h"
#include "ui/player/PlayerServices.h"
#include "ui/player/PlayerWindow.h"
#include "ui/playlist/UserList.h"

#include "library/KaraokeEvening.h"
#include "library/LibraryPaths.h"
#include "library/LibraryScanner.h"
#include "library/LibrarySongs.h"
#include "library/SingerQueue.h"
#include "ui/library/LibraryWindow.h"
#include "ui/library/SingersWindow.h"
#include "remote/GuestBook.h"
#include "remote/QrCode.h"
#include "remote/RemoteServer.h"
#include "ui/remote/RemoteWindow.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QMessageBox>
#include <QTimer>

namespace {

// How long after start-up the music folders are looked over again.
constexpr int kStartScanDelayMs = 3000;
// How often the song that plays is told to the guests and their changes looked for.
constexpr int kRemoteWatchMs = 500;

std::vector<QByteArray> MusicFoldersOf(const ThemeClass& theme)
{
    std::vector<QByteArray> folders;
    for (const QString& folder : theme.LibraryFolders.split(u'\n', Qt::SkipEmptyParts)) {
        if (!folder.trimmed().isEmpty())
            folders.push_back(RawPath(QDir(folder.trimmed()).absolutePath()));
    }
    return folders;
}

} // namespace

AppWindows::AppWindows(AppState& state, SettingsStore& store, Dialogs& dialogs)
    : m_state(state), m_store(store), m_dialogs(dialogs)
{
    m_remoteWatch.setInterval(kRemoteWatchMs);
    QObject::connect(&m_remoteWatch, &QTimer::timeout, [this] { WatchRemote(); });
}

AppWindows::~AppWindows() = default;

void AppWindows::Attach(PlayerTransport& transport, PlayerCommands& commands)
{
    m_transport = &transport;
    m_commands = &commands;
    ConnectPlayerWindow(PlayerWidget(), commands, transport);
}

PlayerWindow& AppWindows::PlayerWidget()
{
    if (!m_player) {
        m_player = std::make_unique<PlayerWindow>(m_state, m_store, m_docking);
        m_loaded.push_back(m_player.get());
    }
    return *m_player;
}

PlayerForm& AppWindows::Player()
{
    return PlayerWidget();
}

KaraokeForm* AppWindows::Lyric()
{
    return m_lyric.get();
}

KaraokeForm& AppWindows::LoadLyric()
{
    if (!m_lyric) {
        m_lyric = std::make_unique<LyricWindow>(m_state, m_state.Lyrics, m_store, m_state.Clock);
        m_lyric->OpenBeside(ShownToolsArea());
        m_lyric->Midi = &m_state.Midi;
        m_lyric->PlayerCommand = [this](const QString& key) { RunPlayerCommand(key); };
        QObject::connect(m_lyric.get(), &LyricWindow::keyPressed, m_lyric.get(), [this](int key, Qt::KeyboardModifiers modifiers) {
            if (m_commands)
                m_commands->KeyDown(key, modifiers, KeyWindow::Karaoke);
        });
        m_loaded.push_back(m_lyric.get());
        if (LyricLoaded)
            LyricLoaded(*m_lyric);
    }
    return *m_lyric;
}

void AppWindows::RunPlayerCommand(const QString& key)
{
    if (m_commands)
        m_commands->MenuCommand(key);
}

QRect AppWindows::ShownToolsArea()
{
    const QRect player = Player().Geometry();
    return m_userList && m_state.PlaylistOpen ? player | m_userList->Geometry() : player;
}

PlaylistForm* AppWindows::UserList()
{
    return m_userList.get();
}

PlaylistForm& AppWindows::LoadUserList()
{
    if (!m_userList) {
        m_userList = std::make_unique<::UserList>(m_state, m_state.Songs, m_store, m_docking, *m_transport, m_dialogs);
        m_userList->ShowInfo = [this] { m_commands->GetInfo(); };
        m_loaded.push_back(m_userList.get());
    }
    return *m_userList;
}

ControlsForm* AppWindows::MidiEq()
{
    return m_midiEq.get();
}

void AppWindows::AttachVoice(Equalizer& equalizer, VoiceCommands& voice)
{
    m_equalizer = &equalizer;
    m_voice = &voice;
    if (m_midiEq)
        m_midiEq->AttachVoice(equalizer, voice);
}

ControlsForm& AppWindows::LoadMidiEq()
{
    if (!m_midiEq) {
        m_midiEq = std::make_unique<::MidiEq>(m_state, m_store, m_docking);
        m_midiEq->PlayerCommand = [this](const QString& key) { RunPlayerCommand(key); };
        if (m_equalizer && m_voice)
            m_midiEq->AttachVoice(*m_equalizer, *m_voice);
        const auto saved = ReadWindowPosition(m_store, QStringLiteral("eq position"));
        const QPoint place = saved ? saved->topLeft() : DefaultControlsPlace(Player().Geometry(), m_midiEq->size());
        PlaceOnScreen(*m_midiEq, QRect(place, m_midiEq->size()));
        m_loaded.push_back(m_midiEq.get());
    }
    return *m_midiEq;
}

EditorForm* AppWindows::Editor()
{
    return m_editor.get();
}

EditorForm& AppWindows::LoadEditor()
{
    if (!m_editor) {
        m_editor = std::make_unique<::Editor>(m_state, m_store, *this, *m_transport, *m_commands, m_dialogs);
        m_loaded.push_back(m_editor.get());
    }
    return *m_editor;
}

void AppWindows::ShowFileInfo(const QString& format, const QString& path)
{
    QWidget* owner = &PlayerWidget();
    const bool polish = m_state.Language.IsPolish;
    QDialog* dialog = nullptr;
    if (format == u"MP3") {
        InfoContext context;
        context.Polish = polish;
        context.List = &m_state.Songs;
        context.Release = [this](const QString& file, const std::function<void()>& rewrite) {
            m_transport->ReopenAround(file, rewrite);
        };
        context.Critical = [owner](const QString& text, const QString& title) {
            QMessageBox::critical(owner, title, text);
        };
        dialog = new Id3InfoDialog(path, std::move(context), owner);
    } else if (format == u"OGG") {
        dialog = new OggInfoDialog(path, polish, owner);
    } else if (format == u"WAV") {
        dialog = new WavInfoDialog(path, polish, owner);
    } else if (format == u"KARAOKE") {
        dialog = new KaraokeInfoDialog(path, polish, owner);
    } else if (format == u"MIDI") {
        // One MIDI box at a time.
        if (owner->findChild<MidiInfoDialog*>())
            return;
        dialog = new MidiInfoDialog(path, polish, owner);
    }
    if (!dialog)
        return;
    dialog->setWindowFlag(Qt::Dialog);
    dialog->show();
}

void AppWindows::ShowPreferences(int tab)
{
    if (!m_options) {
        m_options = std::make_unique<LyricOptions>(m_state, m_store, m_dialogs, &PlayerWidget());
        m_options->setWindowFlag(Qt::Dialog);
        m_options->Applied = [this] {
            if (m_lyric)
                m_lyric->ApplySettings();
            ScanChangedMusicFolders();
            ApplyRemote();
        };
    }
    m_options->ShowTab(tab);
    m_options->show();
    m_options->raise();
    m_options->activateWindow();
}

void AppWindows::ShowAbout()
{
    AboutBox box(m_state.Language, m_store, [this](const QString& address) { m_dialogs.Browse(address); },
                 &PlayerWidget());
    box.exec();
}

void AppWindows::ShowTutorial()
{
    m_dialogs.Browse(TutorialAddress(m_store, m_state.Language.IsPolish));
}

void AppWindows::StartLibrary()
{
    if (m_scanner || !m_state.Library || !m_state.Library->IsOpen() || !m_transport)
        return;
    m_scanner = std::make_unique<LibraryScanner>(m_state.Library->Path(), m_state.Language.IsPolish, m_links.path());
    m_queue = std::make_unique<SingerQueue>(*m_state.Library);
    m_evening = std::make_unique<KaraokeEvening>(*m_queue, m_state, *m_transport, *this, m_links.path());
    m_transport->Ticks().SongEnded = [this] { return m_evening->SongEnded(); };
    ApplyRemote();
    QTimer::singleShot(kStartScanDelayMs, m_scanner.get(), [this] { ScanChangedMusicFolders(); });
}

void AppWindows::PlaceFirstTime(QWidget& window, const QString& placeKey)
{
    if (const auto saved = ReadWindowPosition(m_store, placeKey)) {
        PlaceOnScreen(window, *saved);
        return;
    }
    const QRect tools = ShownToolsArea();
    PlaceOnScreen(window, PlaceBeside(tools, window.size(), AvailableScreenAt(tools)));
}

bool AppWindows::LibraryReady()
{
    StartLibrary();
    if (!m_scanner)
        m_dialogs.Inform(m_state.Language.GetText(QStringLiteral("LibraryClosed")));
    return m_scanner != nullptr;
}

void AppWindows::ShowLibrary()
{
    if (!LibraryReady())
        return;
    if (!m_libraryWindow) {
        m_libraryWindow =
            std::make_unique<LibraryWindow>(m_state, *m_state.Library, *m_scanner, *m_queue, m_store, m_docking);
        m_libraryWindow->Openable = [this](const QByteArray& path) { return OpenablePath(path, m_links.path()); };
        m_libraryWindow->MusicFolders = [this] { return MusicFoldersOf(*m_state.Theme); };
        m_libraryWindow->Play = [this](const LibraryHit& song) {
            const QString path = OpenablePath(song.path, m_links.path());
            if (path.isEmpty() || !m_transport->OpenSong(path, true))
                return;
            m_state.Library->Write([&] {
                return RecordPlay(m_state.Library->Db(), song.path, song.title, song.artist, QString(),
                                  QDateTime::currentSecsSinceEpoch());
            });
            m_libraryWindow->Refresh();
        };
        m_libraryWindow->AddToPlaylist = [this](const QStringList& paths) {
            LoadUserList();
            m_state.Songs.AppendFiles(paths);
        };
        m_libraryWindow->QueueChanged = [this] {
            if (m_singersWindow)
                m_singersWindow->Refresh();
        };
        PlaceFirstTime(*m_libraryWindow, QLatin1String(LibraryWindow::kPlaceKey));
        m_loaded.push_back(m_libraryWindow.get());
    }
    m_libraryWindow->Show();
}

void AppWindows::ShowSingers()
{
    if (!LibraryReady())
        return;
    if (!m_singersWindow) {
        m_singersWindow =
            std::make_unique<SingersWindow>(m_state, *m_queue, *m_evening, *m_state.Library, m_store, m_docking);
        m_singersWindow->BlockGuest = [this](const QString& guestId) { BlockGuest(guestId); };
        PlaceFirstTime(*m_singersWindow, QLatin1String(SingersWindow::kPlaceKey));
        m_loaded.push_back(m_singersWindow.get());
    }
    m_singersWindow->Show();
}

void AppWindows::ScanChangedMusicFolders()
{
    if (!m_scanner || !m_state.Theme)
        return;
    std::vector<QByteArray> folders = MusicFoldersOf(*m_state.Theme);
    if (folders == m_scannedFolders)
        return;
    m_scannedFolders = folders;
    m_scanner->Scan(folders);
}

void AppWindows::ApplyRemote()
{
    if (!m_state.Theme || !m_state.Library || !m_state.Library->IsOpen())
        return;
    ThemeClass& theme = *m_state.Theme;
    if (!ValidPin(theme.RemotePin))
        theme.RemotePin = NewPin();
    RemoteSettings settings;
    settings.pin = theme.RemotePin;
    settings.approveEach = theme.RemoteApprove;
    settings.requestsPerMinute = theme.RemoteRequestsPerMinute;
    settings.songsPerGuest = theme.RemoteSongsPerGuest;
    m_remoteShared.SetSettings(settings);

    const bool listensAsAsked = m_remote && m_remote->Listening().port == theme.RemotePort;
    if (!theme.RemoteOn) {
        m_remote.reset();
        m_remoteFailure.clear();
    } else if (!listensAsAsked) {
        m_remote.reset();
        auto remote = std::make_unique<RemoteServer>(m_state.Library->Path(), m_remoteShared);
        const RemoteListening listening = remote->Start(LocalNetworkAddresses(), quint16(theme.RemotePort));
        m_remoteFailure = listening.Listening() ? QString() : listening.error;
        if (listening.Listening())
            m_remote = std::move(remote);
    }
    if (m_remote)
        m_remoteWatch.start();
    else
        m_remoteWatch.stop();
    ShowInvitation();
    if (m_remoteWindow)
        m_remoteWindow->ShowState(RemoteAddress(), theme.RemotePin, m_remoteFailure);
}

QString AppWindows::RemoteAddress() const
{
    return m_remote ? RemoteAddressText(m_remote->Listening().addresses, m_remote->Listening().port) : QString();
}

void AppWindows::WatchRemote()
{
    NowPlaying now;
    if (m_evening && m_evening->PlayingTurn()) {
        const Turn& turn = *m_evening->Current();
        now = {turn.song.title, turn.song.artist, turn.singer.name};
    } else if (m_state.SongOpen()) {
        const std::optional<LibraryHit> song = SongAt(m_state.Library->Db(), RawPath(m_state.CurrentFile));
        now.title = song ? song->title : QFileInfo(m_state.CurrentFile).completeBaseName();
        now.artist = song ? song->artist : QString();
    }
    if (!(now == m_remoteShared.Now()))
        m_remoteShared.SetNowPlaying(now);

    const quint64 changes = m_remoteShared.GuestChanges();
    if (changes != m_guestChangesSeen) {
        m_guestChangesSeen = changes;
        if (m_singersWindow)
            m_singersWindow->Refresh();
    }
    if (m_remoteWindow && m_remoteWindow->isVisible())
        m_remoteWindow->RefreshGuests();
    ShowInvitation();
}

void AppWindows::ShowInvitation()
{
    if (!m_lyric)
        return;
    const QString address = RemoteAddress();
    if (address != m_invitationAddress) {
        m_invitationAddress = address;
        m_invitationCode = address.isEmpty() ? QImage() : QrCodeImage(address, 1);
    }
    const bool betweenSongs = !m_state.SongOpen() || (m_evening && m_evening->CountingDown());
    m_lyric->ShowInvitation(betweenSongs ? m_invitationCode : QImage(),
                            m_state.Language.GetText(QStringLiteral("RemoteScanHint")).arg(address, m_state.Theme->RemotePin));
}

void AppWindows::BlockGuest(const QString& guestId)
{
    if (guestId.isEmpty())
        return;
    m_remoteShared.Block(guestId);
    if (m_queue)
        m_queue->RemoveGuest(guestId);
    if (m_singersWindow)
        m_singersWindow->Refresh();
}

void AppWindows::ShowRemote()
{
    if (!LibraryReady())
        return;
    if (!m_remoteWindow) {
        m_remoteWindow = std::make_unique<RemoteWindow>(m_state.Language, m_remoteShared, m_store);
        m_remoteWindow->BlockGuest = [this](const QString& guestId) { BlockGuest(guestId); };
        PlaceFirstTime(*m_remoteWindow, QLatin1String(RemoteWindow::kPlaceKey));
    }
    m_remoteWindow->ShowState(RemoteAddress(), m_state.Theme->RemotePin, m_remoteFailure);
    m_remoteWindow->RefreshGuests();
    m_remoteWindow->show();
    m_remoteWindow->raise();
    m_remoteWindow->activateWindow();
}
