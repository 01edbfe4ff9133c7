// The timing editor's costs: the waveform's peaks of a 5-minute MP3, the first time and from the
// cache; the tap, from a Space press in the list (a synthetic key event, as the window gets it)
// to the karaoke display array holding the new time and to the karaoke window's next painted
// page, while a song plays on the null device's wall clock; and a mark dragged on the waveform,
// from the mouse move to the strip's paint. The machine's own stalls are measured beside.
// Prints figures; judges nothing.

#include "app/AppState.h"
#include "app/AppWindows.h"
#include "audio/AudioEngine.h"
#include "audio/NullDevice.h"
#include "audio/WavFile.h"
#include "BenchKit.h"
#include "core/SettingsStore.h"
#include "core/ThemeClass.h"
#include "editor/Waveform.h"
#include "playback/PlayerCommands.h"
#include "playback/PlayerTransport.h"
#include "ui/editor/Editor.h"
#include "ui/editor/LyricsTable.h"
#include "ui/editor/WaveformStrip.h"
#include "ui/karaoke/LyricWindow.h"
#include "ui/kit/DesktopDialogs.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPlainTextEdit>
#include <QProcess>
#include <QTemporaryDir>
#include <QTimer>
#include <algorithm>
#include <cstdio>
#include <thread>

namespace {

class NoTray final : public TrayIcon {
public:
    bool Available() const override { return false; }
    void Show() override {}
    void Hide() override {}
};


// Counts the karaoke window's paints.
class PaintCounter final : public QObject {
public:
    int paints = 0;
    bool eventFilter(QObject*, QEvent* event) override
    {
        if (event->type() == QEvent::Paint)
            ++paints;
        return false;
    }
};

void PrintFigures(const char* what, std::vector<double> micros)
{
    if (micros.empty()) {
        std::printf("%-34s no figures\n", what);
        return;
    }
    std::sort(micros.begin(), micros.end());
    const auto at = [&micros](double share) { return micros[size_t(share * double(micros.size() - 1))]; };
    std::printf("%-34s median %8.1f us   p99 %8.1f us   max %8.1f us   (%zu)\n", what, at(0.5), at(0.99),
                micros.back(), micros.size());
}

// The peaks of a 5-minute MP3, decoded the first time and read from the cache the second.
void WaveformPeaksCost(const QTemporaryDir& dir)
{
    const QString song = dir.filePath("five-minutes.mp3");
    QProcess::execute("ffmpeg", {"-nostdin", "-v", "quiet", "-y", "-f", "lavfi", "-i",
                                 "sine=frequency=220:sample_rate=44100:duration=300", "-ac", "2", "-b:a", "192k", song});
    const QString cache = dir.filePath("cache");
    QElapsedTimer timer;
    timer.start();
    const auto first = PeaksOfSong(cache, song, QStringLiteral("bench-song"));
    const double firstMs = double(timer.nsecsElapsed()) / 1e6;
    timer.restart();
    const auto cached = PeaksOfSong(cache, song, QStringLiteral("bench-song"));
    const double cachedMs = double(timer.nsecsElapsed()) / 1e6;
    std::printf("waveform peaks of a 5-minute MP3: %.0f ms the first time (%.1f s of sound), %.1f ms from the cache\n",
                firstMs, first ? first->Seconds() : 0.0, cachedMs);
}

// A mark dragged along the waveform: each mouse move to the strip's next paint.
std::vector<double> DragToRepaint(Editor& editor, PaintCounter& counter)
{
    auto* wave = editor.findChild<WaveformStrip*>(QStringLiteral("Waveform"));
    std::vector<double> micros;
    const int row = 20;
    const double stamp = editor.Document().Entry(row).Time;
    if (!wave || stamp <= 0)
        return micros;
    wave->installEventFilter(&counter);
    wave->ZoomBy(0.1, stamp);
    QMouseEvent press(QEvent::MouseButtonPress, QPointF(wave->XOf(stamp), 30), wave->mapToGlobal(QPointF(wave->XOf(stamp), 30)),
                      Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(wave, &press);
    for (int step = 1; step <= 100; ++step) {
        const QPointF at(wave->XOf(stamp) + (step % 10) - 5, 30);
        QMouseEvent move(QEvent::MouseMove, at, wave->mapToGlobal(at), Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
        const int paints = counter.paints;
        QElapsedTimer clock;
        clock.start();
        QCoreApplication::sendEvent(wave, &move);
        while (counter.paints == paints && clock.elapsed() < 1000)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        if (counter.paints > paints)
            micros.push_back(double(clock.nsecsElapsed()) / 1000.0);
    }
    QMouseEvent release(QEvent::MouseButtonRelease, QPointF(wave->XOf(stamp), 30), wave->mapToGlobal(QPointF(wave->XOf(stamp), 30)),
                        Qt::LeftButton, Qt::NoButton, Qt::NoModifier);
    QCoreApplication::sendEvent(wave, &release);
    return micros;
}

} // namespace

int main(int argc, char* argv[])
{
    constexpr int kTaps = 100;
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    QTemporaryDir dir;
    WaveformPeaksCost(dir);
    const QString song = dir.filePath("song.wav");
    WriteStereoWav(song, std::vector<float>(size_t(48000 * 2 * 120), 0.0f), 48000);

    AppState state;
    MemorySettings store;
    state.Language.LoadTable(false);
    state.Theme = std::make_unique<ThemeClass>(store, ThemeEnvironment{}, state.MonitorList);
    state.Engine = std::make_unique<AudioEngine>(std::make_unique<NullDevice>());
    state.Engine->Start();
    DesktopDialogs dialogs;
    AppWindows windows(state, store, dialogs);
    PlayerTransport transport(state, windows, state.Songs);
    NoTray tray;
    PlayerCommands commands(state, windows, transport, tray, dialogs);
    windows.Attach(transport, commands);

    commands.MenuCommand(QStringLiteral("Karaoke"));
    transport.OpenSong(song, true);
    commands.ButtonAction(PlayerButton::Editor);
    Editor& editor = *windows.EditorWidget();
    QString words;
    for (int line = 0; line < 40; ++line)
        words += QStringLiteral("the quick brown fox jumps over\r\n");
    editor.LyricsBox().setPlainText(words);
    editor.Command(QStringLiteral("MenuSplitWords"));

    PaintCounter counter;
    windows.LyricWidget()->installEventFilter(&counter);
    std::vector<double> toArray, toPage;
    MachineStalls stalls;
    std::thread probe([&stalls] { stalls = MeasureMachineStalls(kTaps * 160); });
    for (int tap = 0; tap < kTaps && tap < editor.Document().Count(); ++tap) {
        // A tap about every 150 ms, as a singer's syllables come.
        QEventLoop pause;
        QTimer::singleShot(150, &pause, &QEventLoop::quit);
        pause.exec();
        const int row = editor.List().SelectedRow() == 0 ? 1 : editor.List().SelectedRow();
        const double before = state.Lyrics.PlayLyrics[size_t(row)].Time;
        const int paints = counter.paints;

        QElapsedTimer clock;
        clock.start();
        QKeyEvent press(QEvent::KeyPress, Qt::Key_Space, Qt::NoModifier, QStringLiteral(" "));
        QKeyEvent release(QEvent::KeyRelease, Qt::Key_Space, Qt::NoModifier, QStringLiteral(" "));
        QCoreApplication::sendEvent(&editor.List(), &press);
        if (state.Lyrics.PlayLyrics[size_t(row)].Time == before)
            continue;
        toArray.push_back(double(clock.nsecsElapsed()) / 1000.0);
        QCoreApplication::sendEvent(&editor.List(), &release);
        while (counter.paints == paints && clock.elapsed() < 1000)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        if (counter.paints > paints)
            toPage.push_back(double(clock.nsecsElapsed()) / 1000.0);
    }
    probe.join();
    PrintFigures("Space to the display array", toArray);
    PrintFigures("Space to the next painted page", toPage);
    PaintCounter stripPaints;
    MachineStalls dragStalls;
    std::thread dragProbe([&dragStalls] { dragStalls = MeasureMachineStalls(1500); });
    PrintFigures("a waveform drag to its repaint", DragToRepaint(editor, stripPaints));
    dragProbe.join();
    std::printf("machine stalls over 1 ms: %zu while tapping (longest %.2f ms), %zu while dragging (longest %.2f ms)\n",
                stalls.count, stalls.longestMs, dragStalls.count, dragStalls.longestMs);
    return 0;
}
