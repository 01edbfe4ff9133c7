// What karaoke discs and videos cost: decoding a whole 80 s CD+G stream, a jump to a random
// second, and the CPU share of playing an MP3+G song and a 1080p30 H.264 video with the karaoke
// page at 1920x1080, beside mpv playing the same video in a 1920x1080 window on a virtual
// display in the same run (BENCH_CPU_SECONDS, 30 by default). Prints figures; judges nothing.

#include "BenchKit.h"
#include "audio/AudioEngine.h"
#include "audio/MediaProbe.h"
#include "audio/NullDevice.h"
#include "cdg/CdgScreen.h"
#include "core/ThemeClass.h"
#include "karaoke/KaraokeView.h"
#include "playback/MediaSession.h"
#include "video/VideoStream.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QGuiApplication>
#include <QPainter>
#include <QProcess>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QThread>
#include <QTimer>
#include <algorithm>
#include <cstdio>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <vector>

extern char** environ;

namespace {

constexpr int kPacketBytes = CdgDecoder::kPacketBytes;

QByteArray CdgPacket(int instruction, std::initializer_list<int> data)
{
    QByteArray packet(kPacketBytes, '\0');
    packet[0] = 9;
    packet[1] = char(instruction);
    int i = 4;
    for (int byte : data)
        packet[i++] = char(byte);
    return packet;
}

// A disc's song as its packets come: a cleared screen, then each second half tiles drawing the
// words, a sixth XOR tiles lighting them, the rest empty; a scroll every 10 s and a new screen
// every 20 s.
QByteArray DiscSong(int seconds)
{
    QRandomGenerator random(7);
    QByteArray bytes = CdgPacket(30, {0, 0, 0x3C, 0, 0x0F, 0x0F, 0x3F, 0x3F});
    for (int second = 0; second < seconds; ++second) {
        for (int p = 0; p < CdgDecoder::kPacketsPerSecond; ++p) {
            if (second % 20 == 0 && p < 16) {
                bytes += CdgPacket(1, {0, p});
            } else if (second % 10 == 5 && p == 0) {
                bytes += CdgPacket(24, {0, 0x20, 0x20});
            } else if (p % 2 == 0) {
                QByteArray tile = CdgPacket(6, {0, 1 + p % 3, 1 + random.bounded(16), 1 + random.bounded(48)});
                for (int i = 0; i < 12; ++i)
                    tile[8 + i] = char(random.bounded(64));
                bytes += tile;
            } else if (p % 6 == 1) {
                QByteArray tile = CdgPacket(38, {0, 4, 1 + random.bounded(16), 1 + random.bounded(48)});
                for (int i = 0; i < 12; ++i)
                    tile[8 + i] = char(0x3F);
                bytes += tile;
            } else {
                bytes += QByteArray(kPacketBytes, '\0');
            }
        }
    }
    return bytes;
}

double Median(std::vector<double> v)
{
    std::sort(v.begin(), v.end());
    return v.empty() ? 0 : v[v.size() / 2];
}

void DecodeAndSeek()
{
    const QByteArray song = DiscSong(80);
    std::vector<double> rates;
    for (int run = 0; run < 5; ++run) {
        CdgDecoder decoder(song);
        QElapsedTimer timer;
        timer.start();
        decoder.ScreenAt(80.0);
        rates.push_back(double(decoder.PacketCount()) / (double(timer.nsecsElapsed()) / 1e9));
    }
    std::printf("CD+G decode of a whole 80 s song (%lld packets): %.2f million packets/s median of 5 (%.0f x real"
                " time)\n",
                (long long)(song.size() / kPacketBytes), Median(rates) / 1e6, Median(rates) / 300.0);

    CdgDecoder fresh(song);
    QElapsedTimer timer;
    timer.start();
    fresh.ScreenAt(79.5);
    const double firstJump = double(timer.nsecsElapsed()) / 1e6;

    CdgDecoder decoder(song);
    decoder.ScreenAt(80.0);
    QRandomGenerator random(11);
    std::vector<double> seeks;
    MachineStalls stalls;
    for (int i = 0; i < 400; ++i) {
        const double second = random.bounded(80.0);
        timer.restart();
        decoder.ScreenAt(second);
        seeks.push_back(double(timer.nsecsElapsed()) / 1e6);
        const MachineStalls gap = MeasureMachineStalls(2);
        stalls.count += gap.count;
        stalls.longestMs = std::max(stalls.longestMs, gap.longestMs);
    }
    std::printf("CD+G jump to a random second: %.3f ms median, worst %.3f ms (400 jumps); the first jump to 79.5 s"
                " of a fresh song %.2f ms; machine stalls over 1 ms: %zu, longest %.2f ms\n",
                Median(seeks), *std::max_element(seeks.begin(), seeks.end()), firstJump, stalls.count,
                stalls.longestMs);
}

struct Stage {
    MemorySettings store;
    std::vector<MonitorRecord> monitors;
    ThemeClass theme{store, ThemeEnvironment::FromSystem(), monitors};
    LyricsState lyrics;
    FixedClock clock;
    KaraokeView view{lyrics, theme, clock};
    QImage window{1920, 1080, QImage::Format_RGB32};  // what the window's paint draws into
    int paints = 0;

