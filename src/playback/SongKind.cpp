#include "playback/SongKind.h"

#include "cdg/CdgSong.h"
#include "video/VideoStream.h"

QString SongKindText(const QString& audioPath, const QString& format)
{
    if (format == u"MIDI")
        return format;
    if (!CdgFileOf(audioPath).isEmpty())
        return QStringLiteral("CDG ") + format;
    if (const VideoFacts video = ProbeVideo(audioPath); video.Valid())
        return QStringLiteral("VIDEO ") + video.Text();
    return format;
}
