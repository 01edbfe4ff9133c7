// The audio engine's figures: how far the clock is from the song frame the device plays, how fast a song starts,
// how fast files decode beside the ffmpeg command line, what one mix callback costs, what a song
// costs at another key and tempo or without its vocals, how fast it renders beside Rubber Band's
// and FFmpeg's command lines, and how soon a turn of the KEY knob is heard.
// Songs are made with the ffmpeg command line in a temporary folder. BENCH_CLOCK_SECONDS sets the
// length of the clock run (30 by default).

#include "BenchKit.h"
#include "audio/AudioEngine.h"
#include "audio/FileSource.h"
#include "audio/ManualDevice.h"
#include "audio/NullDevice.h"
#include "audio/TimeStretch.h"
#include "audio/VocalReducer.h"
#include "audio/WavFile.h"
#include "playback/SongRender.h"

#include <QDir>
#include <QProcess>
#include <QTemporaryDir>
#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <functional>
#include <ctime>
#include <optional>
#include <sys/resource.h>
#include <thread>
#include <vector>

namespace {

constexpr int kRate = 48000;
constexpr int kCountModulo = 32768;

std::string MakeSong(const QDir& dir, const QString& name, int seconds)
{
    const QString path = dir.filePath(name);
    QProcess::execute("ffmpeg", {"-nostdin", "-v", "quiet", "-y", "-f", "lavfi", "-i",
                                 QString("sine=frequency=440:sample_rate=48000:duration=%1,"
                                         "aformat=channel_layouts=stereo")
                                     .arg(seconds),
                                 "-f", "lavfi", "-i",
                                 QString("anoisesrc=color=pink:sample_rate=48000:duration=%1:amplitude=0.1").arg(seconds),
                                 "-filter_complex", "amix=inputs=2", "-ac", "2", "-ar", "48000", path});
    return path.toStdString();
}

double Median(std::vector<double> v)
{
    std::sort(v.begin(), v.end());
    return v.empty() ? 0 : v[v.size() / 2];
}

double Percentile(std::vector<double> v, double p)
{
    std::sort(v.begin(), v.end());
    return v.empty() ? 0 : v[std::min(v.size() - 1, size_t(p * v.size()))];
}

// Notes the steady time of the first buffer that carried sound.
class FirstSoundProbe final : public AudioSource {
public:
    explicit FirstSoundProbe(std::shared_ptr<FileSource> inner) : m_inner(std::move(inner)) {}
    void Render(float* out, int frames, const BufferTiming& timing) noexcept override
    {
        m_inner->Render(out, frames, timing);
        if (m_firstSound.load() == 0 && std::any_of(out, out + frames * 2, [](float s) { return s != 0; }))
            m_firstSound = SteadySeconds();
    }
    std::atomic<double> m_firstSound{0};

private:
    std::shared_ptr<FileSource> m_inner;
};

// A song whose left channel counts its own frames, modulo 2^15, in exact 16-bit steps: the
// samples that leave the mixer say which frame of the song they are.
QString MakeCountingSong(const QDir& dir, int seconds)
{
    const auto frames = size_t(seconds) * kRate;
    std::vector<float> samples(frames * 2, 0.0f);
    for (size_t i = 0; i < frames; ++i)
        samples[2 * i] = float(i % kCountModulo) / kCountModulo;
    const QString path = dir.filePath("counting.wav");
    WriteStereoWav(path, samples, kRate);
    return path;
}

// What the device consumed: each buffer's heard time and the song frame its first sample
// carries. Written on the real-time thread into room made beforehand.
class HeardFrames final : public AudioSource {
public:
    struct Buffer {
        double heardAt;
        int64_t countedFrame;
    };
    HeardFrames(std::shared_ptr<FileSource> inner, size_t room) : m_inner(std::move(inner)), m_buffers(room) {}
    void Render(float* out, int frames, const BufferTiming& timing) noexcept override
    {
        m_inner->Render(out, frames, timing);
        const size_t at = m_count.load(std::memory_order_relaxed);
        if (at < m_buffers.size() && out[0] != 0.0f) {
            m_buffers[at] = {timing.heardAt, std::lround(double(out[0]) * kCountModulo)};
            m_count.store(at + 1, std::memory_order_release);
        }
    }
    // The song second heard at `now`, unwrapped to the one nearest `guess`; nothing outside
    // the buffers seen.
    std::optional<double> SecondAt(double now, double guess) const
    {
        const size_t count = m_count.load(std::memory_order_acquire);
        const auto after = std::upper_bound(m_buffers.begin(), m_buffers.begin() + std::ptrdiff_t(count), now,
                                            [](double t, const Buffer& b) { return t < b.heardAt; });
        if (after == m_buffers.begin() || after == m_buffers.begin() + std::ptrdiff_t(count))
            return std::nullopt;
        const Buffer& b = *(after - 1);
        const double counted = double(b.countedFrame) + (now - b.heardAt) * kRate;
        const double wraps = std::round((guess * kRate - counted) / kCountModulo);
        return (counted + wraps * kCountModulo) / kRate;
    }

private:
    std::shared_ptr<FileSource> m_inner;
    std::vector<Buffer> m_buffers;
    std::atomic<size_t> m_count{0};
};

// The clock's error against what is heard: the position the source reports at a moment, less
// the song frame that the mixer's output, as the device consumed it, carries at that moment.
void ClockAgainstHeardFrames(const QString& song, double seconds)
{
    auto* device = new NullDevice(kRate, 512);
    AudioEngine engine{std::unique_ptr<AudioDevice>(device)};
    std::string error;
    auto source = FileSource::Open(song.toStdString(), kRate, error);
    auto heard = std::make_shared<HeardFrames>(source, size_t((seconds + 5) * kRate / 512));
    engine.AddSource(heard);
    source->Run();
    engine.Start();
    std::this_thread::sleep_for(std::chrono::milliseconds(50));

    MachineStalls stalls;
    std::thread probe([&] { stalls = MeasureMachineStalls(int(seconds * 1000)); });
    std::vector<std::pair<double, double>> readings;
    const double end = SteadySeconds() + seconds;
    while (SteadySeconds() < end) {
        const double now = engine.Now();
        readings.emplace_back(now, source->Position(now));
        std::this_thread::sleep_for(std::chrono::microseconds(700));
    }
    probe.join();
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    std::vector<double> errors;
    for (const auto& [now, reported] : readings)
        if (const auto truth = heard->SecondAt(now, reported))
            errors.push_back(std::fabs(reported - *truth) * 1000);
    std::printf("clock against the frames heard (null device, %.0f s, %zu readings): median %.4f ms, p99 %.4f ms, "
                "worst %.4f ms; machine stalls over 1 ms: %zu, longest %.2f ms\n",
                seconds, errors.size(), Median(errors), Percentile(errors, 0.99),
                errors.empty() ? 0 : *std::max_element(errors.begin(), errors.end()), stalls.count, stalls.longestMs);
    engine.RemoveSource(heard.get());
}

void OpenLatency(const char* label, const std::string& song)
{
    auto* device = new NullDevice(kRate, 512);
    AudioEngine engine{std::unique_ptr<AudioDevice>(device)};
    engine.Start();
    std::vector<double> latencies, opens;
    for (int i = 0; i < 15; ++i) {
        const double start = SteadySeconds();
        std::string error;
        auto source = FileSource::Open(song, kRate, error);
        opens.push_back((SteadySeconds() - start) * 1000);
        auto probe = std::make_shared<FirstSoundProbe>(source);
        source->Run();
        engine.AddSource(probe);
        while (probe->m_firstSound.load() == 0)
            std::this_thread::sleep_for(std::chrono::microseconds(100));
        latencies.push_back((probe->m_firstSound.load() - start) * 1000);
        engine.RemoveSource(probe.get());
    }
    std::printf("open to first frame %-4s: median %.2f ms, worst %.2f ms (of which the open: median %.2f ms; "
                "null device period %.2f ms)\n",
                label, Median(latencies), *std::max_element(latencies.begin(), latencies.end()), Median(opens),
                512000.0 / kRate);
}

void DecodeThroughput(const char* label, const std::string& song, double songSeconds)
{
    auto* device = new ManualDevice(kRate);
    AudioEngine engine{std::unique_ptr<AudioDevice>(device)};
    engine.Start();
    const double cpuBefore = CpuSeconds(RUSAGE_SELF);
    std::string error;
    auto source = FileSource::Open(song, kRate, error);
    engine.AddSource(source);
    source->Run();
    while (source->Position(engine.Now()) < source->Duration()) {
        // Wait for the decoder instead of spinning, so the CPU time is the decoding's.
        if (source->SecondsBuffered() < 0.5 && source->Position(engine.Now()) < source->Duration() - 3)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        else
            device->Step(8192, 8192);
    }
    const double ours = CpuSeconds(RUSAGE_SELF) - cpuBefore;
    engine.RemoveSource(source.get());

    const double childBefore = CpuSeconds(RUSAGE_CHILDREN);
    QProcess::execute("ffmpeg", {"-nostdin", "-v", "quiet", "-i", QString::fromStdString(song), "-f", "null", "-"});
    const double theirs = CpuSeconds(RUSAGE_CHILDREN) - childBefore;
    std::printf("decode %-4s: %.0f s of audio per CPU second (ffmpeg -f null: %.0f), ratio %.2f\n", label,
                songSeconds / ours, songSeconds / theirs, theirs / ours);
}

void CallbackCost(const std::string& song)
{
    auto* device = new ManualDevice(kRate);
    AudioEngine engine{std::unique_ptr<AudioDevice>(device)};
    std::string error;
    auto source = FileSource::Open(song, kRate, error);
    engine.AddSource(source);
    source->Volume = -600;
    source->Run();
    std::vector<float> out(512 * 2);
    std::vector<double> costs;
    for (int i = 0; i < 20000; ++i) {
        if (source->SecondsBuffered() < 0.05)
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
        const auto t0 = std::chrono::steady_clock::now();
        engine.Render(out.data(), 512, BufferTiming{0});
        costs.push_back(std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() - t0).count());
    }
    const double period = 512.0 / kRate * 1e6;
    std::printf("mix callback of 512 frames (one file source): median %.2f us, p99 %.2f us = %.3f%% / %.3f%% of its "
                "%.0f us period\n",
                Median(costs), Percentile(costs, 0.99), Median(costs) / period * 100,
                Percentile(costs, 0.99) / period * 100, period);
    engine.RemoveSource(source.get());
}

} // namespace

