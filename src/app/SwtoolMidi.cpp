// swtool midi: what the program reads of a MIDI or KAR file without playing it.

#include "app/SwtoolCommands.h"
#include "core/Language.h"
#include "core/SettingsStore.h"
#include "lyrics/LyricsLoader.h"
#include "midi/KaraokeWords.h"
#include "midi/MidiRead.h"

#include <QFileInfo>
#include <QTextStream>

int PrintMidi(const QStringList& args)
{
    if (args.size() != 1)
        return 2;
    const QString path = args[0];
    QTextStream err(stderr);
    if (!QFileInfo(path).isFile()) {
        err << "File not found: " << path << '\n';
        return 1;
    }
    const QByteArray bytes = ReadWholeFile(path);
    if (!bytes.startsWith("MThd")) {
        err << "Not a MIDI file: " << path << '\n';
        return 1;
    }
    QSettingsStore store;
    LanguageTable language;
    language.LoadLanguage(store);
    MidiRead read(language.IsPolish);
    read.SetFilename(path);

    MidiFigures figures;
    MeasureSong(bytes, figures);
    std::vector<LyricItem> words(1);
    ReadFile(bytes, figures, words, language.IsPolish);

    QTextStream out(stdout);
    out << "Length\t" << read.Length << '\n'
        << "Title\t" << read.Title << '\n'
        << "Artist\t" << read.Artist << '\n'
        << "MidiTempoMicros\t" << figures.MidiTempoMicros << '\n'
        << "MidiBpm\t" << QString::number(figures.MidiBpm, 'f', 2) << '\n'
        << "MidiQuarterDivision\t" << figures.MidiQuarterDivision << '\n'
        << "MidiMsPerTick\t" << figures.MidiMsPerTick << '\n'
        << "MidiDuration\t" << figures.MidiDuration << '\n';
    for (int c = 0; c < 16; ++c) {
        const ChannelRecord& r = figures.ChannelTable[size_t(c)];
        out << "channel\t" << c << '\t' << r.Channel << '\t' << r.Patch << '\t' << r.Volume << '\t' << r.Pan << '\t'
            << r.State << '\t' << (r.Channel == -1 ? QString() : GetPatch(c == 9 ? 128 : r.Patch)) << '\n';
    }
    return 0;
}
