#pragma once
// The windows and services as start-up, the two ticks and shutdown see them. Each window
// implements its own interface; a window the program does not have yet is absent (nullptr).

#include <QPoint>
#include <QRect>
#include <QString>
#include <vector>

class Form {
public:
    virtual ~Form() = default;
    virtual void Show() = 0;
    virtual void Hide() = 0;
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
    virtual void SetProgress(double fraction) = 0;
    virtual void SetVolumeSlider(double value) = 0;
    virtual void Light(int index, int state) = 0;
    virtual void SetButton(int index, int state) = 0;
};

class PlaylistForm : public Form {
public:
    virtual void SetGeometry(const QRect& geometry) = 0;
    virtual void MoveTo(QPoint topLeft) = 0;
    virtual int ListCount() const = 0;
    virtual QString ItemPath(int index) const = 0;
    virtual void LoadPlaylist(const QString& path) = 0;
    // The selected row, -1 when none is.
    virtual int SelectedIndex() const = 0;
    // Marks the row as playing and opens its song.
    virtual void fnChangeSong(int index) = 0;
    virtual void ClearList() = 0;
    // A row: the song's display text, its time ("mm:ss") and its file.
    virtual void AddItem(const QString& text, const QString& time, const QString& path) = 0;
    virtual void SetItemPath(int index, const QString& path) = 0;
    // The row drawn as the one playing.
    virtual void SetCurrentPlaying(int index) = 0;
};

class KaraokeForm : public Form {
public:
    // The tick of the lyrics display; the position comes back with the lyrics offset taken off.
    virtual void IsPlaying(double& position) = 0;
    virtual void ClearLyrics() = 0;
    // Sets the lyrics to the song's position after a jump.
    virtual void GetLastPos() = 0;
    // New lyrics are loaded: colours, pictures and the title of the new song.
    virtual void ChangeLyrics() = 0;
    // The rows and the timed picture go; the background stays.
    virtual void ClearNewLyrics() = 0;
    // Mode 1 only holds the next syllable back; any other mode also leaves the rows unlit.
    virtual void FadeLyrics(int16_t& mode) = 0;
    // The font size that makes the longest line fill the window.
    virtual void FitLyrics() = 0;
};

class ControlsForm : public Form {
public:
    // Position of the playing MIDI song in seconds.
    virtual double MidiTime() = 0;
    virtual void CloseDevice() = 0;
    // Loads a MIDI or KAR song into the MIDI player.
    virtual void ChangeMidi(const QString& file, int mode) = 0;
};

// Creates each window on first use and keeps the forms collection in load order.
class FormProvider {
public:
    virtual ~FormProvider() = default;
    virtual PlayerForm& Player() = 0;
    virtual PlaylistForm* UserList() = 0;
    virtual ControlsForm* MidiEq() = 0;
    virtual KaraokeForm* Lyric() = 0;
    virtual std::vector<Form*> LoadedForms() = 0;
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

class MessageBoxes {
public:
    virtual ~MessageBoxes() = default;
    // A message box titled "Songweaver" with the critical icon.
    virtual void Critical(const QString& text) = 0;
};
