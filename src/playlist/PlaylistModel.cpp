#include "playlist/PlaylistModel.h"

#include <algorithm>

const std::vector<PlaylistRow> PlaylistModel::Rows() const
{
    std::vector<PlaylistRow> rows;
    rows.reserve(m_rows.size());
    for (const Entry& entry : m_rows)
        rows.push_back(entry.row);
    return rows;
}

void PlaylistModel::AddItem(const PlaylistRow& row)
{
    m_rows.push_back({row, false, false});
}

void PlaylistModel::Clear()
{
    m_rows.clear();
}

int PlaylistModel::SelectedIndex() const
{
    for (int i = 0; i < ListCount(); ++i)
        if (m_rows[size_t(i)].selected)
            return i;
    return -1;
}

void PlaylistModel::SelectAll()
{
    for (Entry& entry : m_rows)
        entry.selected = true;
}

void PlaylistModel::SelectNone()
{
    for (Entry& entry : m_rows)
        entry.selected = false;
}

void PlaylistModel::ReverseSelection()
{
    for (Entry& entry : m_rows)
        entry.selected = !entry.selected;
}

void PlaylistModel::RemoveSelected()
{
    std::erase_if(m_rows, [](const Entry& entry) { return entry.selected; });
}

int PlaylistModel::CurrentPlaying() const
{
    for (int i = 0; i < ListCount(); ++i)
        if (m_rows[size_t(i)].playing)
            return i;
    return -1;
}

void PlaylistModel::SetCurrentPlaying(int index)
{
    for (int i = 0; i < ListCount(); ++i)
        m_rows[size_t(i)].playing = i == index;
}

void PlaylistModel::SortFlatList(bool ascending)
{
    std::stable_sort(m_rows.begin(), m_rows.end(), [ascending](const Entry& a, const Entry& b) {
        const int order = a.row.ItemString.compare(b.row.ItemString, Qt::CaseInsensitive);
        return ascending ? order < 0 : order > 0;
    });
}

void PlaylistModel::SortRandom(const std::function<double()>& random)
{
    const size_t n = m_rows.size();
    std::vector<Entry> shuffled(n);
    std::vector<bool> taken(n, false);
    for (Entry& entry : m_rows) {
        size_t position = 0;
        do
            position = std::min(n - 1, size_t(double(n) * random()));
        while (taken[position]);
        taken[position] = true;
        shuffled[position] = std::move(entry);
    }
    m_rows = std::move(shuffled);
}

void PlaylistModel::MoveUp(int index)
{
    if (index > 0 && index < ListCount())
        std::swap(m_rows[size_t(index)], m_rows[size_t(index - 1)]);
}

void PlaylistModel::MoveDown(int index)
{
    if (index >= 0 && index + 1 < ListCount())
        std::swap(m_rows[size_t(index)], m_rows[size_t(index + 1)]);
}
