// swtool midi: what the program reads of a MIDI or KAR file without playing it, or the song
// rendered to a WAV file by the player's synthesiser.

#include "app/SwtoolCommands.h"
#include "core/Language.h"
#include "core/SettingsStore.h"
#include "lyrics/LyricsLoader.h"
#include "midi/KaraokeWords.h"
#include "midi/MidiRead.h"
#include "midi/MidiRender.h"

#include "audio/WavFile.h"
#include "core/ThemeClass.h"

#include <QFileInfo>
#include <QTextStream>

namespace {

struct WavOptions {
    QString output;
    MidiRenderOptions render;
};

// The options after FILE; false for anything the command does not take.
bool ReadWavOptions(QStringList args, WavOptions& o, QString& problem)
{
    while (!args.isEmpty()) {
        const QString option = args.takeFirst();
        if (args.isEmpty())
            return false;
        const QString value = args.takeFirst();
        bool ok = false;
        if (option == u"--wav") {
            o.output = value;
            ok = !value.isEmpty();
        } else if (option == u"--seconds") {
            o.render.seconds = value.toDouble(&ok);
            ok = ok && o.render.seconds > 0;
        } else if (option == u"--transpose") {
            o.render.semitones = value.toInt(&ok);
            if (ok && (o.render.semitones % 2 != 0 || std::abs(o.render.semitones) > 12)) {
                problem = QStringLiteral("--transpose takes what the key knob gives: even semitones from -12 to 12");
                return false;
            }
        } else if (option == u"--tempo") {
            o.render.tempo = value.toDouble(&ok);
            ok = ok && o.render.tempo > 0 && o.render.tempo <= 2;
        } else if (option == u"--mute") {
            const int channel = value.toInt(&ok);
            ok = ok && channel >= 1 && channel <= 16;
            o.render.mutedChannels.push_back(channel - 1);
        }
        if (!ok)
            return false;
    }
    return !o.output.isEmpty();
}

int RenderMidiWav(const QString& path, const QStringList& options)
{
    WavOptions o;
    QString problem;
    QTextStream err(stderr);
    if (!ReadWavOptions(options, o, problem)) {
        if (problem.isEmpty())
            return 2;
        err << "swtool: " << problem << '\n';
        return 1;
    }
    QSettingsStore store;
    std::vector<MonitorRecord> monitors;
    const ThemeClass theme(store, ThemeEnvironment::FromSystem(), monitors);
    o.render.soundFont = QFile::encodeName(theme.SoundFont).toStdString();
    const MidiRendering rendering = RenderMidiSong(path, o.render);
    if (!rendering.error.isEmpty()) {
        err << "swtool: " << rendering.error << '\n';
        return 1;
    }
    if (!WriteStereoWav(o.output, rendering.frames, o.render.sampleRate)) {
        err << "swtool: cannot write " << o.output << '\n';
        return 1;
    }
    const double seconds = double(rendering.frames.size() / 2) / o.render.sampleRate;
    QTextStream(stdout) << o.output << '\t' << QString::number(seconds, 'f', 3) << " s\ttempo "
                        << QString::number(NearestMasterTempo(o.render.tempo), 'f', 4) << '\n';
    return 0;
}

} // namespace

int PrintMidi(const QStringList& args)
{
    if (args.isEmpty())
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
    if (args.size() > 1)
        return RenderMidiWav(path, args.mid(1));
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
            << r.State << '\t' << (r.Channel == -1 ? QString() : ChannelInstrument(c, r.Patch)) << '\n';
    }
    return 0;
}
