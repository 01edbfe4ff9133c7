#include "core/Shell.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QSaveFile>
#include <QStandardPaths>
#include <QTextStream>

namespace {

QString EnvOr(const char* name, const QString& fallback)
{
    const QString value = qEnvironmentVariable(name);
    return value.isEmpty() ? fallback : value;
}

bool WriteWhole(const QString& path, const QByteArray& bytes)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QSaveFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.commit();
}

// A glob line of a compiled MIME database ("weight:type:glob" or "type:glob") or a
// <glob pattern="..."/> of a source package in the file names the extension. Read a line at a
// time: the system's package is megabytes long.
bool FileMentionsExtension(const QString& path, const QString& extension)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const QByteArray glob = '*' + extension.toLower().toUtf8();
    const QByteArray globLineEnd = ':' + glob;
    const QByteArray pattern = "pattern=\"" + glob + '"';
    while (!file.atEnd()) {
        const QByteArray line = file.readLine().trimmed().toLower();
        if (line.endsWith(globLineEnd) || line.contains(pattern))
            return true;
    }
    return false;
}

QString MimePackage(const QString& contentType, const QString& extension)
{
    return QStringLiteral(
               "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
               "<mime-info xmlns=\"http://www.freedesktop.org/standards/shared-mime-info\">\n"
               "  <mime-type type=\"%1\">\n"
               "    <comment>%2</comment>\n"
               "    <sub-class-of type=\"text/plain\"/>\n"
               "    <glob pattern=\"*%3\"/>\n"
               "  </mime-type>\n"
               "</mime-info>\n")
        .arg(QLatin1String(kLyricsMimeType), contentType.toHtmlEscaped(), extension);
}

QString DesktopEntry(const QString& programPath)
{
    return QStringLiteral(
               "[Desktop Entry]\n"
               "Type=Application\n"
               "Name=Songweaver\n"
               "GenericName=Karaoke Player\n"
               "Comment=Sing along with your songs and write their lyrics\n"
               "Exec=\"%1\" %f\n"
               "Icon=songweaver\n"
               "Terminal=false\n"
               "MimeType=%2;audio/mpeg;audio/ogg;audio/x-vorbis+ogg;audio/x-wav;audio/x-musepack;"
               "audio/x-ape;audio/midi;\n"
               "Categories=AudioVideo;Audio;Player;\n")
        .arg(programPath, QLatin1String(kLyricsMimeType));
}

// The first default program named for a MIME type in a mimeapps.list text.
QString DefaultFor(const QString& mimeappsList, const QString& mimeType)
{
    bool inDefaults = false;
    for (const QString& raw : mimeappsList.split(u'\n')) {
        const QString line = raw.trimmed();
        if (line.startsWith(u'[')) {
            inDefaults = line == QLatin1String("[Default Applications]");
            continue;
        }
        if (inDefaults && line.startsWith(mimeType + u'='))
            return line.mid(mimeType.size() + 1).section(u';', 0, 0).trimmed();
    }
    return {};
}

QString ReadText(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

// Adds "mimeType=entry" to the defaults of the user's mimeapps.list, keeping every other line.
void MakeDefault(const QString& configHome, const QString& mimeType, const QString& entry)
{
    const QString path = configHome + QStringLiteral("/mimeapps.list");
    QStringList lines = ReadText(path).split(u'\n');
    while (!lines.isEmpty() && lines.last().isEmpty())
        lines.removeLast();
    const QString row = mimeType + u'=' + entry + u';';
    const qsizetype section = lines.indexOf(QStringLiteral("[Default Applications]"));
    if (section < 0) {
        if (!lines.isEmpty())
            lines << QString();
        lines << QStringLiteral("[Default Applications]") << row;
    } else {
        lines.insert(section + 1, row);
    }
    WriteWhole(path, (lines.join(u'\n') + u'\n').toUtf8());
}

} // namespace

ShellFolders ShellFolders::FromSystem()
{
    ShellFolders folders;
    folders.dataHome = EnvOr("XDG_DATA_HOME", QDir::homePath() + QStringLiteral("/.local/share"));
    folders.configHome = EnvOr("XDG_CONFIG_HOME", QDir::homePath() + QStringLiteral("/.config"));
    folders.dataDirs = EnvOr("XDG_DATA_DIRS", QStringLiteral("/usr/local/share:/usr/share")).split(u':', Qt::SkipEmptyParts);
    return folders;
}

bool ExtensionHasMimeType(const QString& extension, const ShellFolders& folders)
{
    QStringList mimeFolders{folders.dataHome + QStringLiteral("/mime")};
    for (const QString& dir : folders.dataDirs)
        mimeFolders << dir + QStringLiteral("/mime");
    for (const QString& mime : mimeFolders) {
        if (FileMentionsExtension(mime + QStringLiteral("/globs2"), extension))
            return true;
        const QDir packages(mime + QStringLiteral("/packages"));
        for (const QString& name : packages.entryList({QStringLiteral("*.xml")}, QDir::Files))
            if (FileMentionsExtension(packages.filePath(name), extension))
                return true;
    }
    return false;
}

bool RegisterFileType(const QString& extension, const QString& contentType, const QString& programPath,
                      const ShellFolders& folders)
{
    if (ExtensionHasMimeType(extension, folders))
        return false;

    const QString mimeFolder = folders.dataHome + QStringLiteral("/mime");
    const QString applications = folders.dataHome + QStringLiteral("/applications");
    if (!WriteWhole(mimeFolder + QStringLiteral("/packages/songweaver.xml"), MimePackage(contentType, extension).toUtf8()) ||
        !WriteWhole(applications + u'/' + QLatin1String(kDesktopEntryName), DesktopEntry(programPath).toUtf8()))
        return false;
    QFile icon(QStringLiteral(":/skin/songweaver.svg"));
    if (icon.open(QIODevice::ReadOnly))
        WriteWhole(folders.dataHome + QStringLiteral("/icons/hicolor/scalable/apps/songweaver.svg"), icon.readAll());
    MakeDefault(folders.configHome, QLatin1String(kLyricsMimeType), QLatin1String(kDesktopEntryName));

    RunAndWait(QStringLiteral("update-mime-database \"%1\"").arg(mimeFolder));
    RunAndWait(QStringLiteral("update-desktop-database \"%1\"").arg(applications));
    return true;
}

bool Mp3ContentTypeIsOurs(const ShellFolders& folders)
{
    const QStringList lists{folders.configHome + QStringLiteral("/mimeapps.list"),
                            folders.dataHome + QStringLiteral("/applications/mimeapps.list")};
    for (const QString& list : lists) {
        const QString entry = DefaultFor(ReadText(list), QStringLiteral("audio/mpeg"));
        if (!entry.isEmpty())
            return entry == QLatin1String(kDesktopEntryName);
    }
    return false;
}

QString GetTempFolder()
{
    QString folder = QDir::tempPath();
    if (!folder.endsWith(u'/'))
        folder += u'/';
    return folder;
}

int RunAndWait(const QString& commandLine)
{
    QStringList arguments = QProcess::splitCommand(commandLine);
    if (arguments.isEmpty())
        return -1;
    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedChannels);
    process.start(arguments.takeFirst(), arguments);
    if (!process.waitForStarted(-1) || !process.waitForFinished(-1))
        return -1;
    return process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
}
