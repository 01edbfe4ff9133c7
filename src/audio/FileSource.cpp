#include "audio/FileSource.h"

#include "audio/FfmpegHandles.h"
#include "audio/MediaProbe.h"
#include "audio/TimeStretch.h"
#include "audio/VocalReducer.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <condition_variable>
#include <mutex>
#include <thread>

namespace {

// A splice into or out of the stretcher begins this far ahead of what plays: the queue still
// holds it, and the new path has that long to get going.
constexpr double kSpliceLeadSeconds = 0.04;
// The dip where a splice joins the two paths: about 3 ms out and 3 ms in.
constexpr int kSpliceFadeFrames = 128;

} // namespace

// FFmpeg's side: owned and used by the decoder thread once it runs.
struct FileSource::Decoder {
    FormatHandle format;
    CodecHandle codec;
    ResamplerHandle resampler;
    PacketHandle packet;
    FrameHandle frame;
    int stream = -1;
    int outputRate = 48000;

    // Resampled frames not yet in a chunk; pendingStart is the song frame of the first one.
    std::vector<float> pending;
    size_t pendingOffset = 0;
    int64_t nextFrame = 0;
    bool timed = false;  // nextFrame was taken from a decoded frame's timestamp
    int64_t trimBefore = 0;
    bool endOfFile = false;

    std::thread thread;
    std::mutex mutex;
    std::condition_variable wake;
    bool quit = false;

    std::string Open(const std::string& path, int rate)
    {
        outputRate = rate;
        std::string error;
        if (!(format = OpenMediaFile(path, error)))
            return error;
        stream = av_find_best_stream(format.get(), AVMEDIA_TYPE_AUDIO, -1, -1, nullptr, 0);
        if (stream < 0)
            return "no audio stream";
        if (!(codec = OpenStreamDecoder(*format, stream, error)))
            return error;
        packet.reset(av_packet_alloc());
        frame.reset(av_frame_alloc());
        if (!packet || !frame)
            return AvError(AVERROR(ENOMEM));
        return ResetResampler() ? std::string() : "cannot convert the audio";
    }

    bool ResetResampler()
    {
        AVChannelLayout stereo = AV_CHANNEL_LAYOUT_STEREO;
        AVChannelLayout input{};
        if (codec->ch_layout.order == AV_CHANNEL_ORDER_UNSPEC)
            av_channel_layout_default(&input, codec->ch_layout.nb_channels);
        else
            av_channel_layout_copy(&input, &codec->ch_layout);
        SwrContext* made = nullptr;
        const int err = swr_alloc_set_opts2(&made, &stereo, AV_SAMPLE_FMT_FLT, outputRate, &input, codec->sample_fmt,
                                            codec->sample_rate, 0, nullptr);
        av_channel_layout_uninit(&input);
        resampler.reset(made);
        return err >= 0 && swr_init(resampler.get()) >= 0;
    }

    double Duration() const
    {
        if (format->duration > 0)
            return double(format->duration) / AV_TIME_BASE;
        const AVStream* s = format->streams[stream];
        return s->duration > 0 ? double(s->duration) * av_q2d(s->time_base) : 0.0;
    }

    size_t PendingFrames() const { return pending.size() / 2 - pendingOffset; }

    void Seek(int64_t target)
    {
        const AVStream* s = format->streams[stream];
        const int64_t start = s->start_time == AV_NOPTS_VALUE ? 0 : s->start_time;
        const int64_t ts = start + av_rescale_q(target, AVRational{1, outputRate}, s->time_base);
        SeekWithin(*format, stream, ts, AVSEEK_FLAG_BACKWARD);
        avcodec_flush_buffers(codec.get());
        ResetResampler();
        pending.clear();
        pendingOffset = 0;
        nextFrame = target;
        timed = false;
        trimBefore = target;
        endOfFile = false;
    }

