// The karaoke window's costs: a tick with nothing due, composing a page at full HD and 4K, and
// the CPU share of a playing song with a syllable every 250 ms in a full-HD window on the null
// device (BENCH_CPU_SECONDS, 30 by default). Prints figures; judges nothing.

#include "BenchKit.h"
#include "audio/AudioEngine.h"
#include "audio/NullDevice.h"
#include "core/SettingsStore.h"
#include "core/ThemeClass.h"
#include "karaoke/KaraokeView.h"
#include "playback/MediaSession.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QGuiApplication>
#include <QProcess>
#include <QTemporaryDir>
#include <QTimer>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <sys/resource.h>
#include <vector>

namespace {

// Lines of eight syllables, one every 250 ms, with a second's rest between lines.
std::vector<LyricItem> SyllableEvery250ms(double seconds)
{
    static const char* const words[] = {"Sing ", "a ", "long ", "with ", "the ", "mu", "sic ", "now"};
    std::vector<LyricItem> lyrics(1);
    lyrics[0].FormatName = QStringLiteral("Songweaver (*LRS)");
    lyrics[0].Title = QStringLiteral("Benchmark");
    double t = 1.0;
    int line = 0;
    while (t < seconds) {
        QString text;
        for (const char* w : words)
            text += QString::fromLatin1(w);
        text += QString::number(++line);
        for (int i = 0; i < 8; ++i) {
            LyricItem item;
            item.Time = t;
            item.Text = QString::fromLatin1(words[i]) + (i == 7 ? QString::number(line) : QString());
            item.LineText = text;
            item.LineEnd = i == 7;
            lyrics.push_back(item);
            t += 0.25;
        }
        t += 1.0;
    }
    lyrics.back().LineEnd = false;
    return lyrics;
}

struct Stage {
    MemorySettings store;
    std::vector<MonitorRecord> monitors;
    ThemeClass theme{store, ThemeEnvironment::FromSystem(), monitors};
    LyricsState lyrics;
    FixedClock clock;
    KaraokeView view{lyrics, theme, clock};

