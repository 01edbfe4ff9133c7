#include "karaoke/TextPainter.h"

#include <QFontMetrics>
#include <QPainter>
#include <cmath>

namespace {

constexpr int kTextOffset = 4;
constexpr int kLeftClip = 8;
constexpr int kRimCacheSize = 24;

QImage Transparent(QSize size, qreal dpr)
{
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(dpr);
    image.fill(Qt::transparent);
    return image;
}

QString RimKey(const QString& text, const QFont& font, const QColor& colour, OutlineRange range, qreal dpr)
{
    return font.key() + u'|' + QString::number(colour.rgba()) + u'|' + QString::number(range.First) + u'|'
           + QString::number(range.Last) + u'|' + QString::number(dpr) + u'|' + text;
}

} // namespace

std::optional<OutlineRange> OutlineOffsets(int16_t outlineWidth)
{
    if (outlineWidth <= 0)
        return std::nullopt;
    const int first = std::min<int>(outlineWidth, 4) - 1;
    return OutlineRange{first, 8 - first};
}

QImage OutlineImage(const QString& text, const QFont& font, const QColor& colour, OutlineRange range, qreal dpr)
{
    const QFontMetrics metrics(font);
    const int width = metrics.horizontalAdvance(text);
    const int height = metrics.height();
    if (width <= 0 || height <= 0)
        return {};
    QImage glyphs = Transparent(QSize(int(std::ceil(width * dpr)), int(std::ceil(height * dpr))), dpr);
    TextPainter::DrawText(glyphs, text, font, colour, 0, 0);

    // The copies sit at whole logical pixels; at a higher ratio the rim is filled in between so
    // that it stays solid.
    const int spread = range.Last - range.First;
    const int steps = int(std::lround(spread * dpr));
    const QSize size(glyphs.width() + steps, glyphs.height() + steps);
    QImage row = Transparent(size, 1.0);
    {
        QPainter painter(&row);
        glyphs.setDevicePixelRatio(1.0);
        for (int i = 0; i <= steps; ++i)
            painter.drawImage(i, 0, glyphs);
    }
    QImage rim = Transparent(size, 1.0);
    {
        QPainter painter(&rim);
        for (int j = 0; j <= steps; ++j)
            painter.drawImage(0, j, row);
    }
    rim.setDevicePixelRatio(dpr);
    return rim;
}

void TextPainter::OutlineText(QImage& target, const QString& text, const QFont& font, const QColor& colour,
                              int16_t outlineWidth, int x, int y, int bottomClip)
{
    const auto range = OutlineOffsets(outlineWidth);
    if (!range || text.isEmpty())
        return;
    const qreal dpr = target.devicePixelRatio();
    const QString key = RimKey(text, font, colour, *range, dpr);
    auto it = m_rims.find(key);
    if (it == m_rims.end()) {
        if (m_rims.size() >= kRimCacheSize)
            m_rims.clear();
        it = m_rims.insert(key, OutlineImage(text, font, colour, *range, dpr));
    }
    if (it->isNull())
        return;
    QPainter painter(&target);
    painter.setClipRect(QRect(QPoint(kLeftClip, 0), QPoint(int(target.width() / dpr), bottomClip)));
    painter.drawImage(QPointF(x + range->First, y + range->First), *it);
}

void TextPainter::DrawText(QImage& target, const QString& text, const QFont& font, const QColor& colour, int x, int y)
{
    if (text.isEmpty())
        return;
    QPainter painter(&target);
    painter.setRenderHint(QPainter::TextAntialiasing);
    painter.setFont(font);
    painter.setPen(colour);
    painter.drawText(QPointF(x, y + QFontMetricsF(font).ascent()), text);
}
