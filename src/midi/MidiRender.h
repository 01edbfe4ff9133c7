#pragma once
// A MIDI song rendered to sound off-line by the player's own path: the MIDI player as a session
// of an engine on a device stepped as fast as the synthesiser goes.

#include <QString>
#include <string>
#include <vector>

struct MidiRenderOptions {
    std::string soundFont;  // empty: the General MIDI SoundFont installed
    int sampleRate = 44100;
    double from = 0;     // the song second it starts at
    double seconds = 0;  // 0: the whole song
    int semitones = 0;   // as the key knob gives them: even, -12 to 12
    double tempo = 1;    // the master tempo, in the knob's fifteenths
    std::vector<int> mutedChannels;  // 0 to 15
    double slider = 1;  // the volume slider, 0 to 1: at its top, as the player starts
};

struct MidiRendering {
    std::vector<float> frames;  // interleaved stereo
    QString error;              // empty when the song rendered
};

// The master tempo the knob comes nearest to: whole fifteenths from 1/15 to 2.
double NearestMasterTempo(double factor);

MidiRendering RenderMidiSong(const QString& path, const MidiRenderOptions& options);
