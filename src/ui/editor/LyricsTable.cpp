#include "ui/editor/LyricsTable.h"

#include "editor/EditorDocument.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QLineEdit>
#include <QStyledItemDelegate>
#include <algorithm>

namespace {

// The in-place edit box of a row's text, white as the old editor's was.
class TextCellDelegate final : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;
    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem&, const QModelIndex&) const override
    {
        auto* box = new QLineEdit(parent);
        box->setObjectName(QStringLiteral("lText"));
        box->setFrame(false);
        box->setStyleSheet(QStringLiteral("QLineEdit { background: white; color: black; }"));
        return box;
    }
};

bool MovesSelection(int key)
{
    switch (key) {
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_PageUp:
    case Qt::Key_PageDown:
    case Qt::Key_Home:
    case Qt::Key_End:
        return true;
    default:
        return false;
    }
}

} // namespace

LyricsTableModel::LyricsTableModel(const EditorDocument& document, std::function<QString(int column)> header,
                                   QObject* parent)
    : QAbstractTableModel(parent), m_document(document), m_header(std::move(header))
{
}

int LyricsTableModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : m_document.Count();
}

int LyricsTableModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : 3;
}

QVariant LyricsTableModel::data(const QModelIndex& index, int role) const
{
    const int row = index.row() + 1;
    if (!index.isValid() || row > m_document.Count())
        return {};
    if (role == Qt::ToolTipRole)
        return m_document.Entry(row).LineText;
    if (role != Qt::DisplayRole && role != Qt::EditRole)
        return {};
    switch (index.column()) {
    case TimeColumn:
        return m_document.TimeText(row);
    case TextColumn:
        return m_document.Entry(row).Text;
    default:
        return m_document.Entry(row).LineEnd ? QStringLiteral("break") : QString();
    }
}

QVariant LyricsTableModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation == Qt::Horizontal && role == Qt::DisplayRole)
        return m_header(section);
    return QAbstractTableModel::headerData(section, orientation, role);
}

Qt::ItemFlags LyricsTableModel::flags(const QModelIndex& index) const
{
    const Qt::ItemFlags flags = QAbstractTableModel::flags(index);
    return index.column() == TextColumn ? flags | Qt::ItemIsEditable : flags;
}

bool LyricsTableModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
    if (role != Qt::EditRole || index.column() != TextColumn || !TextEdited)
        return false;
    TextEdited(index.row() + 1, value.toString());
    return true;
}

void LyricsTableModel::Reset()
{
    beginResetModel();
    endResetModel();
}

void LyricsTableModel::RowsChanged(int first, int last)
{
    if (first < 1 || last < first)
        return;
    emit dataChanged(index(first - 1, 0), index(last - 1, 2));
}

LyricsList::LyricsList(QWidget* parent) : QTableView(parent)
{
    setObjectName(QStringLiteral("LISTA"));
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setSelectionMode(QAbstractItemView::ExtendedSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setItemDelegateForColumn(LyricsTableModel::TextColumn, new TextCellDelegate(this));
    setAlternatingRowColors(true);
    setShowGrid(false);
    setWordWrap(false);
    setTabKeyNavigation(false);
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    horizontalHeader()->setHighlightSections(false);
}

int LyricsList::SelectedRow() const
{
    const QModelIndex current = currentIndex();
    if (!current.isValid() || !selectionModel()->isRowSelected(current.row(), {}))
        return 0;
    return current.row() + 1;
}

std::vector<int> LyricsList::SelectedRows() const
{
    std::vector<int> rows;
    for (const QModelIndex& index : selectionModel()->selectedRows())
        rows.push_back(index.row() + 1);
    std::sort(rows.begin(), rows.end());
    return rows;
}

void LyricsList::SelectRow(int row)
{
    if (row < 1 || row > model()->rowCount())
        return;
    const QModelIndex index = model()->index(row - 1, 0);
    selectionModel()->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    scrollTo(index);
}

void LyricsList::ClearSelectionOnly()
{
    selectionModel()->clearSelection();
}

void LyricsList::BeginTextEdit(int row)
{
    if (row >= 1 && row <= model()->rowCount())
        edit(model()->index(row - 1, LyricsTableModel::TextColumn));
}

void LyricsList::keyPressEvent(QKeyEvent* event)
{
    if (state() == QAbstractItemView::EditingState || !KeyDown || !KeyDown(event))
        QTableView::keyPressEvent(event);
}

void LyricsList::keyReleaseEvent(QKeyEvent* event)
{
    if (KeyUp && KeyUp(event))
        return;
    if (!event->isAutoRepeat() && MovesSelection(event->key()) && RowChosen)
        RowChosen();
    QTableView::keyReleaseEvent(event);
}

void LyricsList::mouseReleaseEvent(QMouseEvent* event)
{
    QTableView::mouseReleaseEvent(event);
    if (RowChosen)
        RowChosen();
}
