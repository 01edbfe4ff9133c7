#pragma once
// Sound in the shapes files want: a resampler from the engine's float stereo to 16-bit PCM of
// any rate and channel count, and the whole of an audio file decoded at once.

#include <QByteArray>

#include <memory>
#include <string>
#include <vector>

struct SwrContext;

class PcmConverter {
public:
    // From interleaved float stereo at `inputRate` to interleaved 16-bit at `rate`, `channels`
    // (1 takes the average of both sides).
    PcmConverter(int inputRate, int rate, int channels);
    ~PcmConverter();
    PcmConverter(const PcmConverter&) = delete;
    PcmConverter& operator=(const PcmConverter&) = delete;

    bool Valid() const { return m_context != nullptr; }
    // Little-endian 16-bit samples of `frames` input frames, as many as the resampler yields so
    // far; nullptr input drains what it holds back.
    QByteArray Convert(const float* interleaved, int frames);

private:
    SwrContext* m_context = nullptr;
    int m_channels;
};

// The whole audio of a file as interleaved floats at `rate` with `channels` channels; empty and
// `error` set when FFmpeg cannot read it.
std::vector<float> DecodeWholeFile(const std::string& path, int rate, int channels, std::string& error);

// Floats as little-endian 16-bit samples, clipped at full scale.
QByteArray Pcm16Of(const std::vector<float>& samples);
