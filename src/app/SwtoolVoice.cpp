// swtool voice: a take placed into a song's voice file as the end of a recording places it.

#include "app/SwtoolCommands.h"
#include "audio/PcmConversion.h"
#include "audio/WavFile.h"
#include "voice/VoiceFiles.h"

#include <QDir>
#include <QFile>
#include <QTextStream>

int PlaceVoiceTake(const QStringList& args)
{
    QTextStream err(stderr);
    const qsizetype takeAt = args.indexOf(QStringLiteral("--take"));
    const qsizetype secondAt = args.indexOf(QStringLiteral("--at"));
    bool ok = false;
    const double second = secondAt > 0 && secondAt + 1 < args.size() ? args[secondAt + 1].toDouble(&ok) : 0;
    if (args.size() != 5 || takeAt < 1 || takeAt + 1 >= args.size() || !ok || second < 0) {
        err << "usage: swtool voice SONG --take TAKE.wav --at SECONDS\n";
        return 2;
    }
    const QString song = QFileInfo(args[0]).absoluteFilePath();
    QSettingsStore store;
    std::vector<MonitorRecord> monitors;
    const ThemeClass theme(store, ThemeEnvironment::FromSystem(), monitors);
    const VoiceTarget target = VoiceTargetOf(song, theme);

    std::string error;
    const std::vector<float> take =
        DecodeWholeFile(QFile::encodeName(args[takeAt + 1]).toStdString(), target.rate, target.channels, error);
    if (take.empty()) {
        err << "swtool: cannot read the take " << args[takeAt + 1] << ": " << QString::fromStdString(error) << '\n';
        return 1;
    }
    // The take in the voice file's shape, as the recorder's temporary file would hold it.
    const QString temp = QDir(QDir::tempPath()).filePath(TempWaveName(QDateTime::currentDateTime()));
    const QByteArray samples = Pcm16Of(take);
    QFile file(temp);
    const bool written = file.open(QIODevice::WriteOnly)
                         && file.write(WavHeader(target.rate, target.channels, 16, quint32(samples.size()))) == 44
                         && file.write(samples) == samples.size();
    file.close();
    const PlaceResult placed = written ? PlaceTake(target.file, temp, second) : PlaceResult::WriteFailed;
    QFile::remove(temp);
    if (placed != PlaceResult::Done) {
        err << "swtool: the voice file " << target.file << " could not be written\n";
        return 1;
    }
    QTextStream(stdout) << target.file << '\n';
    return 0;
}
