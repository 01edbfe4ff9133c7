#pragma once
// Every key the program answers, in one table: the window it works in, the key with the
// modifiers it needs, the command it runs and the text the preferences list it under. The
// handlers look keys up here and the preferences list the same rows, so the two cannot differ.

#include <QString>
#include <Qt>
#include <span>

enum class KeyWindow { Player, Playlist, Editor, Karaoke };

enum class KeyCommand {
    Previous,
    Play,
    Pause,
    Stop,
    Next,
    OpenFile,
    FileInfo,
    Playlist,
    Karaoke,
    Editor,
    Record,
    Microphone,
    Voice,
    TimeMode,
    Preferences,
    RemoveRows,
    Capture,
    CorrectUp,
    CorrectDown,
    InsertRow,
    AddRow,
    EditText,
    CopyRows,
    PasteRows,
    CutRows,
    SelectAll,
    NewLyrics,
    OpenSong,
    OpenLyrics,
    SaveLyrics,
    SaveLyricsAs,
    PrintLyrics,
    Help,
    FullScreen,
    KeyUp,
    KeyDown,
    TempoUp,
    TempoDown,
    OwnSound,
    VocalsOff,
    Undo,
    Redo,
    SpeedHalf,
    SpeedThreeQuarters,
    SpeedFull,
    Library,
    Singers,
};

struct KeyBinding {
    KeyWindow window;
    int key;                          // 0 for a command reached by the mouse alone
    Qt::KeyboardModifiers modifiers;  // all must be held; a key without them fires whatever is held
    KeyCommand command;
    const char* label;   // the key as the preferences show it
    const char* action;  // the language key of what it does; null for rows the list leaves out
};

std::span<const KeyBinding> KeyTable();

// The first row of `window` that `key` with `modifiers` held matches; null when none does.
const KeyBinding* FindKey(KeyWindow window, int key, Qt::KeyboardModifiers modifiers);

// The language key of a window's section in the preferences' list; null for the playlist, whose
// keys are the player's own and are not listed again.
const char* KeyWindowText(KeyWindow window);
