#pragma once
// The editor's list (LISTA): row i shows entry i of the document in three columns, the time,
// the text and "break" at a line's end; the text is edited in place (lText).

#include <QAbstractTableModel>
#include <QTableView>
#include <functional>

class EditorDocument;
class QKeyEvent;

class LyricsTableModel final : public QAbstractTableModel {
public:
    enum Column { TimeColumn, TextColumn, BreakColumn };

    LyricsTableModel(const EditorDocument& document, std::function<QString(int column)> header, QObject* parent);

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;

    // The document's rows were added, removed or replaced.
    void Reset();
    // Rows `first` to `last` (numbered from 1) show new values.
    void RowsChanged(int first, int last);
    void HeadersChanged() { emit headerDataChanged(Qt::Horizontal, 0, 2); }

    // An inline edit ended with this text for the row (numbered from 1).
    std::function<void(int row, const QString& text)> TextEdited;

private:
    const EditorDocument& m_document;
    std::function<QString(int column)> m_header;
};

class LyricsList final : public QTableView {
public:
    explicit LyricsList(QWidget* parent);

    // The key handlers of the window; true when a key was taken.
    std::function<bool(QKeyEvent* event)> KeyDown;
    std::function<bool(QKeyEvent* event)> KeyUp;
    // A row chosen by the user: a click, or a key that moves the selection, once it is up.
    std::function<void()> RowChosen;

    // Numbered from 1; 0 when no row is current.
    int SelectedRow() const;
    // The rows of the selection, from the top.
    std::vector<int> SelectedRows() const;
    // Makes `row` the one selected and current, and keeps it in sight.
    void SelectRow(int row);
    void ClearSelectionOnly();
    // The text of `row` in its edit box, laid over the cell.
    void BeginTextEdit(int row);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
};
