#pragma once
// The sound card's mixer as the program has always used it, on the engine's own mixer: the
// speakers are the master, the wave line the decoded songs and the voice, the synthesiser the
// MIDI songs, the microphone's output line the live monitor and its input line the recording
// level. Levels run from 0 to 65535 and are linear in amplitude, as a card's were; bass and
// treble have 32768 flat, pan 32768 centred.

#include <QString>
#include <QStringList>

#include <array>

class AudioEngine;

// The first five recording devices, the mixers a user picks from.
QStringList EnumMixer();

class clsVolume {
public:
    static constexpr int kMixerNames = 5;

    // The engine may be absent (no sound yet): every control then reads its rest value.
    explicit clsVolume(AudioEngine* engine) : m_engine(engine) {}
    void SetEngine(AudioEngine* engine) { m_engine = engine; }

    QString MixerName() const;
    int MixerSelect() const { return m_mixer; }
    // The recording device; the microphone moves to it when it is on.
    void setMixerSelect(int device);
    void InitializeMixer(int device);
    int getRecordLine() const { return 0; }

    static constexpr int VolumeMax() { return 65535; }

    int VolumeLevel() const;
    void setVolumeLevel(int level);
    int WaveLevel() const;
    void setWaveLevel(int level);
    int MidiLevel() const;
    void setMidiLevel(int level);
    int MicOutLevel() const;
    void setMicOutLevel(int level);
    int MicInLevel() const;
    void setMicInLevel(int level);
    // -1 muted, 0 heard.
    int MicroOutMute() const;
    void setMicroOutMute(int mute);
    bool VolumeMute() const;
    void setVolumeMute(bool mute);
    bool WaveMute() const;
    void setWaveMute(bool mute);
    int VolumeLevelBass() const;
    void setVolumeLevelBass(int level);
    int VolumeLevelTreble() const;
    void setVolumeLevelTreble(int level);
    int VolumeLevelPan() const;
    void setVolumeLevelPan(int level);

private:
    AudioEngine* m_engine;
    int m_mixer = 0;
};

// A mixer level (0 to 65535, linear) in hundredths of a decibel, and back.
int HundredthsDbOfLevel(int level);
int LevelOfHundredthsDb(int hundredthsDb);
// A tone control (0 to 65535, 32768 flat) as a shelf of up to 12 dB either way, and back.
int ShelfOfLevel(int level);
int LevelOfShelf(int hundredthsDb);
