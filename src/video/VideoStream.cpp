#include "video/VideoStream.h"

#include "audio/FfmpegHandles.h"

#include <QFile>
#include <QFileInfo>
#include <QStringList>
#include <algorithm>
#include <cmath>
#include <optional>

extern "C" {
#include <libavutil/imgutils.h>
#include <libswscale/swscale.h>
}

namespace {

// Frames decoded ahead of the clock: enough to ride out a slow frame, few enough to stay small
// at the window's size.
constexpr size_t kFramesAhead = 4;
// A clock this far ahead of the newest decoded frame is a jump, not a slow decoder.
constexpr double kJumpAhead = 2.0;
// A clock this far behind the frame on show jumped back.
constexpr double kJumpBack = 0.25;
// Packets in a row that give no frame before the picture counts as undecodable.
constexpr int kBadPacketsInARow = 200;

struct ScalerFreer {
    void operator()(SwsContext* scaler) const { sws_freeContext(scaler); }
};

// The stream that moves: a cover picture is attached to an audio file as a one-frame video.
int MovingVideoStream(const AVFormatContext& format)
{
    for (unsigned i = 0; i < format.nb_streams; ++i) {
        const AVStream* stream = format.streams[i];
        if (stream->codecpar->codec_type == AVMEDIA_TYPE_VIDEO && !(stream->disposition & AV_DISPOSITION_ATTACHED_PIC) &&
            stream->codecpar->width > 0 && stream->codecpar->height > 0)
            return int(i);
    }
    return -1;
}

double FramesPerSecond(const AVStream& stream)
{
    const AVRational rate = stream.avg_frame_rate.num > 0 ? stream.avg_frame_rate : stream.r_frame_rate;
    return rate.num > 0 && rate.den > 0 ? av_q2d(rate) : 0.0;
}

VideoFacts FactsOf(const AVFormatContext& format, int stream)
{
    const AVStream& s = *format.streams[stream];
    const AVCodecDescriptor* codec = avcodec_descriptor_get(s.codecpar->codec_id);
    return {codec ? QString::fromLatin1(codec->name) : QStringLiteral("unknown"),
            QSize(s.codecpar->width, s.codecpar->height), FramesPerSecond(s)};
}

// The song's second 0 is the first sound of its audio stream, as the engine plays it.
double SongOrigin(const AVFormatContext& format, int videoStream)
{
    const int audio = av_find_best_stream(const_cast<AVFormatContext*>(&format), AVMEDIA_TYPE_AUDIO, -1, -1, nullptr, 0);
    const AVStream* s = format.streams[audio >= 0 ? audio : videoStream];
    return s->start_time == AV_NOPTS_VALUE ? 0.0 : double(s->start_time) * av_q2d(s->time_base);
}

// The largest size of the frame's shape (its pixels' own shape counted) inside `box`.
QSize FittedSize(const AVFrame& frame, QSize box)
{
    const AVRational sar = frame.sample_aspect_ratio;
    const double width = frame.width * (sar.num > 0 && sar.den > 0 ? av_q2d(sar) : 1.0);
    QSize shown(std::max(1, int(std::lround(width))), frame.height);
    if (box.isEmpty())
        return shown;
    shown.scale(box, Qt::KeepAspectRatio);
    return shown.expandedTo(QSize(1, 1));
}

} // namespace

QString VideoFacts::Text() const
{
    return QStringLiteral("%1 %2x%3 %4 fps")
        .arg(codec)
        .arg(size.width())
        .arg(size.height())
        .arg(QString::number(framesPerSecond, 'g', 4));
}

VideoFacts ProbeVideo(const QString& path)
{
    std::string error;
    const FormatHandle format = OpenMediaFile(QFile::encodeName(path).toStdString(), error);
    if (!format)
        return {};
    const int stream = MovingVideoStream(*format);
    return stream < 0 ? VideoFacts{} : FactsOf(*format, stream);
}

const QStringList& VideoSuffixes()
{
    static const QStringList suffixes{QStringLiteral("mp4"), QStringLiteral("m4v"), QStringLiteral("mkv"),
                                      QStringLiteral("avi"), QStringLiteral("mpg"), QStringLiteral("mpeg"),
                                      QStringLiteral("webm"), QStringLiteral("mov")};
    return suffixes;
}

