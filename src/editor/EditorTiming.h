#pragma once
// The timing side of the editor: a tap stamps the selected row with the moment it is sung and
// moves on to the next, a held key corrects one stamp by growing steps, and what changes shows
// on the karaoke display at once when the lyrics belong to the song that plays.

#include "core/SongClock.h"
#include "editor/EditorDocument.h"

#include <functional>

class EditorTiming {
public:
    // `editsSongThatPlays`: the lyrics in the editor are those of the song that plays.
    EditorTiming(EditorDocument& document, LyricsState& lyrics, const SongClock& song,
                 std::function<bool()> editsSongThatPlays)
        : m_document(document), m_lyrics(lyrics), m_song(song), m_editsSongThatPlays(std::move(editsSongThatPlays))
    {
    }

    // How fast the song plays (1 as it is, 0.5 at half speed): the reaction is the singer's
    // quarter second, which is less of the song when it plays slower.
    void SetTempo(std::function<double()> tempo) { m_tempo = std::move(tempo); }

    // Stamps row `selected` (row 1 when none is) with the song's position less the reaction.
    // Returns the row to select next: the following one, or the same when it is the last; 0 when
    // nothing was stamped.
    int CaptureLine(int selected);

    // The tap key let go after a held tap on `row`: the syllable lasts until now, less the
    // same reaction as its start.
    void HoldEnd(int row);

    // The time the spin control shows, in seconds.
    double Correct() const { return m_correct; }
    // The spin control moved by hand or by the timer: the row under correction, else the
    // selected row, takes the value.
    void SetCorrect(double seconds, int selectedRow);

    // Starts a held correction of `row`; false when refused (no row, or down from 0).
    bool StartCorrection(int row, bool up);
    bool Correcting() const { return m_correctIndex > 0; }
    // One tick of the held key.
    void CorrectionTick();
    // The key is up: returns the row to select again.
    int StopCorrection();

    // The karaoke display takes the editor's lyrics while a song is open.
    void ShowOnDisplay();

private:
    void ShowEntryOnDisplay(int row);

    EditorDocument& m_document;
    LyricsState& m_lyrics;
    const SongClock& m_song;
    std::function<bool()> m_editsSongThatPlays;
    std::function<double()> m_tempo = [] { return 1.0; };
    double m_correct = 0;
    int m_correctIndex = 0;
    int m_correctTicks = 0;
    bool m_correctUp = true;
};
