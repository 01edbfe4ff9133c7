#include "audio/FfmpegHandles.h"

std::string AvError(int code)
{
    char text[AV_ERROR_MAX_STRING_SIZE] = {};
    av_strerror(code, text, sizeof text);
    return text;
}

namespace {

// FFmpeg reads until it has a packet, and a seek without an index reads forward to its target;
// in a song whose audio gives way to silence padding or garbage either would read to the end of
// the file, however large, gathering every byte in its parser. While a stream search, a packet
// read or a seek runs, the format's opaque field holds how many bytes the file may have given by
// its end, and the reads stop there. The callback gets the format itself, which every reader of
// the file lives no longer than.
constexpr intptr_t kReadAheadLimit = intptr_t(8) << 20;

int PastReadLimit(void* opaque)
{
    const auto* format = static_cast<const AVFormatContext*>(opaque);
    const auto limit = reinterpret_cast<intptr_t>(format->opaque);
    return limit > 0 && format->pb && format->pb->bytes_read > limit;
}

// The reads of one search, packet or seek stop after the limit.
class ReadLimit {
public:
    explicit ReadLimit(AVFormatContext& format) : m_format(format)
    {
        format.opaque = reinterpret_cast<void*>(intptr_t(format.pb->bytes_read) + kReadAheadLimit);
    }
    ~ReadLimit() { m_format.opaque = nullptr; }
    ReadLimit(const ReadLimit&) = delete;
    ReadLimit& operator=(const ReadLimit&) = delete;

private:
    AVFormatContext& m_format;
};

} // namespace

FormatHandle OpenMediaFile(const std::string& path, std::string& error)
{
    AVFormatContext* opened = avformat_alloc_context();
    if (!opened) {
        error = AvError(AVERROR(ENOMEM));
        return nullptr;
    }
    // The header and a tag in front of the audio, however large, are read whole.
    opened->interrupt_callback = {PastReadLimit, opened};
    int err = avformat_open_input(&opened, path.c_str(), nullptr, nullptr);
    if (err < 0) {
        error = AvError(err);
        return nullptr;
    }
    FormatHandle format(opened);
    {
        const ReadLimit limit(*format);
        err = avformat_find_stream_info(format.get(), nullptr);
    }
    if (err < 0) {
        error = AvError(err);
        return nullptr;
    }
    return format;
}

int ReadPacketWithin(AVFormatContext& format, AVPacket& packet)
{
    const ReadLimit limit(format);
    return av_read_frame(&format, &packet);
}

int SeekWithin(AVFormatContext& format, int stream, int64_t timestamp, int flags)
{
    const ReadLimit limit(format);
    return av_seek_frame(&format, stream, timestamp, flags);
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

