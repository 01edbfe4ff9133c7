#pragma once
// The picture of a video song: FFmpeg decodes it on a thread of its own, each frame scaled once
// to the size the window asks, a few frames ahead of the song clock. The interface thread asks
// for the frame of a song second; a decoder that falls behind skips frames to catch up, so the
// sound, which the engine plays apart from the picture, is never held back by it.

#include <QImage>
#include <QSize>
#include <QString>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <thread>

struct VideoFacts {
    QString codec;  // FFmpeg's short name, as "h264"
    QSize size;
    double framesPerSecond = 0;

    bool Valid() const { return !size.isEmpty(); }
    // "h264 1920x1080 29.97 fps"
    QString Text() const;
};

// The first video stream of a file that moves: the cover picture of an audio file is none.
VideoFacts ProbeVideo(const QString& path);

// The suffixes of video files, in lower case.
const QStringList& VideoSuffixes();
bool IsVideoName(const QString& path);

class VideoStream {
public:
    // Opens the file and starts decoding from its start; Failed() tells whether it could, and
    // Facts() whether the file has a moving picture at all.
    explicit VideoStream(const QString& path);
    ~VideoStream();
    VideoStream(const VideoStream&) = delete;
    VideoStream& operator=(const VideoStream&) = delete;

    const VideoFacts& Facts() const { return m_facts; }
    // The picture cannot be decoded (no video stream, no decoder, a damaged stream): the song
    // plays on without it.
    bool Failed() const;

    // Frames are scaled to fit these device pixels with their shape kept, from the next one on;
    // an empty size keeps the stream's own.
    void SetTargetSize(QSize size);
    // Takes the newest decoded frame not later than the song second, dropping older ones; a jump
    // of the clock back, or far ahead of what is decoded, makes the decoder seek. True when the
    // frame to show changed.
    bool Advance(double seconds);
    // Advances to the song second and waits until its frame is known for certain (a later one is
    // decoded, or the stream ended), for renderings that must not depend on the machine's pace.
    // False when the time ran out or the picture failed.
    bool SettleAt(double seconds, int timeoutMs = 5000);
    // The frame on show: null before the first one.
    const QImage& Current() const { return m_current; }
    double CurrentSeconds() const { return m_currentSeconds; }
    // Frames decoded but never shown because the decoder or the clock was ahead of them.
    int64_t DroppedFrames() const;

private:
    struct Decoded {
        double seconds;
        QImage image;
    };
    struct Decoder;
    void Run();
    // The next frame that is due, scaled; false at the end of the stream or on an error.
    bool DecodeOne(Decoded& out);
    void RequestSeek(double seconds);

    VideoFacts m_facts;
    std::unique_ptr<Decoder> m_decoder;
    QImage m_current;
    double m_currentSeconds = -1;

    mutable std::mutex m_mutex;
    std::condition_variable m_wake;
    std::deque<Decoded> m_queue;
    QSize m_target;
    std::atomic<double> m_wanted = 0;  // the last song second asked for; a hint to the decoder
    double m_seekTo = -1;         // a seek waiting for the thread; -1 none
    double m_newestQueued = -1;   // of the last frame queued since the last seek
    bool m_endOfStream = false;
    bool m_failed = false;
    bool m_stop = false;
    int64_t m_dropped = 0;
    std::thread m_thread;
};
