#pragma once
// Text on the karaoke page: the rim of offset copies behind a line, the line, its sung part in
// the highlight colour, and the ball. Works on QImage layers at any device pixel ratio; the
// coordinates are logical pixels. A line is rasterised once per colour while it stays on screen;
// a page is then a few copies of ready images.

#include <QColor>
#include <QFont>
#include <QHash>
#include <QImage>
#include <functional>
#include <optional>
#include <utility>
#include <vector>

// The offsets of the rim copies for an outline width setting: 1 gives 0 to 8 (81 copies, the
// thickest), 4 gives 3 to 5 (9 copies); the text itself stands at offset 4. Nothing for 0 or less.
struct OutlineRange {
    int First;
    int Last;
};
std::optional<OutlineRange> OutlineOffsets(int16_t outlineWidth);

// The text in one colour on a transparent image of its advance width and line height.
QImage TextImage(const QString& text, const QFont& font, const QColor& colour, qreal dpr);
// The same image in another colour, its coverage kept.
QImage Recoloured(QImage image, const QColor& colour);
// A line's rim: the text rendered once in the colour, then laid over itself at every offset
// pair of the range (the union of all the copies, built in two passes of one row of copies).
QImage OutlineImage(const QString& text, const QFont& font, const QColor& colour, OutlineRange range, qreal dpr);
QImage OutlineOf(QImage glyphs, OutlineRange range);

// Images of lines made away from the painter, by their cache keys.
using PreparedImages = std::vector<std::pair<QString, QImage>>;

class TextPainter {
public:
    // Draws the rim of `text` with its text origin at (x + 4, y + 4); copies left of x 8 and
    // below the bottom clip are cut off.
    void OutlineText(QImage& target, const QString& text, const QFont& font, const QColor& colour,
                     int16_t outlineWidth, int x, int y, int bottomClip);
    // The text with its top-left corner at (x, y); with a width, only its part between `from` and
    // `width` pixels from its start, which is how the sung prefix of a line is lit over the same
    // glyphs.
    void DrawText(QImage& target, const QString& text, const QFont& font, const QColor& colour, int x, int y,
                  int width = -1, int from = 0);

    // Makes the images of a line ahead of its page, so that the page is only copies.
    void Prepare(const QString& text, const QFont& font, const QColor& fore, const QColor& highlight,
                 const QColor& rimColour, int16_t outlineWidth, qreal dpr);
    // The same work as a job that reads nothing of the painter, for a worker thread: it makes
    // the images the cache lacks now. Nothing when it lacks none.
    std::function<PreparedImages()> PrepareJob(const QString& text, const QFont& font, const QColor& fore,
                                               const QColor& highlight, const QColor& rimColour, int16_t outlineWidth,
                                               qreal dpr) const;
    // Takes a job's images into the cache.
    void Adopt(PreparedImages images);

private:
    struct Entry {
        QImage image;
        quint64 lastUse = 0;
    };
    QImage Mask(const QString& text, const QFont& font, qreal dpr);
    const QImage& Cached(const QString& key, const std::function<QImage()>& make);
    const QImage& Keep(const QString& key, QImage image);

    QHash<QString, Entry> m_images;
    quint64 m_uses = 0;
    qsizetype m_bytes = 0;
};
