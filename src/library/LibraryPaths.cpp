#include "library/LibraryPaths.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <unistd.h>

QByteArray RawPath(const QString& path)
{
    return QFile::encodeName(path);
}

QString ShownPath(const QByteArray& raw)
{
    return QString::fromUtf8(raw);
}

bool IsUnicodePath(const QByteArray& raw)
{
    return QFile::encodeName(QFile::decodeName(raw)) == raw;
}

QString OpenablePath(const QByteArray& raw, const QString& linkFolder)
{
    if (IsUnicodePath(raw))
        return QFile::decodeName(raw);
    QDir().mkpath(linkFolder);
    const QString hash = QString::fromLatin1(QCryptographicHash::hash(raw, QCryptographicHash::Sha1).toHex().left(16));
    QString name = ShownPath(raw.mid(raw.lastIndexOf('/') + 1));
    name.replace(QChar::ReplacementCharacter, u'_');
    const QString link = linkFolder + u'/' + hash + u'-' + name;
    const QByteArray linkBytes = QFile::encodeName(link);
    QByteArray target(PATH_MAX + 1, '\0');
    const ssize_t length = ::readlink(linkBytes.constData(), target.data(), PATH_MAX);
    if (length >= 0 && target.left(length) == raw)
        return link;
    ::unlink(linkBytes.constData());
    return ::symlink(raw.constData(), linkBytes.constData()) == 0 ? link : QString();
}

QString RawSuffix(const QByteArray& raw)
{
    const qsizetype slash = raw.lastIndexOf('/');
    const qsizetype dot = raw.lastIndexOf('.');
    if (dot <= slash + 1)
        return {};
    return QString::fromUtf8(raw.mid(dot + 1)).toLower();
}

bool IsUnderFolder(const QByteArray& raw, const QByteArray& folder)
{
    QByteArray base = folder;
    while (base.size() > 1 && base.endsWith('/'))
        base.chop(1);
    if (raw == base)
        return true;
    return raw.startsWith(base.endsWith('/') ? base : base + '/');
}
