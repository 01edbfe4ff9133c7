#include "karaoke/PicturePlacing.h"

#include <QLinearGradient>
#include <QPainter>

namespace {

constexpr int kBevel = 5;

// A bevel of the given width: the top and left edges in one colour, the bottom and right in the
// other, each band fading from the outside in.
void Bevel(QPainter& painter, const QRect& r, int width, const QColor& lit, const QColor& shade)
{
    for (int i = 0; i < width; ++i) {
        const qreal fade = 1.0 - qreal(i) / width * 0.6;
        QColor a = lit;
        QColor b = shade;
        a.setAlphaF(a.alphaF() * fade);
        b.setAlphaF(b.alphaF() * fade);
        const QRect ring = r.adjusted(i, i, -i, -i);
        painter.fillRect(QRect(ring.left(), ring.top(), ring.width(), 1), a);
        painter.fillRect(QRect(ring.left(), ring.top(), 1, ring.height()), a);
        painter.fillRect(QRect(ring.left(), ring.bottom(), ring.width(), 1), b);
        painter.fillRect(QRect(ring.right(), ring.top(), 1, ring.height()), b);
    }
}

void Frame(QPainter& painter, const QRect& r, int width, const QColor& colour)
{
    painter.fillRect(QRect(r.left(), r.top(), r.width(), width), colour);
    painter.fillRect(QRect(r.left(), r.bottom() - width + 1, r.width(), width), colour);
    painter.fillRect(QRect(r.left(), r.top(), width, r.height()), colour);
    painter.fillRect(QRect(r.right() - width + 1, r.top(), width, r.height()), colour);
}

} // namespace

QRect PictureRect(const LyricItem& header, QSize picture, QSize client)
{
    QSize size = picture;
    switch (ImageSizing(header.ImageLayout)) {
    case ImageSizing::Original: break;
    case ImageSizing::Custom: size = QSize(header.ImageCustomX, header.ImageCustomY); break;
    default: size = picture.scaled(client, Qt::KeepAspectRatio); break;
    }
    size = size.expandedTo(QSize(1, 1));
    const int x = (client.width() - size.width()) / 2;
    int y = (client.height() - size.height()) / 2;
    if (ImagePlace(header.ImagePosition) == ImagePlace::Top)
        y = 0;
    else if (ImagePlace(header.ImagePosition) == ImagePlace::Bottom)
        y = client.height() - size.height();
    return QRect(QPoint(x + header.ImageOffsetX, y + header.ImageOffsetY), size);
}

QRectF FittedInMiddle(QSizeF picture, QSizeF box)
{
    const QSizeF fitted = picture.scaled(box, Qt::KeepAspectRatio);
    return {QPointF((box.width() - fitted.width()) / 2, (box.height() - fitted.height()) / 2), fitted};
}

const QStringList& BorderStyles()
{
    static const QStringList styles = {QStringLiteral("Flat"), QStringLiteral("Ring"), QStringLiteral("Sunken"),
                                       QStringLiteral("Raised"), QStringLiteral("Mono")};
    return styles;
}

void DrawImageBorder(QPainter& painter, const QRect& rect, const QString& style)
{
    if (rect.width() < 4 || rect.height() < 4)
        return;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    if (style == u"Flat") {
        // A quiet dark line that sets the picture off any background.
        Frame(painter, rect, 3, QColor(24, 24, 28));
    } else if (style == u"Ring") {
        // A light ring between two dark hairlines, like a mat around a print.
        Frame(painter, rect, 1, QColor(20, 20, 20));
        Frame(painter, rect.adjusted(1, 1, -1, -1), 4, QColor(236, 236, 230));
        Frame(painter, rect.adjusted(5, 5, -5, -5), 1, QColor(20, 20, 20, 200));
    } else if (style == u"Sunken") {
        Bevel(painter, rect, kBevel, QColor(0, 0, 0, 170), QColor(255, 255, 255, 150));
    } else if (style == u"Raised") {
        Bevel(painter, rect, kBevel, QColor(255, 255, 255, 170), QColor(0, 0, 0, 170));
    } else if (style == u"Mono") {
        // A white passe-partout with a black edge.
        Frame(painter, rect, 1, Qt::black);
        Frame(painter, rect.adjusted(1, 1, -1, -1), 7, Qt::white);
        Frame(painter, rect.adjusted(8, 8, -8, -8), 1, QColor(0, 0, 0, 120));
    }
    painter.restore();
}