    // Appends the resampled frames of `input` (nullptr drains the resampler).
    void Convert(const AVFrame* input)
    {
        const int inCount = input ? input->nb_samples : 0;
        if (input && !timed && input->best_effort_timestamp != AV_NOPTS_VALUE) {
            const AVStream* s = format->streams[stream];
            const int64_t start = s->start_time == AV_NOPTS_VALUE ? 0 : s->start_time;
            nextFrame = av_rescale_q(input->best_effort_timestamp - start, s->time_base, AVRational{1, outputRate});
            timed = true;
        }
        const int room = swr_get_out_samples(resampler.get(), inCount) + 32;
        const size_t base = pending.size();
        pending.resize(base + size_t(room) * 2);
        auto* out = reinterpret_cast<uint8_t*>(pending.data() + base);
        const int made = swr_convert(resampler.get(), &out, room, input ? const_cast<const uint8_t**>(input->extended_data)
                                                                 : nullptr,
                                     inCount);
        pending.resize(base + size_t(std::max(made, 0)) * 2);
        TrimToTarget(base, std::max(made, 0));
    }

    // Drops what a seek decoded before its target, so the first frame queued is the target's.
    void TrimToTarget(size_t base, int made)
    {
        const int64_t first = nextFrame;
        nextFrame += made;
        if (first >= trimBefore)
            return;
        const int64_t drop = std::min<int64_t>(trimBefore - first, made);
        pending.erase(pending.begin() + std::ptrdiff_t(base), pending.begin() + std::ptrdiff_t(base + drop * 2));
    }

    // Decodes until some frames are pending or the file has ended; false at the end.
    bool DecodeMore()
    {
        if (pendingOffset > 0 && PendingFrames() == 0) {
            pending.clear();
            pendingOffset = 0;
        }
        while (PendingFrames() == 0 && !endOfFile) {
            int err = avcodec_receive_frame(codec.get(), frame.get());
            if (err == 0) {
                Convert(frame.get());
                continue;
            }
            if (err == AVERROR_EOF) {
                Convert(nullptr);
                endOfFile = true;
                break;
            }
            err = ReadPacketWithin(*format, *packet);
            if (err < 0) {
                avcodec_send_packet(codec.get(), nullptr);
                continue;
            }
            if (packet->stream_index == stream)
                avcodec_send_packet(codec.get(), packet.get());
            av_packet_unref(packet.get());
        }
        return PendingFrames() > 0;
    }

    // The song frame of the first pending frame.
    int64_t PendingStart() const { return nextFrame - int64_t(PendingFrames()); }
};

std::shared_ptr<FileSource> FileSource::Open(const std::string& path, int outputRate, std::string& error)
{
    QuietDecoderLog();
    auto decoder = std::make_unique<Decoder>();
    error = decoder->Open(path, outputRate);
    if (error.empty() && !decoder->DecodeMore())
        error = "no audio could be decoded";
    if (!error.empty())
        return nullptr;
    std::shared_ptr<FileSource> source(new FileSource(outputRate, std::move(decoder)));
    // The first stretch is decoded here, so Run never waits for the decoder thread to get going.
    for (int i = 0; i < kPrefillChunks && source->FillChunk(0); ++i) {
    }
    source->m_decoder->thread = std::thread([s = source.get()] { s->DecodeLoop(); });
    return source;
}

// The decoder thread's path through the vocal reducer and the stretcher, while either is wanted.
struct FileSource::Shaping {
    std::unique_ptr<TimeStretch> stretch;
    std::unique_ptr<VocalReducer> reducer;
    bool stretching = false;
    bool reducing = false;
    bool finished = false;  // the file has ended and the stretcher was told
    bool flushed = false;   // the file has ended and the reducer gave up what it held
    int64_t discard = 0;    // frames the reducer still gives from before where the path starts
    uint32_t soundSerial = 0;

    bool Shaped() const { return stretching || reducing; }
    int64_t ReducerDelay() const { return reducing ? VocalReducer::kDelayFrames : 0; }
};

FileSource::FileSource(int outputRate, std::unique_ptr<Decoder> decoder)
    : m_outputRate(outputRate), m_decoder(std::move(decoder)), m_shaping(std::make_unique<Shaping>()),
      m_chunks(kChunkCount)
{
    m_duration = m_decoder->Duration();
    m_stereo = m_decoder->codec->ch_layout.nb_channels >= 2;
    for (uint32_t i = 0; i < kChunkCount; ++i)
        m_free.Push(i);
}

FileSource::~FileSource()
{
    {
        std::lock_guard lock(m_decoder->mutex);
        m_decoder->quit = true;
    }
    m_decoder->wake.notify_one();
    if (m_decoder->thread.joinable())
        m_decoder->thread.join();
}

