#pragma once
// A run without a person in front of it (make run on a machine without a display): after a
// few seconds the visible windows and the screen are saved as PNG files, then the program
// closes the orderly way.
//   SONGWEAVER_CAPTURE_DIR  folder for the pictures
//   SONGWEAVER_RUN_SECONDS  how long the run lasts (default 5); the pictures are taken halfway
//   SONGWEAVER_KEYS         keys and buttons pressed on the main window at given seconds, as
//                           "1:M 2:R 6:R 7:#13 8:^F" (a letter is a key, "^" before it holds
//                           Ctrl, "#N" is button N)

#include <Qt>
#include <functional>

class LyricWindow;
struct LyricsState;

// Arms the run when SONGWEAVER_CAPTURE_DIR is set; close is the program's way out.
void ArmHeadlessRun(std::function<void()> close);
// Presses the keys of SONGWEAVER_KEYS in such a run: `key` takes a Qt key, `button` a button.
void ArmScriptedKeys(std::function<void(int, Qt::KeyboardModifiers)> key, std::function<void(int)> button);
// In such a run, prints each syllable as the karaoke window lights it, with the song position.
void LogLitSyllables(LyricWindow& window, const LyricsState& lyrics);
