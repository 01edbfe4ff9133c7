// The editor's tap: from a Space press in the list (a synthetic key event, as the window gets
// it) to the karaoke display array holding the new time, and to the karaoke window's next
// painted page, while a song plays on the null device's wall clock. Prints figures; judges nothing.

#include "app/AppState.h"
#include "app/AppWindows.h"
#include "audio/AudioEngine.h"
#include "audio/NullDevice.h"
#include "audio/WavFile.h"
#include "BenchKit.h"
#include "core/SettingsStore.h"
#include "core/ThemeClass.h"
#include "playback/PlayerCommands.h"
#include "playback/PlayerTransport.h"
#include "ui/editor/Editor.h"
#include "ui/editor/LyricsTable.h"
#include "ui/karaoke/LyricWindow.h"
#include "ui/kit/DesktopDialogs.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QKeyEvent>
#include <QPlainTextEdit>
#include <QTemporaryDir>
#include <QTimer>
#include <algorithm>
#include <cstdio>

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
    std::sort(micros.begin(), micros.end());
    const auto at = [&micros](double share) { return micros[size_t(share * double(micros.size() - 1))]; };
    std::printf("%-34s median %8.1f us   p90 %8.1f us   max %8.1f us   (%zu taps)\n", what, at(0.5), at(0.9),
                micros.back(), micros.size());
}

} // namespace

int main(int argc, char* argv[])
{
    constexpr int kTaps = 100;
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    QTemporaryDir dir;
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
    editor.Command(QStringLiteral("MenuSplitText"));

    PaintCounter counter;
    windows.LyricWidget()->installEventFilter(&counter);
    std::vector<double> toArray, toPage;
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
    PrintFigures("Space to the display array", toArray);
    PrintFigures("Space to the next painted page", toPage);
    return 0;
}
