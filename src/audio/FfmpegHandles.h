#pragma once
// Owners of FFmpeg's contexts, so that every early return frees what was made, and the opening
// steps the decoder and the length probe share.

#include <memory>
#include <string>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libswresample/swresample.h>
}

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
struct ResamplerFreer {
    void operator()(SwrContext* resampler) const { swr_free(&resampler); }
};

using FormatHandle = std::unique_ptr<AVFormatContext, FormatCloser>;
using CodecHandle = std::unique_ptr<AVCodecContext, CodecFreer>;
using PacketHandle = std::unique_ptr<AVPacket, PacketFreer>;
using FrameHandle = std::unique_ptr<AVFrame, FrameFreer>;
using ResamplerHandle = std::unique_ptr<SwrContext, ResamplerFreer>;

// FFmpeg's text for an error code.
std::string AvError(int code);

// Opens a media file and reads its stream information; empty and `error` set on failure.
FormatHandle OpenMediaFile(const std::string& path, std::string& error);

// The next packet, as av_read_frame gives it; an error, as at the end of the file, when 8 MB
// of the file hold none (garbage or padding that FFmpeg would gather whole in memory).
int ReadPacketWithin(AVFormatContext& format, AVPacket& packet);
// A seek, as av_seek_frame does it; an error when it would read more than 8 MB to find its place.
int SeekWithin(AVFormatContext& format, int stream, int64_t timestamp, int flags);

// An opened decoder for one stream of `format`; empty and `error` set on failure.
CodecHandle OpenStreamDecoder(const AVFormatContext& format, int stream, std::string& error);
