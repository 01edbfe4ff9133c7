#include "editor/EditorFiles.h"

#include "lyrics/LyricsLoader.h"
#include "lyrics/TagLyrics.h"

#include "core/TextCodec.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

bool FileTooLarge(const QString& path, qint64 limit)
{
    return QFileInfo(path).size() > limit;
}

QString NameWithExtension(const QString& chosen, const QString& extension)
{
    return QFileInfo(chosen).suffix().isEmpty() ? chosen + u'.' + extension : chosen;
}

QString DefaultTextName(const QString& editorFile)
{
    if (editorFile.isEmpty())
        return {};
    const QFileInfo info(editorFile);
    return info.path() + u'/' + info.completeBaseName() + QStringLiteral(".txt");
}

QString ReadTextFile(const QString& path, bool polish)
{
    return DecodeText(ReadWholeFile(path), polish);
}

bool WriteTextFile(const QString& path, const QString& text)
{
    const QByteArray bytes = EncodeText(text + QStringLiteral("\r\n"));
    QSaveFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.commit();
}

QString VersionCheckPage(const QString& address, const QString& version)
{
    return QStringLiteral("<form name=go method=post action=%1>\r\n"
                          "<input type=hidden name=board value=%2>\r\n"
                          "</form>\r\n"
                          "<SCRIPT LANGUAGE=JAVASCRIPT>\r\n"
                          "document.go.submit();\r\n"
                          "</SCRIPT>\r\n")
        .arg(address, version);
}

void TakeTitleFromTags(LyricItem& header, const SongTags& tags)
{
    if (header.Artist.isEmpty())
        header.Artist = tags.Artist();
    if (header.Title.isEmpty())
        header.Title = tags.Title();
}
