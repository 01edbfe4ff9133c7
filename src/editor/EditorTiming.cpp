#include "editor/EditorTiming.h"

#include <algorithm>

namespace {

constexpr int kMostTicks = 30;

} // namespace

int EditorTiming::CaptureLine(int selected)
{
    if (!m_song.HasSong() || m_document.Count() == 0)
        return 0;
    const int row = selected >= 1 && selected <= m_document.Count() ? selected : 1;
    const double time = m_song.Position() - kReactionSeconds * m_tempo();
    m_document.SetTime(row, time);
    if (m_editsSongThatPlays())
        ShowEntryOnDisplay(row);
    if (row == m_document.Count()) {
        m_correct = time;
        return row;
    }
    m_correct = m_document.Entry(row + 1).Time;
    return row + 1;
}

void EditorTiming::HoldEnd(int row)
{
    if (!m_song.HasSong() || row < 1 || row > m_document.Count() || m_document.Entry(row).Time == 0)
        return;
    m_document.SetLength(row, m_song.Position() - kReactionSeconds * m_tempo() - m_document.Entry(row).Time);
    if (m_editsSongThatPlays())
        ShowEntryOnDisplay(row);
}

void EditorTiming::ShowEntryOnDisplay(int row)
{
    if (size_t(row) < m_lyrics.PlayLyrics.size())
        m_lyrics.PlayLyrics[size_t(row)] = m_document.Entry(row);
    else
        ShowOnDisplay();
}

void EditorTiming::ShowOnDisplay()
{
    if (m_song.HasSong())
        m_lyrics.PlayLyrics = m_lyrics.EditLyrics;
}

void EditorTiming::SetCorrect(double seconds, int selectedRow)
{
    m_correct = seconds;
    const int row = Correcting() ? m_correctIndex : selectedRow;
    if (m_document.Count() == 0) {
        m_correct = 0;
        return;
    }
    m_document.SetTime(row, seconds);
    ShowOnDisplay();
}

bool EditorTiming::StartCorrection(int row, bool up)
{
    if (row < 1 || row > m_document.Count() || (!up && m_correct == 0))
        return false;
    m_correctUp = up;
    m_correctIndex = row;
    m_correctTicks = 0;
    return true;
}

void EditorTiming::CorrectionTick()
{
    if (!Correcting())
        return;
    m_correctTicks = std::min(m_correctTicks + 1, kMostTicks);
    const double step = CorrectionStep(m_correctTicks);
    SetCorrect(m_correct + (m_correctUp ? step : -step), m_correctIndex);
}

int EditorTiming::StopCorrection()
{
    const int row = m_correctIndex;
    m_correctIndex = 0;
    return row;
}
