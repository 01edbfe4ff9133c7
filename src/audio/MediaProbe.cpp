#include "audio/MediaProbe.h"

#include <mutex>

extern "C" {
#include <libavformat/avformat.h>
}

void QuietDecoderLog()
{
    static std::once_flag once;
    std::call_once(once, [] { av_log_set_level(AV_LOG_QUIET); });
}

double MediaLength(const std::string& path)
{
    QuietDecoderLog();
    AVFormatContext* format = nullptr;
    if (avformat_open_input(&format, path.c_str(), nullptr, nullptr) < 0)
        return 0;
    double seconds = 0;
    if (avformat_find_stream_info(format, nullptr) >= 0) {
        const int stream = av_find_best_stream(format, AVMEDIA_TYPE_AUDIO, -1, -1, nullptr, 0);
        if (stream >= 0) {
            const AVStream* s = format->streams[stream];
            if (format->duration > 0)
                seconds = double(format->duration) / AV_TIME_BASE;
            else if (s->duration > 0)
                seconds = double(s->duration) * av_q2d(s->time_base);
        }
    }
    avformat_close_input(&format);
    return seconds;
}
