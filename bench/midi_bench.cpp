// The MIDI player's figures: render speed beside FluidSynth's command line and TiMidity++ on
// the same files, the cost of one mix callback, the CPU share of playing a karaoke file on the
// null device, and how closely the lyrics clock of a MIDI song follows its audible time.
// BENCH_CLOCK_SECONDS sets the length of the clock and CPU runs (20 by default).

#include "BenchKit.h"
#include "audio/AudioEngine.h"
#include "audio/ManualDevice.h"
#include "audio/NullDevice.h"
#include "audio/SynthSource.h"
#include "midi/MidiBytes.h"
#include "midi/MidiPlayer.h"
#include "midi/MidiRender.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <unistd.h>
#include <sys/resource.h>
#include <thread>
#include <vector>

namespace {

constexpr int kRate = 44100;

// User and system seconds the kernel has charged a thread of this process with. On a shared
// virtual machine the system part also holds interrupt work done while the thread was current.
std::pair<double, double> ThreadTimes(pid_t thread)
{
    QFile stat(QStringLiteral("/proc/self/task/%1/stat").arg(thread));
    if (!stat.open(QIODevice::ReadOnly))
        return {0, 0};
    const QByteArray line = stat.readAll();
    const QList<QByteArray> fields = line.mid(line.lastIndexOf(')') + 2).split(' ');
    const double tick = double(sysconf(_SC_CLK_TCK));
    return {fields.value(11).toDouble() / tick, fields.value(12).toDouble() / tick};
}

double Percentile(std::vector<double> v, double p)
{
    std::sort(v.begin(), v.end());
    return v.empty() ? 0 : v[std::min(v.size() - 1, size_t(p * double(v.size())))];
}

void PutVariable(QByteArray& bytes, uint32_t value)
{
    QByteArray reversed(1, char(value & 0x7F));
    while (value >>= 7)
        reversed.prepend(char(0x80 | (value & 0x7F)));
    bytes += reversed;
}

// A busy arrangement: eight instruments playing three-note chords on every eighth note with
// a bass line and drums, 480 ticks a quarter at 120 BPM, `seconds` long.
QString MakeDenseSong(const QDir& dir, int seconds)
{
    QByteArray track;
    auto event = [&track](uint32_t delta, std::initializer_list<int> bytes) {
        PutVariable(track, delta);
        for (int b : bytes)
            track += char(b);
    };
    event(0, {0xFF, 0x51, 3, 0x07, 0xA1, 0x20});
    const int programs[8] = {0, 48, 33, 25, 56, 73, 4, 19};
    for (int c = 0; c < 8; ++c)
        event(0, {0xC0 | c, programs[c]});
    const int chords[4][3] = {{60, 64, 67}, {57, 60, 64}, {65, 69, 72}, {67, 71, 74}};
    uint32_t pending = 0;
    for (int step = 0; step < seconds * 4; ++step) {
        const int* chord = chords[(step / 8) % 4];
        for (int c = 0; c < 8; ++c)
            for (int n = 0; n < 3; ++n) {
                event(pending, {0x90 | c, chord[n] - 12 * (c % 3) + 12, 70 + c * 4});
                pending = 0;
            }
        event(0, {0x99, step % 2 ? 38 : 36, 100});
        event(0, {0x99, 42, 80});
        event(240, {0x99, 42, 0});
        for (int c = 0; c < 8; ++c)
            for (int n = 0; n < 3; ++n)
                event(0, {0x80 | c, chord[n] - 12 * (c % 3) + 12, 0});
        event(0, {0x89, step % 2 ? 38 : 36, 0});
    }
    event(0, {0xFF, 0x2F, 0});
    QByteArray file("MThd");
    file += QByteArray::fromHex("0000000600000001");
    file += QByteArray::fromHex("01E0");
    file += "MTrk";
    const auto length = uint32_t(track.size());
    for (int shift = 24; shift >= 0; shift -= 8)
        file += char((length >> shift) & 0xFF);
    file += track;
    const QString path = dir.filePath("dense.mid");
    QFile out(path);
    if (out.open(QIODevice::WriteOnly))
        out.write(file);
    return path;
}

double ChildCpu(const QString& program, const QStringList& args)
{
    const double before = CpuSeconds(RUSAGE_CHILDREN);
    QProcess process;
    process.start(program, args);
    if (!process.waitForFinished(600000) || process.exitCode() != 0)
        return -1;
    return CpuSeconds(RUSAGE_CHILDREN) - before;
}

void RenderSpeed(const char* label, const QString& song, const QDir& dir)
{
    const double before = CpuSeconds(RUSAGE_SELF);
    MidiRenderOptions options;
    options.sampleRate = kRate;
    const MidiRendering ours = RenderMidiSong(song, options);
    const double ourCpu = CpuSeconds(RUSAGE_SELF) - before;
    const double seconds = double(ours.frames.size() / 2) / kRate;

    const QString soundFont = QString::fromStdString(DefaultSoundFont());
    const double fluid = ChildCpu("fluidsynth", {"-ni", "-q", "-g", "0.4", "-r", QString::number(kRate), "-F",
                                                 dir.filePath("fluid.wav"), soundFont, song});
    const double timidity = ChildCpu("timidity", {"-idq", "-x", "soundfont " + soundFont, "-s", QString::number(kRate),
                                                  "-Ow", "-o", dir.filePath("timidity.wav"), song});
    auto speed = [seconds](double cpu) { return cpu > 0 ? QString::number(seconds / cpu, 'f', 1) : QString("n/a"); };
    std::printf("render %-8s (%5.1f s of song): Songweaver %s s per CPU second, fluidsynth -F %s, timidity %s\n",
                label, seconds, qPrintable(speed(ourCpu)), qPrintable(speed(fluid)), qPrintable(speed(timidity)));
    float peak = 0;
    for (const float s : ours.frames)
        peak = std::max(peak, std::fabs(s));
    const auto fullScale = std::count_if(ours.frames.begin(), ours.frames.end(), [](float s) { return std::fabs(s) >= 0.999f; });
    std::printf("       %-8s at the top of the volume slider: peak %.2f dBFS, %lld samples at full scale\n", label,
                20 * std::log10(std::max(peak, 1e-9f)), static_cast<long long>(fullScale));
}

// Plays the song on the manual device, rendered as fast as the caller asks.
struct ManualPlay {
    explicit ManualPlay(const QString& song)
    {
        auto manual = std::make_unique<ManualDevice>(kRate);
        device = manual.get();
        engine = std::make_unique<AudioEngine>(std::move(manual));
        engine->Start();
        player = std::make_unique<MidiPlayer>(*engine, figures);
        loaded = player->RenderFile(song);
        player->Run();
    }
    ManualDevice* device = nullptr;
    std::unique_ptr<AudioEngine> engine;
    MidiFigures figures;
    std::unique_ptr<MidiPlayer> player;
    bool loaded = false;
};

void CallbackCost(const QString& song)
{
    ManualPlay play(song);
    if (!play.loaded)
        return;
    AudioEngine& engine = *play.engine;
    std::vector<float> out(512 * 2);
    std::vector<double> costs;
    for (int i = 0; i < 4000; ++i) {
        const auto t0 = std::chrono::steady_clock::now();
        engine.Render(out.data(), 512, BufferTiming{i * 512.0 / kRate});
        costs.push_back(std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() - t0).count());
    }
    const double period = 512.0 / kRate * 1e6;
    std::printf("mix callback of 512 frames (dense MIDI song): median %.1f us, p99 %.1f us = %.1f%% / %.1f%% of its "
                "%.0f us period\n",
                Percentile(costs, 0.5), Percentile(costs, 0.99), Percentile(costs, 0.5) / period * 100,
                Percentile(costs, 0.99) / period * 100, period);
}

