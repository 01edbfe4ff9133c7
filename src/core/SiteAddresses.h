#pragma once
// The web pages the program opens: the tutorial, the version check, the project's page and its
// feedback address. Each is kept under its own setting, which may move it; the built-in address
// serves while the setting is empty.

#include <QString>

class SettingsStore;

// "tutorial.php": on the product's Polish site for a Polish user ("tutorial address pl"), on
// the maker's site for everyone else ("tutorial address").
QString TutorialAddress(const SettingsStore& store, bool polish);
QString VersionAddress(const SettingsStore& store);   // "version address"
QString HomepageAddress(const SettingsStore& store);  // "homepage address"
QString FeedbackAddress(const SettingsStore& store);  // "feedback address", a mailto: link
