#pragma once
// The rows of the playlist with their selection and the row marked as playing. Duplicates are
// allowed: a file added twice is two rows.

#include "playlist/PlaylistFiles.h"

#include <functional>
#include <vector>

class PlaylistModel {
public:
    int ListCount() const { return int(m_rows.size()); }
    const PlaylistRow& Row(int index) const { return m_rows[size_t(index)].row; }
    const std::vector<PlaylistRow> Rows() const;

    void AddItem(const PlaylistRow& row);
    void SetItemPath(int index, const QString& path) { m_rows[size_t(index)].row.ItemPath = path; }
    void SetItemText(int index, const QString& text) { m_rows[size_t(index)].row.ItemString = text; }
    void Clear();

    bool Selected(int index) const { return m_rows[size_t(index)].selected; }
    void SetSelected(int index, bool selected) { m_rows[size_t(index)].selected = selected; }
    // The first selected row, -1 when none is.
    int SelectedIndex() const;
    void SelectAll();
    void SelectNone();
    void ReverseSelection();
    void RemoveSelected();

    // The row shown in the playing colour; it stays with its song when rows move.
    int CurrentPlaying() const;
    void SetCurrentPlaying(int index);

    // A row whose file was not there when it was asked to play.
    bool Missing(int index) const { return m_rows[size_t(index)].missing; }
    void SetMissing(int index, bool missing) { m_rows[size_t(index)].missing = missing; }

    // By row text, case-insensitively.
    void SortFlatList(bool ascending);
    // Each row takes position Int(n * random()), drawn again while that position is taken.
    void SortRandom(const std::function<double()>& random);
    void MoveUp(int index);
    void MoveDown(int index);

private:
    struct Entry {
        PlaylistRow row;
        bool selected = false;
        bool playing = false;
        bool missing = false;
    };
    std::vector<Entry> m_rows;
};
