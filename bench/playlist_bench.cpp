// The playlist's costs: adding 2000 MP3 files with their probing (time to the last row, and the
// longest the interface thread was ever kept from its events), and loading an auto-saved list of
// 10,000 rows. Prints figures; judges nothing.

#include "BenchKit.h"
#include "app/AppState.h"
#include "core/SettingsStore.h"
#include "playback/PlayerTransport.h"
#include "ui/player/PlayerWindow.h"
#include "ui/playlist/UserList.h"
#include "ui/kit/DesktopDialogs.h"
#include "ui/kit/Docking.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTimer>
#include <cstdio>
#include <cstdlib>

namespace {

// The main window and the playlist window; no karaoke window is loaded.
class Windows final : public FormProvider {
public:
    explicit Windows(PlayerWindow& player) : m_player(player) {}
    PlayerForm& Player() override { return m_player; }
    PlaylistForm* UserList() override { return list; }
    KaraokeForm* Lyric() override { return nullptr; }
    ControlsForm* MidiEq() override { return nullptr; }
    EditorForm* Editor() override { return nullptr; }
    PlaylistForm& LoadUserList() override { return *list; }
    KaraokeForm& LoadLyric() override { std::abort(); }
    ControlsForm& LoadMidiEq() override { std::abort(); }
    EditorForm& LoadEditor() override { std::abort(); }
    std::vector<Form*> LoadedForms() override { return {}; }
    void ShowFileInfo(const QString&, const QString&) override {}
    void ShowPreferences(int) override {}
    void ShowAbout() override {}
    void ShowLibrary() override {}
    void ShowSingers() override {}
    void ShowRemote() override {}
    void ShowTutorial() override {}
    PlaylistForm* list = nullptr;

private:
    PlayerWindow& m_player;
};

QStringList MakeSongs(const QDir& dir, int count)
{
    const QString first = dir.filePath("song0000.mp3");
    QProcess::execute("ffmpeg", {"-nostdin", "-v", "quiet", "-y", "-f", "lavfi", "-i",
                                 "sine=frequency=440:sample_rate=44100:duration=3", "-metadata", "artist=Bench Artist",
                                 "-metadata", "title=Bench Title", "-b:a", "64k", first});
    QStringList songs{first};
    for (int i = 1; i < count; ++i) {
        const QString copy = dir.filePath(QStringLiteral("song%1.mp3").arg(i, 4, 10, QLatin1Char('0')));
        QFile::copy(first, copy);
        songs << copy;
    }
    return songs;
}

} // namespace

int main(int argc, char* argv[])
{
    QApplication app(argc, argv);
    QTemporaryDir dir;
    const QStringList songs = MakeSongs(QDir(dir.path()), 2000);

    AppState state;
    state.Language.LoadTable(false);
    MemorySettings store;
    Docking docking;
    PlayerWindow player(state, store, docking);
    Windows windows(player);
    PlayerTransport transport(state, windows, state.Songs);
    DesktopDialogs dialogs;
    UserList list(state, state.Songs, store, docking, transport, dialogs);
    windows.list = &list;
    list.Show();

    // The interface thread's heartbeat: the longest gap between two of its 1 ms timer events.
    QElapsedTimer beat;
    qint64 longestGap = 0;
    QTimer heart;
    heart.setTimerType(Qt::PreciseTimer);
    QObject::connect(&heart, &QTimer::timeout, [&] {
        longestGap = std::max(longestGap, beat.nsecsElapsed());
        beat.restart();
    });

    QElapsedTimer clock;
    qint64 lastRow = 0;
    QObject::connect(&state.Songs, &Playlist::rowAdded, [&](int count) {
        if (count == songs.size()) {
            lastRow = clock.nsecsElapsed();
            QTimer::singleShot(0, &app, &QApplication::quit);
        }
    });
    heart.start(1);
    beat.start();
    clock.start();
    state.Songs.AppendFiles(songs);
    QApplication::exec();
    heart.stop();
    std::printf("add %lld MP3 files with probing: last row after %.2f s (target under 4 s); interface thread"
                " blocked at most %.1f ms (target under 50 ms); first row and last time \"%s\"\n",
                static_cast<long long>(songs.size()), double(lastRow) / 1e9, double(longestGap) / 1e6,
                qPrintable(state.Songs.Model().Row(0).ItemString + QStringLiteral(", ") + state.Songs.Model().Row(1999).ItemTime));

    // An auto-saved list of 10,000 rows: the 2000 songs five times over.
    std::vector<PlaylistRow> rows;
    for (int round = 0; round < 5; ++round)
        for (const QString& song : songs)
            rows.push_back({QStringLiteral("Bench Artist - Bench Title"), QStringLiteral("00:03"), song});
    WriteListFile(dir.filePath("Songweaver.ini"), WriteM3U(rows));
    Playlist saved(state.Language);
    UserList savedWindow(state, saved, store, docking, transport, dialogs);
    savedWindow.Show();
    clock.restart();
    saved.LoadSavedList(dir.filePath("Songweaver.ini"));
    QApplication::processEvents();
    const double loadSeconds = double(clock.nsecsElapsed()) / 1e9;
    std::printf("load an auto-saved list of %d rows into a shown window: %.3f s (target under 0.5 s)\n",
                saved.ListCount(), loadSeconds);
    return 0;
}
