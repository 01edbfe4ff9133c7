#pragma once
// A bounded single-producer single-consumer ring of interleaved float samples, for sound that
// crosses threads in blocks: the device's input to the engine, the engine's capture to the
// file writer. Same ordering as SpscQueue: the producer publishes with a release store of the
// write count, the consumer hands space back with a release store of the read count. Nothing
// waits, locks or allocates after construction.

#include <algorithm>
#include <atomic>
#include <bit>
#include <cstddef>
#include <vector>

class SampleRing {
public:
    // Capacity in samples, rounded up to a power of two.
    explicit SampleRing(size_t capacity) : m_samples(std::bit_ceil(capacity)), m_mask(m_samples.size() - 1) {}

    // Producer: copies as many of `count` samples as fit; returns how many did.
    size_t Write(const float* samples, size_t count) noexcept
    {
        const size_t written = m_written.load(std::memory_order_relaxed);
        const size_t room = m_samples.size() - (written - m_read.load(std::memory_order_acquire));
        const size_t n = std::min(count, room);
        for (size_t i = 0; i < n; ++i)
            m_samples[(written + i) & m_mask] = samples[i];
        m_written.store(written + n, std::memory_order_release);
        return n;
    }

    // Consumer: copies up to `count` samples out; returns how many it did.
    size_t Read(float* samples, size_t count) noexcept
    {
        const size_t read = m_read.load(std::memory_order_relaxed);
        const size_t n = std::min(count, m_written.load(std::memory_order_acquire) - read);
        for (size_t i = 0; i < n; ++i)
            samples[i] = m_samples[(read + i) & m_mask];
        m_read.store(read + n, std::memory_order_release);
        return n;
    }

    // Consumer: drops whatever waits.
    void Clear() noexcept { m_read.store(m_written.load(std::memory_order_acquire), std::memory_order_release); }

    // Either side; a snapshot.
    size_t Available() const noexcept
    {
        return m_written.load(std::memory_order_acquire) - m_read.load(std::memory_order_acquire);
    }
    // Samples written and read since construction.
    size_t TotalWritten() const noexcept { return m_written.load(std::memory_order_acquire); }
    size_t TotalRead() const noexcept { return m_read.load(std::memory_order_acquire); }

private:
    std::vector<float> m_samples;
    const size_t m_mask;
    alignas(64) std::atomic<size_t> m_read{0};
    alignas(64) std::atomic<size_t> m_written{0};
};
