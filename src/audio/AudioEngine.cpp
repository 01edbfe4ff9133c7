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

AudioEngine::AudioEngine(std::unique_ptr<AudioDevice> device)
    : m_device(std::move(device)), m_scratch(size_t(kScratchFrames) * 2)
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
    // The callback marks itself busy before it reads the slots (both sequentially consistent),
    // so when it is not busy now it cannot hold the source; when it is, one pass ends its hold.
    if (m_inCallback.load()) {
        const unsigned seen = m_callbacks.load();
        while (m_inCallback.load() && m_callbacks.load() == seen)
            std::this_thread::yield();
    }
    std::erase_if(m_owned, [source](const auto& owned) { return owned.get() == source; });
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
        done += n;
    }
    m_callbacks.fetch_add(1);
    m_inCallback.store(false);
}

void AudioEngine::MixChunk(float* out, int frames, const BufferTiming& timing) noexcept
{
    std::fill(out, out + size_t(frames) * 2, 0.0f);
    const float step = 1.0f / float(frames);
    for (Slot& slot : m_slots) {
        AudioSource* source = slot.source.load();
        if (!source)
            continue;
        source->Render(m_scratch.data(), frames, timing);

        const int balance = source->Balance.load(std::memory_order_relaxed);
        const float gain = source->Muted.load(std::memory_order_relaxed)
                               ? 0.0f
                               : GainOfHundredthsDb(source->Volume.load(std::memory_order_relaxed));
        const float left = gain * (balance > 0 ? GainOfHundredthsDb(-balance) : 1.0f);
        const float right = gain * (balance < 0 ? GainOfHundredthsDb(balance) : 1.0f);
        if (slot.last != source) {
            slot.last = source;
            slot.gainLeft = left;
            slot.gainRight = right;
        }
        // Level changes ramp over the buffer, so a fader move does not click.
        for (int i = 0; i < frames; ++i) {
            const float t = (i + 1) * step;
            out[2 * i] += m_scratch[2 * i] * (slot.gainLeft + (left - slot.gainLeft) * t);
            out[2 * i + 1] += m_scratch[2 * i + 1] * (slot.gainRight + (right - slot.gainRight) * t);
        }
        slot.gainLeft = left;
        slot.gainRight = right;
    }

    const float master = m_masterMute.load(std::memory_order_relaxed)
                             ? 0.0f
                             : GainOfHundredthsDb(m_masterVolume.load(std::memory_order_relaxed));
    for (int i = 0; i < frames; ++i) {
        const float g = m_masterGain + (master - m_masterGain) * (i + 1) * step;
        out[2 * i] = std::clamp(out[2 * i] * g, -1.0f, 1.0f);
        out[2 * i + 1] = std::clamp(out[2 * i + 1] * g, -1.0f, 1.0f);
    }
    m_masterGain = master;
}