// How long a turn of the KEY knob takes to be heard: a 440 Hz song played on the manual device
// in 10 ms buffers at the pace a sound card keeps, the key turned 0, +2, +4, +2, 0, ... (into and
// out of the stretcher, and within it), and the time from each turn to the first 10 ms of output
// at the new pitch.
void KnobToSound(const QDir& dir)
{
    std::vector<float> tone(size_t(kRate) * 30 * 2);
    for (size_t i = 0; i < tone.size() / 2; ++i)
        tone[2 * i] = tone[2 * i + 1] = float(0.5 * std::sin(2 * 3.14159265358979 * 440 * double(i) / kRate));
    const QString path = dir.filePath("knob.wav");
    WriteStereoWav(path, tone, kRate);
    auto manual = std::make_unique<ManualDevice>(kRate);
    ManualDevice& device = *manual;
    AudioEngine engine(std::move(manual));
    std::string error;
    auto source = FileSource::Open(path.toStdString(), kRate, error);
    if (!source)
        return;
    engine.AddSource(source);
    engine.Start();
    source->Run();

    constexpr int kStep = kRate / 100;
    // The pitch of one buffer by its rising zero crossings, interpolated.
    const auto pitch = [](const std::vector<float>& s) {
        double first = -1, last = -1;
        int cycles = -1;
        for (size_t i = 0; 2 * i + 2 < s.size(); ++i)
            if (s[2 * i] < 0 && s[2 * i + 2] >= 0) {
                const double at = double(i) + s[2 * i] / (s[2 * i] - s[2 * i + 2]);
                first = first < 0 ? at : first;
                last = at;
                ++cycles;
            }
        return cycles > 0 ? cycles * double(kRate) / (last - first) : 0.0;
    };
    const auto playBuffer = [&] {
        const auto due = std::chrono::steady_clock::now() + std::chrono::milliseconds(10);
        std::vector<float> out = device.Step(kStep, kStep);
        std::this_thread::sleep_until(due);
        return out;
    };
    MachineStalls stalls;
    std::thread probe([&] { stalls = MeasureMachineStalls(30000); });
    for (int i = 0; i < 100; ++i)
        playBuffer();
    std::vector<double> spliced, within;
    const int keys[] = {2, 4, 2, 0};
    for (int turn = 0; turn < 24; ++turn) {
        const int semitones = keys[turn % 4];
        const int before = keys[(turn + 3) % 4];
        const double wanted = 440.0 * std::pow(2.0, semitones / 12.0);
        source->SetSound(semitones, 1);
        for (int buffer = 1; buffer <= 60; ++buffer)
            if (std::fabs(pitch(playBuffer()) - wanted) < wanted * 0.01) {
                (semitones == 0 || before == 0 ? spliced : within).push_back(buffer * 10.0);
                break;
            }
        for (int i = 0; i < 30; ++i)
            playBuffer();
    }
    probe.join();
    const auto worst = [](const std::vector<double>& v) { return v.empty() ? 0 : *std::max_element(v.begin(), v.end()); };
    std::printf("a turn of the KEY knob heard (audio song, 10 ms buffers at a sound card's pace): into or out of the "
                "stretcher (%zu turns) median %.0f ms, worst %.0f ms; within it (%zu turns) median %.0f ms, worst %.0f ms; "
                "machine stalls over 1 ms: %zu, longest %.2f ms\n",
                spliced.size(), Median(spliced), worst(spliced), within.size(), Median(within), worst(within),
                stalls.count, stalls.longestMs);
}

