// songweaver: the karaoke player.

#include "app/AppWindows.h"
#include "app/HeadlessRun.h"
#include "audio/SoundDevices.h"
#include "core/AppState.h"
#include "core/Application.h"
#include "core/SettingsStore.h"
#include "core/SingleInstance.h"
#include "playback/PlayerCommands.h"
#include "playback/PlayerTransport.h"
#include "playback/PlayerWindow.h"
#include "widgets/Desktop.h"

#include <QApplication>
#include <QStandardPaths>
#include <QStringList>

int main(int argc, char* argv[])
{
    QApplication qapp(argc, argv);
    QCoreApplication::setOrganizationName(QStringLiteral("Tonehaven"));
    QCoreApplication::setApplicationName(QStringLiteral("Songweaver"));
    QGuiApplication::setApplicationDisplayName(QStringLiteral("Songweaver"));
    QGuiApplication::setDesktopFileName(QStringLiteral("songweaver"));
    QApplication::setQuitOnLastWindowClosed(false);

    // The one optional argument is a path, which may hold blanks.
    const QString commandLine = QCoreApplication::arguments().mid(1).join(u' ');

    AppState state;
    QSettingsStore store;
    AppWindows windows(state, store);
    SingleInstance instance;
    WidgetMessageBoxes messages;
    PlayerTransport transport(state, windows, windows.PlayerWidget(), &messages);
    const QString dataFolder = QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
    windows.AttachPlaylist(transport, PlaylistIniPath(dataFolder));

    bool ended = false;
    Platform platform{store,
                      ThemeEnvironment::FromSystem(),
                      ShellFolders::FromSystem(),
                      QCoreApplication::applicationFilePath(),
                      dataFolder,
                      HasOutputDevice,
                      [&ended] {
                          ended = true;
                          QCoreApplication::quit();
                      }};
    Application application(state, std::move(platform), windows, transport, nullptr, messages, instance);

    PlayerCommands commands(state, windows, transport, windows.PlayerWidget());
    commands.CloseApp = [&application] { application.CloseApp(); };
    QObject::connect(&windows.PlayerWidget(), &PlayerWindow::closeRequested, [&application] { application.CloseApp(); });
    QObject::connect(&instance, &SingleInstance::commandLineReceived,
                     [&transport](const QString& handed) { transport.OpenFromCommandLine(handed); });
    ArmHeadlessRun([&application] { application.CloseApp(); });

    if (!application.Main(commandLine) || ended)
        return 0;
    LogLitSyllables(windows.LyricWidget(), state.Lyrics);
    transport.StartAudio();
    return QApplication::exec();
}
