#include "audio/MediaProbe.h"

#include "audio/FfmpegHandles.h"

#include <mutex>

namespace {

// Some containers (short Musepack SV8 files among them) state no duration; the samples that
// decode are the length then.
double DecodedSeconds(AVFormatContext* format, int stream)
{
    std::string error;
    CodecHandle codec = OpenStreamDecoder(*format, stream, error);
    PacketHandle packet(av_packet_alloc());
    FrameHandle frame(av_frame_alloc());
    if (!codec || !packet || !frame)
        return 0;

    int64_t samples = 0;
    auto drain = [&] {
        while (avcodec_receive_frame(codec.get(), frame.get()) >= 0)
            samples += frame->nb_samples;
    };
    while (ReadPacketWithin(*format, *packet) >= 0) {
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
    std::string error;
    FormatHandle format = OpenMediaFile(path, error);
    if (!format)
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
