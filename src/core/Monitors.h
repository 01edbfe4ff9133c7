#pragma once
// The monitors attached at start, named the way the settings store them.

#include <QString>
#include <cstdint>
#include <vector>

struct MonitorRecord {
    QString name;  // "Monitor 1", with " (primary)" for the primary monitor
    int32_t left = 0;
    int32_t top = 0;
    int32_t right = 0;
    int32_t bottom = 0;
    bool primary = false;
};

// The screens of the running display in the platform's order; empty without a display.
std::vector<MonitorRecord> EnumerateMonitors();
