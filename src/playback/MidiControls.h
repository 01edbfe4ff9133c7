#pragma once
// The MIDI window's channel controls applied to the song that plays: the channel strips reach
// only a MIDI song, the whole-song balance an audio song too.

class MidiPlayer;
struct PlayerState;

// The MIDI player of the song that plays; nullptr for an audio song or none.
MidiPlayer* PlayingMidi(PlayerState& state);

// 0 to 20000, 10000 the centre; kept for the songs that follow.
void ApplySongBalance(PlayerState& state, int value);

// Channels 0 to 15; volume and balance 0 to 127.
void ApplyChannelVolume(PlayerState& state, int channel, int value);
void ApplyChannelBalance(PlayerState& state, int channel, int value);
void ApplyChannelMute(PlayerState& state, int channel, bool muted);
