#include "support/TestSupport.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <stdexcept>
#include <zip.h>

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

void WriteZip(const QString& path, const QList<QPair<QString, QByteArray>>& members)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    int error = 0;
    zip_t* archive = zip_open(QFile::encodeName(path).constData(), ZIP_CREATE | ZIP_TRUNCATE, &error);
    if (!archive)
        throw std::runtime_error("cannot create " + path.toStdString());
    for (const auto& [name, bytes] : members) {
        zip_source_t* source = zip_source_buffer(archive, bytes.constData(), zip_uint64_t(bytes.size()), 0);
        const zip_int64_t index = zip_file_add(archive, name.toUtf8().constData(), source, ZIP_FL_OVERWRITE);
        if (index < 0) {
            zip_source_free(source);
            throw std::runtime_error("cannot add " + name.toStdString());
        }
        zip_set_file_compression(archive, zip_uint64_t(index), ZIP_CM_STORE, 0);
    }
    if (zip_close(archive) != 0)
        throw std::runtime_error("cannot write " + path.toStdString());
}

bool RunProgram(const QString& program, const QStringList& arguments)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(program, arguments);
    return process.waitForFinished(120000) && process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
}

QString MakeTestVideo(const QString& path, double seconds, QSize size)
{
    const QString length = QString::number(seconds);
    const QString picture = QStringLiteral("testsrc2=size=%1x%2:rate=25").arg(size.width()).arg(size.height());
    if (!RunProgram("ffmpeg", {"-v", "error", "-y", "-f", "lavfi", "-i", picture, "-f", "lavfi", "-i",
                               "sine=frequency=440:sample_rate=44100", "-t", length, "-c:v", "libx264", "-preset",
                               "ultrafast", "-g", "25", "-pix_fmt", "yuv420p", "-c:a", "aac", "-shortest", "-movflags", "+faststart", path}))
        throw std::runtime_error("ffmpeg could not make " + path.toStdString());
    return path;
}

QByteArray CdgPacket(int instruction, std::initializer_list<int> data)
{
    QByteArray packet(24, '\0');
    packet[0] = 9;
    packet[1] = char(instruction);
    int i = 4;
    for (int byte : data)
        packet[i++] = char(byte);
    return packet;
}
