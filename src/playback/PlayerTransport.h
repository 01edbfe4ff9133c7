#pragma once
// The song transport of the player: the audio engine's one output, the session that plays the
// song, play, pause, stop, close, seek, volume and mute, the loading of songs and the walks
// of Next and Previous over the playlist.

#include "cdg/CdgSong.h"
#include "core/Forms.h"
#include "core/KeyTable.h"
#include "formats/TimedLyrics.h"
#include "lyrics/LyricsLoader.h"
#include "playback/PlaybackTicks.h"

#include <functional>
#include <memory>

struct PlayerState;
class Dialogs;
class AudioEngine;
class MP3Class;
class SongSession;
class VoiceCommands;

// The path a command line names: made absolute, and a lyrics file ("...lrs") stands for the
// song beside it with the extension "mp3".
QString CommandLineSongPath(const QString& commandLine);

// A song's row text: "artist - title", the title alone, or the file's display name.
QString SongListText(const MP3Class& song);

// Makes the session that plays a kind of song; nullptr where this build has nothing that plays
// the kind (MIDI songs then load without sound).
using SessionFactory = std::function<std::unique_ptr<SongSession>(PlayerState& state)>;
// Audio files on the engine's FFmpeg file source, MIDI files on its synthesiser.
std::unique_ptr<SongSession> BuiltInSessions(PlayerState& state);

class PlayerTransport final : public SongTransport {
public:
    PlayerTransport(PlayerState& state, FormProvider& forms, SongList& list, Dialogs* messages = nullptr,
                    SessionFactory sessions = BuiltInSessions);

    PlaybackTicks& Ticks() { return m_ticks; }
    // Recording and the voice's playback; without them the voice commands are refused.
    void AttachVoice(VoiceCommands& voice) { m_voice = &voice; }
    VoiceCommands* Voice() const { return m_voice; }

    // Starts the output stream once. A device that cannot play is reported once on stderr and
    // replaced by the null device, so the program still runs and keeps time.
    void StartAudio();

    // Starts the song, or goes on where a paused one stands. With nothing loaded it opens the
    // playlist's selected row.
    void PlaySong();
    void PauseSong();
    void StopSong() override;
    void CloseSong();
    // The progress slider moved by hand to `fraction` of the song.
    void SeekTo(double fraction);
    // A jump to `seconds` of the song; the voice that plays along and the lyrics follow.
    void SeekToSeconds(double seconds);
    // The volume slider's value in hundredths of a decibel; 0 without a session.
    int16_t GetVolume() const;
    // The level of the song that plays for a reading of the volume slider.
    int16_t SessionVolume(double sliderValue) const;
    void VolumeMoved(double sliderValue);
    void SetMuted(bool muted);
    // Lets `rewrite` change the file while no session holds it; a session on that file comes
    // back at the same whole second, in the same state.
    void ReopenAround(const QString& path, const std::function<void()>& rewrite);
    // The file of the playlist's selected row; empty without a selection.
    QString SelectedPath() const;

    // Loads a song: the old one closed, the file read, its session, labels and lyrics. False
    // only when the file does not exist, or while another song is still being opened. An
    // UltraStar song file opens the audio it names, with its words.
    bool OpenSong(const QString& songFile, bool autoplay);
    // The font, code page, tags and refit of the current song for a lyrics load.
    LyricsEnvironment LyricsEnvironmentOfSong();
    // Marks the playlist row as playing, then opens and plays its song; a song whose file is
    // not there is named in a message.
    void fnChangeSong(int index);
    // Next and Previous over the playlist.
    void DALEJ() override;
    void WSTECZ();
    void OpenFromCommandLine(const QString& commandLine) override;
    // The files chosen in the open dialog become the playlist; the first plays at once.
    void OpenFiles(const QStringList& files);
    // The words of another verse of the MIDI song that plays, by its track, from where it is.
    void ShowVerse(int track);
    // The key, tempo or vocals of the song that plays, moved by a key or a menu; false for a
    // command of another kind. A song whose vocals cannot go says so.
    bool ChangeSound(KeyCommand command);
    // The zip file a song plays from when `audio` is the copy taken out of it; empty otherwise.
    QString ZipOfSong(const QString& audio) const;
    // The song plays at `tempo` (0.5, 0.75, 1), its key kept, as the editor's speed buttons ask.
    void PlayAtSpeed(double tempo);

private:
    PlayerForm& Player() { return m_forms.Player(); }
    // A fresh session on the file, rate first, then the file, then the volume. False when the
    // file cannot be played; the old session is gone either way.
    bool CreateGraph(const QString& path);
    std::unique_ptr<SongSession> RenderedSession(const QString& path, bool& failed);
    // One of the play, pause and stop lamps.
    void TransportLamps(PlayerLamp lit);
    void StopVoice();
    void OpenAudioSong(const QString& path, bool autoplay);
    // The audio a song file stands for: itself, the one a `.cdg` file draws for, the one a zip
    // holds (taken out for as long as the song is open), or the one an UltraStar file names,
    // whose words are then kept for the load.
    QString AudioOfSongFile(const QString& path);
    QString ZipFaultText(const ZipSong& zip) const;
    void OpenMidiSong(const QString& path);
    // Names the song that cannot play and why: empty, no song the program knows, damaged, or
    // what keeps its whole kind from playing.
    void ReportUnplayable(const QString& path);
    QString UnplayableReason(const QString& path) const;
    void ShowSongLabels();
    void LoadSongLyrics();
    // The disc graphics beside an audio song, shown instead of its words; the karaoke window
    // names a graphics file it cannot show.
    void ShowGraphicsOf(const QString& path);
    // The moving picture of a video song, under its words; the karaoke window names a video
    // whose picture cannot be decoded.
    void ShowVideoOf(const QString& path);
    // The playlist for Next and Previous; false when the song stopped or closed instead.
    bool MayWalkList();
    // Tries the rows from `first` towards `last` (either way); true when one opened.
    bool WalkList(int first, int last);
    // Opens and plays a row's song, marking the row when its file is not there.
    bool OpenListedSong(int index);

    PlayerState& m_state;
    FormProvider& m_forms;
    SongList& m_list;
    Dialogs* m_messages;
    SessionFactory m_sessions;
    VoiceCommands* m_voice = nullptr;
    PlaybackTicks m_ticks;
    bool m_opening = false;
    std::optional<TimedLyrics> m_songFileLyrics;  // the words of an UltraStar file being opened
    std::unique_ptr<ZipSong> m_zipSong;            // the pair of the zip song that is open
    QString m_songFileFault;  // why the zip being opened holds no song to play
    QString m_unavailableKind;  // the message of a session that could play no song of its kind
    bool m_unavailableReported = false;
};
