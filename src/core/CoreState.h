#pragma once
// What every part of the program reads: the settings, the language, the monitors, and the
// window and mode flags.

#include "core/Language.h"
#include "core/Monitors.h"
#include "core/RecentFiles.h"
#include "core/ThemeClass.h"

#include <QString>
#include <cstdint>
#include <memory>
#include <vector>

struct CoreState {
    std::unique_ptr<ThemeClass> Theme;
    LanguageTable Language;
    QString CommandLine;
    std::vector<MonitorRecord> MonitorList;

    bool KaraokeOpen = false;
    bool PlaylistOpen = false;
    bool ControlsOpen = false;
    bool EditorOpen = false;
    bool Muted = false;
    bool VoicePlaying = false;
    bool Recording = false;
    bool MicrophoneOn = false;
    bool VocalsOff = false;  // the song that plays has its vocals taken out
    bool InTray = false;
    bool LyricsRunning = false;
    int16_t HoverButton = 0;
    int16_t PreferencesTab = 0;
    QString SkinName;
    RecentFiles Recent;
};
