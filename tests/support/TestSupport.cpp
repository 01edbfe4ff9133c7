#include "support/TestSupport.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

QByteArray ReadFileBytes(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void WriteFileBytes(const QString& path, const QByteArray& bytes)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    if (file.open(QIODevice::WriteOnly))
        file.write(bytes);
}

QString WriteRampWav(const QString& path, int frames, int sampleRate)
{
    QByteArray data;
    data.reserve(frames * 4);
    auto put16 = [&data](int v) {
        data.append(char(v & 0xff));
        data.append(char((v >> 8) & 0xff));
    };
    for (int i = 0; i < frames; ++i) {
        put16(i % 32768);
        put16(-(i % 32768));
    }
    QByteArray wav("RIFF");
    auto put32 = [&wav](quint32 v) {
        for (int b = 0; b < 4; ++b)
            wav.append(char((v >> (8 * b)) & 0xff));
    };
    put32(36 + quint32(data.size()));
    wav.append("WAVEfmt ");
    put32(16);
    put32(1 | (2u << 16));  // PCM, stereo
    put32(quint32(sampleRate));
    put32(quint32(sampleRate) * 4);
    put32(4 | (16u << 16));  // block align, bits
    wav.append("data");
    put32(quint32(data.size()));
    wav.append(data);
    WriteFileBytes(path, wav);
    return path;
}

float RampSample(long long frame)
{
    return float(frame % 32768) / 32768.0f;
}

QString SourcePath(const QString& relative)
{
    return QStringLiteral(SONGWEAVER_SOURCE_DIR "/") + relative;
}

QString MediaFixture(const QString& name)
{
    return SourcePath(QStringLiteral("tests/fixtures/media/") + name);
}

QString SharedFixture(const QString& name)
{
    const QString path = QStringLiteral(SONGWEAVER_SOURCE_DIR "/../shared/fixtures/") + name;
    return QFileInfo::exists(path) ? QFileInfo(path).absoluteFilePath() : QString();
}

QString CopyFixture(const QString& fixture, const QString& dir, const QString& name)
{
    const QString target = dir + u'/' + (name.isEmpty() ? QFileInfo(fixture).fileName() : name);
    WriteFileBytes(target, ReadFileBytes(fixture));
    return target;
}
