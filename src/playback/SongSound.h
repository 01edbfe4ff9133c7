#pragma once
// The key, the tempo and the vocals of the song that plays: the KEY and TEMPO knobs' places and
// the vocals switch, what they mean for a MIDI or an audio song, the steps the keys take, and
// the choice remembered for each song.

#include "playback/SongMemory.h"

struct PlayerState;

// Knob tops from 86 to 150; each reaches the session that plays and stays in the state.
void ApplyTranspose(PlayerState& state, int top);
void ApplyTempo(PlayerState& state, int top);
// False, and the switch left off, when the song is not a stereo audio song.
bool ApplyVocalsOff(PlayerState& state, bool off);

// The recorded voice keeps with the song: its tempo (and its rate, when the song's key is not
// kept), never its key.
void PaceVoice(PlayerState& state);

// The semitones and the tempo the knobs give the kind of song that plays: even semitones and
// fifteenths of the master tempo for MIDI, single semitones and the tempo (or the rate, when the
// key is not kept) for audio.
int KnobSemitones(const PlayerState& state);
double KnobTempo(const PlayerState& state);

// The TEMPO knob set where it gives `tempo` most nearly (0.5 for half speed), and applied.
void ApplySongTempo(PlayerState& state, double tempo);

// The keys' steps: a semitone up or down (two for MIDI), a step of tempo up or down.
void StepKey(PlayerState& state, int direction);
void StepTempo(PlayerState& state, int direction);

// The knobs set where they give the choice (the song as it is for a neutral one) and applied.
void ApplyChoice(PlayerState& state, const SongChoice& choice);
SongChoice ChosenSound(const PlayerState& state);

// A song opened: what was chosen for it before comes back, a new song starts as it is.
void RecallSongSound(PlayerState& state, const QString& path);
// The song is left (closed, replaced, the program ends): its choice is kept.
void KeepSongSound(PlayerState& state);