// The null device with a stopwatch on its callbacks: the time spent mixing, and where the
// rendered sound has got to, so that the machine's own stalls can be told apart.
class TimedDevice final : public AudioDevice, AudioRenderer {
public:
    TimedDevice() : m_device(kRate, 512) {}
    bool Start(AudioRenderer& renderer) override
    {
        m_inner = &renderer;
        return m_device.Start(*this);
    }
    void Stop() override { m_device.Stop(); }
    int SampleRate() const override { return kRate; }
    double Now() const override { return m_device.Now(); }
    std::string Name() const override { return "timed null output"; }
    bool StartInput(int) override { return false; }
    void StopInput() override {}
    bool InputRunning() const override { return false; }
    void Render(float* out, int frames, const BufferTiming& timing) noexcept override
    {
        if (thread == 0)
            thread = gettid();
        const double start = SteadySeconds();
        m_inner->Render(out, frames, timing);
        busy = busy + (SteadySeconds() - start);
        renderedUntil = timing.heardAt + double(frames) / kRate;
    }
    double FirstFrameHeardAt() const { return m_device.FirstFrameHeardAt(); }

    std::atomic<double> busy{0};  // wall time, which on a shared machine includes time taken away
    std::atomic<pid_t> thread{0};
    std::atomic<double> renderedUntil{0};

private:
    NullDevice m_device;
    AudioRenderer* m_inner = nullptr;
};

