#pragma once
// The knobs of the MIDI window as numbers. The transpose and tempo knobs: a knob top from 86 to
// 150 (118 the centre) gives V from 0 to 128, and V gives the label, the semitones and the master
// tempo. The whole-song balance runs from 0 to 20000, 10000 the centre.

#include <QString>

constexpr int kKnobTop = 86;
constexpr int kKnobBottom = 150;
constexpr int kKnobCentre = 118;
constexpr int kBalanceCentre = 10000;

// V of a knob whose top stands at `top`, clamped to the knob's travel.
int KnobValue(int top);

// labTONE and labTMP: "-10" to "+10", "0" for V from 58 to 70.
QString KnobLabel(int v);

// Even semitones from -12 to +12, rounded down: V = 60 gives -2 under a label of "0".
int TransposeSemitones(int v);

// Fifteenths from 0 to 2, 1 at the centre.
double MasterTempo(int v);

// An audio song's rate from the same knob: 0 to 2.
double AudioRateOfKnob(int top);
// An audio song's key from the KEY knob: single semitones, -12 at the bottom to +12 at the top.
int AudioSemitonesOfKnob(int top);
// An audio song's tempo, its key kept, from the TEMPO knob: 0.5 at the bottom, 1 in the middle,
// 2 at the top, each step the same ratio.
double AudioTempoOfKnob(int top);

// The pan sent to every channel of a MIDI song for a whole-song balance.
int SongPanOfBalance(int value);
// An audio song's balance in hundredths of a decibel for the same knob.
int MediaBalanceOfKnob(int value);

// The level of a MIDI song for the volume slider (0 to 1), hundredths of a decibel: the slider in
// percent times 39, less 3000, so the top of the slider lifts the synthesiser by 9 dB. That
// leaves loud songs a little headroom; the engine's limiter takes the rest.
int MidiVolumeOfSlider(double value);

// A balance for people: "C" at the centre, else "L" or "R" and the share of the way out in percent.
QString BalanceText(int value, int centre);
