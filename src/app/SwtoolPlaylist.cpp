// swtool playlist: the rows of a playlist file as the playlist window would load them.

#include "app/SwtoolCommands.h"
#include "core/Language.h"
#include "core/SettingsStore.h"
#include "playlist/PlaylistFiles.h"
#include "playlist/SongProber.h"

#include <QFileInfo>
#include <QTextStream>

int PrintPlaylist(const QStringList& args)
{
    const bool saved = args.contains(QStringLiteral("--saved"));
    QStringList files = args;
    files.removeAll(QStringLiteral("--saved"));
    if (files.size() != 1 || files[0].startsWith(QLatin1String("--")))
        return 2;
    const QString path = files[0];
    if (!QFileInfo(path).isFile()) {
        QTextStream(stderr) << "File not found: " << path << '\n';
        return 1;
    }
    QSettingsStore store;
    LanguageTable language;
    language.LoadLanguage(store);

    QTextStream out(stdout);
    const auto print = [&out](const PlaylistRow& row) {
        out << row.ItemString << '\t' << row.ItemTime << '\t' << row.ItemPath << '\n';
    };
    const bool polish = language.IsPolish;
    const QStringList lines = ReadListLines(path, polish);
    const QString folder = QFileInfo(path).absolutePath();
    const SongProbe probe = [polish](const QString& song) { return ProbeSong(song, polish); };
    if (saved)
        ReadSavedList(lines, folder, print);
    else if (path.right(3).toLower() == u"m3u")
        ReadM3U(lines, folder, probe, print);
    else
        ReadPls(lines, folder, probe, print);
    return 0;
}