bool IsVideoName(const QString& path)
{
    return VideoSuffixes().contains(QFileInfo(path).suffix().toLower());
}

struct VideoStream::Decoder {
    FormatHandle format;
    CodecHandle codec;
    PacketHandle packet{av_packet_alloc()};
    FrameHandle frame{av_frame_alloc()};
    std::unique_ptr<SwsContext, ScalerFreer> scaler;
    int stream = -1;
    double timeBase = 0;
    double origin = 0;
    double frameSeconds = 1.0 / 25;
    bool draining = false;
    int badPackets = 0;

    // Opens the file's moving picture; `facts` are set as soon as there is one, even if it
    // cannot be decoded.
    bool Open(const QString& path, VideoFacts& facts)
    {
        std::string error;
        format = OpenMediaFile(QFile::encodeName(path).toStdString(), error);
        if (!format || !packet || !frame)
            return false;
        stream = MovingVideoStream(*format);
        if (stream < 0)
            return false;
        facts = FactsOf(*format, stream);
        const AVStream& s = *format->streams[stream];
        const AVCodec* decoder = avcodec_find_decoder(s.codecpar->codec_id);
        if (!decoder)
            return false;
        codec.reset(avcodec_alloc_context3(decoder));
        if (!codec || avcodec_parameters_to_context(codec.get(), s.codecpar) < 0)
            return false;
        // Two threads, as the machine has cores to spare beside the engine's.
        codec->thread_count = 2;
        if (avcodec_open2(codec.get(), decoder, nullptr) < 0)
            return false;
        timeBase = av_q2d(s.time_base);
        origin = SongOrigin(*format, stream);
        if (const double fps = FramesPerSecond(s); fps > 0)
            frameSeconds = 1.0 / fps;
        return true;
    }

    void Seek(double seconds)
    {
        const auto ts = int64_t(std::floor((seconds + origin) / timeBase));
        SeekWithin(*format, stream, std::max<int64_t>(ts, 0), AVSEEK_FLAG_BACKWARD);
        avcodec_flush_buffers(codec.get());
        draining = false;
    }

    double SecondsOf(const AVFrame& decoded) const
    {
        const int64_t pts = decoded.best_effort_timestamp;
        return pts == AV_NOPTS_VALUE ? 0.0 : double(pts) * timeBase - origin;
    }

    // Feeds the decoder the next packet of the stream; false when nothing more can come.
    bool Feed()
    {
        if (draining)
            return false;
        while (true) {
            if (ReadPacketWithin(*format, *packet) < 0) {
                draining = true;
                avcodec_send_packet(codec.get(), nullptr);
                return true;
            }
            const bool ours = packet->stream_index == stream;
            const int sent = ours ? avcodec_send_packet(codec.get(), packet.get()) : 0;
            av_packet_unref(packet.get());
            if (!ours)
                continue;
            // A damaged packet is passed over; only a long run of them gives the picture up.
            badPackets = sent < 0 && sent != AVERROR(EAGAIN) ? badPackets + 1 : 0;
            return badPackets < kBadPacketsInARow;
        }
    }

    QImage Scaled(QSize box)
    {
        const QSize size = FittedSize(*frame, box);
        scaler.reset(sws_getCachedContext(scaler.release(), frame->width, frame->height, AVPixelFormat(frame->format),
                                          size.width(), size.height(), AV_PIX_FMT_BGRA, SWS_BILINEAR, nullptr, nullptr,
                                          nullptr));
        if (!scaler)
            return {};
        QImage image(size, QImage::Format_RGB32);
        uint8_t* planes[4] = {image.bits(), nullptr, nullptr, nullptr};
        const int strides[4] = {int(image.bytesPerLine()), 0, 0, 0};
        sws_scale(scaler.get(), frame->data, frame->linesize, 0, frame->height, planes, strides);
        return image;
    }
};

VideoStream::VideoStream(const QString& path) : m_decoder(std::make_unique<Decoder>())
{
    if (!m_decoder->Open(path, m_facts)) {
        m_failed = true;
        return;
    }
    m_thread = std::thread([this] { Run(); });
}

VideoStream::~VideoStream()
{
    {
        std::lock_guard lock(m_mutex);
        m_stop = true;
    }
    m_wake.notify_all();
    if (m_thread.joinable())
        m_thread.join();
}

