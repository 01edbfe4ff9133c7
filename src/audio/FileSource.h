#pragma once
// An audio file as a source of the engine. A decoder thread demuxes, decodes and resamples it
// with FFmpeg (float stereo at the device rate) into chunks handed to the real-time thread
// through a lock-free queue, seconds ahead of playback. When the singer moves the key or the
// tempo, the same thread runs the song through the stretcher and keeps only a short lead queued,
// so that every later turn of a knob is heard at once. Each chunk carries the song frame its
// first frame stands for and how far the song moves per frame. The real-time thread reads them
// at the playback rate (varispeed by interpolation) and publishes, per buffer, which stretch of
// the song it delivered and when that is heard; the interface thread turns that into the
// position, in song seconds at any key and tempo.

#include "audio/AudioSource.h"
#include "audio/HeardClock.h"
#include "audio/LatestValue.h"
#include "audio/SpscQueue.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

class FileSource final : public AudioSource {
public:
    enum State { Stopped = 0, Paused = 1, Running = 2 };

    // Opens the file and decodes its first audio; nullptr and a message when FFmpeg cannot open
    // or decode it.
    static std::shared_ptr<FileSource> Open(const std::string& path, int outputRate, std::string& error);
    ~FileSource() override;

    // Interface thread.
    void Run() { m_state = Running; }
    void Pause() { m_state = Paused; }
    void Stop() { m_state = Stopped; }
    int GetState() const { return m_state; }
    double Duration() const { return m_duration; }
    // Seconds of the song the listener hears at device time `now`; never backwards while
    // running, the seek target until the first sound after a seek, the duration at the end.
    double Position(double now);
    void Seek(double seconds);
    // 0 to 2: 1 normal, 2 twice as fast (and an octave up), 0 holds.
    void SetRate(double rate);
    // The key in semitones (-12 to 12) and the tempo with the key kept (0.5 to 2); heard within
    // a tenth of a second or so, whatever is decoded ahead. 0 and 1 play the file as it is.
    void SetSound(int semitones, double tempo);
    // Takes out the voice mixed in the centre (the vocal reducer), at every key and tempo; false
    // for a song that is not stereo.
    bool SetVocalsOff(bool off);
    bool IsStereo() const { return m_stereo; }
    double Rate() const { return m_rate; }
    // Seconds of decoded audio queued ahead of the real-time thread.
    double SecondsBuffered() const;
    // That many seconds are queued, or all that is left of the song.
    bool ReadyFor(double seconds) const;

    void Render(float* out, int frames, const BufferTiming& timing) noexcept override;

private:
    struct Decoder;
    static constexpr int kChunkFrames = 1024;
    static constexpr int kChunkCount = 128;
    static constexpr int kPrefillChunks = 8;
    // While stretching, the frames queued ahead of what plays: about 85 ms at 48 kHz.
    static constexpr int kStretchLeadFrames = 4096;
    static constexpr size_t kSpliceReserveChunks = 16;
    struct Chunk {
        uint32_t serial = 0;
        uint32_t generation = 0;
        double startSong = 0;  // the song frame of its first frame
        double step = 1;       // song frames per frame
        int frames = 0;
        bool endOfStream = false;
        float samples[kChunkFrames * 2];
    };
    struct Shaping;
    FileSource(int outputRate, std::unique_ptr<Decoder> decoder);
    void DecodeLoop();
    // Decodes one chunk into the queue (if a free one exists); false once the file has ended.
    bool FillChunk(uint32_t serial);
    bool FillStretchedChunk(uint32_t serial);
    // Decodes until frames are pending, through the vocal reducer when it is on the path; false
    // once the file has ended.
    bool DecodeInPath();
    bool FlushReducer();
    // The song frame of the first pending frame, as it comes out of the path.
    int64_t PathStart() const;
    // Decoder thread: the path in force starts over at a song frame (a seek or a splice).
    void StartPathAt(int64_t songFrame);
    void Queue(uint32_t index, uint32_t serial);
    // Song frames queued ahead of what the real-time thread has read.
    double LeadFrames() const;
    // Decoder thread: a new key or tempo, taken on the fly, or another path (the reducer or the
    // stretcher in or out) spliced into the queue.
    void FollowSound();
    // Real-time thread only.
    void FollowSeek() noexcept;
    bool NextFrame(float& left, float& right, double& songFrame) noexcept;
    bool Prime() noexcept;
    void RenderFrames(float* out, int frames) noexcept;
    // The song frame at the read position.
    double SongFrameRead() const noexcept;

    const int m_outputRate;
    std::unique_ptr<Decoder> m_decoder;
    std::unique_ptr<Shaping> m_shaping;  // decoder thread only
    double m_duration = 0;
    bool m_stereo = true;
    std::vector<Chunk> m_chunks;
    SpscQueue<uint32_t> m_filled{kChunkCount};  // decoder to real-time thread
    SpscQueue<uint32_t> m_free{kChunkCount};    // and back

    std::atomic<int> m_state{Stopped};
    std::atomic<double> m_rate{1.0};
    std::atomic<int> m_semitones{0};
    std::atomic<double> m_tempo{1.0};
    std::atomic<bool> m_vocalsOff{false};
    std::atomic<uint32_t> m_soundSerial{0};
    std::atomic<uint32_t> m_followedSound{0};  // the last SetSound the decoder thread took up
    std::atomic<double> m_queuedTo{0};          // the song frame the queue reaches
    // A splice: chunks of an earlier generation play up to this song frame, then give way.
    std::atomic<uint32_t> m_generation{0};
    std::atomic<double> m_spliceFrame{0};
    std::atomic<double> m_rtSongFrame{0};  // how far the real-time thread has read
    std::atomic<uint32_t> m_seekSerial{0};
    std::atomic<uint32_t> m_decodedSerial{0};  // serial of the last chunk the decoder queued
    std::atomic<bool> m_decodedAll{false};     // that chunk was the song's last
    std::atomic<int64_t> m_seekFrame{0};
    std::atomic<double> m_seekSeconds{0};
    LatestValue<HeardClock> m_heard;  // what the last buffer played

    // Real-time thread only: two frames, and their song frames, around the read position.
    uint32_t m_rtSerial = 0;
    double m_rtFloor = 0;
    int m_rtChunk = -1;
    int m_rtOffset = 0;
    double m_phase = 0;
    float m_a0[2] = {0, 0}, m_a1[2] = {0, 0};
    double m_pos0 = 0, m_pos1 = 0;
    uint32_t m_rtGeneration = 0;  // of the last frame read
    double m_rtLastSong = -1;     // its song frame
    int m_fadeIn = 0;             // frames of a splice's fade in still to come
    bool m_primed = false;
    bool m_ended = false;

    // Interface thread only.
    double m_lastPosition = 0;
    uint32_t m_lastSerial = 0;
};
