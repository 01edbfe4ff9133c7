#pragma once
// The windows and services as the logic sees them. Each window implements its own interface;
// asking for a window that is not loaded returns nothing and loads nothing.

#include <QPoint>
#include <QRect>
#include <QString>
#include <QStringList>
#include <optional>
#include <vector>

// The main window's buttons, numbered as its skin places them.
enum class PlayerButton {
    Previous = 1,
    Play,
    Pause,
    Stop,
    Next,
    Mute,
    Preferences,
    Open,
    Controls,
    Playlist,
    Microphone,
    Record,
    Voice,
    Editor,
    Karaoke,
};
constexpr int kPlayerButtons = int(PlayerButton::Karaoke);

// The button of a skin number, nothing for a number no button has.
inline std::optional<PlayerButton> ButtonOfNumber(int number)
{
    if (number < 1 || number > kPlayerButtons)
        return std::nullopt;
    return PlayerButton(number);
}

// The main window's lamps.
enum class PlayerLamp { Play, Pause, Stop, Microphone, Record, Voice };

class Form {
public:
    virtual ~Form() = default;
    virtual void Show() = 0;
    virtual void Hide() = 0;
    // Down to the task bar, for desktops without a system tray.
    virtual void Minimize() = 0;
    virtual void SetTopMost(bool flag) = 0;
    // Saves the window's own position and lets go of what it holds.
    virtual void Unload() = 0;
};

class PlayerForm : public Form {
public:
    // Makes this the window that the other windows are docked to.
    virtual void DockAsFirstWindow() = 0;
    virtual void ApplySkin() = 0;
    virtual void BuildMenus() = 0;
    // Logical pixels.
    virtual QRect Geometry() const = 0;
    virtual QRect ScreenGeometry() const = 0;
    virtual void MoveTo(QPoint topLeft) = 0;
    virtual void SetTimeText(const QString& text) = 0;
    // "CURRENT" shows the position, anything else the time left.
    virtual QString TimeStyle() const = 0;
    virtual void SetTimeStyle(const QString& style) = 0;
    virtual void SetProgress(double fraction) = 0;
    // The volume slider, 0 to 1.
    virtual double VolumeValue() const = 0;
    virtual void SetVolumeSlider(double value) = 0;
    virtual void Light(PlayerLamp lamp, bool on) = 0;
    virtual void SetButton(PlayerButton button, int state) = 0;
    // Artist and title, each fitted to its label.
    virtual void PutLabels(const QString& artist, const QString& title) = 0;
    // The " Kb/s" and " Hz" texts of the song, empty when unknown.
    virtual void SetQualityLabels(const QString& bitrate, const QString& sampleRate) = 0;
};

class PlaylistForm : public Form {
public:
    // Logical pixels.
    virtual QRect Geometry() const = 0;
    virtual void SetGeometry(const QRect& geometry) = 0;
    virtual void MoveTo(QPoint topLeft) = 0;
};

class KaraokeForm : public Form {
public:
    // The tick of the lyrics display; the position comes back with the lyrics offset taken off.
    virtual void IsPlaying(double& position) = 0;
    virtual void ClearLyrics() = 0;
    // Sets the lyrics to the song's position after a jump.
    virtual void GetLastPos() = 0;
    // New lyrics are loaded: colours, pictures and the title of the new song, from its start.
    virtual void ChangeLyrics() = 0;
    // The rows and the timed picture go; the background stays.
    virtual void ClearNewLyrics() = 0;
    // Mode 1 only holds the next syllable back; any other mode also leaves the rows unlit.
    virtual void FadeLyrics(int16_t& mode) = 0;
    // The font size that makes the longest line fill the window.
    virtual void FitLyrics() = 0;
};

// The MIDI window: the channel strips of the MIDI song that plays.
class ControlsForm : public Form {
public:
    virtual void CloseDevice() = 0;
    // A MIDI or KAR song was loaded.
    virtual void ChangeMidi(const QString& file, int mode) = 0;
    // The song's verse, key, tempo or vocals changed from elsewhere: the window shows them again.
    virtual void Refresh() = 0;
};

// The lyrics editor.
class EditorForm : public Form {
public:
    // The window comes up: its place, and the lyrics of the song that plays when it has any.
    virtual void Open() = 0;
    // The window closes as when the user closes it: changed rows are asked about first. False
    // when the user keeps it open.
    virtual bool CloseByUser() = 0;
};

class FormProvider {
public:
    virtual ~FormProvider() = default;
    // The main window is loaded before anything asks for it.
    virtual PlayerForm& Player() = 0;
    // A window when it is loaded, else nullptr.
    virtual PlaylistForm* UserList() = 0;
    virtual KaraokeForm* Lyric() = 0;
    virtual ControlsForm* MidiEq() = 0;
    virtual EditorForm* Editor() = 0;
    // Loads the window when it is not loaded yet.
    virtual PlaylistForm& LoadUserList() = 0;
    virtual KaraokeForm& LoadLyric() = 0;
    virtual ControlsForm& LoadMidiEq() = 0;
    virtual EditorForm& LoadEditor() = 0;
    // The loaded windows in the order they were loaded.
    virtual std::vector<Form*> LoadedForms() = 0;
    // The information dialog of a file by its kind ("MP3", "OGG", "WAV", "MIDI", "KARAOKE" for a
    // disc song or a video), modeless over the main window.
    virtual void ShowFileInfo(const QString& format, const QString& path) = 0;
    // The preferences window, one at a time, on a tab: 0 general to 5 the keyboard.
    virtual void ShowPreferences(int tab) = 0;
    virtual void ShowAbout() = 0;
    // The song library and the singers' queue, loaded when first asked for.
    virtual void ShowLibrary() = 0;
    virtual void ShowSingers() = 0;
    // The guests' phones: the page's address, its QR code and the guests.
    virtual void ShowRemote() = 0;
    // The online tutorial in the user's browser.
    virtual void ShowTutorial() = 0;
};

// The playlist's rows as the transport walks and fills them; the list outlives its window.
class SongList {
public:
    virtual ~SongList() = default;
    virtual int ListCount() const = 0;
    virtual QString ItemPath(int index) const = 0;
    // The first selected row, -1 when none is.
    virtual int SelectedIndex() const = 0;
    virtual void ClearList() = 0;
    // A row: the song's display text, its time ("mm:ss") and its file.
    virtual void AddItem(const QString& text, const QString& time, const QString& path) = 0;
    // Files read on worker threads and appended in their order, after the rows there are.
    virtual void AppendFiles(const QStringList& paths) = 0;
    virtual void SetItemPath(int index, const QString& path) = 0;
    // A row's display text, after its tags were saved.
    virtual void SetItemText(int index, const QString& text) = 0;
    // The row drawn as the one playing.
    virtual void SetCurrentPlaying(int index) = 0;
    // The row drawn as a song whose file is not there.
    virtual void MarkMissing(int index, bool missing) = 0;
};

// Song transport as the ticks and the hand-over use it.
class SongTransport {
public:
    virtual ~SongTransport() = default;
    virtual void StopSong() = 0;
    virtual void DALEJ() = 0;
    virtual void OpenFromCommandLine(const QString& commandLine) = 0;
};

// The output mixer and the microphone level capture.
class MixerAccess {
public:
    virtual ~MixerAccess() = default;
    virtual bool MasterMuted() const = 0;
    virtual bool LevelCaptureRunning() const = 0;
    virtual void StopLevelCapture() = 0;
};