bool FileSource::FillChunk(uint32_t serial)
{
    if (m_shaping->stretching)
        return FillStretchedChunk(serial);
    uint32_t index = 0;
    if (!m_free.Pop(index))
        return true;
    Decoder& d = *m_decoder;
    const bool more = DecodeInPath();
    Chunk& chunk = m_chunks[index];
    chunk.serial = serial;
    chunk.generation = m_generation.load(std::memory_order_relaxed);
    chunk.startSong = double(PathStart());
    chunk.step = 1;
    chunk.frames = int(std::min<size_t>(kChunkFrames, d.PendingFrames()));
    chunk.endOfStream = !more;
    std::copy_n(d.pending.data() + d.pendingOffset * 2, size_t(chunk.frames) * 2, chunk.samples);
    d.pendingOffset += size_t(chunk.frames);
    Queue(index, serial);
    return more;
}

bool FileSource::DecodeInPath()
{
    Decoder& d = *m_decoder;
    Shaping& shaping = *m_shaping;
    if (!shaping.reducing)
        return d.DecodeMore();
    while (d.PendingFrames() == 0) {
        if (!d.DecodeMore() && !FlushReducer())
            return false;
        shaping.reducer->Process(d.pending.data() + d.pendingOffset * 2, int(d.PendingFrames()));
        const int64_t dropped = std::min<int64_t>(shaping.discard, int64_t(d.PendingFrames()));
        d.pendingOffset += size_t(dropped);
        shaping.discard -= dropped;
    }
    return true;
}

bool FileSource::FlushReducer()
{
    Decoder& d = *m_decoder;
    if (m_shaping->flushed)
        return false;
    m_shaping->flushed = true;
    // Silence after the end pushes the song's last frames out of the reducer's delay.
    d.pending.assign(size_t(VocalReducer::kDelayFrames) * 2, 0.0f);
    d.pendingOffset = 0;
    d.nextFrame += VocalReducer::kDelayFrames;
    return true;
}

int64_t FileSource::PathStart() const
{
    return m_decoder->PendingStart() - m_shaping->ReducerDelay();
}

void FileSource::StartPathAt(int64_t songFrame)
{
    Shaping& shaping = *m_shaping;
    // The reducer's sound comes out late by its delay: it starts that much earlier, and what it
    // gives from before the song frame is dropped.
    const int64_t from = std::max<int64_t>(0, songFrame - shaping.ReducerDelay());
    m_decoder->Seek(from);
    shaping.discard = shaping.reducing ? shaping.ReducerDelay() + songFrame - from : 0;
    if (shaping.reducing)
        shaping.reducer->Reset();
    if (shaping.stretching)
        shaping.stretch->Restart(songFrame);
    shaping.finished = false;
    shaping.flushed = false;
    m_queuedTo.store(double(songFrame), std::memory_order_relaxed);
}

bool FileSource::FillStretchedChunk(uint32_t serial)
{
    uint32_t index = 0;
    if (!m_free.Pop(index))
        return true;
    Decoder& d = *m_decoder;
    TimeStretch& stretch = *m_shaping->stretch;
    Chunk& chunk = m_chunks[index];
    chunk.serial = serial;
    chunk.generation = m_generation.load(std::memory_order_relaxed);
    chunk.startSong = stretch.SongFrame();
    chunk.step = stretch.Tempo();
    chunk.frames = 0;
    while (chunk.frames < kChunkFrames) {
        chunk.frames += stretch.Pull(chunk.samples + 2 * chunk.frames, kChunkFrames - chunk.frames);
        if (chunk.frames == kChunkFrames || m_shaping->finished)
            break;
        if (!DecodeInPath()) {
            stretch.Finish();
            m_shaping->finished = true;
            continue;
        }
        const int count = int(std::min<size_t>(size_t(stretch.FramesWanted()), d.PendingFrames()));
        stretch.Push(d.pending.data() + d.pendingOffset * 2, count);
        d.pendingOffset += size_t(count);
    }
    chunk.endOfStream = m_shaping->finished && chunk.frames < kChunkFrames;
    Queue(index, serial);
    return !chunk.endOfStream;
}