bool VideoStream::Failed() const
{
    std::lock_guard lock(m_mutex);
    return m_failed;
}

int64_t VideoStream::DroppedFrames() const
{
    std::lock_guard lock(m_mutex);
    return m_dropped;
}

void VideoStream::SetTargetSize(QSize size)
{
    std::lock_guard lock(m_mutex);
    m_target = size;
}

void VideoStream::RequestSeek(double seconds)
{
    m_seekTo = std::max(seconds, 0.0);
    m_queue.clear();
    m_newestQueued = -1;
    m_endOfStream = false;
    m_wake.notify_all();
}

bool VideoStream::Advance(double seconds)
{
    std::lock_guard lock(m_mutex);
    if (m_failed || !std::isfinite(seconds))
        return false;
    m_wanted.store(seconds, std::memory_order_relaxed);
    const bool jumpedBack = m_currentSeconds >= 0 && seconds < m_currentSeconds - kJumpBack && m_seekTo < 0;
    const bool jumpedAhead = m_newestQueued >= 0 && seconds > m_newestQueued + kJumpAhead && !m_endOfStream;
    if (jumpedBack || jumpedAhead) {
        RequestSeek(seconds);
        m_currentSeconds = -1;
        return false;
    }
    std::optional<Decoded> due;
    while (!m_queue.empty() && m_queue.front().seconds <= seconds + 1e-3) {
        if (due)
            ++m_dropped;
        due = std::move(m_queue.front());
        m_queue.pop_front();
    }
    if (!due)
        return false;
    m_wake.notify_all();
    m_current = std::move(due->image);
    m_currentSeconds = due->seconds;
    return true;
}

bool VideoStream::SettleAt(double seconds, int timeoutMs)
{
    // Polled rather than waited for on the condition: a renderer's pace, and a timed wait that
    // ThreadSanitizer cannot follow.
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeoutMs);
    while (true) {
        Advance(seconds);
        {
            std::lock_guard lock(m_mutex);
            if (m_failed)
                return false;
            const bool later = !m_queue.empty() && m_queue.front().seconds > seconds + 1e-3;
            if (m_seekTo < 0 && (later || (m_queue.empty() && m_endOfStream)))
                return true;
        }
        if (std::chrono::steady_clock::now() >= deadline)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
}

bool VideoStream::DecodeOne(Decoded& out)
{
    Decoder& d = *m_decoder;
    while (true) {
        const int received = avcodec_receive_frame(d.codec.get(), d.frame.get());
        if (received == AVERROR(EAGAIN)) {
            if (!d.Feed())
                return false;
            continue;
        }
        if (received < 0)
            return false;
        const double seconds = d.SecondsOf(*d.frame);
        QSize target;
        {
            std::lock_guard lock(m_mutex);
            if (m_stop || m_seekTo >= 0)
                return false;
            // A frame whose successor is already due is never shown: it is not scaled either.
            if (seconds + d.frameSeconds <= m_wanted.load(std::memory_order_relaxed)) {
                ++m_dropped;
                continue;
            }
            target = m_target;
        }
        out = {seconds, d.Scaled(target)};
        av_frame_unref(d.frame.get());
        if (!out.image.isNull())
            return true;
    }
}

void VideoStream::Run()
{
    while (true) {
        double seekTo = -1;
        {
            std::unique_lock lock(m_mutex);
            m_wake.wait(lock, [&] {
                return m_stop || m_seekTo >= 0 || (!m_endOfStream && m_queue.size() < kFramesAhead);
            });
            if (m_stop)
                return;
            std::swap(seekTo, m_seekTo);
        }
        if (seekTo >= 0) {
            m_decoder->Seek(seekTo);
            continue;
        }
        Decoded decoded;
        const bool got = DecodeOne(decoded);
        std::lock_guard lock(m_mutex);
        if (m_seekTo >= 0 || m_stop)
            continue;
        if (!got) {
            m_endOfStream = true;
            m_failed = m_failed || m_decoder->badPackets >= kBadPacketsInARow;
            m_wake.notify_all();
            continue;
        }
        m_newestQueued = decoded.seconds;
        m_queue.push_back(std::move(decoded));
        m_wake.notify_all();
    }
}
