#pragma once
// The playlist's list control: rows of text with the time right-aligned, the selection, the
// row that plays in its own colour, a scroll bar and the wheel.

#include "playlist/PlaylistModel.h"

#include <QAbstractScrollArea>

class FlatList final : public QAbstractScrollArea {
    Q_OBJECT
public:
    explicit FlatList(PlaylistModel& model, QWidget* parent = nullptr);

    // The model changed: scroll range and picture follow.
    void Refresh();
    int RowHeight() const;
    int RowAt(int y) const;
    // Scrolls by the small step in the direction of the wheel's delta.
    void WheelMoved(int delta);

signals:
    void rowActivated(int index);

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    PlaylistModel& m_model;
    int m_anchor = -1;
};
