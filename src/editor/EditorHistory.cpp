#include "editor/EditorHistory.h"

EditorHistory::EditorHistory(LyricsState& lyrics) : m_lyrics(lyrics)
{
    Reset();
}

EditorHistory::State EditorHistory::Current(const QString& change) const
{
    return {m_lyrics.EditLyrics, m_lyrics.EditPictures, change};
}

void EditorHistory::Reset()
{
    m_states.assign(1, Current(QString()));
    m_at = 0;
}

bool EditorHistory::Record(const QString& change)
{
    const State& last = m_states[m_at];
    if (last.rows == m_lyrics.EditLyrics && last.pictures == m_lyrics.EditPictures)
        return false;
    m_states.resize(m_at + 1);
    m_states.push_back(Current(change));
    ++m_at;
    return true;
}

QString EditorHistory::UndoChange() const
{
    return CanUndo() ? m_states[m_at].change : QString();
}

QString EditorHistory::RedoChange() const
{
    return CanRedo() ? m_states[m_at + 1].change : QString();
}

bool EditorHistory::Undo()
{
    if (!CanUndo())
        return false;
    --m_at;
    Restore();
    return true;
}

bool EditorHistory::Redo()
{
    if (!CanRedo())
        return false;
    ++m_at;
    Restore();
    return true;
}

void EditorHistory::Restore()
{
    m_lyrics.EditLyrics = m_states[m_at].rows;
    m_lyrics.EditPictures = m_states[m_at].pictures;
}