// Pink noise and a tone, a minute of it, as the stretcher and the vocal reduction will meet a song.
std::vector<float> NoisySong(int seconds)
{
    std::vector<float> song(size_t(seconds) * kRate * 2);
    uint32_t seed = 1;
    float pink = 0;
    for (size_t i = 0; i < song.size() / 2; ++i) {
        seed = seed * 1664525u + 1013904223u;
        pink = 0.98f * pink + 0.02f * (float(seed >> 8) / float(1u << 24) - 0.5f);
        const auto tone = float(0.3 * std::sin(2 * 3.14159265358979 * 440 * double(i) / kRate));
        song[2 * i] = tone + 4 * pink;
        song[2 * i + 1] = tone - 2 * pink;
    }
    return song;
}

// CPU seconds for each second of song: what the worker that stretches a playing song spends.
void StretchCost(const std::vector<float>& song)
{
    const double seconds = double(song.size() / 2) / kRate;
    struct Setting {
        const char* label;
        double semitones;
        double tempo;
    };
    const Setting settings[] = {{"key +2", 2, 1}, {"tempo 0.8", 0, 0.8}, {"key +2 and tempo 0.8", 2, 0.8}};
    std::vector<float> out(8192 * 2);
    for (const auto engine : {TimeStretch::Engine::Faster, TimeStretch::Engine::Finer})
        for (const Setting& s : settings) {
            TimeStretch stretch(kRate, engine);
            stretch.SetSemitones(s.semitones);
            stretch.SetTempo(s.tempo);
            stretch.Restart(0);
            const double before = CpuSeconds(RUSAGE_SELF);
            for (int pushed = 0; pushed < int(song.size() / 2);) {
                const int count = std::min(stretch.FramesWanted(), int(song.size() / 2) - pushed);
                stretch.Push(song.data() + 2 * pushed, count);
                pushed += count;
                while (stretch.Pull(out.data(), 8192) > 0) {
                }
            }
            const double cpu = CpuSeconds(RUSAGE_SELF) - before;
            std::printf("stretch, %s engine, %-21s: %.1f%% of a core while it plays (%.3f s CPU for %.0f s)\n",
                        engine == TimeStretch::Engine::Faster ? "faster" : "finer ", s.label, 100 * cpu / seconds, cpu,
                        seconds);
        }

    VocalReducer reducer(kRate);
    reducer.SetOn(true);
    std::vector<float> copy = song;
    const double before = CpuSeconds(RUSAGE_SELF);
    for (size_t at = 0; at < copy.size() / 2; at += 512)
        reducer.Process(copy.data() + 2 * at, int(std::min<size_t>(512, copy.size() / 2 - at)));
    const double cpu = CpuSeconds(RUSAGE_SELF) - before;
    std::printf("vocal reduction on: %.2f%% of a core while it plays (%.3f s CPU for %.0f s)\n", 100 * cpu / seconds, cpu,
                seconds);
}

