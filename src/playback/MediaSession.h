#pragma once
// One song on the audio engine, with the operations and units the player has always used:
// seconds for positions, hundredths of a decibel for volume (0 full, -10000 silence).

#include "core/MediaGraph.h"

#include <QString>
#include <memory>

class AudioEngine;
class FileSource;

class MediaSession final : public MediaGraph {
public:
    explicit MediaSession(AudioEngine& engine);
    ~MediaSession() override;

    // Opens the file for playback, stopped at 0; false (and ErrorText) when it cannot be decoded.
    bool RenderFile(const QString& path);
    QString ErrorText() const { return m_error; }

    void Run();
    void Pause();
    void Stop() override;
    // 0 stopped, 1 paused, 2 running.
    int GetState() const;

    double get_Duration() override;
    double get_CurrentPosition() override;
    void put_CurrentPosition(double seconds);
    void put_Rate(double rate);
    void put_Volume(int hundredthsDb);
    int get_Volume() const { return m_volume; }
    void put_Balance(int hundredthsDb);
    int get_Balance() const { return m_balance; }
    // Decoded audio waiting for the device, in seconds.
    double SecondsBuffered() const;

private:
    AudioEngine& m_engine;
    std::shared_ptr<FileSource> m_source;
    QString m_error;
    double m_rate = 1.0;
    int m_volume = 0;
    int m_balance = 0;
};

// The volume slider (0 to 1) in hundredths of a decibel: two arcs that meet with a step at 0.2.
int16_t VolumeOfSlider(double value);
// The level a song gets back after it was re-opened around a file rewrite.
int ReopenedVolume(double sliderValue, bool muted);
// The path the media session opens; no short names exist here.
QString ShortPath(const QString& path);
