#pragma once
// The transpose and tempo knobs of the MIDI window: a knob top from 86 to 150 (118 the centre)
// gives V from 0 to 128, and V gives the label, the semitones and the master tempo.

#include <QString>

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
