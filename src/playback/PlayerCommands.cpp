#include "playback/PlayerCommands.h"

#include "cdg/CdgSong.h"
#include "core/Dialogs.h"
#include "playback/PlayerState.h"
#include "playback/PlayerTransport.h"
#include "playback/SongKind.h"
#include "playback/VoiceCommands.h"
#include "tags/MP3Class.h"

#include <QFile>
#include <QFileInfo>
#include <map>
#include <optional>

PlayerCommands::PlayerCommands(PlayerState& state, FormProvider& forms, PlayerTransport& transport, TrayIcon& tray,
                               Dialogs& dialogs)
    : m_state(state), m_forms(forms), m_transport(transport), m_tray(tray), m_dialogs(dialogs)
{
}

void PlayerCommands::ButtonAction(PlayerButton button)
{
    const bool recording = m_state.Recording;
    if (button == PlayerButton::Record)
        m_forms.Player().SetButton(PlayerButton::Record, 0);
    switch (button) {
    case PlayerButton::Previous:
        if (!recording)
            m_transport.WSTECZ();
        break;
    case PlayerButton::Play:
        m_transport.PlaySong();
        break;
    case PlayerButton::Pause:
        m_transport.PauseSong();
        break;
    case PlayerButton::Stop:
        m_transport.StopSong();
        break;
    case PlayerButton::Next:
        if (!recording)
            m_transport.DALEJ();
        break;
    case PlayerButton::Mute:
        if (!recording)
            ToggleMute();
        break;
    case PlayerButton::Preferences:
        ShowPreferences(0);
        break;
    case PlayerButton::Open:
        OpenFileDialog();
        break;
    case PlayerButton::Controls:
        ToggleControls();
        break;
    case PlayerButton::Playlist:
        TogglePlaylist();
        break;
    case PlayerButton::Microphone:
        if (!recording && m_transport.Voice())
            m_transport.Voice()->SwitchMicrophone();
        break;
    case PlayerButton::Record:
        ToggleRecording();
        break;
    case PlayerButton::Voice:
        if (VoiceCommands* voice = m_transport.Voice())
            m_state.VoicePlaying ? voice->StopVoice() : voice->ToggleVoice();
        break;
    case PlayerButton::Editor:
        if (!recording)
            ToggleEditor();
        break;
    case PlayerButton::Karaoke:
        ToggleKaraoke();
        break;
    }
}

void PlayerCommands::ToggleRecording()
{
    if (VoiceCommands* voice = m_transport.Voice())
        m_state.Recording ? voice->StopVoiceRecord() : voice->StartVoiceRecord();
}

void PlayerCommands::ShowPreferences(int tab)
{
    if (!m_state.Recording)
        m_forms.ShowPreferences(tab);
}

void PlayerCommands::ToggleMute()
{
    m_transport.SetMuted(!m_state.Muted);
    m_forms.Player().SetButton(PlayerButton::Mute, 0);
}

void PlayerCommands::GetInfo()
{
    const QString path = m_transport.SelectedPath();
    if (path.isEmpty())
        return;
    // A disc song or a video shows what kind it is; it is read as the audio it plays.
    std::unique_ptr<ZipSong> zip;
    const QString audio = AudioOfKaraokeFile(path, zip);
    MP3Class song(m_state.Language.IsPolish);
    song.SetFilename(audio);
    const bool read = song.ReadFile();
    if (const QString kind = SongKindText(audio, song.format()); kind.startsWith(u"CDG") || kind.startsWith(u"VIDEO")) {
        m_forms.ShowFileInfo(QStringLiteral("KARAOKE"), path);
        return;
    }
    if (!read)
        return;
    const QString& format = song.format();
    static const QStringList kShown = {QStringLiteral("MP3"), QStringLiteral("OGG"), QStringLiteral("WAV"),
                                       QStringLiteral("MIDI")};
    // A MIDI file's box needs the file open for reading.
    if (!kShown.contains(format) || (format == u"MIDI" && !QFile(path).open(QIODevice::ReadOnly)))
        return;
    m_forms.ShowFileInfo(format, path);
}

void PlayerCommands::OpenFileDialog()
{
    if (!m_state.Recording && !m_state.EditorOpen)
        ChooseAndOpenFiles();
}

namespace {

// The number that follows `prefix` in a numbered command's key ("Verse3", "Recent0").
std::optional<int> NumberAfter(const QString& key, QStringView prefix)
{
    if (!key.startsWith(prefix))
        return std::nullopt;
    bool ok = false;
    const int number = key.mid(prefix.size()).toInt(&ok);
    return ok ? std::optional<int>(number) : std::nullopt;
}

// The menus' commands of the song's key, tempo and vocals.
std::optional<KeyCommand> SoundCommandOfMenu(const QString& key)
{
    static constexpr std::pair<const char*, KeyCommand> kSound[] = {
        {"KeyUp", KeyCommand::KeyUp},     {"KeyDown", KeyCommand::KeyDown},   {"TempoUp", KeyCommand::TempoUp},
        {"TempoDown", KeyCommand::TempoDown}, {"OwnSound", KeyCommand::OwnSound}, {"VocalsOff", KeyCommand::VocalsOff}};
    for (const auto& [name, command] : kSound)
        if (key == QLatin1String(name))
            return command;
    return std::nullopt;
}

} // namespace

