// The transitions' costs at 1920x1080: the frame of each effect family (median and worst over
// the whole run), a whole step as the karaoke window takes it (frame, background, text, screen
// copy), and the longest the event loop waits while transitions run on their timer with a
// probe timer asking every millisecond; then the machine's own stalls for comparison. Prints
// figures; judges nothing.

#include "BenchKit.h"
#include "core/SettingsStore.h"
#include "core/ThemeClass.h"
#include "karaoke/KaraokeView.h"
#include "karaoke/Transitions.h"

#include <QElapsedTimer>
#include <QEventLoop>
#include <QGuiApplication>
#include <QPainter>
#include <QTemporaryDir>
#include <QTimer>
#include <algorithm>
#include <cstdio>
#include <map>
#include <vector>

namespace {

const QSize kFullHd(1920, 1080);

QImage Picture(QSize size, QColor a, QColor b)
{
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    QPainter p(&image);
    QLinearGradient g(0, 0, size.width(), size.height());
    g.setColorAt(0, a);
    g.setColorAt(1, b);
    p.fillRect(image.rect(), g);
    return image;
}

struct Figures {
    double median = 0;
    double p99 = 0;
    double worst = 0;
};

Figures Summarise(std::vector<double> values)
{
    if (values.empty())
        return {};
    std::sort(values.begin(), values.end());
    return {values[values.size() / 2], values[values.size() * 99 / 100], values.back()};
}

const char* FamilyName(EffectFamily family)
{
    switch (family) {
    case EffectFamily::Slide: return "Slide";
    case EffectFamily::Wipe: return "Wipe";
    case EffectFamily::Push: return "Push";
    case EffectFamily::Stretch: return "Stretch";
    case EffectFamily::Poker: return "Poker";
    case EffectFamily::Checkboard: return "Checkboard";
    }
    return "?";
}

void FrameCosts()
{
    const QImage before = Picture(kFullHd, QColor(20, 40, 120), QColor(40, 160, 200));
    const QImage after = Picture(kFullHd, QColor(250, 220, 60), QColor(160, 30, 30));
    std::map<EffectFamily, std::vector<double>> byFamily;
    QElapsedTimer clock;
    for (const EffectRow& row : EffectTable()) {
        for (const QString& detail : row.Details) {
            const Effect effect = *FindEffect(row.Name, detail);
            for (int step = 1; step < 40; ++step) {
                clock.start();
                const QImage frame = TransitionFrame(before, after, effect, step / 40.0);
                byFamily[row.Family].push_back(double(clock.nsecsElapsed()) / 1e6);
            }
        }
    }
    std::printf("frame of an effect at 1920x1080 (ms)\n");
    for (const auto& [family, times] : byFamily) {
        const Figures f = Summarise(times);
        std::printf("  %-11s median %6.2f  p99 %6.2f  worst %6.2f  (%zu frames)\n", FamilyName(family), f.median,
                    f.p99, f.worst, times.size());
    }
}

struct Window {
    QTemporaryDir dir;
    MemorySettings store;
    std::vector<MonitorRecord> monitors;
    ThemeClass theme{store, ThemeEnvironment::FromSystem(), monitors};
    LyricsState lyrics;
    FixedClock song;
    KaraokeView view{lyrics, theme, song};

    explicit Window(const QString& effect, const QString& detail)
    {
        const QString first = dir.filePath(QStringLiteral("a.png"));
        const QString second = dir.filePath(QStringLiteral("b.png"));
        Picture(kFullHd, QColor(20, 40, 120), QColor(40, 160, 200)).save(first);
        Picture(kFullHd, QColor(250, 220, 60), QColor(160, 30, 30)).save(second);
        lyrics.PlayLyrics.resize(1);
        lyrics.PlayLyrics[0].FormatName = QStringLiteral("Songweaver (*LRS)");
        // The last line comes after the picture: a tick at the last syllable moves no picture.
        for (int i = 1; i <= 5; ++i) {
            LyricItem item;
            item.Time = i < 5 ? 0.5 * i : 60.0;
            item.Text = item.LineText = QStringLiteral("Over the rainbow, line %1").arg(i);
            item.LineEnd = true;
            lyrics.PlayLyrics.push_back(item);
        }
        lyrics.PlayPictures = {PictureItem{}, {first, 0, {}, {}, 0}, {second, 3, effect, detail, 5}};
        BuildPictureOrder(lyrics);
        theme.LyricsFitFont = true;
        view.ResizeMe(kFullHd, 1.0, true);
        view.ChangeLyrics();
        for (int i = 0; i < 4; ++i) {
            song.now = 2.5;
            double position = 2.5;
            view.Timeline().IsPlaying(position);
        }
    }

