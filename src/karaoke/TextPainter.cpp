#include "karaoke/TextPainter.h"

#include <QFontMetrics>
#include <QPainter>
#include <cmath>

namespace {

constexpr int kLeftClip = 8;
// About five lines of rims and colours at 4K; a page uses a handful of images.
constexpr qsizetype kCacheBytes = 96 * 1024 * 1024;

QImage Transparent(QSize size, qreal dpr)
{
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(dpr);
    image.fill(Qt::transparent);
    return image;
}

QString Key(const char* kind, const QString& text, const QFont& font, const QColor& colour, qreal dpr, int extra = 0)
{
    return QLatin1String(kind) + u'|' + font.key() + u'|' + QString::number(colour.rgba()) + u'|'
           + QString::number(dpr) + u'|' + QString::number(extra) + u'|' + text;
}

} // namespace

std::optional<OutlineRange> OutlineOffsets(int16_t outlineWidth)
{
    if (outlineWidth <= 0)
        return std::nullopt;
    const int first = std::min<int>(outlineWidth, 4) - 1;
    return OutlineRange{first, 8 - first};
}

QImage Recoloured(QImage image, const QColor& colour)
{
    QPainter painter(&image);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(QRectF(QPointF(0, 0), QSizeF(image.size()) / image.devicePixelRatio()), colour);
    return image;
}

QImage TextImage(const QString& text, const QFont& font, const QColor& colour, qreal dpr)
{
    const QFontMetrics metrics(font);
    const int width = metrics.horizontalAdvance(text);
    const int height = metrics.height();
    if (text.isEmpty() || width <= 0 || height <= 0)
        return {};
    // Room to the right for a last glyph that reaches past its advance.
    const int overhang = metrics.averageCharWidth();
    QImage image = Transparent(QSize(int(std::ceil((width + overhang) * dpr)), int(std::ceil(height * dpr))), dpr);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::TextAntialiasing);
    painter.setFont(font);
    painter.setPen(colour);
    painter.drawText(QPointF(0, QFontMetricsF(font).ascent()), text);
    return image;
}

QImage OutlineImage(const QString& text, const QFont& font, const QColor& colour, OutlineRange range, qreal dpr)
{
    return OutlineOf(TextImage(text, font, colour, dpr), range);
}

// The union of `count` copies of the image, each one pixel further along the axis. Copies are
// laid in runs of 1, 2, 4, ... built by doubling, so every offset is covered exactly once in
// about 2 log2(count) draws instead of count.
QImage SpreadCopies(const QImage& source, int count, bool horizontal)
{
    const QSize size = horizontal ? QSize(source.width() + count - 1, source.height())
                                  : QSize(source.width(), source.height() + count - 1);
    auto at = [horizontal](int offset) { return horizontal ? QPoint(offset, 0) : QPoint(0, offset); };
    QImage run = Transparent(size, 1.0);
    QPainter(&run).drawImage(0, 0, source);
    QImage result = Transparent(size, 1.0);
    QPainter painter(&result);
    int runLength = 1;
    int placed = 0;
    for (int rest = count; rest > 0; rest >>= 1) {
        if (rest & 1) {
            painter.drawImage(at(placed), run);
            placed += runLength;
        }
        if (rest > 1) {
            const QImage shorter = run;
            QPainter(&run).drawImage(at(runLength), shorter);
            runLength *= 2;
        }
    }
    return result;
}

QImage OutlineOf(QImage glyphs, OutlineRange range)
{
    if (glyphs.isNull())
        return {};
    const qreal dpr = glyphs.devicePixelRatio();
    // The copies sit at whole logical pixels; at a higher ratio the rim is filled in between so
    // that it stays solid.
    const int count = int(std::lround((range.Last - range.First) * dpr)) + 1;
    glyphs.setDevicePixelRatio(1.0);
    QImage rim = SpreadCopies(SpreadCopies(glyphs, count, true), count, false);
    rim.setDevicePixelRatio(dpr);
    return rim;
}

// The line's glyphs, rasterised once whatever colours it is drawn in.
QImage TextPainter::Mask(const QString& text, const QFont& font, qreal dpr)
{
    return Cached(Key("mask", text, font, Qt::white, dpr), [&] { return TextImage(text, font, Qt::white, dpr); });
}

const QImage& TextPainter::Cached(const QString& key, const std::function<QImage()>& make)
{
    auto it = m_images.find(key);
    if (it == m_images.end())
        return Keep(key, make());
    it->lastUse = ++m_uses;
    return it->image;
}