void PlayerCommands::OpenRecent(int index)
{
    const QStringList& paths = m_state.Recent.Paths();
    if (m_state.Recording || m_state.EditorOpen || index < 0 || index >= paths.size())
        return;
    const QString path = paths[index];
    if (!QFileInfo(path).isFile()) {
        m_state.Recent.Remove(path);
        m_dialogs.Critical(MessageNamingFile(m_state.Language.GetText(QStringLiteral("SongMissing")), path));
        return;
    }
    m_transport.OpenFiles({path});
}

bool PlayerCommands::ChooseAndOpenFiles()
{
    const QString title = QStringLiteral("SWV: ") + m_state.Language.GetText(QStringLiteral("DialogAddFiles"));
    const QString filter = DialogFilter(m_state.Language.GetRawText(QStringLiteral("FilterOpenAudio")), PlayerSongPatterns());
    const QStringList files = m_dialogs.OpenFileNames(title, m_state.Theme->MusicPath, filter);
    if (files.isEmpty())
        return false;
    m_state.Theme->MusicPath = QFileInfo(files.first()).absolutePath();
    m_transport.OpenFiles(files);
    return true;
}

void PlayerCommands::ToggleKaraoke()
{
    if (m_state.KaraokeOpen) {
        if (KaraokeForm* lyric = m_forms.Lyric())
            lyric->Unload();
        m_state.KaraokeOpen = false;
        return;
    }
    KaraokeForm& lyric = m_forms.LoadLyric();
    lyric.Show();
    m_state.KaraokeOpen = true;
    if (m_state.SongOpen()) {
        // The window may have missed the song's lyrics while it was closed.
        lyric.ChangeLyrics();
        lyric.GetLastPos();
    }
}

void PlayerCommands::TogglePlaylist()
{
    PlaylistForm& list = m_forms.LoadUserList();
    m_state.PlaylistOpen = !m_state.PlaylistOpen;
    if (m_state.PlaylistOpen)
        list.Show();
    else
        list.Hide();
}

void PlayerCommands::ToggleEditor()
{
    if (m_state.EditorOpen) {
        EditorForm* editor = m_forms.Editor();
        if (!editor || editor->CloseByUser())
            m_state.EditorOpen = false;
        return;
    }
    EditorForm& editor = m_forms.LoadEditor();
    m_state.EditorOpen = true;
    editor.Open();
}

void PlayerCommands::ToggleControls()
{
    ControlsForm& controls = m_forms.LoadMidiEq();
    m_state.ControlsOpen = !m_state.ControlsOpen;
    if (m_state.ControlsOpen)
        controls.Show();
    else
        controls.Hide();
}

void PlayerCommands::SwapTimeStyle()
{
    PlayerForm& player = m_forms.Player();
    player.SetTimeStyle(player.TimeStyle() == u"CURRENT" ? QStringLiteral("ELAPSED") : QStringLiteral("CURRENT"));
}

void PlayerCommands::MenuCommand(const QString& key)
{
    static const std::map<QString, PlayerButton> kButtons = {
        {QStringLiteral("Previous"), PlayerButton::Previous},
        {QStringLiteral("Play"), PlayerButton::Play},
        {QStringLiteral("Pause"), PlayerButton::Pause},
        {QStringLiteral("Stop"), PlayerButton::Stop},
        {QStringLiteral("Next"), PlayerButton::Next},
        {QStringLiteral("Open"), PlayerButton::Open},
        {QStringLiteral("List"), PlayerButton::Playlist},
        {QStringLiteral("Microphone"), PlayerButton::Microphone},
        {QStringLiteral("Record"), PlayerButton::Record},
        {QStringLiteral("Voice"), PlayerButton::Voice},
        {QStringLiteral("Editor"), PlayerButton::Editor},
        {QStringLiteral("Karaoke"), PlayerButton::Karaoke},
        {QStringLiteral("Prefs"), PlayerButton::Preferences},
    };
    // "Control" stays inert: the dispatcher has always looked for "Controls", which no item has.
    if (const auto it = kButtons.find(key); it != kButtons.end())
        ButtonAction(it->second);
    else if (key == u"Info" && !m_state.Recording)
        GetInfo();
    else if (key == u"Library")
        m_forms.ShowLibrary();
    else if (key == u"Singers")
        m_forms.ShowSingers();
    else if (key == u"Remote")
        m_forms.ShowRemote();
    else if (key == u"Keyboard")
        ShowPreferences(5);
    else if (key == u"About" && !m_state.Recording)
        m_forms.ShowAbout();
    else if (key == u"HelpMe" && !m_state.Recording)
        m_forms.ShowTutorial();
    else if (key == u"Current")
        m_forms.Player().SetTimeStyle(QStringLiteral("CURRENT"));
    else if (key == u"Elapsed")
        m_forms.Player().SetTimeStyle(QStringLiteral("ELAPSED"));
    else if (const auto track = NumberAfter(key, u"Verse"))
        m_transport.ShowVerse(*track);
    else if (const auto sound = SoundCommandOfMenu(key))
        m_transport.ChangeSound(*sound);
    else if (key == u"RecentClear")
        m_state.Recent.Clear();
    else if (const auto index = NumberAfter(key, u"Recent"))
        OpenRecent(*index);
    else if (key == u"Exit" && CloseApp)
        CloseApp();
    else if (key == u"TrayRestore" || key == u"TrayExit")
        TrayCommand(key);
}

