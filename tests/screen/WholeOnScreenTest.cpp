// Every window of the program whole on the screen it opens on: run once per screen size and
// scale (1366x768 and 1600x900, at 1x and 2x), on a first run and with positions saved elsewhere.

#include "app/Application.h"
#include "app/SingleInstance.h"
#include "core/WindowPosition.h"
#include "support/ProgramWindows.h"
#include "ui/editor/DetailsDialog.h"
#include "ui/editor/PictureDialog.h"
#include "ui/karaoke/LyricWindow.h"
#include "library/LibraryPaths.h"
#include "library/LibraryScan.h"
#include "library/SingerQueue.h"
#include "ui/library/LibraryWindow.h"
#include "ui/library/SingersWindow.h"
#include "ui/remote/RemoteWindow.h"
#include "ui/midi/MidiEq.h"
#include "ui/player/PlayerWindow.h"
#include "ui/print/Printer.h"

#include <QApplication>
#include <QDialog>
#include <QDir>
#include <QPainter>
#include <QScreen>
#include <QTemporaryDir>
#include <QTest>
#include <QUuid>
#include <gtest/gtest.h>

namespace {

QRect Available() { return QGuiApplication::primaryScreen()->availableGeometry(); }

// Saves what a person would see, `front` over the other windows, when asked to.
void Capture(const QString& name, QWidget* front = nullptr)
{
    const QString folder = qEnvironmentVariable("SONGWEAVER_CAPTURE_DIR");
    if (folder.isEmpty())
        return;
    const QScreen* screen = QGuiApplication::primaryScreen();
    QDir().mkpath(folder);
    QImage shot(screen->geometry().size() * screen->devicePixelRatio(), QImage::Format_RGB32);
    shot.setDevicePixelRatio(screen->devicePixelRatio());
    shot.fill(Qt::black);
    QPainter painter(&shot);
    for (QWidget* window : QApplication::topLevelWidgets())
        if (window->isVisible() && window != front)
            painter.drawPixmap(window->geometry().topLeft(), window->grab());
    if (front)
        painter.drawPixmap(front->geometry().topLeft(), front->grab());
    painter.end();
    shot.save(QDir(folder).filePath(QStringLiteral("%1-%2x%3@%4x.png")
                                        .arg(name)
                                        .arg(screen->geometry().width() * screen->devicePixelRatio())
                                        .arg(screen->geometry().height() * screen->devicePixelRatio())
                                        .arg(screen->devicePixelRatio())));
}

void ExpectWhole(const QWidget& window, const char* name)
{
    EXPECT_TRUE(window.isVisible()) << name;
    EXPECT_TRUE(Available().contains(window.frameGeometry()))
        << name << " at " << window.frameGeometry().x() << "," << window.frameGeometry().y() << " "
        << window.frameGeometry().width() << "x" << window.frameGeometry().height() << " on a screen of "
        << Available().width() << "x" << Available().height();
}

class Program : public testing::Test, protected ProgramWindows {
protected:
    ~Program() override { app.CloseApp(); }

    void Start()
    {
        ASSERT_TRUE(app.Main(QString()));
        QApplication::processEvents();
    }

    QTemporaryDir data;
    SingleInstance instance{QStringLiteral("songweaver-screen-") + QUuid::createUuid().toString(QUuid::Id128)};
    Application app{state,
                    Platform{store, ThemeEnvironment::FromSystem(), ShellFolders{data.filePath("data"), data.filePath("config"), {}},
                             QStringLiteral("/opt/songweaver"), data.path(), [] { return true; }, [] {}},
                    windows, transport, nullptr, dialogs, instance};
};

} // namespace

TEST_F(Program, TheFirstRunShowsThePlayerThePlaylistAndTheKaraokeWindowWholeAndApart)
{
    Start();
    const QWidget& player = windows.PlayerWidget();
    const QWidget& karaoke = *windows.LyricWidget();
    const auto& list = dynamic_cast<const QWidget&>(*windows.UserList());
    ExpectWhole(player, "the player");
    ExpectWhole(list, "the playlist");
    ExpectWhole(karaoke, "the karaoke window");
    EXPECT_FALSE(karaoke.frameGeometry().intersects(player.frameGeometry())) << "the karaoke window covers the player";
    EXPECT_FALSE(karaoke.frameGeometry().intersects(list.frameGeometry())) << "the karaoke window covers the playlist";
    Capture(QStringLiteral("first-run"));
}

