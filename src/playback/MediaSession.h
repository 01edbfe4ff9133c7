#pragma once
// One song on the audio engine, with the operations and units the player has always used:
// seconds for positions, hundredths of a decibel for volume (0 full, -10000 silence).

#include "audio/SongSession.h"

#include <QString>
#include <memory>

class AudioEngine;
class FileSource;

class MediaSession final : public SongSession {
public:
    explicit MediaSession(AudioEngine& engine);
    ~MediaSession() override;

    bool RenderFile(const QString& path) override;
    QString ErrorText() const override { return m_error; }

    void Run() override;
    void Pause() override;
    void Stop() override;
    int GetState() const override;

    double get_Duration() const override;
    double get_CurrentPosition() const override;
    void put_CurrentPosition(double seconds) override;
    double get_Rate() const override { return m_rate; }
    void put_Rate(double rate) override;
    void put_Volume(int hundredthsDb) override;
    int get_Volume() const override { return m_volume; }
    void put_Balance(int hundredthsDb) override;
    // The key in semitones and the tempo with the key kept; they stay for a reopened file.
    void SetSound(int semitones, double tempo);
    int Semitones() const { return m_semitones; }
    double Tempo() const { return m_tempo; }
    // The voice in the centre taken out; false, and nothing changed, for a song that is not stereo.
    bool SetVocalsOff(bool off);
    bool VocalsOff() const { return m_vocalsOff; }
    // Decoded audio waiting for the device, in seconds.
    double SecondsBuffered() const;
    // That many seconds are decoded ahead, or the rest of the song is.
    bool ReadyFor(double seconds) const;

private:
    AudioEngine& m_engine;
    std::shared_ptr<FileSource> m_source;
    QString m_error;
    double m_rate = 1.0;
    int m_semitones = 0;
    double m_tempo = 1.0;
    bool m_vocalsOff = false;
    int m_volume = 0;
    int m_balance = 0;
};

// The volume slider (0 to 1) in hundredths of a decibel: two arcs that meet with a step at 0.2.
int16_t VolumeOfSlider(double value);
// The level a song gets back after it was re-opened around a file rewrite.
int ReopenedVolume(double sliderValue, bool muted);
