#pragma once
// When does the buffer a device asks for reach the listener? PortAudio hands over the DAC time
// of each buffer, but on some systems it is 0, stuck, a buffer off, in the wrong unit, or
// (PulseAudio) the latency is overstated. Each timestamp is checked against the buffer period
// and a plausible latency; a failing one is replaced by the CPU clock plus the reported
// latency. Plausible ones are smoothed against the steady advance of the buffer period, so the
// position read between callbacks does not jitter with the callback's wake-up time.

class DacClock {
public:
    // reportedLatency: what the device said when the stream opened, in seconds.
    DacClock(int sampleRate, double reportedLatency);

    // Steady-clock seconds at which frame 0 of this buffer is heard. cpuNow is the steady clock at
    // callback entry; streamNow and dacTime are the device's timestamps of the same moment.
    double HeardAt(double cpuNow, double streamNow, double dacTime, int frames);

    // True while the device's own timestamps are trusted.
    bool UsesDeviceTimestamps() const { return m_trusted; }

    static constexpr double kMaxLatency = 0.5;

private:
    bool Plausible(double streamNow, double dacTime) const;

    const int m_sampleRate;
    const double m_fallbackLatency;
    double m_expected = -1;  // the previous buffer's heard time plus its length
    double m_lastDac = -1;
    double m_lastPeriod = 0;
    bool m_trusted = true;
};
