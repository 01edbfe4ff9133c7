#include "audio/MediaProbe.h"

#include <memory>
#include <mutex>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

namespace {

struct FormatCloser {
    void operator()(AVFormatContext* format) const { avformat_close_input(&format); }
};
struct CodecFreer {
    void operator()(AVCodecContext* codec) const { avcodec_free_context(&codec); }
};
struct PacketFreer {
    void operator()(AVPacket* packet) const { av_packet_free(&packet); }
};
struct FrameFreer {
    void operator()(AVFrame* frame) const { av_frame_free(&frame); }
};

// Some containers (short Musepack SV8 files among them) state no duration; the samples that
// decode are the length then.
double DecodedSeconds(AVFormatContext* format, int stream)
{
    const AVCodecParameters* parameters = format->streams[stream]->codecpar;
    const AVCodec* decoder = avcodec_find_decoder(parameters->codec_id);
    if (!decoder)
        return 0;
    std::unique_ptr<AVCodecContext, CodecFreer> codec(avcodec_alloc_context3(decoder));
    std::unique_ptr<AVPacket, PacketFreer> packet(av_packet_alloc());
    std::unique_ptr<AVFrame, FrameFreer> frame(av_frame_alloc());
    if (!codec || !packet || !frame || avcodec_parameters_to_context(codec.get(), parameters) < 0
        || avcodec_open2(codec.get(), decoder, nullptr) < 0)
        return 0;

    int64_t samples = 0;
    auto drain = [&] {
        while (avcodec_receive_frame(codec.get(), frame.get()) >= 0)
            samples += frame->nb_samples;
    };
    while (av_read_frame(format, packet.get()) >= 0) {
        if (packet->stream_index == stream && avcodec_send_packet(codec.get(), packet.get()) >= 0)
            drain();
        av_packet_unref(packet.get());
    }
    avcodec_send_packet(codec.get(), nullptr);
    drain();
    return codec->sample_rate > 0 ? double(samples) / codec->sample_rate : 0;
}

} // namespace

void QuietDecoderLog()
{
    static std::once_flag once;
    std::call_once(once, [] { av_log_set_level(AV_LOG_QUIET); });
}

double MediaLength(const std::string& path)
{
    QuietDecoderLog();
    AVFormatContext* opened = nullptr;
    if (avformat_open_input(&opened, path.c_str(), nullptr, nullptr) < 0)
        return 0;
    std::unique_ptr<AVFormatContext, FormatCloser> format(opened);
    if (avformat_find_stream_info(format.get(), nullptr) < 0)
        return 0;
    const int stream = av_find_best_stream(format.get(), AVMEDIA_TYPE_AUDIO, -1, -1, nullptr, 0);
    if (stream < 0)
        return 0;
    const AVStream* s = format->streams[stream];
    if (format->duration > 0)
        return double(format->duration) / AV_TIME_BASE;
    if (s->duration > 0)
        return double(s->duration) * av_q2d(s->time_base);
    return DecodedSeconds(format.get(), stream);
}
