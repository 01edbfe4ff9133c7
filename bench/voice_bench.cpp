// The microphone's figures: the live monitor's latency (exact on the manual device, as the
// sound card reports it through PortAudio), where a click sung at a known second lands in the
// voice file, the CPU share of monitoring and recording on the null device, and what starting
// the latency test costs the interface thread, and what placing a take costs the worker.

#include "BenchKit.h"
#include "audio/AudioEngine.h"
#include "audio/CaptureWriter.h"
#include "audio/ManualDevice.h"
#include "audio/NullDevice.h"
#include "audio/PortAudioDevice.h"
#include "audio/SoundDevices.h"
#include "audio/WavFile.h"
#include "playback/LatencyClicks.h"
#include "playback/MediaSession.h"
#include "voice/VoiceFiles.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtEndian>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <sys/resource.h>
#include <thread>

namespace {

constexpr int kRate = 48000;
constexpr int kVoiceRate = 22050;

void MonitorLatency()
{
    auto made = std::make_unique<ManualDevice>(kRate);
    ManualDevice& device = *made;
    AudioEngine engine(std::move(made));
    engine.Start();
    engine.StartInput(0);
    engine.SetMonitorMute(false);
    for (int buffer : {64, 256, 512, 1024}) {
        std::vector<float> click(size_t(buffer) * 4, 0.0f);
        const int at = buffer + buffer / 3;
        click[size_t(2 * at)] = click[size_t(2 * at + 1)] = 0.9f;
        device.FeedInput(click);
        const auto& out = device.Step(buffer * 2, buffer);
        const auto loudest = (std::max_element(out.begin(), out.end()) - out.begin()) / 2;
        std::printf("monitor latency, manual device, %4d-frame buffers: %ld frames\n", buffer, long(loudest - at));
    }

    if (NullDeviceChosen() || !PortAudioStartError().empty() || InputDeviceNames().isEmpty()) {
        std::printf("monitor latency, PortAudio: no recording device on this machine\n");
        return;
    }
    AudioEngine live(std::make_unique<PortAudioDevice>(0));
    if (!live.Start() || !live.StartInput(0)) {
        std::printf("monitor latency, PortAudio: the device cannot record (%s)\n", live.DeviceError().c_str());
        return;
    }
    const AudioDevice& device2 = live.Device();
    std::printf("monitor latency, PortAudio \"%s\" (%s): input %.1f ms + output %.1f ms = %.1f ms\n",
                device2.Name().c_str(), device2.Duplex() ? "duplex" : "two streams", device2.InputLatency() * 1000,
                device2.OutputLatency() * 1000, (device2.InputLatency() + device2.OutputLatency()) * 1000);
}

// A click fed to the microphone when the song stands at `second` lands in the voice file at
// that second: the capture, the writer's resampling and the placing together.
void Alignment(const QString& folder)
{
    const QString song = QDir(folder).filePath(QStringLiteral("song.wav"));
    WriteStereoWav(song, std::vector<float>(size_t(20) * 8000 * 2, 0.0f), 8000);
    for (double start : {0.0, 3.0, 7.25}) {
        auto made = std::make_unique<ManualDevice>(kRate);
        ManualDevice& device = *made;
        AudioEngine engine(std::move(made));
        engine.Start();
        engine.StartInput(0);
        MediaSession session(engine);
        session.RenderFile(song);
        session.put_CurrentPosition(start);
        session.Run();
        // The decoder gets a second ahead; a queue still full of what came before the seek
        // waits for the device to take it, so the wait has an end.
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(2);
        while (session.SecondsBuffered() < 1 && std::chrono::steady_clock::now() < deadline)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));

        const QString take = QDir(folder).filePath(QStringLiteral("take.WAV"));
        CaptureWriter writer;
        writer.Begin(take, kVoiceRate, 2);
        const double armedAt = engine.Now();
        const double armedPosition = session.get_CurrentPosition();
        writer.Start(engine);
        const double click = armedPosition + 1.2345;
        std::vector<float> input(size_t(2 * kRate) * 2, 0.0f);
        const auto clickFrame = size_t(std::llround((click - start) * kRate));
        input[2 * clickFrame] = input[2 * clickFrame + 1] = 0.9f;
        device.FeedInput(input);
        for (int i = 0; i < 200; ++i)
            device.Step(kRate / 100, kRate / 100);
        double capturedAt = armedAt;
        engine.CaptureStartedAt(capturedAt);
        writer.Finish();
        const double recordStart = armedPosition + (capturedAt - armedAt);

