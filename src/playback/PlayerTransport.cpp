#include "playback/PlayerTransport.h"

#include "core/AppState.h"
#include "playback/PlayerWindow.h"

#include <QFileInfo>

QString CommandLineSongPath(const QString& commandLine)
{
    QString path = QFileInfo(commandLine.trimmed()).absoluteFilePath();
    if (path.endsWith(QLatin1String("lrs"), Qt::CaseInsensitive))
        path = path.left(path.size() - 3) + QStringLiteral("mp3");
    return path;
}

PlayerTransport::PlayerTransport(AppState& state, FormProvider& forms, PlayerWindow& player)
    : m_state(state), m_player(player), m_ticks(state, forms, *this)
{
}

void PlayerTransport::StopSong()
{
    m_ticks.Stop();
    m_player.Light(0, 0);
    m_player.Light(1, 0);
    m_player.Light(2, 1);
}

void PlayerTransport::DALEJ()
{
    StopSong();
}

void PlayerTransport::OpenFromCommandLine(const QString& commandLine)
{
    const QString path = CommandLineSongPath(commandLine);
    if (!QFileInfo(path).isFile())
        return;
    m_state.CurrentFile = path;
    m_player.SetSongName(QFileInfo(path).completeBaseName());
}
