#include "karaoke/PageLayout.h"

namespace {

int32_t LastIndex(const std::vector<LyricItem>& lyrics)
{
    return int32_t(lyrics.size()) - 1;
}

// The first syllable of the line after the one holding `index`; 0 when that line is the last.
int32_t NextLineStart(const std::vector<LyricItem>& lyrics, int32_t index)
{
    int32_t i = index;
    while (i < LastIndex(lyrics) && !lyrics[size_t(i)].LineEnd)
        ++i;
    return i < LastIndex(lyrics) ? i + 1 : 0;
}

int32_t LineStart(const std::vector<LyricItem>& lyrics, int32_t index)
{
    int32_t i = index;
    while (i > 1 && !lyrics[size_t(i - 1)].LineEnd)
        --i;
    return i;
}

// The line's text as its syllables carry it; a line read without one shows its syllables joined.
QString ShownLineText(const std::vector<LyricItem>& lyrics, int32_t index)
{
    if (!lyrics[size_t(index)].LineText.isEmpty())
        return lyrics[size_t(index)].LineText;
    QString text;
    for (int32_t i = LineStart(lyrics, index); i <= LastIndex(lyrics); ++i) {
        text += lyrics[size_t(i)].Text;
        if (lyrics[size_t(i)].LineEnd)
            break;
    }
    return text;
}

QString SungPart(const std::vector<LyricItem>& lyrics, int32_t index)
{
    QString sung;
    for (int32_t i = LineStart(lyrics, index); i <= index; ++i)
        sung += lyrics[size_t(i)].Text;
    return sung;
}

} // namespace

int RowCount(int16_t displayMode)
{
    switch (DisplayModes(displayMode)) {
    case DisplayModes::SingleLine: return 1;
    case DisplayModes::ThreeLines: return 3;
    default: return 2;
    }
}

void PageLayout::Reset()
{
    ClearRows();
    RowCursor = 0;
}

void PageLayout::ClearRows()
{
    m_rows = {};
}

Page PageLayout::Compose(const std::vector<LyricItem>& lyrics, int32_t index, bool jump, int16_t displayMode)
{
    Page page;
    const RowLine current{ShownLineText(lyrics, index), LineStart(lyrics, index)};
    RowLine next;
    RowLine afterNext;
    page.LinesLeft = 0;
    if (const int32_t start = NextLineStart(lyrics, index)) {
        next = {ShownLineText(lyrics, start), start};
        if (displayMode == int16_t(DisplayModes::ThreeLines)) {
            const int32_t following = NextLineStart(lyrics, start);
            page.LinesLeft = following ? 3 : 2;
            if (following)
                afterNext = {ShownLineText(lyrics, following), following};
        }
    } else {
        page.LinesLeft = 1;
    }
    page.Syllable = lyrics[size_t(index)].Text;
    page.SungText = index == 1 ? page.Syllable : SungPart(lyrics, index);

    // A line with no words (a MIDI file's lead-in) gives its row to the first line sung.
    const bool newLine =
        !jump && index > 1 && lyrics[size_t(index - 1)].LineEnd && !ShownLineText(lyrics, index - 1).isEmpty();
    if (displayMode == int16_t(DisplayModes::ThreeLines))
        PlaceThreeLines(current, next, afterNext, page.LinesLeft, newLine);
    else
        PlaceTwoLines(current, next, displayMode);

    for (int row = 0; row < RowCount(displayMode); ++row) {
        const RowLine& line = m_rows[size_t(row)];
        page.Rows.push_back({line.Text, line.Start == current.Start, line.Start != 0 && line.Start < current.Start});
    }
    return page;
}

// Rows roll downwards: the cursor moves one row per new line and wraps to the top, and a row is
// rewritten with the line after next one line after it was sung.
void PageLayout::PlaceThreeLines(const RowLine& current, const RowLine& next, const RowLine& afterNext,
                                 int16_t linesLeft, bool newLine)
{
    if (newLine && ++RowCursor == 3)
        RowCursor = 0;
    switch (RowCursor) {
    case 0:
        m_rows = {current, linesLeft >= 2 ? next : RowLine{}, linesLeft >= 3 ? afterNext : RowLine{}};
        break;
    case 1:
        m_rows[1] = current;
        if (linesLeft >= 3)
            m_rows[0] = afterNext;
        break;
    default:
        m_rows[2] = current;
        if (linesLeft >= 3)
            m_rows[1] = afterNext;
        break;
    }
}

void PageLayout::PlaceTwoLines(const RowLine& current, const RowLine& next, int16_t displayMode)
{
    if (displayMode == int16_t(DisplayModes::TwoLinesSeparated)) {
        // The new line takes the row that showed it as the next line, so one row is rewritten
        // while the other is sung.
        const RowLine& held = SwapRows ? m_rows[0] : m_rows[1];
        const RowLine& other = SwapRows ? m_rows[1] : m_rows[0];
        if (current.Start != held.Start && next.Start != other.Start)
            SwapRows = !SwapRows;
        m_rows[SwapRows ? 0 : 1] = current;
        m_rows[SwapRows ? 1 : 0] = next;
        return;
    }
    m_rows[0] = current;
    m_rows[1] = displayMode == int16_t(DisplayModes::SingleLine) ? RowLine{} : next;
}
