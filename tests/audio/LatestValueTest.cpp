// The song clock's mailbox: a reader on another thread never sees a record half written, and
// the heard position moves from where the buffer started, held between its floor and its end.

#include "audio/HeardClock.h"
#include "audio/LatestValue.h"

#include <atomic>
#include <chrono>
#include <gtest/gtest.h>
#include <thread>

namespace {

// Every field follows from one count, so a record mixed from two writes shows at once.
struct Stamp {
    uint64_t count = 0;
    double twice = 0;
    double negative = 0;
    int32_t low = 0;
    bool odd = false;

    static Stamp Of(uint64_t n) { return {n, 2.0 * double(n), -double(n), int32_t(n & 0x7FFFFFFF), (n & 1u) != 0}; }
    bool operator==(const Stamp&) const = default;
};

} // namespace

TEST(LatestValue, NothingIsReadBeforeTheFirstValueAndThenTheLastOne)
{
    LatestValue<Stamp> mailbox;
    EXPECT_FALSE(mailbox.Read().has_value());
    mailbox.Publish(Stamp::Of(7));
    mailbox.Publish(Stamp::Of(8));
    ASSERT_TRUE(mailbox.Read().has_value());
    EXPECT_EQ(*mailbox.Read(), Stamp::Of(8));
}

TEST(LatestValue, AReaderHammeringAWriterNeverSeesATornOrOlderValue)
{
    LatestValue<Stamp> mailbox;
    std::atomic<bool> stop{false};
    std::atomic<uint64_t> written{0};
    std::thread writer([&] {
        uint64_t n = 0;
        while (!stop.load(std::memory_order_relaxed))
            mailbox.Publish(Stamp::Of(++n));
        written = n;
    });
    // The reader goes on until it has seen the writer move a hundred thousand times, however the
    // two threads are scheduled.
    uint64_t reads = 0, torn = 0, backwards = 0, last = 0, distinct = 0;
    while (distinct < 100'000) {
        const auto value = mailbox.Read();
        if (!value)
            continue;
        ++reads;
        torn += *value == Stamp::Of(value->count) ? 0 : 1;
        backwards += value->count < last ? 1 : 0;
        distinct += value->count != last ? 1 : 0;
        last = value->count;
    }
    stop = true;
    writer.join();
    EXPECT_EQ(torn, 0u) << "in " << reads << " reads";
    EXPECT_EQ(backwards, 0u);
    EXPECT_EQ(*mailbox.Read(), Stamp::Of(written));
}

TEST(HeardClock, ThePositionMovesAtItsRateBetweenTheFloorAndTheEnd)
{
    HeardClock clock;
    clock.floor = 10.0;
    clock.start = 10.0;
    clock.end = 10.5;
    clock.heardAt = 100.0;
    clock.rate = 1.0;
    EXPECT_DOUBLE_EQ(clock.PositionAt(100.25), 10.25);
    EXPECT_DOUBLE_EQ(clock.PositionAt(99.0), 10.0) << "before the buffer is heard, the floor";
    EXPECT_DOUBLE_EQ(clock.PositionAt(101.0), 10.5) << "not past what was played";
    clock.rate = 2.0;
    EXPECT_NEAR(clock.PositionAt(100.1), 10.2, 1e-9);
    clock.rate = 0.0;
    EXPECT_DOUBLE_EQ(clock.PositionAt(105.0), 10.0) << "paused";
    clock.floor = 12.0;
    EXPECT_DOUBLE_EQ(clock.PositionAt(100.25), 12.0) << "a seek's target holds until its sound is heard";
}