const QImage& TextPainter::Keep(const QString& key, QImage image)
{
    if (auto it = m_images.find(key); it != m_images.end()) {
        m_bytes -= it->image.sizeInBytes();
        m_images.erase(it);
    }
    m_bytes += image.sizeInBytes();
    while (m_bytes > kCacheBytes && !m_images.isEmpty()) {
        auto oldest = m_images.begin();
        for (auto e = m_images.begin(); e != m_images.end(); ++e)
            if (e->lastUse < oldest->lastUse)
                oldest = e;
        m_bytes -= oldest->image.sizeInBytes();
        m_images.erase(oldest);
    }
    auto it = m_images.insert(key, Entry{std::move(image), ++m_uses});
    return it->image;
}

std::function<PreparedImages()> TextPainter::PrepareJob(const QString& text, const QFont& font, const QColor& fore,
                                                        const QColor& highlight, const QColor& rimColour,
                                                        int16_t outlineWidth, qreal dpr) const
{
    if (text.isEmpty())
        return {};
    std::vector<std::pair<QString, QColor>> colours;
    for (const QColor& colour : {fore, highlight})
        if (QString key = Key("text", text, font, colour, dpr); !m_images.contains(key))
            colours.emplace_back(std::move(key), colour);
    const auto range = OutlineOffsets(outlineWidth);
    QString rimKey = range ? Key("rim", text, font, rimColour, dpr, range->First) : QString();
    if (m_images.contains(rimKey))
        rimKey.clear();
    if (colours.empty() && rimKey.isEmpty())
        return {};
    return [=] {
        const QImage mask = TextImage(text, font, Qt::white, dpr);
        PreparedImages images{{Key("mask", text, font, Qt::white, dpr), mask}};
        for (const auto& [key, colour] : colours)
            images.emplace_back(key, Recoloured(mask, colour));
        if (!rimKey.isEmpty())
            images.emplace_back(rimKey, OutlineOf(Recoloured(mask, rimColour), *range));
        return images;
    };
}

void TextPainter::Adopt(PreparedImages images)
{
    for (auto& [key, image] : images)
        Keep(key, std::move(image));
}

void TextPainter::Prepare(const QString& text, const QFont& font, const QColor& fore, const QColor& highlight,
                          const QColor& rimColour, int16_t outlineWidth, qreal dpr)
{
    if (text.isEmpty())
        return;
    for (const QColor& colour : {fore, highlight})
        Cached(Key("text", text, font, colour, dpr), [&] { return Recoloured(Mask(text, font, dpr), colour); });
    if (const auto range = OutlineOffsets(outlineWidth))
        Cached(Key("rim", text, font, rimColour, dpr, range->First),
               [&] { return OutlineOf(Recoloured(Mask(text, font, dpr), rimColour), *range); });
}

void TextPainter::OutlineText(QImage& target, const QString& text, const QFont& font, const QColor& colour,
                              int16_t outlineWidth, int x, int y, int bottomClip)
{
    const auto range = OutlineOffsets(outlineWidth);
    if (!range || text.isEmpty())
        return;
    const qreal dpr = target.devicePixelRatio();
    const QImage& rim = Cached(Key("rim", text, font, colour, dpr, range->First),
                               [&] { return OutlineOf(Recoloured(Mask(text, font, dpr), colour), *range); });
    if (rim.isNull())
        return;
    QPainter painter(&target);
    painter.setClipRect(QRect(QPoint(kLeftClip, 0), QPoint(int(target.width() / dpr), bottomClip)));
    painter.drawImage(QPointF(x + range->First, y + range->First), rim);
}

void TextPainter::DrawText(QImage& target, const QString& text, const QFont& font, const QColor& colour, int x, int y,
                           int width, int from)
{
    if (text.isEmpty() || width == 0 || (width > 0 && width <= from))
        return;
    const qreal dpr = target.devicePixelRatio();
    const QImage& image = Cached(Key("text", text, font, colour, dpr),
                                 [&] { return Recoloured(Mask(text, font, dpr), colour); });
    if (image.isNull())
        return;
    QPainter painter(&target);
    if (width > 0)
        painter.setClipRect(QRect(x + from, y, width - from, int(std::ceil(image.height() / dpr))));
    painter.drawImage(QPointF(x, y), image);
}
