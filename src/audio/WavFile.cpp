#include "audio/WavFile.h"

#include "audio/PcmConversion.h"

#include <QDataStream>
#include <QSaveFile>

QByteArray WavHeader(int sampleRate, int channels, int bitsPerSample, quint32 dataBytes)
{
    const quint16 blockAlign = quint16(channels * bitsPerSample / 8);
    QByteArray header;
    QDataStream out(&header, QIODevice::WriteOnly);
    out.setByteOrder(QDataStream::LittleEndian);
    out.writeRawData("RIFF", 4);
    out << quint32(36 + dataBytes);
    out.writeRawData("WAVEfmt ", 8);
    out << quint32(16) << quint16(1) << quint16(channels) << quint32(sampleRate)
        << quint32(sampleRate) * blockAlign << blockAlign << quint16(bitsPerSample);
    out.writeRawData("data", 4);
    out << dataBytes;
    return header;
}

bool WriteStereoWav(const QString& path, const std::vector<float>& interleaved, int sampleRate)
{
    const QByteArray samples = Pcm16Of(interleaved);
    QSaveFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(WavHeader(sampleRate, 2, 16, quint32(samples.size())))
           && file.write(samples) == samples.size() && file.commit();
}
