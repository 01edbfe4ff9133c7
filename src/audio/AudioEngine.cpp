#include "audio/AudioEngine.h"

#include <algorithm>
#include <cmath>
#include <thread>

float GainOfHundredthsDb(int level)
{
    if (level <= -10000)
        return 0;
    return std::pow(10.0f, float(std::min(level, kLoudestHundredthsDb)) / 2000.0f);
}

namespace {

int16_t Pcm16(float sample)
{
    return int16_t(std::lround(std::clamp(sample, -1.0f, 1.0f) * 32767.0f));
}

// Left and right gains of a level and a balance in hundredths of a decibel.
std::pair<float, float> SidesOf(float gain, int balance)
{
    return {gain * (balance > 0 ? GainOfHundredthsDb(-balance) : 1.0f),
            gain * (balance < 0 ? GainOfHundredthsDb(balance) : 1.0f)};
}

// A decibel under full scale, so the master's tone controls have a little room; the release
// is long enough not to pump with the beat of a drum track.
constexpr float kSynthCeiling = 0.891f;
constexpr double kSynthRelease = 0.15;

} // namespace

AudioEngine::AudioEngine(std::unique_ptr<AudioDevice> device)
    : m_device(std::move(device)),
      m_scratch(size_t(kScratchFrames) * 2),
      m_synthBus(size_t(kScratchFrames) * 2),
      m_inputScratch(size_t(kScratchFrames) * 2),
      m_captureRing(size_t(kCaptureSeconds) * size_t(m_device->SampleRate()) * 2),
      m_synthLimiter(kSynthCeiling, kSynthRelease, m_device->SampleRate())
{
}

AudioEngine::~AudioEngine()
{
    m_device->Stop();
}

bool AudioEngine::Start()
{
    return m_device->Start(*this);
}

bool AudioEngine::AddSource(std::shared_ptr<AudioSource> source)
{
    for (Slot& slot : m_slots) {
        if (slot.source.load() == nullptr) {
            m_owned.push_back(source);
            slot.source.store(source.get());
            return true;
        }
    }
    return false;
}

void AudioEngine::RemoveSource(const AudioSource* source)
{
    for (Slot& slot : m_slots)
        if (slot.source.load() == source)
            slot.source.store(nullptr);
    WaitForCallbackPass();
    std::erase_if(m_owned, [source](const auto& owned) { return owned.get() == source; });
}

void AudioEngine::WaitForCallbackPass() const
{
    // The callback marks itself busy before it reads what we changed (both sequentially
    // consistent), so when it is not busy now it cannot hold the old value; when it is, one pass
    // ends its hold.
    if (m_inCallback.load()) {
        const unsigned seen = m_callbacks.load();
        while (m_inCallback.load() && m_callbacks.load() == seen)
            std::this_thread::yield();
    }
}

bool AudioEngine::StartInput(int inputDeviceIndex)
{
    return m_device->InputRunning() || m_device->StartInput(inputDeviceIndex);
}

void AudioEngine::StopInput()
{
    m_device->StopInput();
}

AudioEngine::InputLevel AudioEngine::LastInputLevel() const
{
    const unsigned buffers = m_levelBuffers.load();
    const uint32_t frame = m_levelFrame.load();
    return {int16_t(uint16_t(frame & 0xFFFF)), int16_t(uint16_t(frame >> 16)), buffers};
}

void AudioEngine::ArmCapture()
{
    DisarmCapture();
    m_captureRing.Clear();
    m_captureLost = 0;
    m_captureStarted = false;
    m_captureArmed = true;
}

void AudioEngine::DisarmCapture()
{
    m_captureArmed = false;
    WaitForCallbackPass();
}

bool AudioEngine::CaptureStartedAt(double& seconds) const
{
    if (!m_captureStarted.load())
        return false;
    seconds = m_captureStartedAt.load();
    return true;
}

void AudioEngine::Render(float* out, int frames, const BufferTiming& timing) noexcept
{
    m_inCallback.store(true);
    BufferTiming chunkTiming = timing;
    const double period = 1.0 / m_device->SampleRate();
    for (int done = 0; done < frames;) {
        const int n = std::min(kScratchFrames, frames - done);
        MixChunk(out + size_t(done) * 2, n, chunkTiming);
        chunkTiming.heardAt += n * period;
        chunkTiming.capturedAt += n * period;
        if (chunkTiming.input)
            chunkTiming.input += size_t(n) * 2;
        done += n;
    }
    m_callbacks.fetch_add(1);
    m_inCallback.store(false);
}

void AudioEngine::MixChunk(float* out, int frames, const BufferTiming& timing) noexcept
{
    std::fill(out, out + size_t(frames) * 2, 0.0f);
    MixSources(out, frames, timing);
    if (timing.input)
        TakeInput(out, timing.input, frames, timing.capturedAt);
    ApplyMaster(out, frames);
}

