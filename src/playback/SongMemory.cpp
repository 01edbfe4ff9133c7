#include "playback/SongMemory.h"

#include <QCryptographicHash>
#include <QFile>

namespace {

constexpr qint64 kHashedBytes = 1 << 20;

} // namespace

QString SongMemory::SongKey(const QString& songPath)
{
    QFile song(songPath);
    if (!song.open(QIODevice::ReadOnly))
        return {};
    const QByteArray start = song.read(kHashedBytes);
    return QString::number(song.size()) + u'-' +
           QString::fromLatin1(QCryptographicHash::hash(start, QCryptographicHash::Sha1).toHex());
}
