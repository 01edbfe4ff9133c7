#pragma once
// The rules of the lyrics details dialog, apart from its controls: what it shows of a song's
// header and pictures, and what accepting writes back, in the order that matters.

#include "lyrics/LyricsData.h"

#include <array>

class ThemeClass;

// The seven colours in the order of the header's colour fields: text, highlight, outlines 1 to
// 4, background.
constexpr int kDetailsColors = 7;

// The dialog's working copy: the header as opened, the colours as shown, the pictures as listed.
struct DetailsChoice {
    LyricItem Header;
    std::array<int32_t, kDetailsColors> Colors{};  // Win32 colour numbers, never -1
    std::vector<PictureItem> Pictures;              // the rows of the list, element 0 unused
};

// The settings' colours in the header's order.
std::array<int32_t, kDetailsColors> SettingColors(const ThemeClass& theme);

// The dialog filled from a header and its pictures; a colour of -1 shows the setting.
DetailsChoice DetailsOf(const LyricItem& header, const std::vector<PictureItem>& pictures, const ThemeClass& theme);

// Accepting: colours equal to the settings become -1, so they keep following the settings;
// alignment and layout change only when an option is set (the copy holds -1 otherwise); then
// names, image placing and pictures.
void AcceptDetails(const DetailsChoice& choice, const ThemeClass& theme, LyricItem& header,
                   std::vector<PictureItem>& pictures);

// "Clear": no artist, title, picture or timed pictures, and the settings' colours.
void ClearDetails(DetailsChoice& choice, const ThemeClass& theme);

// The image placing of the settings, for a song that has no timed pictures.
void DefaultImagePlacing(DetailsChoice& choice, const ThemeClass& theme);

// A whole number of seconds as "mm:ss".
QString PictureTimeText(int32_t seconds);

// With the aspect kept: the other side when one side goes from `before` to `after`.
int KeptAspect(int before, int after, int otherBefore);

// The editor's pictures onto the display, their names taken from the song's folder as a loaded
// song's are; the header has gone with the rows.
void ShowPicturesOnDisplay(LyricsState& lyrics, const QString& songFolder);
