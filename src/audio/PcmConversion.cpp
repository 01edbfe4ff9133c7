#include "audio/PcmConversion.h"

#include "audio/FfmpegHandles.h"
#include "audio/MediaProbe.h"

#include <QtEndian>
#include <algorithm>
#include <cmath>

namespace {

AVChannelLayout LayoutOf(int channels)
{
    AVChannelLayout layout{};
    av_channel_layout_default(&layout, channels);
    return layout;
}

SwrContext* MakeResampler(AVChannelLayout inLayout, AVSampleFormat inFormat, int inRate, int channels,
                          AVSampleFormat outFormat, int outRate)
{
    AVChannelLayout outLayout = LayoutOf(channels);
    SwrContext* made = nullptr;
    if (swr_alloc_set_opts2(&made, &outLayout, outFormat, outRate, &inLayout, inFormat, inRate, 0, nullptr) < 0
        || swr_init(made) < 0) {
        swr_free(&made);
        return nullptr;
    }
    return made;
}

} // namespace

PcmConverter::PcmConverter(int inputRate, int rate, int channels) : m_channels(channels)
{
    m_context = MakeResampler(LayoutOf(2), AV_SAMPLE_FMT_FLT, inputRate, channels, AV_SAMPLE_FMT_S16, rate);
}

PcmConverter::~PcmConverter()
{
    swr_free(&m_context);
}

QByteArray PcmConverter::Convert(const float* interleaved, int frames)
{
    QByteArray out;
    if (!m_context)
        return out;
    const int room = swr_get_out_samples(m_context, interleaved ? frames : 0) + 32;
    out.resize(qsizetype(room) * m_channels * 2);
    auto* target = reinterpret_cast<uint8_t*>(out.data());
    const auto* source = reinterpret_cast<const uint8_t*>(interleaved);
    const int made = swr_convert(m_context, &target, room, interleaved ? &source : nullptr, interleaved ? frames : 0);
    out.resize(qsizetype(std::max(made, 0)) * m_channels * 2);
    return out;
}

std::vector<float> DecodeWholeFile(const std::string& path, int rate, int channels, std::string& error)
{
    QuietDecoderLog();
    std::vector<float> samples;
    FormatHandle format = OpenMediaFile(path, error);
    if (!format)
        return samples;
    const int stream = av_find_best_stream(format.get(), AVMEDIA_TYPE_AUDIO, -1, -1, nullptr, 0);
    if (stream < 0) {
        error = "no audio stream";
        return samples;
    }
    CodecHandle codec = OpenStreamDecoder(*format, stream, error);
    if (!codec)
        return samples;
    AVChannelLayout input{};
    if (codec->ch_layout.order == AV_CHANNEL_ORDER_UNSPEC)
        av_channel_layout_default(&input, codec->ch_layout.nb_channels);
    else
        av_channel_layout_copy(&input, &codec->ch_layout);
    // Mono is widened by copying, at full level; FFmpeg's up-mix would lower it by 3 dB.
    const bool widenMono = input.nb_channels == 1 && channels == 2;
    const int decoded = widenMono ? 1 : channels;
    ResamplerHandle resampler(
        MakeResampler(input, codec->sample_fmt, codec->sample_rate, decoded, AV_SAMPLE_FMT_FLT, rate));
    av_channel_layout_uninit(&input);
    PacketHandle packet(av_packet_alloc());
    FrameHandle frame(av_frame_alloc());
    if (!resampler || !packet || !frame) {
        error = "cannot convert the audio";
        return samples;
    }

    auto append = [&](const AVFrame* frameIn) {
        const int count = frameIn ? frameIn->nb_samples : 0;
        const int room = swr_get_out_samples(resampler.get(), count) + 32;
        const size_t base = samples.size();
        samples.resize(base + size_t(room) * size_t(decoded));
        auto* out = reinterpret_cast<uint8_t*>(samples.data() + base);
        const int made = swr_convert(resampler.get(), &out, room,
                                     frameIn ? const_cast<const uint8_t**>(frameIn->extended_data) : nullptr, count);
        samples.resize(base + size_t(std::max(made, 0)) * size_t(decoded));
    };
    bool flushed = false;
    for (;;) {
        const int err = avcodec_receive_frame(codec.get(), frame.get());
        if (err == 0) {
            append(frame.get());
            continue;
        }
        if (err == AVERROR_EOF)
            break;
        if (err != AVERROR(EAGAIN))
            break;
        if (flushed)
            break;
        if (ReadPacketWithin(*format, *packet) < 0) {
            avcodec_send_packet(codec.get(), nullptr);
            flushed = true;
            continue;
        }
        if (packet->stream_index == stream)
            avcodec_send_packet(codec.get(), packet.get());
        av_packet_unref(packet.get());
    }
    append(nullptr);
    if (samples.empty())
        error = "no audio could be decoded";
    if (!widenMono)
        return samples;
    std::vector<float> stereo(samples.size() * 2);
    for (size_t i = 0; i < samples.size(); ++i)
        stereo[2 * i] = stereo[2 * i + 1] = samples[i];
    return stereo;
}

QByteArray Pcm16Of(const std::vector<float>& samples)
{
    QByteArray out(qsizetype(samples.size()) * 2, Qt::Uninitialized);
    for (size_t i = 0; i < samples.size(); ++i) {
        const auto value = qint16(std::lround(std::clamp(samples[i], -1.0f, 1.0f) * 32767.0f));
        qToLittleEndian(value, out.data() + i * 2);
    }
    return out;
}
