#pragma once
// A bounded single-producer single-consumer queue of small values.
//
// Memory ordering: the producer writes the slot, then publishes it with a release store of
// m_tail; the consumer's acquire load of m_tail makes the slot visible before it reads it.
// The same pair on m_head hands a slot back to the producer. Each index is written by one
// side only, so no operation waits, locks or allocates after construction.

#include <atomic>
#include <bit>
#include <cstddef>
#include <vector>

template <typename T>
class SpscQueue {
public:
    // Capacity is rounded up to a power of two.
    explicit SpscQueue(size_t capacity) : m_slots(std::bit_ceil(capacity)), m_mask(m_slots.size() - 1) {}

    // For the producer only.
    bool Push(const T& value) noexcept
    {
        const size_t tail = m_tail.load(std::memory_order_relaxed);
        if (tail - m_head.load(std::memory_order_acquire) == m_slots.size())
            return false;
        m_slots[tail & m_mask] = value;
        m_tail.store(tail + 1, std::memory_order_release);
        return true;
    }

    // For the consumer only.
    bool Front(T& value) const noexcept
    {
        const size_t head = m_head.load(std::memory_order_relaxed);
        if (head == m_tail.load(std::memory_order_acquire))
            return false;
        value = m_slots[head & m_mask];
        return true;
    }
    void PopFront() noexcept { m_head.store(m_head.load(std::memory_order_relaxed) + 1, std::memory_order_release); }
    bool Pop(T& value) noexcept
    {
        if (!Front(value))
            return false;
        PopFront();
        return true;
    }

    // Either side; a snapshot that may be stale by the time it is used.
    size_t Size() const noexcept
    {
        return m_tail.load(std::memory_order_acquire) - m_head.load(std::memory_order_acquire);
    }

private:
    std::vector<T> m_slots;
    const size_t m_mask;
    alignas(64) std::atomic<size_t> m_head{0};
    alignas(64) std::atomic<size_t> m_tail{0};
};
