#include "voice/VoiceFiles.h"

#include "audio/TimeStretch.h"
#include "audio/WavFile.h"
#include "core/ThemeClass.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLocale>
#include <QRegularExpression>
#include <QSaveFile>
#include <QtEndian>
#include <algorithm>
#include <cmath>

namespace {

quint32 Le32(const char* at)
{
    return qFromLittleEndian<quint32>(at);
}

quint16 Le16(const char* at)
{
    return qFromLittleEndian<quint16>(at);
}

// `bytes` is the start of a file of `fileSize` bytes.
bool ReadWaveBytes(const QByteArray& bytes, qint64 fileSize, WaveFormat& format)
{
    if (bytes.size() < 12 || !bytes.startsWith("RIFF") || bytes.mid(8, 4) != "WAVE")
        return false;
    bool haveFormat = false;
    for (qint64 at = 12; at + 8 <= bytes.size();) {
        const QByteArray id = bytes.mid(at, 4);
        const qint64 size = Le32(bytes.constData() + at + 4);
        const qint64 body = at + 8;
        if (id == "fmt " && size >= 16 && body + 16 <= bytes.size()) {
            const char* f = bytes.constData() + body;
            format.formatTag = Le16(f);
            format.channels = Le16(f + 2);
            format.rate = int(Le32(f + 4));
            format.bits = Le16(f + 14);
            haveFormat = true;
        } else if (id == "data") {
            format.dataOffset = body;
            // A size past the end (a take cut short) counts what the file holds.
            format.dataBytes = std::min(size, fileSize - body);
            return haveFormat;
        }
        at = body + size + (size & 1);
    }
    return false;
}

// The file's bytes and its layout; false when it is not a WAV file.
bool ReadWave(const QString& path, QByteArray& bytes, WaveFormat& format)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    bytes = file.readAll();
    return ReadWaveBytes(bytes, bytes.size(), format);
}

bool ReplaceFile(const QString& path, const QList<QByteArray>& parts)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    for (const QByteArray& part : parts)
        if (file.write(part) != part.size())
            return false;
    return file.commit();
}

} // namespace

bool ReadWaveFormat(const QString& path, WaveFormat& format)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    // The chunks before the samples are small; the samples themselves are not needed here.
    return ReadWaveBytes(file.read(64 * 1024), file.size(), format);
}

QString VoiceFolder(const QString& songPath, int recordFolder, const QString& voiceDirectory)
{
    const QFileInfo song(songPath);
    // A WAV song's voice beside it would be the song itself.
    const bool voiceIsTheSong = song.suffix().compare(QLatin1String("wav"), Qt::CaseInsensitive) == 0;
    return recordFolder == 1 && !voiceIsTheSong ? song.absolutePath() : voiceDirectory;
}

QString VoiceFileIn(const QString& folder, const QString& songPath)
{
    const QString separator = folder.endsWith(u'/') ? QString() : QStringLiteral("/");
    return folder + separator + QFileInfo(songPath).completeBaseName() + QStringLiteral(".wav");
}

QString VoiceFileOf(const QString& songPath, const ThemeClass& theme)
{
    return VoiceFileIn(VoiceFolder(songPath, theme.RecordFolder, theme.VoiceDirectory), songPath);
}

VoiceTarget VoiceTargetOf(const QString& songPath, const ThemeClass& theme)
{
    VoiceTarget target;
    target.file = VoiceFileOf(songPath, theme);
    if (theme.RecordQuality > 0)
        target.rate = theme.RecordQuality;
    target.channels = theme.RecordMode == 1 ? 1 : 2;
    if (!QFile::exists(target.file))
        return target;
    WaveFormat existing;
    target.unusable = !(ReadWaveFormat(target.file, existing) && existing.IsPcm16());
    if (!target.unusable) {
        target.rate = existing.rate;
        target.channels = existing.channels;
    }
    return target;
}