// What a playing song costs the whole machine, decoder, reducer, stretcher and mix together: the
// player's path run through the 60 s song as fast as it goes, its CPU seconds for each second
// heard.
void PlayingCost(const std::string& song, double songSeconds)
{
    struct Setting {
        const char* label;
        int semitones;
        double tempo;
        bool vocalsOff;
    };
    const Setting settings[] = {{"as it is", 0, 1, false},           {"key +2", 2, 1, false},
                                {"tempo 0.8", 0, 0.8, false},        {"key +2 and tempo 0.8", 2, 0.8, false},
                                {"vocals off", 0, 1, true},          {"all three", 2, 0.8, true}};
    for (const Setting& s : settings) {
        SongRenderOptions options;
        options.sampleRate = kRate;
        options.semitones = s.semitones;
        options.tempo = s.tempo;
        options.vocalsOff = s.vocalsOff;
        const double before = CpuSeconds(RUSAGE_SELF);
        const SongRendering rendering = RenderSong(QString::fromStdString(song), options);
        const double cpu = CpuSeconds(RUSAGE_SELF) - before;
        const double heard = double(rendering.frames.size() / 2) / kRate;
        std::printf("playing (faster engine), %-21s: %.1f%% of a core (%.2f s CPU for %.0f s heard of %.0f s of song)%s\n",
                    s.label, 100 * cpu / std::max(heard, 1e-9), cpu, heard, songSeconds,
                    rendering.error.isEmpty() ? "" : qPrintable(" " + rendering.error));
    }
}

