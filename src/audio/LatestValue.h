#pragma once
// The latest value of a small record, published by one thread and read by any other without a
// lock: a sequence lock over a trivially copyable type.
//
// Memory ordering: the writer makes the sequence odd with a relaxed store, a release fence keeps
// that store before the record's words, the words are stored relaxed, and a release store makes
// the sequence even again. A reader loads the sequence with acquire, loads the words relaxed,
// and an acquire fence keeps those loads before a second, relaxed load of the sequence; an odd
// sequence or one that changed means a write overlapped the read, and the reader reads again.
// The words are atomics, so an overlapped read is a retried read, never a data race. The writer
// never waits; a reader waits only while the few stores of one write are under way.

#include <array>
#include <atomic>
#include <cstdint>
#include <cstring>
#include <optional>
#include <type_traits>

template <typename T>
class LatestValue {
    static_assert(std::is_trivially_copyable_v<T>, "the record is copied word by word");
    static constexpr size_t kWords = (sizeof(T) + sizeof(uint64_t) - 1) / sizeof(uint64_t);
    using Words = std::array<uint64_t, kWords>;

public:
    // For the one writer only.
    void Publish(const T& value) noexcept
    {
        Words words{};
        std::memcpy(words.data(), &value, sizeof(T));
        const uint32_t sequence = m_sequence.load(std::memory_order_relaxed);
        m_sequence.store(sequence + 1, std::memory_order_relaxed);
        std::atomic_thread_fence(std::memory_order_release);
        for (size_t i = 0; i < kWords; ++i)
            m_words[i].store(words[i], std::memory_order_relaxed);
        m_sequence.store(sequence + 2, std::memory_order_release);
    }

    // For any reader: the value last published whole; nothing before the first.
    std::optional<T> Read() const noexcept
    {
        for (;;) {
            const uint32_t before = m_sequence.load(std::memory_order_acquire);
            if (before & 1u)
                continue;
            Words words;
            for (size_t i = 0; i < kWords; ++i)
                words[i] = m_words[i].load(std::memory_order_relaxed);
            std::atomic_thread_fence(std::memory_order_acquire);
            if (m_sequence.load(std::memory_order_relaxed) != before)
                continue;
            if (before == 0)
                return std::nullopt;
            T value;
            std::memcpy(static_cast<void*>(&value), words.data(), sizeof(T));
            return value;
        }
    }

private:
    std::atomic<uint32_t> m_sequence{0};
    std::array<std::atomic<uint64_t>, kWords> m_words{};
};