void AudioEngine::MixSources(float* out, int frames, const BufferTiming& timing) noexcept
{
    const float step = 1.0f / float(frames);
    float* synthBus = m_synthBus.data();
    bool synthPlayed = false;
    for (Slot& slot : m_slots) {
        AudioSource* source = slot.source.load();
        if (!source)
            continue;
        source->Render(m_scratch.data(), frames, timing);

        const auto bus = size_t(source->LineBus);
        const bool muted = source->Muted.load(std::memory_order_relaxed) || m_busMute[bus].load(std::memory_order_relaxed);
        const int level = source->Volume.load(std::memory_order_relaxed) + m_busVolume[bus].load(std::memory_order_relaxed);
        const auto [left, right] =
            SidesOf(muted ? 0.0f : GainOfHundredthsDb(std::max(level, -10000)), source->Balance.load(std::memory_order_relaxed));
        if (slot.last != source) {
            slot.last = source;
            slot.gainLeft = left;
            slot.gainRight = right;
        }
        // Level changes ramp over the buffer, so a fader move does not click.
        const bool synth = source->LineBus == AudioSource::Bus::Synth;
        if (synth && !synthPlayed) {
            std::fill(synthBus, synthBus + size_t(frames) * 2, 0.0f);
            synthPlayed = true;
        }
        float* into = synth ? synthBus : out;
        for (int i = 0; i < frames; ++i) {
            const float t = (i + 1) * step;
            into[2 * i] += m_scratch[2 * i] * (slot.gainLeft + (left - slot.gainLeft) * t);
            into[2 * i + 1] += m_scratch[2 * i + 1] * (slot.gainRight + (right - slot.gainRight) * t);
        }
        slot.gainLeft = left;
        slot.gainRight = right;
    }
    if (!synthPlayed)
        return;
    m_synthLimiter.Process(synthBus, frames);
    for (int i = 0; i < frames * 2; ++i)
        out[i] += synthBus[i];
}

void AudioEngine::TakeInput(float* out, const float* input, int frames, double capturedAt) noexcept
{
    const float step = 1.0f / float(frames);
    const float gain = GainOfHundredthsDb(m_inputVolume.load(std::memory_order_relaxed));
    for (int i = 0; i < frames * 2; ++i)
        m_inputScratch[size_t(i)] = input[i] * (m_inputGain + (gain - m_inputGain) * float(i / 2 + 1) * step);
    m_inputGain = gain;

    m_levelFrame.store(uint32_t(uint16_t(Pcm16(m_inputScratch[0]))) | uint32_t(uint16_t(Pcm16(m_inputScratch[1]))) << 16);
    m_levelBuffers.fetch_add(1);

    if (m_captureArmed.load()) {
        if (!m_captureStarted.load(std::memory_order_relaxed)) {
            m_captureStartedAt.store(capturedAt);
            m_captureStarted.store(true);
        }
        const size_t count = size_t(frames) * 2;
        const size_t written = m_captureRing.Write(m_inputScratch.data(), count);
        if (written < count)
            m_captureLost.fetch_add(count - written, std::memory_order_relaxed);
    }

    const float monitor = m_monitorMute.load(std::memory_order_relaxed)
                              ? 0.0f
                              : GainOfHundredthsDb(m_monitorVolume.load(std::memory_order_relaxed));
    if (monitor == 0 && m_monitor.left == 0)
        return;
    for (int i = 0; i < frames; ++i) {
        const float g = m_monitor.left + (monitor - m_monitor.left) * (i + 1) * step;
        out[2 * i] += m_inputScratch[size_t(2 * i)] * g;
        out[2 * i + 1] += m_inputScratch[size_t(2 * i + 1)] * g;
    }
    m_monitor = {monitor, monitor};
}

void AudioEngine::ApplyMaster(float* out, int frames) noexcept
{
    const int rate = m_device->SampleRate();
    if (const int bass = m_bass.load(std::memory_order_relaxed); bass != m_bassFilter.Gain())
        m_bassFilter.Tune(bass, rate);
    if (const int treble = m_treble.load(std::memory_order_relaxed); treble != m_trebleFilter.Gain())
        m_trebleFilter.Tune(treble, rate);
    m_bassFilter.Process(out, frames);
    m_trebleFilter.Process(out, frames);

    const float gain = m_masterMute.load(std::memory_order_relaxed)
                           ? 0.0f
                           : GainOfHundredthsDb(m_masterVolume.load(std::memory_order_relaxed));
    const auto [left, right] = SidesOf(gain, m_masterBalance.load(std::memory_order_relaxed));
    const float step = 1.0f / float(frames);
    for (int i = 0; i < frames; ++i) {
        const float t = (i + 1) * step;
        out[2 * i] = std::clamp(out[2 * i] * (m_master.left + (left - m_master.left) * t), -1.0f, 1.0f);
        out[2 * i + 1] = std::clamp(out[2 * i + 1] * (m_master.right + (right - m_master.right) * t), -1.0f, 1.0f);
    }
    m_master = {left, right};
}
