#pragma once
// Window positions as the settings store keeps them: whole twips (15 per logical pixel at
// 96 dpi) joined by ",".

#include <QRect>
#include <QString>
#include <optional>

class SettingsStore;

constexpr int kTwipsPerPixel = 15;

struct PlayerPosition {
    QRect geometry;
    bool playlistOpen = false;
    bool controlsOpen = false;
};

// "left,top,width,height" of a window; nothing when the value is missing or short.
std::optional<QRect> ReadWindowPosition(const SettingsStore& store, const QString& key);
void WriteWindowPosition(SettingsStore& store, const QString& key, const QRect& geometry);

// "player position": the geometry, then "1"/"0" for the playlist and the controls window.
std::optional<PlayerPosition> ReadPlayerPosition(const SettingsStore& store);
void WritePlayerPosition(SettingsStore& store, const PlayerPosition& position);

// Where the main window goes on a first run: centred across, 2820 twips below the middle.
QPoint DefaultPlayerPlace(const QRect& screen, const QSize& size);
// Where the playlist goes on a first run: right under the main window, its left edge aligned.
QPoint DefaultPlaylistPlace(const QRect& player);
// Where the MIDI window goes the first time it opens: right above the main window, or beside it
// when the main window stands at the top of the screen.
QPoint DefaultControlsPlace(const QRect& player, const QSize& size);
// Where a window opens the first time: beside the main window (left, right, above, then below)
// where it fits whole on the screen without covering it; else at the screen's top left.
QRect PlaceBeside(const QRect& player, const QSize& size, const QRect& screen);

// A window whole on the screen: cut to the screen's size when larger, moved in by the least.
QRect KeepOnScreen(const QRect& window, const QRect& screen);

// The first run: the player over the playlist, both whole on the screen, the playlist made shorter
// when the screen is low, and the pair placed where the karaoke window keeps the most room.
struct FirstRunPlaces {
    QRect player;
    QRect playlist;
};
FirstRunPlaces ArrangeFirstRun(const QRect& screen, const QSize& player, const QSize& playlist);

// The karaoke window's size when nothing is in its way.
constexpr QSize kKaraokeFirstSize(800, 450);
// Where the karaoke window opens the first time: in the largest part of the screen beside the
// windows `taken` covers, in its own proportions, as large as fits up to kKaraokeFirstSize.
QRect PlaceKaraoke(const QRect& screen, const QRect& taken);
