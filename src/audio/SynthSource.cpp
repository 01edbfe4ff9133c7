#include "audio/SynthSource.h"

#include <fluidsynth.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <mutex>

namespace {

constexpr int kChunkFrames = 64;
constexpr int kDrumChannel = 9;
constexpr double kSynthGain = 0.4;

void IgnoreFluidLog(int, const char*, void*) {}

void QuietFluidSynth()
{
    static std::once_flag once;
    std::call_once(once, [] {
        for (int level = FLUID_PANIC; level < LAST_LOG_LEVEL; ++level)
            fluid_set_log_function(level, IgnoreFluidLog, nullptr);
    });
}

struct SettingsFreer {
    void operator()(fluid_settings_t* settings) const { delete_fluid_settings(settings); }
};
struct SynthFreer {
    void operator()(fluid_synth_t* synth) const { delete_fluid_synth(synth); }
};

} // namespace

struct SynthSource::Synth {
    std::unique_ptr<fluid_settings_t, SettingsFreer> settings;
    std::unique_ptr<fluid_synth_t, SynthFreer> synth;  // destroyed before its settings
};

std::string DefaultSoundFont()
{
    for (const char* path : {"/usr/share/sounds/sf2/default-GM.sf2", "/usr/share/sounds/sf2/FluidR3_GM.sf2",
                             "/usr/share/sounds/sf2/TimGM6mb.sf2", "/usr/share/soundfonts/default.sf2"}) {
        std::error_code error;
        if (std::filesystem::is_regular_file(path, error))
            return path;
    }
    return {};
}

std::shared_ptr<SynthSource> SynthSource::Create(const std::string& soundFont, int sampleRate, std::string& error)
{
    QuietFluidSynth();
    const std::string path = soundFont.empty() ? DefaultSoundFont() : soundFont;
    if (path.empty()) {
        error = "no General MIDI SoundFont is installed";
        return nullptr;
    }
    auto synth = std::make_unique<Synth>();
    synth->settings.reset(new_fluid_settings());
    if (!synth->settings) {
        error = "FluidSynth cannot start";
        return nullptr;
    }
    fluid_settings_setnum(synth->settings.get(), "synth.sample-rate", sampleRate);
    fluid_settings_setint(synth->settings.get(), "synth.threadsafe-api", 0);
    // Twice FluidSynth's default: with the volume slider's MIDI lift on it, a General MIDI song
    // peaks a few decibels under a mastered recording, and the engine's limiter holds the
    // loudest under full scale.
    fluid_settings_setnum(synth->settings.get(), "synth.gain", kSynthGain);
    synth->synth.reset(new_fluid_synth(synth->settings.get()));
    if (!synth->synth) {
        error = "FluidSynth cannot start";
        return nullptr;
    }
    if (fluid_synth_sfload(synth->synth.get(), path.c_str(), 1) == FLUID_FAILED) {
        error = "the SoundFont " + path + " cannot be read";
        return nullptr;
    }
    return std::shared_ptr<SynthSource>(new SynthSource(sampleRate, std::move(synth)));
}

SynthSource::SynthSource(int sampleRate, std::unique_ptr<Synth> synth)
    : AudioSource(Bus::Synth), m_sampleRate(sampleRate), m_synth(std::move(synth))
{
}

SynthSource::~SynthSource() = default;

void SynthSource::Load(SynthSong song)
{
    Command stale;
    while (m_commands.Pop(stale)) {
    }
    m_song = std::move(song);
    if (m_song.Division <= 0)
        m_song.Division = 480;
    fluid_synth_system_reset(m_synth->synth.get());
    m_tick = 0;
    m_next = 0;
    m_tempoIndex = 0;
    m_transpose = 0;
    m_tempoFactor = 1;
    m_mutedChannels = 0;
    m_rtRunning = false;
    m_sounding = {};
    m_running = false;
    m_ended = m_song.EndTick == 0;
    m_pendingSeek = -1;
    m_appliedSeek = -1;
    m_runFrom = 0;
    m_lastRunning = false;
    Publish(0, 0, 0, 0, 0);
}

void SynthSource::Send(const Command& command)
{
    // The queue is far larger than a person can fill between two buffers.
    m_commands.Push(command);
}

