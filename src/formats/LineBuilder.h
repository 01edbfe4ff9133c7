#pragma once
// Syllables gathered line by line into the player's lyrics: each line's whole text on each of its
// syllables, its last syllable marked as the line's end, and none so marked on the song's last.

#include "formats/TimedLyrics.h"

// The lines of a text whatever its line ends: CR LF, LF or CR.
QStringList TextLines(const QString& text);

class LineBuilder {
public:
    void Add(double time, const QString& text);
    void EndLine();
    size_t Count() const { return m_items.size(); }
    // The lyrics with the header's format and timing; nothing when no syllable came.
    std::optional<TimedLyrics> Finish(TimedLyrics lyrics, const QString& formatName, bool lineTimed);

private:
    std::vector<LyricItem> m_items;
    size_t m_lineStart = 0;
};
