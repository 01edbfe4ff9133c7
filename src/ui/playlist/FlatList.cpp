#include "ui/playlist/FlatList.h"

#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>

namespace {

const QColor kText(0xcf, 0xd9, 0xff);
const QColor kTime(0x8e, 0xa6, 0xf0);
const QColor kPlaying(0x7d, 0xff, 0xa8);
const QColor kSelected(0x3b, 0x4a, 0x9c);
const QColor kStripe(0xff, 0xff, 0xff, 8);
const QColor kMissing(0x8a, 0x6a, 0x78);

} // namespace

FlatList::FlatList(PlaylistModel& model, QWidget* parent) : QAbstractScrollArea(parent), m_model(model)
{
    setFrameShape(QFrame::NoFrame);
    viewport()->setAutoFillBackground(false);
    setAttribute(Qt::WA_TranslucentBackground);
    viewport()->setAttribute(Qt::WA_TranslucentBackground);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setFocusPolicy(Qt::NoFocus);
}

int FlatList::RowHeight() const
{
    return fontMetrics().height() + 6;
}

int FlatList::RowAt(int y) const
{
    const int row = (y + verticalScrollBar()->value()) / RowHeight();
    return row < m_model.ListCount() ? row : -1;
}

void FlatList::Refresh()
{
    const int visible = std::max(1, viewport()->height() / RowHeight());
    verticalScrollBar()->setSingleStep(RowHeight());
    verticalScrollBar()->setPageStep(visible * RowHeight());
    verticalScrollBar()->setRange(0, std::max(0, m_model.ListCount() * RowHeight() - viewport()->height()));
    viewport()->update();
}

void FlatList::resizeEvent(QResizeEvent* event)
{
    QAbstractScrollArea::resizeEvent(event);
    Refresh();
}

void FlatList::paintEvent(QPaintEvent* event)
{
    QPainter painter(viewport());
    const int h = RowHeight();
    const int top = verticalScrollBar()->value();
    const int first = (event->rect().top() + top) / h;
    const int last = std::min(m_model.ListCount() - 1, (event->rect().bottom() + top) / h);
    const int width = viewport()->width();
    const int playing = m_model.CurrentPlaying();
    QFont bold = font();
    bold.setBold(true);
    for (int i = first; i <= last; ++i) {
        const QRect row(0, i * h - top, width, h);
        if (m_model.Selected(i))
            painter.fillRect(row, kSelected);
        else if (i % 2)
            painter.fillRect(row, kStripe);
        const PlaylistRow& item = m_model.Row(i);
        const bool missing = m_model.Missing(i);
        QFont rowFont = i == playing ? bold : font();
        rowFont.setStrikeOut(missing);
        painter.setFont(rowFont);
        const QFontMetrics metrics(painter.font());
        const int timeWidth = metrics.horizontalAdvance(item.ItemTime) + 8;
        painter.setPen(missing ? kMissing : i == playing ? kPlaying : kTime);
        painter.drawText(row.adjusted(6, 0, -6, 0), Qt::AlignRight | Qt::AlignVCenter, item.ItemTime);
        painter.setPen(missing ? kMissing : i == playing ? kPlaying : kText);
        const QString text = metrics.elidedText(QStringLiteral("%1. %2").arg(i + 1).arg(item.ItemString), Qt::ElideRight,
                                                width - timeWidth - 12);
        painter.drawText(row.adjusted(6, 0, -timeWidth, 0), Qt::AlignLeft | Qt::AlignVCenter, text);
    }
}

void FlatList::mousePressEvent(QMouseEvent* event)
{
    const int row = RowAt(event->position().toPoint().y());
    if (event->button() == Qt::RightButton) {
        // The window's menu acts on the selection; a right press on an unselected row picks it.
        if (row >= 0 && !m_model.Selected(row)) {
            m_model.SelectNone();
            m_model.SetSelected(row, true);
        }
        viewport()->update();
        event->ignore();
        return;
    }
    if (row < 0) {
        m_model.SelectNone();
    } else if (event->modifiers() & Qt::ControlModifier) {
        m_model.SetSelected(row, !m_model.Selected(row));
        m_anchor = row;
    } else if (event->modifiers() & Qt::ShiftModifier && m_anchor >= 0) {
        m_model.SelectNone();
        for (int i = std::min(row, m_anchor); i <= std::max(row, m_anchor); ++i)
            m_model.SetSelected(i, true);
    } else {
        m_model.SelectNone();
        m_model.SetSelected(row, true);
        m_anchor = row;
    }
    viewport()->update();
}

void FlatList::mouseDoubleClickEvent(QMouseEvent* event)
{
    const int row = RowAt(event->position().toPoint().y());
    if (row >= 0)
        emit rowActivated(row);
}

void FlatList::wheelEvent(QWheelEvent* event)
{
    WheelMoved(event->angleDelta().y());
}

void FlatList::WheelMoved(int delta)
{
    if (delta == 0)
        return;
    QScrollBar* bar = verticalScrollBar();
    bar->setValue(bar->value() + (delta > 0 ? -bar->singleStep() : bar->singleStep()));
}
