// swtool cdg: the CD+G screen at a song second, as decoded.

#include "app/SwtoolCommands.h"
#include "cdg/CdgScreen.h"
#include "lyrics/LyricsLoader.h"

#include <QFileInfo>

int PrintCdgScreen(const QStringList& args)
{
    QString file, output;
    double at = -1;
    for (qsizetype i = 0; i < args.size(); ++i) {
        if (args[i] == u"--at" && i + 1 < args.size())
            at = args[++i].toDouble();
        else if (args[i] == u"-o" && i + 1 < args.size())
            output = args[++i];
        else if (!args[i].startsWith(u'-') && file.isEmpty())
            file = args[i];
        else
            return 2;
    }
    if (file.isEmpty() || output.isEmpty() || !(at >= 0))
        return 2;
    if (!QFileInfo(file).isFile())
        return Fail(QStringLiteral("File not found: %1").arg(file));
    QFile cdg(file);
    if (!cdg.open(QIODevice::ReadOnly) || cdg.size() > kLargestCdgFile)
        return Fail(QStringLiteral("Not a CD+G file: %1").arg(file));
    CdgDecoder decoder(cdg.readAll());
    if (!CdgRawImage(decoder.ScreenAt(at)).save(output))
        return Fail(QStringLiteral("Cannot write %1").arg(output));
    return 0;
}
