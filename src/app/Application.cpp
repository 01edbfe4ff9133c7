#include "app/Application.h"

#include "app/AppState.h"
#include "app/SingleInstance.h"
#include "core/Dialogs.h"
#include "core/Forms.h"
#include "core/SettingsStore.h"
#include "core/WindowPosition.h"
#include "library/LibraryChoices.h"
#include "playback/SongSound.h"
#include "voice/VoiceFiles.h"

#include <QDir>
#include <QFileInfo>
#include <algorithm>

namespace {

constexpr int kTakeIdleSeconds = 60;

} // namespace

QString PlaylistIniPath(const QString& dataFolder)
{
    return dataFolder + QStringLiteral("/Songweaver.ini");
}

QString SongChoicesPath(const QString& dataFolder)
{
    return dataFolder + QStringLiteral("/song settings.txt");
}

QString LibraryPath(const QString& dataFolder)
{
    return dataFolder + QStringLiteral("/library.db");
}

Application::Application(AppState& state, Platform platform, FormProvider& forms, SongTransport& transport,
                         MixerAccess* mixer, Dialogs& messages, SingleInstance& instance)
    : m_state(state),
      m_platform(std::move(platform)),
      m_forms(forms),
      m_transport(transport),
      m_mixer(mixer),
      m_messages(messages),
      m_instance(instance)
{
}

bool Application::Main(const QString& commandLine)
{
    m_state.CommandLine = commandLine;
    m_state.Theme = std::make_unique<ThemeClass>(m_platform.store, m_platform.environment, m_state.MonitorList);
    m_state.Theme->ApplyOnTop = [this](bool flag) {
        if (PlaylistForm* list = m_forms.UserList())
            list->SetTopMost(flag);
        if (ControlsForm* controls = m_forms.MidiEq())
            controls->SetTopMost(flag);
        m_forms.Player().SetTopMost(flag);
    };
    m_state.Language.LoadLanguage(m_platform.store);
    if (!LoadPlayer())
        return false;
    FormShow();
    if (!m_closing)
        StartHousekeeping();
    return true;
}

void Application::StartHousekeeping()
{
    // Only one player runs, and a take being recorded is written to all the time.
    const QString temp = QDir::tempPath();
    const QDateTime idleSince = QDateTime::currentDateTime().addSecs(-kTakeIdleSeconds);
    m_housekeeping = std::async(std::launch::async, [=, program = m_platform.programPath, shell = m_platform.shell] {
        RemoveLeftTakes(temp, idleSince);
        RegisterFileType(QStringLiteral(".lrs"), QStringLiteral("lyrics file"), program, shell);
    });
}

bool Application::LoadPlayer()
{
    PlayerForm& player = m_forms.Player();
    player.DockAsFirstWindow();
    const bool anotherInstance = m_instance.HandOffCommandLine(m_state.CommandLine);
    m_state.PlaybackRate = 1.0f;
    if (anotherInstance)
        return false;
    m_state.SkinName = QStringLiteral("Default");
    player.ApplySkin();
    RestoreWindowPositions();
    m_state.Recent.Read(m_platform.store);
    OpenLibrary();
    player.BuildMenus();
    ResetLyricsData(m_state.Lyrics);
    player.SetTimeText(QStringLiteral("00:00"));
    player.SetVolumeSlider(1.0);
    return true;
}

void Application::OpenLibrary()
{
    const QString path = LibraryPath(m_platform.dataFolder);
    auto library = std::make_unique<LibraryDatabase>(path);
    const LibraryOpening opening = library->Open();
    const QString message = LibraryOpeningMessage(opening, path, m_state.Language);
    if (opening.outcome == LibraryOpening::Outcome::Rebuilt)
        m_messages.Inform(message);
    else if (!message.isEmpty())
        m_messages.Critical(message);
    if (!opening.Usable())
        return;
    ImportSongChoicesFile(*library, SongChoicesPath(m_platform.dataFolder));
    m_state.Library = std::move(library);
    m_state.SongChoices = std::make_unique<LibraryChoices>(*m_state.Library);
}

