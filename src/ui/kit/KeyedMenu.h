#pragma once
// Popup menus whose items carry a key: the caption is the language text of another key, a
// click runs the item's key, and an item whose key names a submenu shows that submenu.

#include <QString>
#include <functional>
#include <vector>

class QMenu;
class QWidget;

struct MenuItem {
    const char* key;      // nullptr for a separator
    const char* caption;  // language key of the caption
};

struct MenuTexts {
    std::function<QString(const char* key)> caption;
    std::function<void(const QString& key)> run;
    std::function<QMenu*(const QString& key)> submenu;  // may be empty
};

// The caption of the item at `index` (from 0) of a numbered list: "&1 text" to "&9 text", then
// "1&0 text", then the number alone; a "&" of the text shows as itself.
QString NumberedMenuText(int index, const QString& text);

// The menu with `name` as its object name; each action holds its key as data.
QMenu* BuildKeyedMenu(QWidget* parent, const QString& name, const std::vector<MenuItem>& items, const MenuTexts& texts);

// The song's key, tempo and vocals, as the player's and the karaoke window's menus offer them.
const std::vector<MenuItem>& SoundMenuItems();
// The vocals item of such a menu shows a check while the song's vocals are off.
void CheckVocalsItem(QMenu& menu, bool vocalsOff);
