#pragma once
// Undo and redo of the editor's document: every state of its rows and pictures after a change,
// named by the change, without limit while the document stays open. A change is one step however
// long it took (a held correction, a Split), and saving keeps the steps.

#include "lyrics/LyricsData.h"

#include <QString>
#include <vector>

class EditorHistory {
public:
    explicit EditorHistory(LyricsState& lyrics);

    // The document as it now stands is the first state, with nothing to undo: a new, opened or
    // imported document.
    void Reset();
    // After a change: a new step named `change` (a caption key, "MenuSplitText", "Capture" ...)
    // when the rows or pictures differ from the state of the last step; the steps that were
    // undone are dropped. False when nothing changed.
    bool Record(const QString& change);

    bool CanUndo() const { return m_at > 0; }
    bool CanRedo() const { return m_at + 1 < m_states.size(); }
    // The change the next Undo or Redo takes back or does again; empty when there is none.
    QString UndoChange() const;
    QString RedoChange() const;
    // The rows and pictures as they were before, or after, the step; false when there is none.
    bool Undo();
    bool Redo();

private:
    struct State {
        std::vector<LyricItem> rows;
        std::vector<PictureItem> pictures;
        QString change;  // what made this state from the one before
    };
    State Current(const QString& change) const;
    void Restore();

    LyricsState& m_lyrics;
    std::vector<State> m_states;
    size_t m_at = 0;  // the state the document is in
};
