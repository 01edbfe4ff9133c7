#pragma once
// The verses of the MIDI song that plays, for the windows that let the singer choose one: a
// file with a words track per verse sings them all at the same times.

#include <QString>
#include <functional>

class LanguageTable;
class QMenu;
struct MidiFigures;

// The verse shown, as "Verse 2" or its track's name; empty when the song has no verses.
QString ShownVerseName(const MidiFigures& midi, const LanguageTable& language);
// Fills `menu` with the verses, numbered, the one shown checked; each runs "Verse<track>".
void FillVerseMenu(QMenu& menu, const MidiFigures& midi, const LanguageTable& language,
                   const std::function<void(const QString& key)>& run);
