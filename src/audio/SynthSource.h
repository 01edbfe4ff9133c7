#pragma once
// A MIDI song as a source of the engine: FluidSynth renders inside the engine's callback, and a
// sequencer of our own steps the song's events by the frames rendered, so MIDI time is
// frame-exact like audio time. The interface thread steers it through a lock-free command
// queue; the callback takes no lock and allocates nothing (FluidSynth is built without its
// thread-safe API, and no FluidSynth audio driver or file player exists).

#include "audio/AudioSource.h"
#include "audio/HeardClock.h"
#include "audio/LatestValue.h"
#include "audio/SpscQueue.h"

#include <array>
#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

struct SynthEvent {
    uint64_t Tick = 0;
    uint8_t Status = 0;  // a channel message
    uint8_t Data1 = 0;
    uint8_t Data2 = 0;
};

struct SynthTempo {
    uint64_t Tick = 0;
    uint32_t MicrosPerQuarter = 500000;
};

// A song for the sequencer: channel events and tempo changes in tick order.
struct SynthSong {
    int Division = 480;
    std::vector<SynthEvent> Events;
    std::vector<SynthTempo> Tempos;
    uint64_t EndTick = 0;
};

// The General MIDI SoundFont Debian installs, the first of its usual paths that exists; empty
// when none does.
std::string DefaultSoundFont();

class SynthSource final : public AudioSource {
public:
    // Loads the SoundFont (empty: DefaultSoundFont()); nullptr and a message when it cannot.
    static std::shared_ptr<SynthSource> Create(const std::string& soundFont, int sampleRate, std::string& error);
    ~SynthSource() override;

    // Interface thread, while the engine does not hold the source: the song to play, at tick 0,
    // held, untransposed at its own tempo.
    void Load(SynthSong song);
    const SynthSong& Song() const { return m_song; }

    // Interface thread: commands the callback carries out before its next buffer.
    void Run();
    void Hold();
    void SeekTick(uint64_t tick);
    void SendController(int channel, int controller, int value);
    // Semitones for every note-on from now; the drum channel (index 9) is never transposed.
    void SetTranspose(int semitones);
    // 1 the song's own tempo, 2 twice as fast.
    void SetTempoFactor(double factor);
    // A muted channel (0 to 15) starts no notes and stops those it sounds; it stays muted
    // through seeks until the next song.
    void SetChannelMute(int channel, bool muted);

    // The song tick heard at device time `now`: never past the last rendered buffer.
    double TickAt(double now) const;
    bool Running() const { return m_running.load(std::memory_order_relaxed); }
    // True once the sequencer has passed the song's last event.
    bool Ended() const { return m_ended.load(std::memory_order_relaxed); }

    void Render(float* out, int frames, const BufferTiming& timing) noexcept override;

private:
    struct Synth;
    enum class Kind : uint8_t { Run, Hold, Seek, Controller, Transpose, Tempo, Mute };
    struct Command {
        Kind kind = Kind::Run;
        int channel = 0;
        int a = 0;
        int b = 0;
        double x = 0;
        uint64_t tick = 0;
    };

    SynthSource(int sampleRate, std::unique_ptr<Synth> synth);
    void Send(const Command& command);
    // Real-time thread only.
    void Apply(const Command& command) noexcept;
    void ChaseTo(uint64_t tick) noexcept;
    void Dispatch(const SynthEvent& event) noexcept;
    double TicksPerFrame() const noexcept;
    int SpanFrames(int left) const noexcept;
    void Publish(double floorTick, double startTick, double endTick, double heardAt, double ticksPerSecond) noexcept;

    const int m_sampleRate;
    std::unique_ptr<Synth> m_synth;
    SynthSong m_song;
    SpscQueue<Command> m_commands{256};

    // Real-time thread only.
    double m_tick = 0;
    size_t m_next = 0;
    size_t m_tempoIndex = 0;
    int m_transpose = 0;
    double m_tempoFactor = 1;
    uint16_t m_mutedChannels = 0;
    bool m_rtRunning = false;
    int64_t m_appliedSeek = -1;  // the seek this buffer carried out
    double m_runFrom = 0;        // where the sound that plays without a break began: a start or a seek
    bool m_lastRunning = false;
    std::array<std::array<int8_t, 128>, 16> m_sounding{};  // the key each note-on sounded, + 1

    std::atomic<int64_t> m_pendingSeek{-1};  // a seek the callback has not played from yet
    std::atomic<bool> m_running{false};
    std::atomic<bool> m_ended{false};
    // What the last buffer played. Until that buffer is heard, the earlier ones play: the heard
    // tick is found backwards from it, down to where they began.
    LatestValue<HeardClock> m_heard;
};
