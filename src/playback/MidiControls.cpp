#include "playback/MidiControls.h"

#include "midi/MidiKnobs.h"
#include "midi/MidiPlayer.h"
#include "playback/PlayerState.h"

MidiPlayer* PlayingMidi(PlayerState& state)
{
    if (!state.IsMidi)
        return nullptr;
    auto* player = dynamic_cast<MidiPlayer*>(state.Session.get());
    return player && player->SongLoaded() ? player : nullptr;
}

namespace {

SongSession* PlayingAudio(PlayerState& state)
{
    return state.IsMidi ? nullptr : state.Session.get();
}

} // namespace

void ApplySongBalance(PlayerState& state, int value)
{
    state.SongBalance = value;
    if (MidiPlayer* midi = PlayingMidi(state))
        midi->SetSongPan(SongPanOfBalance(value));
    if (SongSession* audio = PlayingAudio(state))
        audio->put_Balance(MediaBalanceOfKnob(value));
}

void ApplyChannelVolume(PlayerState& state, int channel, int value)
{
    if (MidiPlayer* midi = PlayingMidi(state))
        midi->SetChannelVolume(channel, value);
}

void ApplyChannelBalance(PlayerState& state, int channel, int value)
{
    if (MidiPlayer* midi = PlayingMidi(state))
        midi->SetChannelBalance(channel, value);
}

void ApplyChannelMute(PlayerState& state, int channel, bool muted)
{
    if (MidiPlayer* midi = PlayingMidi(state))
        midi->SetChannelMute(channel, muted);
}