double WallSeconds(const std::function<void()>& work)
{
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// The same 60 s song at key +2 and tempo 0.8, rendered off-line by the player's path and by the
// command lines of Rubber Band and FFmpeg, each from the same WAV file to a WAV file.
void RenderSpeed(const QDir& dir, const std::string& wav, double songSeconds)
{
    const QString in = QString::fromStdString(wav);
    SongRenderOptions options;
    options.semitones = 2;
    options.tempo = 0.8;
    const double ours = WallSeconds([&] {
        const SongRendering rendering = RenderSong(in, options);
        WriteStereoWav(dir.filePath("ours.wav"), rendering.frames, options.sampleRate);
    });
    const auto tool = [&](const QString& program, const QStringList& args) {
        return WallSeconds([&] {
            QProcess process;
            process.setStandardOutputFile(QProcess::nullDevice());
            process.setStandardErrorFile(QProcess::nullDevice());
            process.start(program, args);
            process.waitForFinished(-1);
        });
    };
    const double rbFaster = tool("rubberband", {"-q", "-t", "1.25", "-p", "2", "-F", in, dir.filePath("rb2.wav")});
    const double rbFiner = tool("rubberband", {"-q", "-3", "-t", "1.25", "-p", "2", "-F", in, dir.filePath("rb3.wav")});
    const double ffmpeg = tool("ffmpeg", {"-nostdin", "-v", "quiet", "-y", "-i", in, "-af",
                                          "rubberband=tempo=0.8:pitch=1.122462:formant=preserved", "-ar", "44100",
                                          dir.filePath("ff.wav")});
    const auto line = [songSeconds](const char* who, double seconds) {
        std::printf("render 60 s at key +2, tempo 0.8, %-32s: %.2f s wall, %.1fx real time\n", who, seconds,
                    songSeconds / 0.8 / seconds);
    };
    line("swtool play (faster engine)", ours);
    line("rubberband -F (faster engine)", rbFaster);
    line("rubberband -3 -F (finer engine)", rbFiner);
    line("ffmpeg -af rubberband (faster)", ffmpeg);
}

int main()
{
    QTemporaryDir dir;
    const QDir folder(dir.path());
    const int songSeconds = 60;
    const std::string mp3 = MakeSong(folder, "song.mp3", songSeconds);
    const std::string ogg = MakeSong(folder, "song.ogg", songSeconds);
    const std::string wav = MakeSong(folder, "song.wav", songSeconds);
    const double clockSeconds = qEnvironmentVariableIntValue("BENCH_CLOCK_SECONDS") > 0
                                    ? qEnvironmentVariableIntValue("BENCH_CLOCK_SECONDS")
                                    : 30;

    ClockAgainstHeardFrames(MakeCountingSong(folder, int(clockSeconds) + 10), clockSeconds);
    OpenLatency("MP3", mp3);
    OpenLatency("Ogg", ogg);
    OpenLatency("WAV", wav);
    DecodeThroughput("MP3", mp3, songSeconds);
    DecodeThroughput("Ogg", ogg, songSeconds);
    CallbackCost(mp3);
    StretchCost(NoisySong(songSeconds));
    PlayingCost(mp3, songSeconds);
    RenderSpeed(folder, wav, songSeconds);
    KnobToSound(folder);
    return 0;
}