void SynthSource::Run()
{
    m_running = true;
    Send({Kind::Run});
}

void SynthSource::Hold()
{
    m_running = false;
    Send({Kind::Hold});
}

void SynthSource::SeekTick(uint64_t tick)
{
    tick = std::min(tick, m_song.EndTick);
    m_ended = m_song.EndTick == 0;
    // Until the callback has played from there, the new place is where the song stands.
    m_pendingSeek.store(int64_t(tick), std::memory_order_relaxed);
    Send({Kind::Seek, 0, 0, 0, 0, tick});
}

void SynthSource::SendController(int channel, int controller, int value)
{
    Send({Kind::Controller, channel, controller, value});
}

void SynthSource::SetTranspose(int semitones)
{
    Send({Kind::Transpose, 0, semitones});
}

void SynthSource::SetTempoFactor(double factor)
{
    Send({Kind::Tempo, 0, 0, 0, std::max(factor, 0.0)});
}

void SynthSource::SetChannelMute(int channel, bool muted)
{
    if (channel >= 0 && channel < 16)
        Send({Kind::Mute, channel, muted ? 1 : 0});
}

double SynthSource::TickAt(double now) const
{
    if (const int64_t pending = m_pendingSeek.load(std::memory_order_relaxed); pending >= 0)
        return double(pending);
    const auto heard = m_heard.Read();
    return heard ? heard->PositionAt(now) : 0.0;
}

void SynthSource::Publish(double floorTick, double startTick, double endTick, double heardAt,
                          double ticksPerSecond) noexcept
{
    HeardClock heard;
    heard.floor = std::min(floorTick, startTick);
    heard.start = startTick;
    heard.end = endTick;
    heard.heardAt = heardAt;
    heard.rate = ticksPerSecond;
    m_heard.Publish(heard);
}

double SynthSource::TicksPerFrame() const noexcept
{
    const uint32_t micros = m_song.Tempos.empty() ? 500000u : m_song.Tempos[m_tempoIndex].MicrosPerQuarter;
    return double(m_song.Division) * 1e6 / std::max(micros, 1u) * m_tempoFactor / m_sampleRate;
}

void SynthSource::Dispatch(const SynthEvent& e) noexcept
{
    fluid_synth_t* synth = m_synth->synth.get();
    const int channel = e.Status & 0x0F;
    const int key = e.Data1 & 0x7F;
    int8_t& sounding = m_sounding[size_t(channel)][size_t(key)];
    switch (e.Status & 0xF0) {
    case 0x90:
        if (e.Data2 > 0) {
            if (m_mutedChannels & (1u << channel))
                break;
            const int played = channel == kDrumChannel ? key : std::clamp(key + m_transpose, 0, 127);
            sounding = int8_t(played + 1);
            fluid_synth_noteon(synth, channel, played, e.Data2);
            break;
        }
        [[fallthrough]];
    case 0x80:
        if (sounding > 0)
            fluid_synth_noteoff(synth, channel, sounding - 1);
        sounding = 0;
        break;
    case 0xA0:
        fluid_synth_key_pressure(synth, channel, key, e.Data2);
        break;
    case 0xB0:
        fluid_synth_cc(synth, channel, e.Data1, e.Data2);
        break;
    case 0xC0:
        fluid_synth_program_change(synth, channel, e.Data1);
        break;
    case 0xD0:
        fluid_synth_channel_pressure(synth, channel, e.Data1);
        break;
    case 0xE0:
        fluid_synth_pitch_bend(synth, channel, e.Data1 | (e.Data2 << 7));
        break;
    default:
        break;
    }
}

// FluidSynth is called once for as many of its 64-frame blocks as pass before the next event or
// tempo change is due, so an event sounds at most one block late and a quiet stretch of the song
// costs one call.
int SynthSource::SpanFrames(int left) const noexcept
{
    double next = double(m_song.EndTick);
    if (m_next < m_song.Events.size())
        next = std::min(next, double(m_song.Events[m_next].Tick));
    if (m_tempoIndex + 1 < m_song.Tempos.size())
        next = std::min(next, double(m_song.Tempos[m_tempoIndex + 1].Tick));
    const double perFrame = TicksPerFrame();
    if (perFrame <= 0)
        return left;
    const double blocks = std::ceil(std::max((next - m_tick) / perFrame, 1.0) / kChunkFrames);
    return int(std::min(double(left), blocks * kChunkFrames));
}

