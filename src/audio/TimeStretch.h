#pragma once
// Song audio sped up or slowed down with its key kept, and moved in key with its speed kept, as
// a stream: song frames in, played frames out, and the song frame the next one stands for.
// Rubber Band in its real-time mode does the work. It allocates, so a stretcher runs on a
// worker thread, never on the sound card's, and hands its frames on through a ring.

#include <cstdint>
#include <memory>
#include <vector>

namespace RubberBand {
class RubberBandStretcher;
}

class TimeStretch {
public:
    // Rubber Band's two engines: the lighter R2 and the finer, heavier R3.
    enum class Engine { Faster, Finer };
    static constexpr double kSlowest = 0.5;
    static constexpr double kFastest = 2.0;
    static constexpr double kSemitoneRange = 12;

    TimeStretch(int sampleRate, Engine engine);
    ~TimeStretch();
    TimeStretch(const TimeStretch&) = delete;
    TimeStretch& operator=(const TimeStretch&) = delete;

    // The song's speed, 0.5 to 2 (2 twice as fast); a value outside comes to the nearer end.
    void SetTempo(double tempo);
    double Tempo() const { return m_tempo; }
    // The key in semitones, -12 to 12, the same way.
    void SetSemitones(double semitones);
    double Semitones() const { return m_semitones; }

    // Starts over at `songFrame`, as after a seek: what was inside is dropped, and the first frame
    // pulled is that song frame's, neither late nor faded in.
    void Restart(int64_t songFrame);
    // How many song frames it needs before it can give more; at least 1.
    int FramesWanted() const;
    // Takes interleaved stereo song frames.
    void Push(const float* frames, int count);
    // The song has no more frames: what the stretcher still holds comes out, up to the song's end.
    void Finish();
    // Gives up to `count` interleaved stereo frames as they play; returns how many it gave.
    int Pull(float* out, int count);
    // The song frame the next pulled frame stands for: each frame pulled moves it on by the
    // tempo in force.
    double SongFrame() const { return m_songFrame; }

private:
    static constexpr int kBlockFrames = 1024;
    // Discards what the stretcher holds back at a start, once it is there.
    void DropStartDelay();

    std::unique_ptr<RubberBand::RubberBandStretcher> m_stretcher;
    double m_tempo = 1;
    double m_semitones = 0;
    double m_songFrame = 0;
    int64_t m_startDelay = 0;  // frames still to drop since the last restart
    double m_songEnd = 0;      // the song frame after the last one pushed
    bool m_finished = false;
    std::vector<float> m_left, m_right;
};