void FileSource::Queue(uint32_t index, uint32_t serial)
{
    const Chunk& chunk = m_chunks[index];
    const double end = chunk.startSong + chunk.step * chunk.frames;
    // Queued before it is counted, so nothing counts a chunk the real-time thread cannot take yet.
    m_filled.Push(index);
    m_queuedTo.store(end, std::memory_order_release);
    m_decodedSerial.store(serial, std::memory_order_release);
}

void FileSource::FollowSound()
{
    Shaping& shaping = *m_shaping;
    const uint32_t serial = m_soundSerial.load(std::memory_order_acquire);
    if (serial == shaping.soundSerial)
        return;
    shaping.soundSerial = serial;
    const int semitones = m_semitones.load(std::memory_order_relaxed);
    const double tempo = m_tempo.load(std::memory_order_relaxed);
    const bool stretch = semitones != 0 || tempo != 1;
    const bool reduce = m_vocalsOff.load(std::memory_order_relaxed);
    if (!shaping.stretch && stretch)
        shaping.stretch = std::make_unique<TimeStretch>(m_outputRate, TimeStretch::Engine::Faster);
    if (!shaping.reducer && reduce) {
        shaping.reducer = std::make_unique<VocalReducer>(m_outputRate);
        shaping.reducer->SetOn(true);
    }
    if (shaping.stretch) {
        shaping.stretch->SetSemitones(semitones);
        shaping.stretch->SetTempo(tempo);
    }
    if (stretch == shaping.stretching && reduce == shaping.reducing)
        return;
    // Onto another path: the queue is cut a little ahead of what plays (before it plays, where
    // the song stands), no later than what it holds, and the song goes on from there on the
    // other path, with no gap and no jump of the clock.
    const double lead = m_state.load(std::memory_order_relaxed) == Running ? kSpliceLeadSeconds * m_outputRate : 0;
    const double queuedTo = shaping.stretching ? shaping.stretch->SongFrame() : double(PathStart());
    const double splice = std::ceil(std::min(m_rtSongFrame.load(std::memory_order_relaxed) + lead, queuedTo));
    m_spliceFrame.store(splice, std::memory_order_relaxed);
    m_generation.fetch_add(1, std::memory_order_release);
    shaping.stretching = stretch;
    shaping.reducing = reduce;
    StartPathAt(int64_t(splice));
}

double FileSource::LeadFrames() const
{
    return m_queuedTo.load(std::memory_order_relaxed) - m_rtSongFrame.load(std::memory_order_relaxed);
}

void FileSource::DecodeLoop()
{
    Decoder& d = *m_decoder;
    uint32_t serial = 0;
    bool endSent = false;
    for (;;) {
        {
            std::unique_lock lock(d.mutex);
            if (d.quit)
                return;
        }
        const uint32_t wanted = m_seekSerial.load(std::memory_order_acquire);
        if (wanted != serial) {
            serial = wanted;
            StartPathAt(m_seekFrame.load(std::memory_order_relaxed));
            endSent = false;
            m_decodedAll.store(false, std::memory_order_relaxed);
        }
        if (m_soundSerial.load(std::memory_order_acquire) != m_shaping->soundSerial) {
            FollowSound();
            m_decodedAll.store(false, std::memory_order_relaxed);
            m_followedSound.store(m_shaping->soundSerial, std::memory_order_release);
            endSent = false;
        }
        // The song as it is fills the queue but for a few chunks, which a splice onto the
        // shaping path takes while the chunks before it still play.
        const double tempo = m_shaping->stretching ? m_shaping->stretch->Tempo() : 1.0;
        const bool leadFull = m_shaping->Shaped() ? LeadFrames() >= kStretchLeadFrames * tempo
                                                  : m_free.Size() <= kSpliceReserveChunks;
        if (endSent || m_free.Size() == 0 || leadFull) {
            std::unique_lock lock(d.mutex);
            d.wake.wait_for(lock, std::chrono::milliseconds(m_shaping->Shaped() ? 2 : 5));
            continue;
        }
        endSent = !FillChunk(serial);
        m_decodedAll.store(endSent, std::memory_order_release);
    }
}

void FileSource::Seek(double seconds)
{
    seconds = std::clamp(seconds, 0.0, std::max(m_duration, 0.0));
    m_seekSeconds.store(seconds, std::memory_order_relaxed);
    m_seekFrame.store(std::llround(seconds * m_outputRate), std::memory_order_relaxed);
    m_seekSerial.fetch_add(1, std::memory_order_release);
    m_decoder->wake.notify_one();
}

