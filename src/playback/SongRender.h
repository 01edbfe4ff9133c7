#pragma once
// Any song rendered off-line by the player's own path: an audio file through the decoder, the
// vocal reducer and the stretcher, a MIDI file through the synthesiser, on an engine whose device
// is stepped as fast as they go.

#include <QString>
#include <string>
#include <vector>

struct SongRenderOptions {
    int sampleRate = 44100;
    double from = 0;     // the song second it starts at
    double seconds = 0;  // seconds of sound, 0 for the rest of the song
    int semitones = 0;   // -12 to 12; even for a MIDI song, whose key knob moves by whole tones
    double tempo = 1;    // 0.5 to 2; a MIDI song takes the master tempo's nearest fifteenth
    bool vocalsOff = false;
    std::string soundFont;  // for a MIDI song; empty: the General MIDI SoundFont installed
};

struct SongRendering {
    std::vector<float> frames;  // interleaved stereo
    QString error;              // empty when the song rendered
};

SongRendering RenderSong(const QString& path, const SongRenderOptions& options);