QString TempWaveName(const QDateTime& now)
{
    return QLocale::c().toString(now, QStringLiteral("MMddyyyyHHmmssAP")) + QStringLiteral(".WAV");
}

int RemoveLeftTakes(const QString& folder, const QDateTime& idleSince)
{
    static const QRegularExpression takeName(QStringLiteral("^[0-9]{14}(AM|PM)\\.WAV$"));
    int removed = 0;
    const QFileInfoList files = QDir(folder).entryInfoList({QStringLiteral("*.WAV")}, QDir::Files);
    for (const QFileInfo& file : files)
        if (takeName.match(file.fileName()).hasMatch() && file.lastModified() < idleSince
            && QFile::remove(file.filePath()))
            ++removed;
    return removed;
}

qint64 FramesBefore(double seconds, int rate)
{
    return std::max<qint64>(0, std::llround(seconds * rate));
}

PlaceResult WriteNewVoiceFile(const QString& voiceFile, const QString& tempWave, double recordStart)
{
    QByteArray take;
    WaveFormat format;
    if (!ReadWave(tempWave, take, format) || !format.IsPcm16())
        return PlaceResult::TakeUnreadable;
    const qint64 silence = FramesBefore(recordStart, format.rate) * format.BlockAlign();
    const QByteArray samples = take.mid(format.dataOffset, format.dataBytes);
    const QByteArray header = WavHeader(format.rate, format.channels, 16, quint32(silence + samples.size()));
    return ReplaceFile(voiceFile, {header, QByteArray(silence, '\0'), samples}) ? PlaceResult::Done
                                                                                : PlaceResult::WriteFailed;
}

PlaceResult OverdubVoiceFile(const QString& voiceFile, const QString& tempWave, double recordStart)
{
    QByteArray takeFile;
    WaveFormat take;
    if (!ReadWave(tempWave, takeFile, take) || !take.IsPcm16())
        return PlaceResult::TakeUnreadable;
    QByteArray file;
    WaveFormat voice;
    if (!ReadWave(voiceFile, file, voice) || !voice.IsPcm16())
        return PlaceResult::WriteFailed;
    if (voice.rate != take.rate || voice.channels != take.channels)
        return PlaceResult::FormatMismatch;

    const qint64 at = FramesBefore(recordStart, voice.rate) * voice.BlockAlign();
    const QByteArray samples = takeFile.mid(take.dataOffset, take.dataBytes);
    const qint64 oldEnd = voice.dataOffset + voice.dataBytes;
    const qint64 newBytes = std::max(voice.dataBytes, at + samples.size());

    QByteArray head = file.left(voice.dataOffset + std::min(at, voice.dataBytes));
    qToLittleEndian(quint32(newBytes), head.data() + voice.dataOffset - 4);
    const QByteArray gap(std::max<qint64>(0, at - voice.dataBytes), '\0');
    const qint64 tailFrom = voice.dataOffset + at + samples.size();
    const QByteArray rest = tailFrom < oldEnd ? file.mid(tailFrom, oldEnd - tailFrom) : QByteArray();
    // Chunks after the samples stay; an odd-sized sample chunk gets its pad byte.
    const qint64 oldPad = voice.dataBytes & 1;
    const QByteArray after = file.mid(oldEnd + oldPad);
    const QByteArray pad((newBytes & 1) && !after.isEmpty() ? 1 : 0, '\0');
    const qint64 total = head.size() + gap.size() + samples.size() + rest.size() + pad.size() + after.size();
    qToLittleEndian(quint32(total - 8), head.data() + 4);
    return ReplaceFile(voiceFile, {head, gap, samples, rest, pad, after}) ? PlaceResult::Done
                                                                           : PlaceResult::WriteFailed;
}

PlaceResult PlaceTake(const QString& voiceFile, const QString& tempWave, double recordStart)
{
    return QFile::exists(voiceFile) ? OverdubVoiceFile(voiceFile, tempWave, recordStart)
                                    : WriteNewVoiceFile(voiceFile, tempWave, recordStart);
}