TEST_F(Program, EveryOtherWindowAndDialogOpensWhole)
{
    Start();
    windows.LoadMidiEq().Show();
    QApplication::processEvents();
    ExpectWhole(dynamic_cast<const QWidget&>(*windows.MidiEq()), "the MIDI window");
    Capture(QStringLiteral("midi"), dynamic_cast<QWidget*>(windows.MidiEq()));

    windows.LoadEditor().Open();
    QApplication::processEvents();
    ExpectWhole(dynamic_cast<const QWidget&>(*windows.Editor()), "the editor");
    Capture(QStringLiteral("editor"), dynamic_cast<QWidget*>(windows.Editor()));

    // The guests' page on, at a free port: the screens run side by side.
    state.Theme->RemoteOn = true;
    state.Theme->RemotePort = 0;
    state.Theme->RemotePin = QStringLiteral("4711");
    windows.ShowPreferences(0);
    QApplication::processEvents();
    QDialog* preferences = windows.PlayerWidget().findChild<QDialog*>(QStringLiteral("LyricOptions"));
    ASSERT_NE(preferences, nullptr);
    ExpectWhole(*preferences, "the preferences");
    Capture(QStringLiteral("preferences"), preferences);
    preferences->hide();

    // A library with the demo songs and the media fixtures in it, as after a scan.
    ASSERT_NE(state.Library, nullptr);
    LibraryScan scan(state.Library->Path(), {RawPath(SourcePath("resources/demo")), RawPath(MediaFixture(""))}, false,
                     data.filePath("links"));
    const std::atomic<bool> cancel{false};
    ASSERT_EQ(scan.Run(cancel).added, 24);
    windows.ShowLibrary();
    QApplication::processEvents();
    ASSERT_NE(windows.LibraryWidget(), nullptr);
    ExpectWhole(*windows.LibraryWidget(), "the song library");
    Capture(QStringLiteral("library"), windows.LibraryWidget());
    SingerQueue& queue = *windows.Queue();
    for (const char* name : {"Ann", "Bob"})
        queue.Enqueue(*queue.AddSinger(QString::fromLatin1(name)), RawPath(SourcePath("resources/demo/twinkle.ogg")),
                      "Twinkle, Twinkle, Little Star", "Traditional");
    queue.Enqueue(*queue.AddSinger(QStringLiteral("Zoë")), RawPath(SourcePath("resources/demo/twinkle.ogg")),
                  "Twinkle, Twinkle, Little Star", "Traditional", 2, QStringLiteral("guest"), true);
    windows.ShowSingers();
    QApplication::processEvents();
    ExpectWhole(*windows.SingersWidget(), "the singers' queue");
    Capture(QStringLiteral("singers"), windows.SingersWidget());

    windows.ApplyRemote();
    windows.ShowPreferences(6);
    QApplication::processEvents();
    ExpectWhole(*preferences, "the guests' phones' preferences");
    Capture(QStringLiteral("preferences-remote"), preferences);
    preferences->hide();
    windows.ShowRemote();
    QApplication::processEvents();
    ASSERT_NE(windows.RemoteWidget(), nullptr);
    ExpectWhole(*windows.RemoteWidget(), "the guests' phones");
    Capture(QStringLiteral("remote"), windows.RemoteWidget());

    const std::vector<QDialog*> dialogs = {
        new Printer(state.Lyrics.EditLyrics, store, state.Language, this->dialogs, &windows.PlayerWidget()),
        new DetailsDialog(state.Lyrics, *state.Theme, state.Language, this->dialogs, data.path(), &windows.PlayerWidget()),
        new PictureDialog(nullptr, QImage(), *state.Theme, state.Language, this->dialogs, data.path(),
                          &windows.PlayerWidget()),
    };
    for (QDialog* dialog : dialogs) {
        dialog->setAttribute(Qt::WA_DeleteOnClose);
        dialog->show();
        QApplication::processEvents();
        ExpectWhole(*dialog, qPrintable(dialog->metaObject()->className()));
        Capture(QString::fromLatin1(dialog->metaObject()->className()), dialog);
        dialog->close();
    }
}

TEST_F(Program, PositionsSavedOnALargerScreenComeBackWhole)
{
    WritePlayerPosition(store, {QRect(2400, 1300, 360, 125), true, true});
    WriteWindowPosition(store, QStringLiteral("userlist position"), QRect(-900, 1200, 360, 2000));
    WriteWindowPosition(store, QStringLiteral("karaoke window position"), QRect(1500, 700, 1920, 1080));
    WriteWindowPosition(store, QStringLiteral("eq position"), QRect(3000, -400, 300, 200));
    WriteWindowPosition(store, QStringLiteral("editor position"), QRect(-2000, 900, 1200, 1000));
    Start();
    windows.LoadEditor().Open();
    QApplication::processEvents();
    ExpectWhole(windows.PlayerWidget(), "the player");
    ExpectWhole(dynamic_cast<const QWidget&>(*windows.UserList()), "the playlist");
    ExpectWhole(*windows.LyricWidget(), "the karaoke window");
    ExpectWhole(dynamic_cast<const QWidget&>(*windows.MidiEq()), "the MIDI window");
    ExpectWhole(dynamic_cast<const QWidget&>(*windows.Editor()), "the editor");
}
