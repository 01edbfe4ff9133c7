#pragma once
// What the benchmarks share: settings that start from the defaults and keep nothing, and a song
// position the benchmark sets.

#include "core/SettingsStore.h"
#include "karaoke/KaraokeTimeline.h"

class MemorySettings final : public SettingsStore {
public:
    QString RegReadString(const QString&) const override { return {}; }
    void RegWriteString(const QString&, const QString&) override {}
};

class FixedClock final : public SongPosition {
public:
    bool HasSong() const override { return true; }
    double Position() const override { return now; }
    double now = 0;
};
