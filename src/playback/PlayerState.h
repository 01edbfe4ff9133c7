#pragma once
// The state of the player: the shared flags and settings, the song that is loaded and the
// session that plays it, and the song's lyrics.

#include "audio/AudioEngine.h"
#include "audio/SongSession.h"
#include "core/CoreState.h"
#include "lyrics/LyricsData.h"
#include "midi/MidiBytes.h"
#include "midi/MidiKnobs.h"
#include "midi/MidiPlayer.h"
#include "playback/SessionClock.h"
#include "playback/SongMemory.h"
#include "tags/MP3Class.h"

#include <QString>
#include <cstdint>
#include <memory>

// The KEY and TEMPO knobs' tops, as the song that plays has them.
struct SoundKnobs {
    int keyTop = kKnobCentre;
    int tempoTop = kKnobCentre;
};

struct PlayerState : CoreState {
    QString CurrentFile;
    QString EditorFile;
    bool IsMidi = false;
    std::unique_ptr<AudioEngine> Engine;         // the one output stream; outlives every session
    SynthKeeper MidiSynths;                      // the last MIDI song's synthesiser, for the next
    std::unique_ptr<SongSession> Session;        // what plays the song; null when none plays
    std::unique_ptr<SongSession> VoiceControl;   // the recorded voice; null when none plays
    std::unique_ptr<MP3Class> CurrentInfo;       // what was read of the current song
    double CurrentPosition = 0;
    MidiFigures Midi;  // what the MIDI readers found; kept from song to song
    float PlaybackRate = 1.0f;
    int SongBalance = 10000;  // the whole-song balance knob, 0 to 20000; every song gets it
    int16_t PlayingIndex = -1;
    SoundKnobs Sound;
    std::unique_ptr<SongMemory> SongChoices;  // what was chosen for each song; null keeps nothing
    QString SongKey;                          // the song that plays, as the memory knows it

    LyricsState Lyrics;
    SessionClock Clock{*this};

    // A song is loaded: a session plays it; a song that cannot play is closed.
    bool SongOpen() const { return Session != nullptr; }
};
