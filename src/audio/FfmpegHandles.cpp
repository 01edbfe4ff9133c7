#include "audio/FfmpegHandles.h"

std::string AvError(int code)
{
    char text[AV_ERROR_MAX_STRING_SIZE] = {};
    av_strerror(code, text, sizeof text);
    return text;
}

FormatHandle OpenMediaFile(const std::string& path, std::string& error)
{
    AVFormatContext* opened = nullptr;
    int err = avformat_open_input(&opened, path.c_str(), nullptr, nullptr);
    if (err < 0) {
        error = AvError(err);
        return nullptr;
    }
    FormatHandle format(opened);
    if ((err = avformat_find_stream_info(format.get(), nullptr)) < 0) {
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