// A seek silences what sounds and sets programs, controllers and bends as they stand at the
// target, so the song goes on with the right instruments.
void SynthSource::ChaseTo(uint64_t tick) noexcept
{
    fluid_synth_t* synth = m_synth->synth.get();
    fluid_synth_all_notes_off(synth, -1);
    fluid_synth_system_reset(synth);
    m_sounding = {};
    m_next = 0;
    for (; m_next < m_song.Events.size() && m_song.Events[m_next].Tick < tick; ++m_next) {
        const SynthEvent& e = m_song.Events[m_next];
        const int kind = e.Status & 0xF0;
        if (kind != 0x80 && kind != 0x90 && kind != 0xA0)
            Dispatch(e);
    }
    m_tempoIndex = 0;
    while (m_tempoIndex + 1 < m_song.Tempos.size() && m_song.Tempos[m_tempoIndex + 1].Tick <= tick)
        ++m_tempoIndex;
    m_tick = double(tick);
}

void SynthSource::Apply(const Command& command) noexcept
{
    switch (command.kind) {
    case Kind::Run:
        m_rtRunning = true;
        break;
    case Kind::Hold:
        m_rtRunning = false;
        fluid_synth_all_notes_off(m_synth->synth.get(), -1);
        m_sounding = {};
        break;
    case Kind::Seek:
        ChaseTo(command.tick);
        m_appliedSeek = int64_t(command.tick);
        m_runFrom = double(command.tick);
        break;
    case Kind::Controller:
        fluid_synth_cc(m_synth->synth.get(), command.channel, command.a, command.b);
        break;
    case Kind::Transpose:
        m_transpose = command.a;
        break;
    case Kind::Tempo:
        m_tempoFactor = command.x;
        break;
    case Kind::Mute:
        if (command.a) {
            m_mutedChannels = uint16_t(m_mutedChannels | (1u << command.channel));
            fluid_synth_all_sounds_off(m_synth->synth.get(), command.channel);
            m_sounding[size_t(command.channel)] = {};
        } else {
            m_mutedChannels = uint16_t(m_mutedChannels & ~(1u << command.channel));
        }
        break;
    }
}

void SynthSource::Render(float* out, int frames, const BufferTiming& timing) noexcept
{
    Command command;
    while (m_commands.Pop(command))
        Apply(command);

    const double startTick = m_tick;
    const double ticksPerSecond = TicksPerFrame() * m_sampleRate;
    if (m_rtRunning && !m_lastRunning)
        m_runFrom = startTick;
    m_lastRunning = m_rtRunning;
    fluid_synth_t* synth = m_synth->synth.get();
    for (int done = 0; done < frames;) {
        const bool playing = m_rtRunning && m_tick < double(m_song.EndTick);
        const int n = playing ? SpanFrames(frames - done) : frames - done;
        if (playing) {
            while (m_next < m_song.Events.size() && double(m_song.Events[m_next].Tick) <= m_tick)
                Dispatch(m_song.Events[m_next++]);
            while (m_tempoIndex + 1 < m_song.Tempos.size() && double(m_song.Tempos[m_tempoIndex + 1].Tick) <= m_tick)
                ++m_tempoIndex;
            m_tick = std::min(m_tick + n * TicksPerFrame(), double(m_song.EndTick));
        }
        float* chunk = out + size_t(done) * 2;
        fluid_synth_write_float(synth, n, chunk, 0, 2, chunk, 1, 2);
        done += n;
    }
    if (m_rtRunning && m_tick >= double(m_song.EndTick))
        m_ended.store(true, std::memory_order_relaxed);
    Publish(m_runFrom, startTick, m_tick, timing.heardAt, m_rtRunning ? ticksPerSecond : 0);
    if (m_appliedSeek >= 0) {
        int64_t expected = m_appliedSeek;
        m_pendingSeek.compare_exchange_strong(expected, -1, std::memory_order_relaxed);
        m_appliedSeek = -1;
    }
}
