#include "audio/FfmpegHandles.h"

std::string AvError(int code)
{
    char text[AV_ERROR_MAX_STRING_SIZE] = {};
    av_strerror(code, text, sizeof text);
    return text;
}

namespace {

// The stream search reads until it has a packet; in a song whose audio gives way to silence
// padding or garbage it would read to the end of the file, however large. While the search runs,
// the format's opaque field holds how far it may read; the reads stop there. The callback gets
// the format itself, which every reader of the file lives no longer than.
constexpr intptr_t kStreamSearchBytes = intptr_t(16) << 20;

int PastStreamSearchBudget(void* opaque)
{
    const auto* format = static_cast<const AVFormatContext*>(opaque);
    const auto budget = reinterpret_cast<intptr_t>(format->opaque);
    return budget > 0 && format->pb && avio_tell(format->pb) > budget;
}

} // namespace

FormatHandle OpenMediaFile(const std::string& path, std::string& error)
{
    AVFormatContext* opened = avformat_alloc_context();
    if (!opened) {
        error = AvError(AVERROR(ENOMEM));
        return nullptr;
    }
    opened->interrupt_callback = {PastStreamSearchBudget, opened};
    opened->opaque = reinterpret_cast<void*>(kStreamSearchBytes);
    int err = avformat_open_input(&opened, path.c_str(), nullptr, nullptr);
    if (err < 0) {
        error = AvError(err);
        return nullptr;
    }
    FormatHandle format(opened);
    err = avformat_find_stream_info(format.get(), nullptr);
    format->opaque = nullptr;
    if (err < 0) {
        error = AvError(err);
        return nullptr;
    }
    return format;
}

CodecHandle OpenStreamDecoder(const AVFormatContext& format, int stream, std::string& error)
{
    const AVCodecParameters* parameters = format.streams[stream]->codecpar;
    const AVCodec* decoder = avcodec_find_decoder(parameters->codec_id);
    if (!decoder) {
        error = "no decoder for this audio";
        return nullptr;
    }
    CodecHandle codec(avcodec_alloc_context3(decoder));
    if (!codec) {
        error = AvError(AVERROR(ENOMEM));
        return nullptr;
    }
    int err = avcodec_parameters_to_context(codec.get(), parameters);
    if (err >= 0)
        err = avcodec_open2(codec.get(), decoder, nullptr);
    if (err < 0) {
        error = AvError(err);
        return nullptr;
    }
    return codec;
}