void FileSource::SetRate(double rate)
{
    m_rate = std::clamp(rate, 0.0, 2.0);
}

void FileSource::SetSound(int semitones, double tempo)
{
    m_semitones.store(std::clamp(semitones, -12, 12), std::memory_order_relaxed);
    m_tempo.store(std::isfinite(tempo) ? std::clamp(tempo, TimeStretch::kSlowest, TimeStretch::kFastest) : 1.0,
                  std::memory_order_relaxed);
    m_soundSerial.fetch_add(1, std::memory_order_release);
    m_decoder->wake.notify_one();
}

bool FileSource::SetVocalsOff(bool off)
{
    if (off && !m_stereo)
        return false;
    m_vocalsOff.store(off, std::memory_order_relaxed);
    m_soundSerial.fetch_add(1, std::memory_order_release);
    m_decoder->wake.notify_one();
    return true;
}

double FileSource::SecondsBuffered() const
{
    // Audio from before a seek, or queued before a new key or tempo was taken up, is not what
    // plays next.
    if (m_decodedSerial.load(std::memory_order_acquire) != m_seekSerial.load(std::memory_order_acquire) ||
        m_followedSound.load(std::memory_order_acquire) != m_soundSerial.load(std::memory_order_acquire))
        return 0;
    return std::max(0.0, LeadFrames()) / (m_tempo.load(std::memory_order_relaxed) * m_outputRate);
}

bool FileSource::ReadyFor(double seconds) const
{
    const bool current = m_decodedSerial.load(std::memory_order_acquire) == m_seekSerial.load(std::memory_order_acquire) &&
                         m_followedSound.load(std::memory_order_acquire) == m_soundSerial.load(std::memory_order_acquire);
    return SecondsBuffered() >= seconds || (current && m_decodedAll.load(std::memory_order_acquire));
}

double FileSource::Position(double now)
{
    const uint32_t serial = m_seekSerial.load(std::memory_order_relaxed);
    const auto heard = m_heard.Read();
    if (!heard || heard->serial != serial)
        return m_seekSeconds.load(std::memory_order_relaxed);

    double position = heard->PositionAt(now);
    if (heard->ended && position >= heard->end)
        position = std::max(position, m_duration);
    if (m_state == Running && m_lastSerial == serial)
        position = std::max(position, m_lastPosition);
    m_lastSerial = serial;
    m_lastPosition = position;
    return position;
}

void FileSource::FollowSeek() noexcept
{
    const uint32_t serial = m_seekSerial.load(std::memory_order_acquire);
    if (serial == m_rtSerial)
        return;
    m_rtSerial = serial;
    m_rtFloor = m_seekSeconds.load(std::memory_order_relaxed);
    if (m_rtChunk >= 0)
        m_free.Push(uint32_t(m_rtChunk));
    m_rtChunk = -1;
    m_pos0 = m_pos1 = double(m_seekFrame.load(std::memory_order_relaxed));
    m_rtGeneration = m_generation.load(std::memory_order_acquire);
    m_rtLastSong = m_pos0 - 1;
    m_fadeIn = 0;
    m_rtSongFrame.store(m_pos0, std::memory_order_relaxed);
    m_phase = 0;
    m_primed = false;
    m_ended = false;
}

