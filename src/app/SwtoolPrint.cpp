// swtool print: the printed lyrics as the editor's Print dialog makes them.

#include "app/SwtoolCommands.h"
#include "editor/LyricsImport.h"
#include "lyrics/LyricsBlock.h"
#include "print/LyricsDocument.h"
#include "print/PrintSettings.h"
#include "print/PrintedPages.h"

#include <QFileInfo>
#include <QTextStream>
#include <cstdio>

namespace {

struct PrintOptions {
    QString lyrics;
    QString html;
    QString pdf;
};

bool ReadOptions(QStringList args, PrintOptions& options)
{
    while (!args.isEmpty()) {
        const QString arg = args.takeFirst();
        if (arg == QLatin1String("--html") && !args.isEmpty())
            options.html = args.takeFirst();
        else if (arg == QLatin1String("--pdf") && !args.isEmpty())
            options.pdf = args.takeFirst();
        else if (!arg.startsWith(QLatin1String("--")) && options.lyrics.isEmpty())
            options.lyrics = arg;
        else
            return false;
    }
    return !options.lyrics.isEmpty();
}

} // namespace

int PrintPages(const QStringList& args)
{
    PrintOptions options;
    if (!ReadOptions(args, options))
        return 2;
    if (!QFileInfo(options.lyrics).isFile())
        return Fail(QStringLiteral("File not found: %1").arg(options.lyrics));

    PlayerReading reading(options.lyrics);
    LyricsState lyrics;
    // A song prints the words the editor takes up from it: its block, else a MIDI file's words.
    if (IsLrsFile(options.lyrics)) {
        if (!ParseEditorLyrics(lyrics, EditorText(options.lyrics, reading.language.IsPolish),
                               [](const QString& message) { Fail(message); }))
            return 1;
    } else if (MidiFigures figures;
               !ImportLyrics(lyrics, figures, &reading.song, options.lyrics, reading.language.IsPolish)) {
        return Fail(QStringLiteral("No lyrics in %1").arg(options.lyrics));
    }

    const QString html = BuildDocument(lyrics.EditLyrics, PrintSettings::Load(reading.store));
    if (options.html.isEmpty() && options.pdf.isEmpty()) {
        const QByteArray bytes = DocumentBytes(html);
        std::fwrite(bytes.constData(), 1, size_t(bytes.size()), stdout);
        return 0;
    }
    if (!options.html.isEmpty() && !WriteDocumentFile(options.html, html))
        return Fail(QStringLiteral("Cannot write %1").arg(options.html));
    if (!options.pdf.isEmpty()) {
        const int pages = WritePdf(html, options.pdf);
        if (pages == 0)
            return Fail(QStringLiteral("Cannot write %1").arg(options.pdf));
        QTextStream(stdout) << options.pdf << '\t' << pages << (pages == 1 ? " page" : " pages") << '\n';
    }
    return 0;
}
