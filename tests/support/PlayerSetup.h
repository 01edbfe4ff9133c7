#pragma once
// The state a player starts a test with: English texts, the default settings and, where sound
// is wanted, an engine on a device the test advances by hand.

#include "audio/AudioEngine.h"
#include "audio/ManualDevice.h"
#include "core/ThemeClass.h"
#include "playback/MediaSession.h"
#include "playback/PlayerState.h"

#include <chrono>
#include <memory>
#include <thread>

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

// Plays `seconds` of an audio song on the manual device in 10 ms steps, each once the decoder has
// the step's audio ready (or a second has passed, at the end of the file), so a busy machine
// plays alike.
inline void PlayDecoded(ManualDevice& device, PlayerState& state, double seconds)
{
    auto session = [&state] { return dynamic_cast<MediaSession*>(state.Session.get()); };
    const int rate = device.SampleRate();
    for (int i = 0; i < int(seconds * 100 + 0.5); ++i) {
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(1);
        while (session() && session()->GetState() == SongSession::Running && session()->SecondsBuffered() < 0.01
               && std::chrono::steady_clock::now() < deadline)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        device.Step(rate / 100, rate / 100);
    }
}
