#pragma once
// Where the parts of the MIDI window stand, in logical pixels. The window is as wide as the main
// window, so the two dock edge to edge.

#include "midi/MidiKnobs.h"

#include <QPointF>
#include <QRectF>

namespace MidiEqLayout {

constexpr int kWidth = 360;
constexpr int kHeight = 178;
constexpr int kChannels = 16;

// The caption row: the switch between the two faces and the close button.
constexpr QRectF kSwitcher{275, 4, 54, 15};
constexpr QPointF kClose{342, 11};

// The left face: 16 strips, 15 pixels each, and the display naming the strip under the mouse.
constexpr QRectF kStripWell{8, 24, 248, 132};
constexpr QRectF kStripDisplay{8, 159, 248, 14};
// In the display's right end, when the song has verses: the one shown, to choose another.
constexpr QRectF kVerseBox{170, 159, 86, 14};
constexpr double kStripLeft = 12;
constexpr double kStripWidth = 15;
constexpr double kMuteY = 44;
constexpr double kFaderTop = 54;
constexpr double kFaderBottom = 132;
constexpr double kPanY = 145;

inline double StripCentre(int channel) { return kStripLeft + kStripWidth * channel + kStripWidth / 2; }
inline QRectF StripBox(int channel) { return {kStripLeft + kStripWidth * channel, kStripWell.top(), kStripWidth, kStripWell.height()}; }
inline QRectF MuteBox(int channel) { return {kStripLeft + kStripWidth * channel, kMuteY - 6, kStripWidth, 12}; }
inline QRectF FaderBox(int channel) { return {kStripLeft + kStripWidth * channel, kFaderTop - 4, kStripWidth, kFaderBottom - kFaderTop + 8}; }
inline QRectF PanBox(int channel) { return {kStripLeft + kStripWidth * channel, kPanY - 8, kStripWidth, 16}; }

// The right panel: the transpose and tempo knobs, whose tops travel from 86 to 150.
constexpr QRectF kKnobWell{262, 24, 90, 149};
constexpr double kToneX = 284;
constexpr double kTempoX = 330;
constexpr double kKnobTravelTop = kKnobTop;
constexpr double kKnobTravelBottom = kKnobBottom;
constexpr double kKnobHeight = 10;
constexpr double kKnobWidth = 22;
inline QRectF KnobTrack(double x) { return {x - kKnobWidth / 2, kKnobTravelTop, kKnobWidth, kKnobTravelBottom - kKnobTravelTop + kKnobHeight}; }

// The equaliser face: the bass, treble and whole-song balance knobs, the vocals switch, the
// microphone's switch and level bar, and the voice's fader.
constexpr double kEqKnobY = 86;
constexpr double kEqKnobRadius = 19;
constexpr QPointF kBassKnob{42, kEqKnobY};
constexpr QPointF kTrebleKnob{100, kEqKnobY};
constexpr QPointF kBalanceKnob{158, kEqKnobY};
constexpr QRectF kMicSwitch{197, 32, 54, 16};
// Under the bass and treble knobs: the song's vocals taken out.
constexpr QRectF kVocalsSwitch{22, 154, 98, 15};
constexpr QRectF kLevelBar{203, 62, 8, 63};
constexpr double kVoiceFaderX = 238;
constexpr double kVoiceFaderTop = 62;
constexpr double kVoiceFaderBottom = 125;
// The voice fader's values, 0 (loudest) at the top.
constexpr int kVoiceFaderMax = 91;
inline QRectF KnobBox(QPointF centre) { return {centre.x() - kEqKnobRadius - 6, centre.y() - kEqKnobRadius - 6, 2 * kEqKnobRadius + 12, 2 * kEqKnobRadius + 12}; }
inline QRectF VoiceFaderBox() { return {kVoiceFaderX - 9, kVoiceFaderTop - 6, 18, kVoiceFaderBottom - kVoiceFaderTop + 12}; }

} // namespace MidiEqLayout
