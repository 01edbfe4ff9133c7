#include "playback/SongSound.h"

#include "midi/MidiKnobs.h"
#include "midi/MidiPlayer.h"
#include "playback/MediaSession.h"
#include "playback/MidiControls.h"
#include "playback/PlayerState.h"

#include <algorithm>
#include <cmath>

namespace {

// A tempo key moves an audio song's knob this far: some 4.4 % of tempo.
constexpr int kTempoKeyTops = 2;

MediaSession* PlayingMedia(PlayerState& state)
{
    return state.IsMidi ? nullptr : dynamic_cast<MediaSession*>(state.Session.get());
}

int SemitonesAt(const PlayerState& state, int top)
{
    return state.IsMidi ? TransposeSemitones(KnobValue(top)) : AudioSemitonesOfKnob(top);
}

double TempoAt(const PlayerState& state, int top)
{
    if (state.IsMidi)
        return MasterTempo(KnobValue(top));
    return state.Theme && !state.Theme->KeepPitch ? AudioRateOfKnob(top) : AudioTempoOfKnob(top);
}

// The top giving the value nearest `wanted`; of those that give the same, the nearest the centre.
template <typename ValueAt>
int NearestTop(double wanted, ValueAt valueAt)
{
    int best = kKnobCentre;
    for (int top = kKnobTop; top <= kKnobBottom; ++top) {
        const double miss = std::abs(valueAt(top) - wanted);
        const double bestMiss = std::abs(valueAt(best) - wanted);
        if (miss < bestMiss - 1e-9 || (miss < bestMiss + 1e-9 && std::abs(top - kKnobCentre) < std::abs(best - kKnobCentre)))
            best = top;
    }
    return best;
}

// The top of the next value along the travel, the one nearest the centre; the same top at the end.
template <typename ValueAt>
int NextValueTop(int top, int direction, ValueAt valueAt)
{
    const double now = valueAt(top);
    for (int next = top + direction; next >= kKnobTop && next <= kKnobBottom; next += direction)
        if (valueAt(next) != now)
            return NearestTop(valueAt(next), valueAt);
    return top;
}

// The tempo on the stretcher with the key kept, else as the rate, which moves the key with it.
void Pace(const PlayerState& state, MediaSession& media, int semitones)
{
    const bool keepKey = state.IsMidi || !state.Theme || state.Theme->KeepPitch;
    media.SetSound(semitones, keepKey ? KnobTempo(state) : 1.0);
    media.put_Rate(keepKey ? 1.0 : KnobTempo(state));
}

} // namespace

void ApplyTranspose(PlayerState& state, int top)
{
    state.Sound.keyTop = std::clamp(top, kKnobTop, kKnobBottom);
    if (MidiPlayer* midi = PlayingMidi(state))
        midi->SetTranspose(KnobSemitones(state));
    if (MediaSession* media = PlayingMedia(state))
        media->SetSound(KnobSemitones(state), media->Tempo());
}

void ApplyTempo(PlayerState& state, int top)
{
    state.Sound.tempoTop = std::clamp(top, kKnobTop, kKnobBottom);
    if (MidiPlayer* midi = PlayingMidi(state))
        midi->put_Rate(KnobTempo(state));
    if (MediaSession* media = PlayingMedia(state))
        Pace(state, *media, media->Semitones());
    PaceVoice(state);
}

void PaceVoice(PlayerState& state)
{
    if (auto* voice = dynamic_cast<MediaSession*>(state.VoiceControl.get()))
        Pace(state, *voice, 0);
}

bool ApplyVocalsOff(PlayerState& state, bool off)
{
    MediaSession* media = PlayingMedia(state);
    if (off && (!media || !media->SetVocalsOff(true)))
        return false;
    if (media && !off)
        media->SetVocalsOff(false);
    state.VocalsOff = off;
    return true;
}

int KnobSemitones(const PlayerState& state)
{
    return SemitonesAt(state, state.Sound.keyTop);
}

double KnobTempo(const PlayerState& state)
{
    return TempoAt(state, state.Sound.tempoTop);
}

void StepKey(PlayerState& state, int direction)
{
    ApplyTranspose(state, NextValueTop(state.Sound.keyTop, direction, [&state](int top) {
                       return double(SemitonesAt(state, top));
                   }));
}

void StepTempo(PlayerState& state, int direction)
{
    const int top = state.Sound.tempoTop;
    ApplyTempo(state, state.IsMidi ? NextValueTop(top, direction, [&state](int t) { return TempoAt(state, t); })
                                   : top + direction * kTempoKeyTops);
}

void ApplySongTempo(PlayerState& state, double tempo)
{
    ApplyTempo(state, NearestTop(tempo, [&state](int top) { return TempoAt(state, top); }));
}

void ApplyChoice(PlayerState& state, const SongChoice& choice)
{
    ApplyTranspose(state, NearestTop(choice.semitones, [&state](int top) { return double(SemitonesAt(state, top)); }));
    ApplySongTempo(state, choice.tempo);
    if (!ApplyVocalsOff(state, choice.vocalsOff))
        state.VocalsOff = false;
}

SongChoice ChosenSound(const PlayerState& state)
{
    return SongChoice{KnobSemitones(state), KnobTempo(state), state.VocalsOff};
}

void RecallSongSound(PlayerState& state, const QString& path)
{
    state.SongKey = state.SongChoices ? SongMemory::SongKey(path) : QString();
    ApplyChoice(state, state.SongChoices ? state.SongChoices->Recall(state.SongKey) : SongChoice{});
}

void KeepSongSound(PlayerState& state)
{
    if (state.SongChoices && !state.SongKey.isEmpty())
        state.SongChoices->Remember(state.SongKey, ChosenSound(state));
}