namespace {

constexpr int kStretchBlockFrames = 4096;

// 16-bit frames of one or two channels as stereo floats.
void StereoOfPcm(const QByteArray& pcm, int channels, std::vector<float>& stereo)
{
    const qint64 frames = pcm.size() / (2 * channels);
    stereo.resize(size_t(frames) * 2);
    for (qint64 i = 0; i < frames; ++i) {
        const char* at = pcm.constData() + i * 2 * channels;
        const float left = qFromLittleEndian<qint16>(at) / 32768.0f;
        stereo[size_t(2 * i)] = left;
        stereo[size_t(2 * i + 1)] = channels == 2 ? qFromLittleEndian<qint16>(at + 2) / 32768.0f : left;
    }
}

QByteArray PcmOfStereo(const float* stereo, int frames, int channels)
{
    QByteArray pcm(qsizetype(frames) * 2 * channels, Qt::Uninitialized);
    for (int i = 0; i < frames; ++i)
        for (int c = 0; c < channels; ++c) {
            const float sample = c == 0 || channels == 1 ? stereo[2 * i] : stereo[2 * i + 1];
            const auto value = qint16(std::lround(std::clamp(sample, -1.0f, 1.0f) * 32767));
            qToLittleEndian(value, pcm.data() + (qsizetype(i) * channels + c) * 2);
        }
    return pcm;
}

// Moves what the stretcher has ready into the file; false when a write failed.
bool WriteStretched(TimeStretch& stretch, std::vector<float>& out, int channels, QSaveFile& file, qint64& dataBytes)
{
    for (int got; (got = stretch.Pull(out.data(), kStretchBlockFrames)) > 0;) {
        const QByteArray pcm = PcmOfStereo(out.data(), got, channels);
        if (file.write(pcm) != pcm.size())
            return false;
        dataBytes += pcm.size();
    }
    return true;
}

} // namespace

bool StretchTakeToSongTime(const QString& tempWave, double songPace)
{
    WaveFormat format;
    QFile take(tempWave);
    if (!ReadWaveFormat(tempWave, format) || !format.IsPcm16() || format.channels > 2 || !take.open(QIODevice::ReadOnly) ||
        !take.seek(format.dataOffset))
        return false;
    QSaveFile stretched(tempWave);
    if (!stretched.open(QIODevice::WriteOnly) || stretched.write(WavHeader(format.rate, format.channels, 16, 0)) != 44)
        return false;
    // The finer engine: a take is stretched once, after it was sung, and nobody waits on it.
    TimeStretch stretch(format.rate, TimeStretch::Engine::Finer);
    stretch.SetTempo(1 / songPace);
    stretch.Restart(0);
    std::vector<float> in, out(size_t(kStretchBlockFrames) * 2);
    qint64 left = format.dataBytes, dataBytes = 0;
    const qint64 blockBytes = qint64(kStretchBlockFrames) * format.BlockAlign();
    while (left > 0) {
        StereoOfPcm(take.read(std::min(left, blockBytes)), format.channels, in);
        if (in.empty())
            return false;
        left -= qint64(in.size() / 2) * format.BlockAlign();
        for (int at = 0, frames = int(in.size() / 2); at < frames;) {
            const int count = std::min(stretch.FramesWanted(), frames - at);
            stretch.Push(in.data() + 2 * at, count);
            at += count;
            if (!WriteStretched(stretch, out, format.channels, stretched, dataBytes))
                return false;
        }
    }
    stretch.Finish();
    if (!WriteStretched(stretch, out, format.channels, stretched, dataBytes))
        return false;
    const QByteArray header = WavHeader(format.rate, format.channels, 16, quint32(dataBytes));
    return stretched.seek(0) && stretched.write(header) == header.size() && stretched.commit();
}