    void StartTransition()
    {
        song.now = 3.01;
        double position = 3.01;
        view.Timeline().IsPlaying(position);
    }
};

// A whole step as the window takes it, in simulated time so every frame is made.
void StepCosts()
{
    std::printf("a whole step in the karaoke window at 1920x1080 with text (ms)\n");
    for (const auto& [effect, detail] : {std::pair{"Slide Side", "Left"}, {"Wipe Blinds", "Horizontal"},
                                         {"Push Strips", "Vertical"}, {"Stretch Zoom", "Inside"}}) {
        Window w{QString::fromLatin1(effect), QString::fromLatin1(detail)};
        double now = 0;
        w.view.Clock = [&now] { return now; };
        w.StartTransition();
        std::vector<double> times;
        QElapsedTimer clock;
        while (w.view.TransitionRunning()) {
            now += 10;
            const qint64 before = w.view.Frame().cacheKey();
            clock.start();
            w.view.StepTransition();
            const double ms = double(clock.nsecsElapsed()) / 1e6;
            // A tick between two of the effect's frames draws nothing; only drawn steps count.
            if (w.view.Frame().cacheKey() != before)
                times.push_back(ms);
        }
        const Figures f = Summarise(times);
        std::printf("  %-22s median %6.2f  p99 %6.2f  worst %6.2f  (%zu drawn steps)\n",
                    (QString::fromLatin1(effect) + u' ' + QString::fromLatin1(detail)).toLatin1().constData(),
                    f.median, f.p99, f.worst, times.size());
    }
}

// The event loop with a transition on its timer: how late a 1 ms probe comes at worst.
void EventLoopWaits()
{
    std::printf("event loop during a transition at 1920x1080 (probe every 1 ms)\n");
    for (const auto& [effect, detail] : {std::pair{"Slide Side", "Left"}, {"Stretch Box", "Outside"}}) {
        Window w{QString::fromLatin1(effect), QString::fromLatin1(detail)};
        QTimer stepper;
        stepper.setTimerType(Qt::PreciseTimer);
        QObject::connect(&stepper, &QTimer::timeout, [&] { w.view.StepTransition(); });
        w.view.TransitionTimer = [&](double ms) {
            if (ms <= 0)
                stepper.stop();
            else
                stepper.start(int(std::max(10.0, ms)));
        };
        QEventLoop loop;
        QElapsedTimer since;
        std::vector<double> gaps;
        QTimer probe;
        probe.setTimerType(Qt::PreciseTimer);
        probe.setInterval(1);
        QObject::connect(&probe, &QTimer::timeout, [&] {
            gaps.push_back(double(since.nsecsElapsed()) / 1e6);
            since.restart();
            if (!w.view.TransitionRunning())
                loop.quit();
        });
        w.StartTransition();
        since.start();
        probe.start();
        QElapsedTimer run;
        run.start();
        loop.exec();
        const Figures f = Summarise(gaps);
        std::printf("  %-22s median wait %5.2f  p99 %6.2f  longest %6.2f ms  (transition %.0f ms, %zu probes)\n",
                    (QString::fromLatin1(effect) + u' ' + QString::fromLatin1(detail)).toLatin1().constData(),
                    f.median, f.p99, f.worst, double(run.elapsed()), gaps.size());
    }
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    FrameCosts();
    StepCosts();
    EventLoopWaits();
    const MachineStalls stalls = MeasureMachineStalls(3000);
    std::printf("the machine alone, 3 s of an empty loop: %zu gaps over 1 ms, longest %.2f ms\n", stalls.count,
                stalls.longestMs);
    return 0;
}