void Application::RestoreWindowPositions()
{
    PlayerForm& player = m_forms.Player();
    const auto savedPlayer = ReadPlayerPosition(m_platform.store);
    if (savedPlayer) {
        player.MoveTo(savedPlayer->geometry.topLeft());
        m_state.PlaylistOpen = savedPlayer->playlistOpen;
        m_state.ControlsOpen = savedPlayer->controlsOpen;
    } else {
        m_state.PlaylistOpen = true;
    }

    if (m_state.ControlsOpen)
        m_forms.LoadMidiEq();
    PlaylistForm& list = m_forms.LoadUserList();
    if (const auto saved = ReadWindowPosition(m_platform.store, QStringLiteral("userlist position"))) {
        list.SetGeometry(*saved);
    } else if (savedPlayer) {
        list.MoveTo(DefaultPlaylistPlace(player.Geometry()));
    } else {
        const FirstRunPlaces places =
            ArrangeFirstRun(player.ScreenGeometry(), player.Geometry().size(), list.Geometry().size());
        player.MoveTo(places.player.topLeft());
        list.SetGeometry(places.playlist);
    }
}

void Application::ShowToolWindows()
{
    auto showIf = [](Form* form, bool shown) {
        if (!form)
            return;
        if (shown)
            form->Show();
        else
            form->Hide();
    };
    showIf(m_forms.UserList(), m_state.PlaylistOpen);
    showIf(m_forms.MidiEq(), m_state.ControlsOpen);
}

void Application::FormShow()
{
    PlayerForm& player = m_forms.Player();
    player.Show();
    if (!m_platform.hasSoundDevice()) {
        m_messages.Critical(m_state.Language.GetText(QStringLiteral("ErrorSoundcard")));
        CloseApp();
        return;
    }

    ShowToolWindows();
    if (m_state.Theme->KaraokeWindow) {
        m_forms.LoadLyric().Show();
        m_state.KaraokeOpen = true;
    }

    if (!SingleInstance::IsEmptyCommandLine(m_state.CommandLine)) {
        m_transport.OpenFromCommandLine(m_state.CommandLine);
    } else {
        ShowToolWindows();
        const QString lastPlaylist = PlaylistIniPath(m_platform.dataFolder);
        if (QFileInfo::exists(lastPlaylist))
            m_state.Songs.LoadSavedList(lastPlaylist);
    }

    player.Light(PlayerLamp::Stop, true);
    if (m_mixer && m_mixer->MasterMuted()) {
        m_state.Muted = true;
        player.SetButton(PlayerButton::Mute, 0);
    }
}

void Application::CloseApp()
{
    if (m_closing)
        return;
    // Changed lyrics in the editor are asked about; Cancel keeps the program running.
    if (EditorForm* editor = m_forms.Editor(); m_state.EditorOpen && editor && !editor->CloseByUser())
        return;
    m_closing = true;

    if (m_mixer && m_mixer->LevelCaptureRunning())
        m_mixer->StopLevelCapture();
    m_state.Theme->KaraokeWindow = m_state.KaraokeOpen;
    KeepSongSound(m_state);
    if (m_state.Session) {
        m_state.Session->Stop();
        m_state.Session.reset();
    }
    if (m_state.VoiceControl) {
        m_state.VoiceControl->Stop();
        m_state.VoiceControl.reset();
    }
    if (m_state.IsMidi)
        if (ControlsForm* midi = m_forms.MidiEq())
            midi->CloseDevice();
    m_state.Lyrics.PlayLyrics.clear();

    std::vector<Form*> forms = m_forms.LoadedForms();
    std::for_each(forms.rbegin(), forms.rend(), [](Form* form) { form->Unload(); });
    // The rows outlive their window: they are saved also when it was never shown.
    m_state.Songs.SaveAtExit(PlaylistIniPath(m_platform.dataFolder));

    m_state.Recent.Write(m_platform.store);
    m_state.Theme->Save();
    m_state.Theme.reset();
    m_platform.endProcess();
}
