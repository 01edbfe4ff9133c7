#pragma once
// The colours and common pieces of the windows painted by hand (the playlist and the MIDI
// window), matched to the main window's skin.

#include <QColor>
#include <QRectF>
#include <QString>

class QPainter;
class QPalette;

namespace Palette {

inline const QColor BodyTop{0x2f, 0x3a, 0x72};
inline const QColor BodyBottom{0x11, 0x16, 0x2f};
inline const QColor Edge{0x4d, 0x5a, 0x9c};
inline const QColor Well{0x0b, 0x10, 0x27};
inline const QColor WellEdge{0x2c, 0x36, 0x70};
inline const QColor CaptionText{0x8e, 0xa0, 0xe6};
inline const QColor ButtonText{0xcf, 0xd9, 0xff};
inline const QColor FaceTop{0x3a, 0x45, 0x80};
inline const QColor FaceBottom{0x22, 0x2a, 0x52};
inline const QColor HoverTop{0x55, 0x66, 0xb8};
inline const QColor HoverBottom{0x2e, 0x3a, 0x78};
inline const QColor Unlit{0x38, 0x42, 0x6f};
inline const QColor LitGreen{0x7d, 0xff, 0xa8};
inline const QColor LitAmber{0xff, 0xd7, 0x7a};
inline const QColor LitRed{0xff, 0x5d, 0x6c};
inline const QColor LitBlue{0x8f, 0xd3, 0xff};

} // namespace Palette

// The rounded body of a window with its edge.
void PaintWindowBody(QPainter& painter, const QRectF& rect);
// The spaced capitals of a window's caption, left in `box`.
void PaintCaption(QPainter& painter, const QRectF& box, const QString& text);
// The round red close button of the caption row, centred on `centre`'s point.
void PaintCloseButton(QPainter& painter, QPointF centre);
// A dark sunken area for lists, strips and displays.
void PaintWell(QPainter& painter, const QRectF& rect, qreal radius = 7);
// A raised face of a button, lit when the mouse is over it.
void PaintButtonFace(QPainter& painter, const QRectF& rect, qreal radius, bool hover);

// The palette of the windows built of standard controls (the editor and its dialogs), in the
// colours of the painted ones.
QPalette ControlsPalette();
