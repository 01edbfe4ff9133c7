#pragma once
// The state every part of the program shares, owned by the application and passed by reference.

#include "audio/AudioEngine.h"
#include "core/Language.h"
#include "core/MediaGraph.h"
#include "core/Monitors.h"
#include "core/ThemeClass.h"
#include "lyrics/LyricsData.h"
#include "tags/MP3Class.h"

#include <QString>
#include <cstdint>
#include <memory>
#include <vector>

struct AppState {
    std::unique_ptr<ThemeClass> Theme;
    LanguageTable Language;
    QString CommandLine;

    // The current song.
    QString CurrentFile;
    QString EditorFile;
    bool IsMidi = false;
    std::unique_ptr<AudioEngine> Engine;  // the one output stream; outlives every media session
    std::unique_ptr<MediaGraph> MediaControl;  // null when no audio song is loaded
    std::unique_ptr<MediaGraph> VoiceControl;  // null when no voice track plays
    std::unique_ptr<MP3Class> CurrentInfo;     // what was read of the current song
    double CurrentPosition = 0;
    double MidiDuration = 0;
    float PlaybackRate = 1.0f;
    int16_t PlayingIndex = -1;

    // Window and mode flags.
    bool KaraokeOpen = false;
    bool PlaylistOpen = false;
    bool ControlsOpen = false;
    bool EditorOpen = false;
    bool Muted = false;
    bool VoicePlaying = false;
    bool Recording = false;
    bool MicrophoneOn = false;
    bool InTray = false;
    bool LyricsRunning = false;
    int16_t HoverButton = 0;
    int16_t PreferencesTab = 0;
    QString SkinName;

    std::vector<MonitorRecord> MonitorList;
    LyricsState Lyrics;
};