        const QString voice = QDir(folder).filePath(QStringLiteral("voice.wav"));
        QFile::remove(voice);
        WriteNewVoiceFile(voice, take, recordStart);
        QFile file(voice);
        file.open(QIODevice::ReadOnly);
        const QByteArray bytes = file.readAll();
        qint64 loudest = 0;
        int peak = 0;
        for (qint64 frame = 0; 44 + frame * 4 + 1 < bytes.size(); ++frame) {
            const int left = std::abs(qFromLittleEndian<qint16>(bytes.constData() + 44 + frame * 4));
            if (left > peak) {
                peak = left;
                loudest = frame;
            }
        }
        const double expected = click * kVoiceRate;
        std::printf("alignment, song from %.2f s, click sung at %.4f s: lands at frame %lld of %d Hz, expected %.1f: error %+.1f frames"
                    " (%.3f ms)\n",
                    start, click, static_cast<long long>(loudest), kVoiceRate, expected, double(loudest) - expected,
                    (double(loudest) - expected) / kVoiceRate * 1000);
    }
}

// CPU share of `seconds` of wall time.
template <typename Setup>
double CpuShare(double seconds, Setup setup)
{
    AudioEngine engine(std::make_unique<NullDevice>(kRate, 256));
    engine.Start();
    const auto cleanup = setup(engine);
    const double cpu = CpuSeconds();
    const auto wall = std::chrono::steady_clock::now();
    std::this_thread::sleep_for(std::chrono::duration<double>(seconds));
    const double share = (CpuSeconds() - cpu) / std::chrono::duration<double>(std::chrono::steady_clock::now() - wall).count();
    cleanup();
    return share * 100;
}

void CpuShareOfSinging(const QString& folder)
{
    const double seconds = qEnvironmentVariableIntValue("BENCH_CPU_SECONDS") > 0
                               ? qEnvironmentVariableIntValue("BENCH_CPU_SECONDS")
                               : 10;
    const double idle = CpuShare(seconds, [](AudioEngine&) { return [] {}; });
    const double singing = CpuShare(seconds, [&folder](AudioEngine& engine) {
        engine.StartInput(0);
        engine.SetMonitorMute(false);
        auto writer = std::make_shared<CaptureWriter>();
        writer->Begin(QDir(folder).filePath(QStringLiteral("cpu.WAV")), 44100, 2);
        writer->Start(engine);
        return [writer] { writer->Finish(); };
    });
    std::printf("CPU share over %.0f s on the null device (256-frame buffers): engine alone %.2f %%, with the monitor"
                " and a 44100 Hz stereo recording %.2f %% (%.2f points more)\n",
                seconds, idle, singing, singing - idle);
}

// Placing a minute's take at minute three of a new voice file and over an existing one: the work
// that stopping a recording hands to a worker instead of the interface thread.
void PlacingATake(const QString& folder)
{
    const QDir dir(folder);
    const QString take = dir.filePath(QStringLiteral("take.WAV"));
    WriteStereoWav(take, std::vector<float>(size_t(60) * 22050 * 2, 0.25f), 22050);
    const QString voice = dir.filePath(QStringLiteral("voice.wav"));
    QFile::remove(voice);
    for (const char* kind : {"a new voice file", "an overdub"}) {
        const auto t0 = std::chrono::steady_clock::now();
        const PlaceResult result = PlaceTake(voice, take, 180.0);
        const double ms = std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - t0).count();
        std::printf("placing a 60 s take (22050 Hz stereo) into %s: %.1f ms on the worker (%s)\n", kind, ms,
                    result == PlaceResult::Done ? "placed" : "failed");
    }
}

// What pressing Test in the preferences costs the interface thread.
void LatencyTestStart()
{
    AudioEngine engine{std::make_unique<NullDevice>(48000, 512)};
    engine.Start();
    std::vector<double> starts;
    for (int i = 0; i < 10; ++i) {
        const auto t0 = std::chrono::steady_clock::now();
        LatencyClicks clicks(engine);
        QString error;
        clicks.Start(error);
        starts.push_back(std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - t0).count());
    }
    std::sort(starts.begin(), starts.end());
    std::printf("latency test start on the interface thread: median %.3f ms, worst %.3f ms\n", starts[starts.size() / 2],
                starts.back());
}

} // namespace

int main(int argc, char* argv[])
{
    QCoreApplication app(argc, argv);
    QTemporaryDir folder;
    MonitorLatency();
    Alignment(folder.path());
    CpuShareOfSinging(folder.path());
    LatencyTestStart();
    PlacingATake(folder.path());
    return 0;
}
