#pragma once
// Which line stands on which row: single line, two lines, two lines that take turns, and three
// rolling lines. Pure bookkeeping over the syllable array; the painter turns it into pixels.

#include "lyrics/LyricsData.h"

#include <array>

enum class DisplayModes : int16_t { SingleLine = 0, TwoLines = 1, TwoLinesSeparated = 2, ThreeLines = 3 };

struct PageRow {
    QString Text;
    bool Current = false;
    bool Sung = false;  // a line already sung; drawn in the highlight colour in Lines mode
};

struct Page {
    std::vector<PageRow> Rows;  // one per row of the mode, top to bottom; empty texts draw nothing
    QString SungText;           // the current line's text up to and including the syllable
    QString Syllable;           // the syllable being sung
    int16_t LinesLeft = 0;      // 1 current only, 2 one more line, 3 two or more
};

// Rows a mode shows.
int RowCount(int16_t displayMode);

class PageLayout {
public:
    // The page for a syllable (index 1 or more). A jump keeps the row cursor where it is.
    Page Compose(const std::vector<LyricItem>& lyrics, int32_t index, bool jump, int16_t displayMode);
    // New lyrics, a jump or a clear: rows emptied, the cursor back on the top row.
    void Reset();
    void ClearRows();

    int16_t RowCursor = 0;  // active row of three-line mode
    bool SwapRows = false;  // in two-lines-separated mode, the current line is on the upper row

private:
    struct RowLine {
        QString Text;
        int32_t Start = 0;  // index of the line's first syllable, 0 for no line
    };
    std::array<RowLine, 3> m_rows;

    void PlaceThreeLines(const RowLine& current, const RowLine& next, const RowLine& afterNext, int16_t linesLeft, bool newLine);
    void PlaceTwoLines(const RowLine& current, const RowLine& next, int16_t displayMode);
};
