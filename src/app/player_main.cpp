// songweaver: the karaoke player.

#include "app/Application.h"
#include "app/AppState.h"
#include "app/AppWindows.h"
#include "app/HeadlessRun.h"
#include "app/SingleInstance.h"
#include "audio/SoundDevices.h"
#include "core/SettingsStore.h"
#include "playback/PlayerCommands.h"
#include "playback/PlayerTransport.h"
#include "ui/kit/DesktopDialogs.h"
#include "ui/player/PlayerServices.h"
#include "ui/player/PlayerWindow.h"
#include "ui/voice/RegMe.h"
#include "voice/Equalizer.h"
#include "voice/VoiceRecorder.h"

#include <QApplication>
#include <QIcon>
#include <QStandardPaths>
#include <QStringList>

int main(int argc, char* argv[])
{
    QApplication qapp(argc, argv);
    QCoreApplication::setOrganizationName(QStringLiteral("Tonehaven"));
    QCoreApplication::setApplicationName(QStringLiteral("Songweaver"));
    QCoreApplication::setApplicationVersion(QStringLiteral(SONGWEAVER_VERSION));
    QGuiApplication::setApplicationDisplayName(QStringLiteral("Songweaver"));
    QGuiApplication::setDesktopFileName(QStringLiteral("songweaver"));
    QApplication::setQuitOnLastWindowClosed(false);

    // The one optional argument is a path, which may hold blanks.
    const QString commandLine = QCoreApplication::arguments().mid(1).join(u' ');

    AppState state;
    QSettingsStore store;
    DesktopDialogs dialogs;
    AppWindows windows(state, store, dialogs);
    SingleInstance instance;
    PlayerTransport transport(state, windows, state.Songs, &dialogs);
    PlayerWindow& player = windows.PlayerWidget();
    PlayerCommands* commandsForTray = nullptr;
    SystemTray tray(
        QIcon(QStringLiteral(":/skin/songweaver.svg")), [&player] { return player.Menu(QStringLiteral("TrayMenu")); },
        [&commandsForTray] { commandsForTray->RestoreFromTray(); });
    PlayerCommands commands(state, windows, transport, tray, dialogs);
    commandsForTray = &commands;
    windows.Attach(transport, commands);
    Equalizer equalizer(state);
    RegMe regMe(state, player);
    VoiceRecorder recorder(state, windows, dialogs, equalizer, regMe);
    transport.AttachVoice(recorder);
    windows.AttachVoice(equalizer, recorder);

    bool ended = false;
    Platform platform{store,
                      ThemeEnvironment::FromSystem(),
                      ShellFolders::FromSystem(),
                      QCoreApplication::applicationFilePath(),
                      QStandardPaths::writableLocation(QStandardPaths::AppDataLocation),
                      HasOutputDevice,
                      [&ended] {
                          ended = true;
                          QCoreApplication::quit();
                      }};
    Application application(state, std::move(platform), windows, transport, &equalizer, dialogs, instance);

    // A take being recorded is kept when the program closes.
    const auto closeApp = [&application, &recorder] {
        recorder.StopVoiceRecord();
        application.CloseApp();
    };
    commands.CloseApp = closeApp;
    QObject::connect(&player, &PlayerWindow::closeRequested, closeApp);
    QObject::connect(&instance, &SingleInstance::commandLineReceived,
                     [&transport](const QString& handed) { transport.OpenFromCommandLine(handed); });
    windows.LyricLoaded = [&state](LyricWindow& lyric) { LogLitSyllables(lyric, state.Lyrics); };
    ArmHeadlessRun(closeApp);
    ArmScriptedKeys([&commands](int key, Qt::KeyboardModifiers modifiers) { commands.KeyDown(key, modifiers); },
                    [&commands](int number) {
                        if (const auto button = ButtonOfNumber(number))
                            commands.ButtonAction(*button);
                    });

    if (!application.Main(commandLine) || ended)
        return 0;
    transport.StartAudio();
    windows.StartLibrary();
    return QApplication::exec();
}
