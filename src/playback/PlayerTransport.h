#pragma once
// The song transport of the player: the audio engine's one output, the media session of the
// song, play, pause, stop, close, seek, volume and mute, and songs handed over by the command line.

#include "core/Forms.h"
#include "core/PlaybackTicks.h"

#include <functional>
#include <memory>

struct AppState;
class MP3Class;
class MediaSession;
class PlayerWindow;

// The path a command line names: made absolute, and a lyrics file ("...lrs") stands for the
// song beside it with the extension "mp3".
QString CommandLineSongPath(const QString& commandLine);

// A song's row text: "artist - title", the title alone, or the file's display name.
QString SongListText(const MP3Class& song);

class PlayerTransport final : public SongTransport {
public:
    PlayerTransport(AppState& state, FormProvider& forms, PlayerWindow& player, MessageBoxes* messages = nullptr);

    PlaybackTicks& Ticks() { return m_ticks; }

    // Starts the output stream once. A device that cannot play is reported once on stderr and
    // replaced by the null device, so the program still runs and keeps time.
    void StartAudio();

    // A fresh media session for the file: rate, then the file, then the volume. False when
    // the file cannot be decoded; the old session is gone either way.
    bool CreateGraph(const QString& path);

    void PlaySong(bool& resume);
    void PauseSong();
    void StopSong() override;
    void CloseSong();
    // The progress slider moved by hand to `fraction` of the song.
    void SeekTo(double fraction);
    // The volume slider's value in hundredths of a decibel; 0 without a session.
    int16_t GetVolume() const;
    void VolumeMoved(double sliderValue);
    void SetMuted(bool muted);
    // Lets `rewrite` change the file while no session holds it; a session on that file comes
    // back at the same whole second, in the same state.
    void ReopenAround(const QString& path, const std::function<void()>& rewrite);

    // Loads a song: the old one closed, the file read, the audio session or the MIDI player,
    // labels and lyrics. False only when the file does not exist.
    bool OpenSong(const QString& path, bool autoplay);
    // Next and Previous over the playlist.
    void DALEJ() override;
    void WSTECZ();
    void OpenFromCommandLine(const QString& commandLine) override;
    // The player's "Open file(s)" command: the chosen files become the playlist.
    void OpenFileDialog();

private:
    MediaSession* Session() const;
    // A new session on the file at the current rate, not yet playing; nullptr when it cannot be decoded.
    std::unique_ptr<MediaSession> RenderedSession(const QString& path);
    void TransportLamps(int play, int pause, int stop);
    void OpenAudioSong(const QString& path, bool autoplay);
    void OpenMidiSong();
    void ShowSongLabels();
    void LoadSongLyrics();
    // The playlist for Next and Previous; nullptr when the song stopped or closed instead.
    PlaylistForm* ListToWalk();
    // Tries the rows from `first` towards `last` (either way); true when one opened.
    bool WalkList(PlaylistForm& list, int first, int last);

    AppState& m_state;
    FormProvider& m_forms;
    PlayerWindow& m_player;
    MessageBoxes* m_messages;
    PlaybackTicks m_ticks;
};
