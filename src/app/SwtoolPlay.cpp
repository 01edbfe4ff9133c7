// swtool play: any song as the player sounds it at a key and a tempo, with or without its
// vocals, rendered to a WAV file by the player's own path.

#include "app/SwtoolCommands.h"
#include "audio/TimeStretch.h"
#include "audio/WavFile.h"
#include "playback/SongRender.h"

#include <QFileInfo>
#include <QTextStream>
#include <cmath>

namespace {

struct PlayOptions {
    QString song;
    QString output;
    SongRenderOptions render;
};

// The number after an option, or a message naming what it takes.
bool ReadValue(QStringList& args, const QString& option, double low, double high, double& value, QString& problem)
{
    bool ok = false;
    value = args.isEmpty() ? 0 : args.takeFirst().toDouble(&ok);
    if (ok && std::isfinite(value) && value >= low && value <= high)
        return true;
    problem = QStringLiteral("%1 takes a number from %2 to %3").arg(option).arg(low).arg(high);
    return false;
}

// False for a call the command does not take; `problem` says what a bad value was.
bool ReadPlayOptions(QStringList args, PlayOptions& o, QString& problem)
{
    while (!args.isEmpty()) {
        const QString arg = args.takeFirst();
        double value = 0;
        if (arg == u"--wav" && !args.isEmpty()) {
            o.output = args.takeFirst();
        } else if (arg == u"--key") {
            if (!ReadValue(args, arg, -12, 12, value, problem))
                return false;
            if (value != std::trunc(value)) {
                problem = QStringLiteral("--key takes whole semitones");
                return false;
            }
            o.render.semitones = int(value);
        } else if (arg == u"--tempo") {
            if (!ReadValue(args, arg, TimeStretch::kSlowest, TimeStretch::kFastest, value, problem))
                return false;
            o.render.tempo = value;
        } else if (arg == u"--from") {
            if (!ReadValue(args, arg, 0, 24 * 3600, value, problem))
                return false;
            o.render.from = value;
        } else if (arg == u"--seconds") {
            if (!ReadValue(args, arg, 0.001, 24 * 3600, value, problem))
                return false;
            o.render.seconds = value;
        } else if (arg == u"--vocals-off") {
            o.render.vocalsOff = true;
        } else if (!arg.startsWith(u'-') && o.song.isEmpty()) {
            o.song = arg;
        } else {
            return false;
        }
    }
    return !o.song.isEmpty() && !o.output.isEmpty();
}

} // namespace

int PlaySongToWav(const QStringList& args)
{
    PlayOptions o;
    QString problem;
    if (!ReadPlayOptions(args, o, problem))
        return problem.isEmpty() ? 2 : Fail(QStringLiteral("swtool: ") + problem);
    if (!QFileInfo(o.song).isFile())
        return Fail(QStringLiteral("File not found: %1").arg(o.song));
    PlayerReading reading(o.song);
    o.render.soundFont = QFile::encodeName(reading.theme.SoundFont).toStdString();
    const SongRendering rendering = RenderSong(o.song, o.render);
    if (!rendering.error.isEmpty())
        return Fail(QStringLiteral("swtool: %1: %2").arg(o.song, rendering.error));
    if (!WriteStereoWav(o.output, rendering.frames, o.render.sampleRate))
        return Fail(QStringLiteral("swtool: cannot write %1").arg(o.output));
    const double seconds = double(rendering.frames.size() / 2) / o.render.sampleRate;
    QTextStream(stdout) << o.output << '\t' << QString::number(seconds, 'f', 3) << " s\n";
    return 0;
}
