#pragma once
// Where a timed picture stands in the karaoke window, and the frame drawn around it.

#include "lyrics/LyricsData.h"

#include <QRect>
#include <QStringList>

class QPainter;

// The song's image size: original, fitted to the window keeping its shape, or custom.
enum class ImageSizing : int16_t { Original = 0, Fitted = 1, Custom = 2 };
// The song's image position, as for the text: centre, top, bottom; always centred across.
enum class ImagePlace : int16_t { Centre = 0, Top = 1, Bottom = 2 };

// The picture's rectangle in the window by the header's layout, position and offsets.
QRect PictureRect(const LyricItem& header, QSize picture, QSize client);

// The largest rectangle of the picture's shape in the middle of the box: where a disc song's
// screen or a video's frame stands in the window, on black.
QRectF FittedInMiddle(QSizeF picture, QSizeF box);

// "Flat", "Ring", "Sunken", "Raised", "Mono"; any other name draws no frame.
const QStringList& BorderStyles();
// The frame is drawn inside the rectangle, over the picture's edge, so it stays on screen when
// the picture fills the window.
void DrawImageBorder(QPainter& painter, const QRect& rect, const QString& style);