    Stage()
    {
        view.Changed = [this](const QRect& area) {
            QPainter painter(&window);
            view.Paint(painter, area);
            ++paints;
        };
    }
    void Start()
    {
        view.ResizeMe(QSize(1920, 1080), 1.0, true);
        view.ChangeLyrics();
    }
};

// The song plays on the null device with the window's 10 ms tick driving the page, as the player
// does; returns the share of one core the whole process took.
double PlayWithPage(const QString& audio, Stage& stage, int seconds, int& paints)
{
    AudioEngine engine{std::make_unique<NullDevice>(48000, 512)};
    engine.Start();
    MediaSession session(engine);
    if (!session.RenderFile(audio)) {
        std::printf("  the song could not be played (%s)\n", qPrintable(session.ErrorText()));
        return 0;
    }
    stage.Start();
    QTimer tick;
    tick.setTimerType(Qt::PreciseTimer);
    tick.setInterval(10);
    QObject::connect(&tick, &QTimer::timeout, [&] {
        double position = session.get_CurrentPosition();
        stage.clock.now = position;
        stage.view.Tick(position);
    });
    const double cpuStart = CpuSeconds();
    QElapsedTimer wall;
    wall.start();
    session.Run();
    tick.start();
    QTimer::singleShot(seconds * 1000, [] { QCoreApplication::quit(); });
    QCoreApplication::exec();
    paints = stage.paints;
    return 100 * (CpuSeconds() - cpuStart) / (double(wall.nsecsElapsed()) / 1e9);
}

// mpv's own CPU share (its every thread, not the display server's) playing the file for
// `seconds` in a 1920x1080 window on a virtual display.
double MpvShare(const QString& file, int seconds)
{
    QProcess display;
    display.start("Xvfb", {":97", "-screen", "0", "1920x1080x24", "-nolisten", "tcp"});
    if (!display.waitForStarted(5000))
        return -1;
    QThread::msleep(1000);
    const std::string length = "--length=" + std::to_string(seconds);
    const std::string path = QFile::encodeName(file).toStdString();
    std::vector<std::string> args = {"mpv", "--no-config", "--really-quiet", "--ao=null", "--vo=x11",
                                     "--geometry=1920x1080", "--no-border", "--hwdec=no", length, path};
    std::vector<char*> argv;
    for (auto& a : args)
        argv.push_back(a.data());
    argv.push_back(nullptr);
    std::vector<std::string> envText = {"DISPLAY=:97", "HOME=/tmp"};
    std::vector<char*> envp;
    for (auto& e : envText)
        envp.push_back(e.data());
    envp.push_back(nullptr);
    pid_t pid = 0;
    double share = -1;
    QElapsedTimer wall;
    wall.start();
    if (posix_spawnp(&pid, "mpv", nullptr, nullptr, argv.data(), envp.data()) == 0) {
        int status = 0;
        rusage usage{};
        if (wait4(pid, &status, 0, &usage) == pid && WIFEXITED(status) && WEXITSTATUS(status) == 0)
            share = 100 * CpuSeconds(usage) / (double(wall.nsecsElapsed()) / 1e9);
    }
    display.terminate();
    display.waitForFinished(3000);
    return share;
}

void CpuShares(int seconds)
{
    QTemporaryDir dir;
    const QString audio = QDir(dir.path()).filePath("disc.mp3");
    QProcess::execute("ffmpeg", {"-nostdin", "-v", "quiet", "-y", "-f", "lavfi", "-i",
                                 QString("sine=frequency=330:sample_rate=44100:duration=%1").arg(seconds + 2), "-ac",
                                 "2", "-b:a", "192k", audio});
    {
        Stage stage;
        stage.lyrics.Graphics = std::make_shared<CdgDecoder>(DiscSong(seconds + 2));
        int paints = 0;
        const double share = PlayWithPage(audio, stage, seconds, paints);
        std::printf("cpu share, %d s of an MP3+G song, page 1920x1080, null device: %.1f %% of one core (%d paints)\n",
                    seconds, share, paints);
    }

    const QString video = QDir(dir.path()).filePath("clip.mp4");
    QElapsedTimer made;
    made.start();
    QProcess::execute("ffmpeg", {"-nostdin", "-v", "quiet", "-y", "-f", "lavfi", "-i",
                                 "testsrc2=size=1920x1080:rate=30", "-f", "lavfi", "-i",
                                 "sine=frequency=440:sample_rate=44100", "-t", QString::number(seconds + 2), "-c:v",
                                 "libx264", "-preset", "veryfast", "-b:v", "6M", "-pix_fmt", "yuv420p", "-c:a", "aac",
                                 "-shortest", video});
    const VideoFacts facts = ProbeVideo(video);
    {
        Stage stage;
        stage.lyrics.Video = std::make_shared<VideoStream>(video);
        int paints = 0;
        const double share = PlayWithPage(video, stage, seconds, paints);
        std::printf("cpu share, %d s of a video (%s, 6 Mb/s), page 1920x1080, null device: %.1f %% of one core"
                    " (%d paints, %lld frames dropped)\n",
                    seconds, qPrintable(facts.Text()), share, paints, (long long)stage.lyrics.Video->DroppedFrames());
    }
    const double mpv = MpvShare(video, seconds);
    if (mpv < 0)
        std::printf("mpv: could not be run (mpv and Xvfb are needed)\n");
    else
        std::printf("mpv, the same video, 1920x1080 window on Xvfb, vo=x11, no sound: %.1f %% of one core\n", mpv);
}

} // namespace

int main(int argc, char* argv[])
{
    QGuiApplication app(argc, argv);
    QuietDecoderLog();
    DecodeAndSeek();
    CpuShares(qEnvironmentVariableIntValue("BENCH_CPU_SECONDS") > 0 ? qEnvironmentVariableIntValue("BENCH_CPU_SECONDS")
                                                                       : 30);
    return 0;
}
