#pragma once
// The state a player starts a test with: English texts, the default settings and, where sound
// is wanted, an engine on a device the test advances by hand.

#include "audio/AudioEngine.h"
#include "audio/ManualDevice.h"
#include "core/ThemeClass.h"
#include "playback/PlayerState.h"

#include <memory>

inline void LoadDefaults(PlayerState& state, SettingsStore& store)
{
    state.Language.LoadTable(false);
    state.Theme = std::make_unique<ThemeClass>(store, ThemeEnvironment{}, state.MonitorList);
}

// The engine's device, owned by the engine.
inline ManualDevice& StartManualEngine(PlayerState& state, int sampleRate = 48000)
{
    auto device = std::make_unique<ManualDevice>(sampleRate);
    ManualDevice& kept = *device;
    state.Engine = std::make_unique<AudioEngine>(std::move(device));
    state.Engine->Start();
    return kept;
}