// Plays the song on the null device, as the player does without a sound card.
struct NullPlay {
    explicit NullPlay(const QString& song)
    {
        auto timed = std::make_unique<TimedDevice>();
        device = timed.get();
        engine = std::make_unique<AudioEngine>(std::move(timed));
        player = std::make_unique<MidiPlayer>(*engine, figures);
        // Without a song the engine mixes silence: what the machine costs by itself.
        if (!song.isEmpty() && player->RenderFile(song))
            player->Run();  // before the device starts, so the song's first tick is its first frame
        engine->Start();
        while (device->FirstFrameHeardAt() == 0)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    TimedDevice* device = nullptr;
    std::unique_ptr<AudioEngine> engine;
    MidiFigures figures;
    std::unique_ptr<MidiPlayer> player;
};

void CpuShare(const char* label, const QString& song, double seconds)
{
    NullPlay play(song);
    const double cpuBefore = CpuSeconds(RUSAGE_SELF);
    const double busyBefore = play.device->busy;
    const auto [userBefore, systemBefore] = ThreadTimes(play.device->thread);
    const auto wallBefore = std::chrono::steady_clock::now();
    std::this_thread::sleep_for(std::chrono::duration<double>(seconds));
    const double cpu = CpuSeconds(RUSAGE_SELF) - cpuBefore;
    const double busy = play.device->busy - busyBefore;
    const auto [userAfter, systemAfter] = ThreadTimes(play.device->thread);
    const double wall = std::chrono::duration<double>(std::chrono::steady_clock::now() - wallBefore).count();
    std::printf("%s on the null device (%.0f s): the device thread charged with %.2f%% user and %.2f%% system "
                "time of one core, the process with %.2f%%; its callbacks took %.2f%% of the wall time\n",
                label, wall, (userAfter - userBefore) / wall * 100, (systemAfter - systemBefore) / wall * 100,
                cpu / wall * 100, busy / wall * 100);
}

void LyricsClock(const QString& song, double seconds)
{
    NullPlay play(song);
    double sum = 0, worst = 0, worstStalled = 0;
    long samples = 0, stalled = 0;
    const double end = std::min(play.player->get_Duration() - 0.5, seconds);
    for (;;) {
        const double now = play.engine->Now();
        const double audible = now - play.device->FirstFrameHeardAt();
        if (audible > end)
            break;
        const double error = std::fabs(play.player->get_CurrentPosition() - audible) * 1000;
        // Behind its clock, the device has not rendered what should be heard: a real card would
        // have run dry, and the lyrics rightly wait with the song.
        if (now > play.device->renderedUntil) {
            ++stalled;
            worstStalled = std::max(worstStalled, error);
        } else {
            sum += error;
            worst = std::max(worst, error);
            ++samples;
        }
        std::this_thread::sleep_for(std::chrono::microseconds(700));
    }
    std::printf("lyrics clock of twinkle.kar against its audible time (null device, %.0f s): %ld samples mean "
                "%.4f ms, worst %.4f ms; %ld more while the machine held the device back (worst %.1f ms)\n",
                end, samples, sum / double(std::max(samples, 1L)), worst, stalled, worstStalled);
}

// On the manual device the clock is exact or it is wrong: every buffer against the frames played.
void ManualClock(const QString& song)
{
    ManualPlay play(song);
    if (!play.loaded)
        return;
    double worst = 0;
    long buffers = 0;
    for (;;) {
        play.device->Step(512, 512);
        const double position = play.player->get_CurrentPosition();
        // The last buffer runs past the song's end, where the position stops.
        if (position >= play.player->get_Duration())
            break;
        worst = std::max(worst, std::fabs(position - play.device->Now()) * 1000);
        ++buffers;
    }
    std::printf("lyrics clock of twinkle.kar on the manual device (%ld buffers, the whole song): worst %.6f ms\n",
                buffers, worst);
}

// Opening a MIDI song as the player does, one after another: with the synthesiser kept from the
// song before, and with a new one (and its SoundFont loaded again) for each.
void SongOpening(const QString& song)
{
    auto manual = std::make_unique<ManualDevice>(kRate);
    AudioEngine engine(std::move(manual));
    engine.Start();
    MidiFigures figures;
    SynthKeeper keeper;
    for (SynthKeeper* kept : {&keeper, static_cast<SynthKeeper*>(nullptr)}) {
        std::vector<double> ms;
        for (int i = 0; i < 5; ++i) {
            QElapsedTimer timer;
            timer.start();
            MidiPlayer player(engine, figures, {}, kept);
            player.RenderFile(song);
            ms.push_back(double(timer.nsecsElapsed()) / 1e6);
        }
        std::printf("opening a MIDI song, %s: first %.1f ms, then %.1f %.1f %.1f %.1f ms\n",
                    kept ? "the synthesiser kept" : "a new synthesiser each time", ms[0], ms[1], ms[2], ms[3], ms[4]);
    }
}

} // namespace

int main()
{
    if (DefaultSoundFont().empty()) {
        std::fputs("midi_bench: no General MIDI SoundFont is installed\n", stderr);
        return 1;
    }
    QTemporaryDir dir;
    const QDir folder(dir.path());
    const QString demo = QStringLiteral(SONGWEAVER_SOURCE_DIR "/resources/demo/");
    const QString twinkle = demo + "twinkle.kar";
    const QString dense = MakeDenseSong(folder, 60);
    const double runSeconds = qEnvironmentVariableIntValue("BENCH_CLOCK_SECONDS") > 0
                                  ? qEnvironmentVariableIntValue("BENCH_CLOCK_SECONDS")
                                  : 20;

    SongOpening(twinkle);
    RenderSpeed("twinkle", twinkle, folder);
    RenderSpeed("rowboat", demo + "rowboat.kar", folder);
    RenderSpeed("dense", dense, folder);
    CallbackCost(dense);
    CpuShare("mixing silence", QString(), runSeconds);
    CpuShare("playing twinkle.kar", twinkle, runSeconds);
    LyricsClock(twinkle, runSeconds);
    ManualClock(twinkle);
    return 0;
}