bool PlayerCommands::KeyDown(int key, Qt::KeyboardModifiers modifiers, KeyWindow window)
{
    const KeyBinding* binding = FindKey(window, key, modifiers);
    return binding && RunKeyCommand(binding->command);
}

bool PlayerCommands::RunKeyCommand(KeyCommand command)
{
    const bool recording = m_state.Recording;
    VoiceCommands* voice = m_transport.Voice();
    switch (command) {
    case KeyCommand::Previous:
        if (!recording)
            m_transport.WSTECZ();
        return true;
    case KeyCommand::Play:
        m_transport.PlaySong();
        return true;
    case KeyCommand::Pause:
        m_transport.PauseSong();
        return true;
    case KeyCommand::Stop:
        m_transport.StopSong();
        return true;
    case KeyCommand::Next:
        if (!recording)
            m_transport.DALEJ();
        return true;
    case KeyCommand::OpenFile:
        OpenFileDialog();
        return true;
    case KeyCommand::FileInfo:
        if (!recording)
            GetInfo();
        return true;
    case KeyCommand::Microphone:
        if (!recording && voice)
            voice->SwitchMicrophone();
        return voice != nullptr;
    case KeyCommand::Record:
        ToggleRecording();
        return voice != nullptr;
    case KeyCommand::Voice:
        // The key's test runs the other way round from the button's: with the voice playing it
        // places the voice again at the song's second, and it never starts it.
        if (voice)
            m_state.VoicePlaying ? voice->ToggleVoice() : voice->StopVoice();
        return voice != nullptr;
    case KeyCommand::Playlist:
        TogglePlaylist();
        return true;
    case KeyCommand::Library:
        m_forms.ShowLibrary();
        return true;
    case KeyCommand::Singers:
        m_forms.ShowSingers();
        return true;
    case KeyCommand::Preferences:
        ShowPreferences(0);
        return true;
    case KeyCommand::Karaoke:
        ToggleKaraoke();
        return true;
    case KeyCommand::Editor:
        ButtonAction(PlayerButton::Editor);
        return true;
    case KeyCommand::TimeMode:
        SwapTimeStyle();
        return true;
    default:
        return m_transport.ChangeSound(command);
    }
}

void PlayerCommands::MinimizeToTray()
{
    m_hiddenInTray.clear();
    if (m_state.PlaylistOpen)
        if (PlaylistForm* list = m_forms.UserList())
            m_hiddenInTray.push_back(list);
    if (m_state.KaraokeOpen)
        if (KaraokeForm* lyric = m_forms.Lyric())
            m_hiddenInTray.push_back(lyric);

    // Without a tray there is nothing to come back from: the windows go down to the task bar
    // and the song and its lyrics run on.
    if (!m_tray.Available()) {
        m_forms.Player().Minimize();
        for (Form* form : m_hiddenInTray)
            form->Minimize();
        m_hiddenInTray.clear();
        return;
    }
    m_state.InTray = true;
    m_tray.Show();
    m_forms.Player().Hide();
    for (Form* form : m_hiddenInTray)
        form->Hide();
}

void PlayerCommands::RestoreFromTray()
{
    if (!m_state.InTray)
        return;
    m_forms.Player().Show();
    for (Form* form : m_hiddenInTray)
        form->Show();
    m_hiddenInTray.clear();
    m_tray.Hide();
    KaraokeForm* lyric = m_forms.Lyric();
    if (lyric && m_state.KaraokeOpen && m_state.SongOpen())
        lyric->GetLastPos();
    m_state.InTray = false;
}

void PlayerCommands::TrayCommand(const QString& key)
{
    if (key == u"TrayRestore") {
        RestoreFromTray();
        return;
    }
    // The playlist comes back first, so that it saves where it stands.
    for (Form* form : m_hiddenInTray)
        if (form == m_forms.UserList())
            form->Show();
    m_tray.Hide();
    if (CloseApp)
        CloseApp();
}
