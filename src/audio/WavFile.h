#pragma once
// WAV files as the program writes them: the plain 44-byte header of 16-bit PCM, and whole
// files of rendered sound saved so that a failure leaves no torn file behind.

#include <QByteArray>
#include <QString>
#include <vector>

// The RIFF, "fmt " and "data" chunks' header for `dataBytes` bytes of PCM samples.
QByteArray WavHeader(int sampleRate, int channels, int bitsPerSample, quint32 dataBytes);

// Interleaved stereo floats as 16-bit PCM, clipped at full scale; false when the file cannot be
// written, and then whatever stood at `path` stays as it was.
bool WriteStereoWav(const QString& path, const std::vector<float>& interleaved, int sampleRate);
