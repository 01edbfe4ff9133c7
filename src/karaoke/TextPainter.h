#pragma once
// Text on the karaoke page: the rim of offset copies behind a line, the line, its sung part in
// the highlight colour, and the ball. Works on QImage layers at any device pixel ratio; the
// coordinates are logical pixels.

#include <QColor>
#include <QFont>
#include <QHash>
#include <QImage>
#include <optional>

// The offsets of the rim copies for an outline width setting: 1 gives 0 to 8 (81 copies, the
// thickest), 4 gives 3 to 5 (9 copies); the text itself stands at offset 4. Nothing for 0 or less.
struct OutlineRange {
    int First;
    int Last;
};
std::optional<OutlineRange> OutlineOffsets(int16_t outlineWidth);

// A line's rim: the text rendered once in the colour, then laid over itself at every offset
// pair of the range (the union of all the copies, built in two passes of one row of copies).
QImage OutlineImage(const QString& text, const QFont& font, const QColor& colour, OutlineRange range, qreal dpr);

class TextPainter {
public:
    // Draws the rim of `text` with its text origin at (x + 4, y + 4); copies left of x 8 and
    // below the bottom clip are cut off.
    void OutlineText(QImage& target, const QString& text, const QFont& font, const QColor& colour,
                     int16_t outlineWidth, int x, int y, int bottomClip);
    // The text with its top-left corner at (x, y).
    static void DrawText(QImage& target, const QString& text, const QFont& font, const QColor& colour, int x, int y);

private:
    QHash<QString, QImage> m_rims;  // a line keeps its rim while it stays on screen
};
