#include "playback/MidiControls.h"

#include "midi/MidiKnobs.h"
#include "midi/MidiPlayer.h"
#include "playback/MediaSession.h"
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

MediaSession* PlayingMedia(PlayerState& state)
{
    return dynamic_cast<MediaSession*>(PlayingAudio(state));
}

} // namespace

void ApplyTranspose(PlayerState& state, int top)
{
    if (MidiPlayer* midi = PlayingMidi(state))
        midi->SetTranspose(TransposeSemitones(KnobValue(top)));
    if (MediaSession* audio = PlayingMedia(state))
        audio->SetSound(AudioSemitonesOfKnob(top), audio->Tempo());
}

void ApplyTempo(PlayerState& state, int top)
{
    if (MidiPlayer* midi = PlayingMidi(state))
        midi->put_Rate(MasterTempo(KnobValue(top)));
    if (MediaSession* media = PlayingMedia(state); media && state.Theme->KeepPitch)
        media->SetSound(media->Semitones(), AudioTempoOfKnob(top));
    else if (SongSession* audio = PlayingAudio(state))
        audio->put_Rate(AudioRateOfKnob(top));
}

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
