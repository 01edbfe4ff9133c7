#pragma once
// What the benchmarks share: settings that start from the defaults and keep nothing, and a song
// position the benchmark sets.

#include "core/SettingsStore.h"
#include "core/SongClock.h"

#include <QElapsedTimer>
#include <algorithm>
#include <atomic>
#include <chrono>
#include <thread>
#include <cstddef>
#include <sys/resource.h>

class MemorySettings final : public SettingsStore {
public:
    QString RegReadString(const QString&) const override { return {}; }
    void RegWriteString(const QString&, const QString&) override {}
};

class FixedClock final : public SongClock {
public:
    bool HasSong() const override { return true; }
    double Position() const override { return now; }
    double now = 0;
};

// The machine's own stalls: gaps over 1 ms between two reads of the clock in a loop that does
// nothing else. On a shared virtual machine this is the floor under every "worst" figure.
struct MachineStalls {
    std::size_t count = 0;
    double longestMs = 0;
};
inline MachineStalls MeasureMachineStalls(int milliseconds)
{
    QElapsedTimer run;
    run.start();
    qint64 last = run.nsecsElapsed();
    MachineStalls stalls;
    while (run.elapsed() < milliseconds) {
        const qint64 now = run.nsecsElapsed();
        if (now - last > 1000000) {
            ++stalls.count;
            stalls.longestMs = std::max(stalls.longestMs, double(now - last) / 1e6);
        }
        last = now;
    }
    return stalls;
}

// The machine's stalls without taking a core: a thread that sleeps a millisecond at a time and
// notes how late it wakes. For runs that need both cores, where a spinning probe would itself
// be the stall.
class SleepingProbe {
public:
    SleepingProbe()
        : m_thread([this] {
              QElapsedTimer clock;
              clock.start();
              while (m_probing.load()) {
                  const qint64 before = clock.nsecsElapsed();
                  std::this_thread::sleep_for(std::chrono::milliseconds(1));
                  const double late = double(clock.nsecsElapsed() - before) / 1e6 - 1;
                  if (late > 1) {
                      ++m_stalls.count;
                      m_stalls.longestMs = std::max(m_stalls.longestMs, late);
                  }
              }
          })
    {
    }
    // Late wakes over 1 ms and the latest, once the probe stopped.
    MachineStalls Stop()
    {
        m_probing = false;
        if (m_thread.joinable())
            m_thread.join();
        return m_stalls;
    }
    ~SleepingProbe() { Stop(); }

private:
    std::atomic<bool> m_probing{true};
    MachineStalls m_stalls;
    std::thread m_thread;
};

// Seconds of CPU, user and system, of a usage report.
inline double CpuSeconds(const rusage& usage)
{
    return double(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
           double(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
}
// Seconds of CPU this process (RUSAGE_SELF), or its waited-for children, have taken so far.
inline double CpuSeconds(int who = RUSAGE_SELF)
{
    rusage usage{};
    getrusage(who, &usage);
    return CpuSeconds(usage);
}
