#include "core/KeyTable.h"

#include <array>

namespace {

constexpr Qt::KeyboardModifiers kNone = Qt::NoModifier;
constexpr Qt::KeyboardModifiers kCtrl = Qt::ControlModifier;
constexpr Qt::KeyboardModifiers kAlt = Qt::AltModifier;
constexpr Qt::KeyboardModifiers kShift = Qt::ShiftModifier;
constexpr Qt::KeyboardModifiers kKeypad = Qt::KeypadModifier;

using W = KeyWindow;
using C = KeyCommand;

constexpr std::array kKeys = {
    KeyBinding{W::Player, Qt::Key_Z, kNone, C::Previous, "Z", "ShortPrevious"},
    KeyBinding{W::Player, Qt::Key_X, kNone, C::Play, "X", "ShortPlay"},
    KeyBinding{W::Player, Qt::Key_C, kNone, C::Pause, "C", "ShortPause"},
    KeyBinding{W::Player, Qt::Key_V, kNone, C::Stop, "V", "ShortStop"},
    KeyBinding{W::Player, Qt::Key_B, kNone, C::Next, "B", "ShortNext"},
    KeyBinding{W::Player, Qt::Key_O, kCtrl, C::OpenFile, "Ctrl+O", "ShortOpenFile"},
    KeyBinding{W::Player, Qt::Key_L, kAlt, C::Playlist, "Alt+L", "ShortList"},
    KeyBinding{W::Player, Qt::Key_K, kCtrl, C::Karaoke, "Ctrl+K", "ShortKaraoke"},
    KeyBinding{W::Player, Qt::Key_E, kCtrl, C::Editor, "Ctrl+E", "ShortEditor"},
    KeyBinding{W::Player, Qt::Key_R, kNone, C::Record, "R", "ShortRecord"},
    KeyBinding{W::Player, Qt::Key_M, kNone, C::Microphone, "M", "ShortMicrophone"},
    KeyBinding{W::Player, Qt::Key_S, kNone, C::Voice, "S", "ShortVoice"},
    KeyBinding{W::Player, Qt::Key_3, kAlt, C::FileInfo, "Alt+3", "ShortFileInfo"},
    KeyBinding{W::Player, Qt::Key_T, kCtrl, C::TimeMode, "Ctrl+T", "ShortTimeMode"},
    KeyBinding{W::Player, Qt::Key_P, kCtrl, C::Preferences, "Ctrl+P", "ShortPreferences"},
    KeyBinding{W::Player, Qt::Key_F, kCtrl, C::Library, "Ctrl+F", "ShortLibrary"},
    KeyBinding{W::Player, Qt::Key_U, kCtrl, C::Singers, "Ctrl+U", "ShortSingers"},
    KeyBinding{W::Player, Qt::Key_Up, kAlt, C::KeyUp, "Alt+Up", "ShortKeyUp"},
    KeyBinding{W::Player, Qt::Key_Down, kAlt, C::KeyDown, "Alt+Down", "ShortKeyDown"},
    KeyBinding{W::Player, Qt::Key_Right, kAlt, C::TempoUp, "Alt+Right", "ShortTempoUp"},
    KeyBinding{W::Player, Qt::Key_Left, kAlt, C::TempoDown, "Alt+Left", "ShortTempoDown"},
    KeyBinding{W::Player, Qt::Key_Home, kAlt, C::OwnSound, "Alt+Home", "ShortOwnSound"},
    KeyBinding{W::Player, Qt::Key_End, kAlt, C::VocalsOff, "Alt+End", "ShortVocalsOff"},

    KeyBinding{W::Playlist, Qt::Key_3, kAlt, C::FileInfo, "Alt+3", nullptr},
    KeyBinding{W::Playlist, Qt::Key_Delete, kNone, C::RemoveRows, "Delete", nullptr},
    KeyBinding{W::Playlist, Qt::Key_Z, kNone, C::Previous, "Z", nullptr},
    KeyBinding{W::Playlist, Qt::Key_X, kNone, C::Play, "X", nullptr},
    KeyBinding{W::Playlist, Qt::Key_C, kNone, C::Pause, "C", nullptr},
    KeyBinding{W::Playlist, Qt::Key_V, kNone, C::Stop, "V", nullptr},
    KeyBinding{W::Playlist, Qt::Key_B, kNone, C::Next, "B", nullptr},
    KeyBinding{W::Playlist, Qt::Key_Up, kAlt, C::KeyUp, "Alt+Up", nullptr},
    KeyBinding{W::Playlist, Qt::Key_Down, kAlt, C::KeyDown, "Alt+Down", nullptr},
    KeyBinding{W::Playlist, Qt::Key_Right, kAlt, C::TempoUp, "Alt+Right", nullptr},
    KeyBinding{W::Playlist, Qt::Key_Left, kAlt, C::TempoDown, "Alt+Left", nullptr},
    KeyBinding{W::Playlist, Qt::Key_Home, kAlt, C::OwnSound, "Alt+Home", nullptr},
    KeyBinding{W::Playlist, Qt::Key_End, kAlt, C::VocalsOff, "Alt+End", nullptr},

    KeyBinding{W::Editor, Qt::Key_Space, kNone, C::Capture, "Space", "ShortCapture"},
    KeyBinding{W::Editor, Qt::Key_Plus, kKeypad, C::CorrectUp, "Num +", "ShortCorrect+"},
    KeyBinding{W::Editor, Qt::Key_Minus, kKeypad, C::CorrectDown, "Num -", "ShortCorrect-"},
    KeyBinding{W::Editor, Qt::Key_Insert, kNone, C::InsertRow, "Insert", "ShortInsert"},
    KeyBinding{W::Editor, Qt::Key_F12, kNone, C::AddRow, "F12", "ShortAddNew"},
    KeyBinding{W::Editor, Qt::Key_Delete, kNone, C::RemoveRows, "Delete", "ShortRemove"},
    KeyBinding{W::Editor, Qt::Key_Return, kNone, C::EditText, "Enter", nullptr},
    KeyBinding{W::Editor, Qt::Key_Enter, kNone, C::EditText, "Enter", nullptr},
    KeyBinding{W::Editor, Qt::Key_C, kCtrl, C::CopyRows, "Ctrl+C", nullptr},
    KeyBinding{W::Editor, Qt::Key_V, kCtrl, C::PasteRows, "Ctrl+V", nullptr},
    KeyBinding{W::Editor, Qt::Key_X, kCtrl, C::CutRows, "Ctrl+X", nullptr},
    KeyBinding{W::Editor, Qt::Key_A, kCtrl, C::SelectAll, "Ctrl+A", nullptr},
    KeyBinding{W::Editor, Qt::Key_N, kCtrl, C::NewLyrics, "Ctrl+N", "ShortNew"},
    KeyBinding{W::Editor, Qt::Key_O, kCtrl, C::OpenSong, "Ctrl+O", "ShortOpenSong"},
    KeyBinding{W::Editor, Qt::Key_L, kCtrl, C::OpenLyrics, "Ctrl+L", "ShortOpenLyrics"},
    KeyBinding{W::Editor, Qt::Key_S, kCtrl | kShift, C::SaveLyricsAs, "Ctrl+Shift+S", "ShortSaveAs"},
    KeyBinding{W::Editor, Qt::Key_S, kCtrl, C::SaveLyrics, "Ctrl+S", "ShortSave"},
    KeyBinding{W::Editor, Qt::Key_P, kCtrl, C::PrintLyrics, "Ctrl+P", "ShortPrint"},
    KeyBinding{W::Editor, Qt::Key_F1, kNone, C::Help, "F1", "ShortHelp"},
    KeyBinding{W::Editor, Qt::Key_Z, kCtrl | kShift, C::Redo, "Ctrl+Shift+Z", nullptr},
    KeyBinding{W::Editor, Qt::Key_Z, kCtrl, C::Undo, "Ctrl+Z", "ShortUndo"},
    KeyBinding{W::Editor, Qt::Key_Y, kCtrl, C::Redo, "Ctrl+Y", "ShortRedo"},
    KeyBinding{W::Editor, Qt::Key_F6, kNone, C::SpeedHalf, "F6", "ShortSpeed50"},
    KeyBinding{W::Editor, Qt::Key_F7, kNone, C::SpeedThreeQuarters, "F7", "ShortSpeed75"},
    KeyBinding{W::Editor, Qt::Key_F8, kNone, C::SpeedFull, "F8", "ShortSpeed100"},

    KeyBinding{W::Karaoke, 0, kNone, C::FullScreen, nullptr, "ShortFullscreen"},
    KeyBinding{W::Karaoke, Qt::Key_Up, kAlt, C::KeyUp, "Alt+Up", nullptr},
    KeyBinding{W::Karaoke, Qt::Key_Down, kAlt, C::KeyDown, "Alt+Down", nullptr},
    KeyBinding{W::Karaoke, Qt::Key_Right, kAlt, C::TempoUp, "Alt+Right", nullptr},
    KeyBinding{W::Karaoke, Qt::Key_Left, kAlt, C::TempoDown, "Alt+Left", nullptr},
    KeyBinding{W::Karaoke, Qt::Key_Home, kAlt, C::OwnSound, "Alt+Home", nullptr},
    KeyBinding{W::Karaoke, Qt::Key_End, kAlt, C::VocalsOff, "Alt+End", nullptr},
};

} // namespace

std::span<const KeyBinding> KeyTable()
{
    return kKeys;
}

const KeyBinding* FindKey(KeyWindow window, int key, Qt::KeyboardModifiers modifiers)
{
    for (const KeyBinding& binding : kKeys)
        if (binding.window == window && binding.key != 0 && binding.key == key
            && (modifiers & binding.modifiers) == binding.modifiers)
            return &binding;
    return nullptr;
}

const char* KeyWindowText(KeyWindow window)
{
    switch (window) {
    case KeyWindow::Player:
        return "PlayerFrame";
    case KeyWindow::Editor:
        return "EditorFrame";
    case KeyWindow::Karaoke:
        return "KaraokeFrame";
    case KeyWindow::Playlist:
        break;
    }
    return nullptr;
}