bool FileSource::NextFrame(float& left, float& right, double& songFrame) noexcept
{
    const uint32_t generation = m_generation.load(std::memory_order_acquire);
    const double splice = m_spliceFrame.load(std::memory_order_relaxed);
    while (!m_ended) {
        if (m_rtChunk < 0) {
            uint32_t index = 0;
            if (!m_filled.Pop(index))
                return false;
            const Chunk& chunk = m_chunks[index];
            if (chunk.serial != m_rtSerial) {
                m_free.Push(index);
                continue;
            }
            if (chunk.frames == 0 && chunk.endOfStream) {
                m_free.Push(index);
                m_ended = true;
                return false;
            }
            m_rtChunk = int(index);
            m_rtOffset = 0;
        }
        const Chunk& chunk = m_chunks[size_t(m_rtChunk)];
        const double at = chunk.startSong + chunk.step * m_rtOffset;
        // A chunk of the path before a splice gives way where the splice begins; a path met
        // after another never takes the song back to where it has been.
        const bool givenWay = chunk.generation != generation && at >= splice;
        if (m_rtOffset < chunk.frames && !givenWay) {
            ++m_rtOffset;
            if (chunk.generation != m_rtGeneration && at <= m_rtLastSong)
                continue;
            // The two paths meet in a dip of a few milliseconds: the old one fades out into
            // the splice, the new one in from it, so their waveforms never meet in a step.
            float gain = 1;
            if (chunk.generation != generation)
                gain = float(std::min(1.0, (splice - at) / (chunk.step * kSpliceFadeFrames)));
            if (chunk.generation != m_rtGeneration)
                m_fadeIn = kSpliceFadeFrames;
            if (m_fadeIn > 0)
                gain *= 1 - float(m_fadeIn--) / kSpliceFadeFrames;
            left = chunk.samples[2 * (m_rtOffset - 1)] * gain;
            right = chunk.samples[2 * (m_rtOffset - 1) + 1] * gain;
            songFrame = at;
            m_rtGeneration = chunk.generation;
            m_rtLastSong = at;
            return true;
        }
        m_ended = chunk.endOfStream && !givenWay;
        m_free.Push(uint32_t(m_rtChunk));
        m_rtChunk = -1;
    }
    return false;
}

bool FileSource::Prime() noexcept
{
    if (m_primed)
        return true;
    if (!NextFrame(m_a0[0], m_a0[1], m_pos0))
        return false;
    if (!NextFrame(m_a1[0], m_a1[1], m_pos1)) {
        m_a1[0] = m_a1[1] = 0;
        m_pos1 = m_pos0 + 1;
    }
    m_primed = true;
    return true;
}

void FileSource::RenderFrames(float* out, int frames) noexcept
{
    const double rate = m_rate.load(std::memory_order_relaxed);
    int i = 0;
    if (rate > 0 && Prime()) {
        for (; i < frames; ++i) {
            const float t = float(m_phase);
            out[2 * i] = m_a0[0] + (m_a1[0] - m_a0[0]) * t;
            out[2 * i + 1] = m_a0[1] + (m_a1[1] - m_a0[1]) * t;
            m_phase += rate;
            bool starved = false;
            while (m_phase >= 1.0) {
                float next[2];
                double nextPos = 0;
                if (!NextFrame(next[0], next[1], nextPos)) {
                    starved = true;
                    break;
                }
                m_a0[0] = m_a1[0];
                m_a0[1] = m_a1[1];
                m_a1[0] = next[0];
                m_a1[1] = next[1];
                m_pos0 = m_pos1;
                m_pos1 = nextPos;
                m_phase -= 1.0;
            }
            if (starved) {
                // Out of audio (a slow disk, or the end): hold here, the clock holds with it.
                m_phase = std::min(m_phase, 1.0);
                ++i;
                break;
            }
        }
    }
    std::fill(out + size_t(i) * 2, out + size_t(frames) * 2, 0.0f);
}

double FileSource::SongFrameRead() const noexcept
{
    return m_pos0 + (m_pos1 - m_pos0) * m_phase;
}

void FileSource::Render(float* out, int frames, const BufferTiming& timing) noexcept
{
    FollowSeek();
    if (m_state.load(std::memory_order_relaxed) != Running) {
        // Chunks made stale by a seek go back at once, so the decoder refills before Run.
        uint32_t index = 0;
        while (m_filled.Front(index) && m_chunks[index].serial != m_rtSerial) {
            m_filled.PopFront();
            m_free.Push(index);
        }
        std::fill(out, out + size_t(frames) * 2, 0.0f);
        return;
    }
    HeardClock heard;
    heard.serial = m_rtSerial;
    heard.floor = m_rtFloor;
    heard.heardAt = timing.heardAt;
    heard.start = SongFrameRead() / m_outputRate;
    RenderFrames(out, frames);
    heard.end = SongFrameRead() / m_outputRate;
    // Song seconds per second heard: the varispeed times the song frames each frame stands for.
    heard.rate = m_rate.load(std::memory_order_relaxed) * (m_primed ? m_pos1 - m_pos0 : 1.0);
    heard.ended = m_ended;
    m_heard.Publish(heard);
    m_rtSongFrame.store(heard.end * m_outputRate, std::memory_order_relaxed);
}