    Stage(QSize size, qreal dpr, double songSeconds)
    {
        lyrics.PlayLyrics = SyllableEvery250ms(songSeconds);
        lyrics.LyricsTitleText = QStringLiteral("Songweaver|Benchmark");
        lyrics.LongestLine = FindLongestLine(lyrics.PlayLyrics, theme.LyricsFontFace());
        view.ResizeMe(size, dpr, true);
        view.FitLyrics();
        view.ChangeLyrics();
    }
};

double Median(std::vector<double> v)
{
    std::sort(v.begin(), v.end());
    return v.empty() ? 0 : v[v.size() / 2];
}

void TickCost()
{
    Stage stage(QSize(1920, 1080), 1.0, 60);
    for (double p = 0; p < 3.6; p += 0.01) {
        double position = p;
        stage.view.Timeline().IsPlaying(position);
    }
    constexpr int kTicks = 2000000;
    QElapsedTimer timer;
    timer.start();
    for (int i = 0; i < kTicks; ++i) {
        double position = 3.6;  // inside a syllable: nothing is due
        stage.view.Timeline().IsPlaying(position);
    }
    const double inside = double(timer.nsecsElapsed()) / kTicks;

    Stage intro(QSize(1920, 1080), 1.0, 60);
    timer.restart();
    for (int i = 0; i < kTicks; ++i) {
        double position = 0.5;  // the intro: the title stands
        intro.view.Timeline().IsPlaying(position);
    }
    const double title = double(timer.nsecsElapsed()) / kTicks;
    std::printf("tick with nothing due: %.0f ns inside a syllable, %.0f ns in the intro (target under 2000 ns)\n",
                inside, title);
}

// Pages as a song brings them after a second of intro: a syllable, the window's idle preparation of the lines ahead
// (handed to a worker), then `gapMs` of the song before the next syllable. The machine's stalls
// are measured beside, in the gaps.
void PageCost(const char* label, QSize size, qreal dpr, int gapMs)
{
    Stage stage(size, dpr, 60);
    std::vector<double> sameLine, newLine, prepare;
    MachineStalls stalls = MeasureMachineStalls(1000);  // the song's intro, while the title shows
    const auto& lyrics = stage.lyrics.PlayLyrics;
    for (int32_t i = 1; i < int32_t(lyrics.size()); ++i) {
        QElapsedTimer timer;
        timer.start();
        stage.view.PaintPage(i, false);
        const double ms = double(timer.nsecsElapsed()) / 1e6;
        (lyrics[size_t(i - 1)].LineEnd || i == 1 ? newLine : sameLine).push_back(ms);
        timer.restart();
        stage.view.PrepareUpcoming();
        prepare.push_back(double(timer.nsecsElapsed()) / 1e6);
        const MachineStalls gap = MeasureMachineStalls(gapMs);
        stalls.count += gap.count;
        stalls.longestMs = std::max(stalls.longestMs, gap.longestMs);
    }
    std::printf("PaintPage %-22s (%d ms between syllables): %.2f ms median within a line, %.2f ms median on a new"
                " line, worst %.2f ms (%zu pages); idle preparation on the interface thread %.2f ms median, worst"
                " %.2f ms; machine stalls over 1 ms: %zu, longest %.2f ms\n",
                label, gapMs, Median(sameLine), Median(newLine),
                std::max(*std::max_element(sameLine.begin(), sameLine.end()),
                         *std::max_element(newLine.begin(), newLine.end())),
                sameLine.size() + newLine.size(), Median(prepare), *std::max_element(prepare.begin(), prepare.end()),
                stalls.count, stalls.longestMs);
}

void CpuShare(int seconds)
{
    QTemporaryDir dir;
    const QString song = QDir(dir.path()).filePath("song.ogg");
    QProcess::execute("ffmpeg", {"-nostdin", "-v", "quiet", "-y", "-f", "lavfi", "-i",
                                 QString("sine=frequency=330:sample_rate=48000:duration=%1").arg(seconds + 2), "-ac",
                                 "2", song});
    AudioEngine engine{std::make_unique<NullDevice>(48000, 512)};
    engine.Start();
    MediaSession session(engine);
    if (!session.RenderFile(song)) {
        std::printf("cpu share: the song could not be made (%s)\n", qPrintable(session.ErrorText()));
        return;
    }
    Stage stage(QSize(1920, 1080), 1.0, seconds);
    int pages = 0;
    int32_t lastLyric = 0;
    QTimer tick;
    tick.setTimerType(Qt::PreciseTimer);
    tick.setInterval(10);
    QObject::connect(&tick, &QTimer::timeout, [&] {
        double position = session.get_CurrentPosition();
        stage.clock.now = position;
        stage.view.Timeline().IsPlaying(position);
        if (stage.lyrics.CurrentLyric != lastLyric) {
            lastLyric = stage.lyrics.CurrentLyric;
            ++pages;
            QTimer::singleShot(0, [&stage] { stage.view.PrepareUpcoming(); });
        }
    });
    const double cpuStart = CpuSeconds();
    QElapsedTimer wall;
    wall.start();
    session.Run();
    tick.start();
    QTimer::singleShot(seconds * 1000, [] { QCoreApplication::quit(); });
    QCoreApplication::exec();
    const double cpu = CpuSeconds() - cpuStart;
    const double elapsed = double(wall.nsecsElapsed()) / 1e9;
    std::printf("cpu share, %d s of a song with a syllable every 250 ms, 1920x1080, null device: %.1f %% of one core"
                " (%.2f s CPU in %.1f s, %d pages)\n",
                seconds, 100 * cpu / elapsed, cpu, elapsed, pages);
}

} // namespace

int main(int argc, char* argv[])
{
    QGuiApplication app(argc, argv);
    TickCost();
    PageCost("1920x1080", QSize(1920, 1080), 1.0, 50);
    PageCost("3840x2160", QSize(3840, 2160), 1.0, 50);
    PageCost("1920x1080 at 2x (4K)", QSize(1920, 1080), 2.0, 50);
    CpuShare(qEnvironmentVariableIntValue("BENCH_CPU_SECONDS") > 0 ? qEnvironmentVariableIntValue("BENCH_CPU_SECONDS") : 30);
    return 0;
}
