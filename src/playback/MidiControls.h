#pragma once
// The MIDI window's controls applied to the song that plays. The channel strips and the
// transpose reach only a MIDI song; the tempo knob and the whole-song balance reach an audio
// song too, as its rate and its balance.

class MidiPlayer;
struct PlayerState;

// The MIDI player of the song that plays; nullptr for an audio song or none.
MidiPlayer* PlayingMidi(PlayerState& state);

// Knob tops from 86 to 150.
void ApplyTranspose(PlayerState& state, int top);
void ApplyTempo(PlayerState& state, int top);
// 0 to 20000, 10000 the centre; kept for the songs that follow.
void ApplySongBalance(PlayerState& state, int value);

// Channels 0 to 15; volume and balance 0 to 127.
void ApplyChannelVolume(PlayerState& state, int channel, int value);
void ApplyChannelBalance(PlayerState& state, int channel, int value);
void ApplyChannelMute(PlayerState& state, int channel, bool muted);
