#include "karaoke/Transitions.h"

#include <QPainter>
#include <array>
#include <algorithm>
#include <cmath>

namespace {

const QStringList kBars = {QStringLiteral("Horizontal1"), QStringLiteral("Horizontal2"), QStringLiteral("Vertical1"),
                           QStringLiteral("Vertical2")};
const QStringList kSides = {QStringLiteral("Left"), QStringLiteral("Right"), QStringLiteral("Top"),
                            QStringLiteral("Bottom")};
const QStringList kCorners = {QStringLiteral("Left Top"), QStringLiteral("Bottom Left"), QStringLiteral("Right Top"),
                              QStringLiteral("Bottom Right")};
const QStringList kInOut = {QStringLiteral("Outside"), QStringLiteral("Inside")};
const QStringList kAxes = {QStringLiteral("Horizontal"), QStringLiteral("Vertical")};

constexpr int kBlindsRounds = 20;
constexpr int kStrips = 5;
constexpr int kCells = 5;

enum Side { Left, Right, Top, Bottom };
// The rows of the effect table, in its order.
enum Row {
    SlideBar, SlideBarnDoor, SlideCross, SlideSide, SlideDiagonal,
    WipeSide, WipeBar, WipeBarnDoor, WipeCross, WipeBox, WipeDiagonal, WipeBlindsRow, WipeStripsRow,
    PushSide, PushBar, PushStrips,
    StretchSide, StretchDiagonal, StretchZoom, StretchBox, StretchBarnDoor,
    PokerRow, CheckboardRow
};
enum Corner { LeftTop, BottomLeft, RightTop, BottomRight };

// The frame under construction: the area's pixels and the two pictures it is made from.
struct Frame {
    const QImage& from;
    const QImage& to;
    double p;
    qreal ratio;
    QImage image;
    QPainter painter;
    int w;
    int h;

    Frame(const QImage& oldArea, const QImage& newArea, double progress, qreal pixelRatio)
        : from(oldArea), to(newArea), p(progress), ratio(pixelRatio), image(oldArea.copy()), w(oldArea.width()),
          h(oldArea.height())
    {
        painter.begin(&image);
        painter.setCompositionMode(QPainter::CompositionMode_Source);
    }

    int Of(int length) const { return int(std::lround(p * length)); }
    int Rest(int length) const { return length - Of(length); }

    // A part of a picture at a place, cut to a clip; same size, so a plain copy.
    void Put(const QImage& picture, const QRect& source, QPoint at, const QRect& clip)
    {
        painter.setClipRect(clip);
        painter.drawImage(at, picture, source);
        painter.setClipping(false);
    }
    void Put(const QImage& picture, const QRect& source, QPoint at) { Put(picture, source, at, source); }
    // A part of the new picture where it belongs. An empty part draws nothing: QPainter reads an
    // empty source as "to the picture's edge" and would copy whole bands.
    void Reveal(const QRect& rect)
    {
        if (!rect.isEmpty())
            painter.drawImage(rect.topLeft(), to, rect);
    }
    // A part of a picture scaled into a rectangle.
    void Scale(const QImage& picture, const QRect& source, const QRect& target)
    {
        if (!target.isEmpty())
            painter.drawImage(target, picture, source);
    }
    QImage Done()
    {
        painter.end();
        return std::move(image);
    }
};

QImage Whole(const QImage& picture)
{
    return picture.copy();
}

// Cuts a length into n parts whose ends are rounded, so the parts cover it exactly.
int Cut(int length, int part, int n)
{
    return int(std::lround(double(length) * part / n));
}

// ---- Slide: the new picture moves in over the old one --------------------------------------------

void SlideHalves(Frame& f, bool horizontal, bool firstFromStart)
{
    const int shift = horizontal ? f.Rest(f.w) : f.Rest(f.h);
    const QRect first = horizontal ? QRect(0, 0, f.w, f.h / 2) : QRect(0, 0, f.w / 2, f.h);
    const QRect second = horizontal ? QRect(0, f.h / 2, f.w, f.h - f.h / 2) : QRect(f.w / 2, 0, f.w - f.w / 2, f.h);
    const int a = firstFromStart ? -shift : shift;
    const QPoint firstAt = horizontal ? QPoint(a, 0) : QPoint(0, a);
    const QPoint secondAt = horizontal ? QPoint(-a, 0) : QPoint(0, -a);
    f.Put(f.to, first, first.topLeft() + firstAt, first);
    f.Put(f.to, second, second.topLeft() + secondAt, second);
}

void SlideDoors(Frame& f, bool horizontal, bool closing)
{
    const int half = horizontal ? f.w / 2 : f.h / 2;
    const int length = horizontal ? f.w : f.h;
    const int shift = int(std::lround((1.0 - f.p) * (closing ? half : length - half)));
    const QRect first = horizontal ? QRect(0, 0, half, f.h) : QRect(0, 0, f.w, half);
    const QRect second = horizontal ? QRect(half, 0, f.w - half, f.h) : QRect(0, half, f.w, f.h - half);
    // Closing doors come from the edges; opening ones come out of the middle line.
    const int a = closing ? -shift : shift;
    const QPoint firstAt = horizontal ? QPoint(a, 0) : QPoint(0, a);
    const QPoint secondAt = horizontal ? QPoint(-a, 0) : QPoint(0, -a);
    f.Put(f.to, first, first.topLeft() + firstAt, closing ? QRect(0, 0, f.w, f.h) : first);
    f.Put(f.to, second, second.topLeft() + secondAt, closing ? QRect(0, 0, f.w, f.h) : second);
}

std::array<QRect, 4> Quadrants(int w, int h)
{
    const int cx = w / 2;
    const int cy = h / 2;
    return {QRect(0, 0, cx, cy), QRect(cx, 0, w - cx, cy), QRect(0, cy, cx, h - cy), QRect(cx, cy, w - cx, h - cy)};
}

void SlideCrossing(Frame& f, bool outside)
{
    const int dx = int(std::lround((1.0 - f.p) * f.w / 2));
    const int dy = int(std::lround((1.0 - f.p) * f.h / 2));
    const auto quads = Quadrants(f.w, f.h);
    const QPoint away[4] = {{-dx, -dy}, {dx, -dy}, {-dx, dy}, {dx, dy}};
    for (int i = 0; i < 4; ++i) {
        // From outside each quarter comes from its corner; from inside, out of the centre.
        const QPoint offset = outside ? away[i] : -away[i];
        f.Put(f.to, quads[size_t(i)], quads[size_t(i)].topLeft() + offset,
              outside ? QRect(0, 0, f.w, f.h) : quads[size_t(i)]);
    }
}

QPoint SideOffset(const Frame& f, int side)
{
    switch (side) {
    case Left: return {-f.Rest(f.w), 0};
    case Right: return {f.Rest(f.w), 0};
    case Top: return {0, -f.Rest(f.h)};
    default: return {0, f.Rest(f.h)};
    }
}

QPoint CornerOffset(const Frame& f, int corner)
{
    const int x = f.Rest(f.w);
    const int y = f.Rest(f.h);
    switch (corner) {
    case LeftTop: return {-x, -y};
    case BottomLeft: return {-x, y};
    case RightTop: return {x, -y};
    default: return {x, y};
    }
}

QImage SlideFrame(Frame f, int row, int detail)
{
    const QRect all(0, 0, f.w, f.h);
    switch (row) {
    case SlideBar: SlideHalves(f, detail < 2, detail % 2 == 0); break;
    case SlideBarnDoor: SlideDoors(f, detail < 2, detail % 2 == 0); break;
    case SlideCross: SlideCrossing(f, detail == 0); break;
    case SlideSide: f.Put(f.to, all, SideOffset(f, detail), all); break;
    default: f.Put(f.to, all, CornerOffset(f, detail), all); break;
    }
    return f.Done();
}

// ---- Wipe: the new picture stands still and is uncovered ------------------------------------------

QRect SideBand(const Frame& f, int side)
{
    switch (side) {
    case Left: return {0, 0, f.Of(f.w), f.h};
    case Right: return {f.w - f.Of(f.w), 0, f.Of(f.w), f.h};
    case Top: return {0, 0, f.w, f.Of(f.h)};
    default: return {0, f.h - f.Of(f.h), f.w, f.Of(f.h)};
    }
}

QRect CentredBox(int w, int h, int bw, int bh)
{
    return {(w - bw) / 2, (h - bh) / 2, bw, bh};
}

QRect CornerBox(int w, int h, int corner, int bw, int bh)
{
    switch (corner) {
    case LeftTop: return {0, 0, bw, bh};
    case BottomLeft: return {0, h - bh, bw, bh};
    case RightTop: return {w - bw, 0, bw, bh};
    default: return {w - bw, h - bh, bw, bh};
    }
}

// Lines t + 20k open in round t, so every blind of the period opens at once.
void WipeBlinds(Frame& f, bool horizontal)
{
    const int thick = std::max(1, int(std::ceil(f.ratio)));
    const int period = kBlindsRounds * thick;
    const int rounds = std::min(kBlindsRounds, int(std::floor(f.p * kBlindsRounds + 1e-9)));
    const int length = horizontal ? f.h : f.w;
    for (int start = 0; start < length; start += period) {
        const int open = std::min(rounds * thick, length - start);
        f.Reveal(horizontal ? QRect(0, start, f.w, open) : QRect(start, 0, open, f.h));
    }
}

// Five strips opening from alternate ends.
void WipeStrips(Frame& f, bool horizontal)
{
    for (int i = 0; i < kStrips; ++i) {
        const int a = Cut(horizontal ? f.h : f.w, i, kStrips);
        const int b = Cut(horizontal ? f.h : f.w, i + 1, kStrips);
        const int along = horizontal ? f.w : f.h;
        const int open = f.Of(along);
        const int from = i % 2 == 0 ? 0 : along - open;
        f.Reveal(horizontal ? QRect(from, a, open, b - a) : QRect(a, from, b - a, open));
    }
}

QImage WipeFrame(Frame f, int row, int detail)
{
    const bool horizontal = detail == 0;
    switch (row) {
    case WipeSide: f.Reveal(SideBand(f, detail)); break;
    case WipeBar: f.Reveal(horizontal ? CentredBox(f.w, f.h, f.w, f.Of(f.h)) : CentredBox(f.w, f.h, f.Of(f.w), f.h)); break;
    case WipeBarnDoor:
        if (horizontal) {
            f.Reveal(QRect(0, 0, f.Of(f.w / 2), f.h));
            f.Reveal(QRect(f.w - f.Of(f.w - f.w / 2), 0, f.Of(f.w - f.w / 2), f.h));
        } else {
            f.Reveal(QRect(0, 0, f.w, f.Of(f.h / 2)));
            f.Reveal(QRect(0, f.h - f.Of(f.h - f.h / 2), f.w, f.Of(f.h - f.h / 2)));
        }
        break;
    case WipeCross:
        if (detail == 1) {
            f.Reveal(CentredBox(f.w, f.h, f.w, f.Of(f.h)));
            f.Reveal(CentredBox(f.w, f.h, f.Of(f.w), f.h));
        } else {
            for (int corner = 0; corner < 4; ++corner)
                f.Reveal(CornerBox(f.w, f.h, corner, f.Of((f.w + 1) / 2), f.Of((f.h + 1) / 2)));
        }
        break;
    case WipeBox:
        if (detail == 1) {
            f.Reveal(CentredBox(f.w, f.h, f.Of(f.w), f.Of(f.h)));
        } else {
            // The old picture shrinks to a box in the middle as the frame around it opens.
            f.Reveal(QRect(0, 0, f.w, f.h));
            const QRect box = CentredBox(f.w, f.h, f.Rest(f.w), f.Rest(f.h));
            f.painter.drawImage(box.topLeft(), f.from, box);
        }
        break;
    case WipeDiagonal: f.Reveal(CornerBox(f.w, f.h, detail, f.Of(f.w), f.Of(f.h))); break;
    case WipeBlindsRow: WipeBlinds(f, horizontal); break;
    default: WipeStrips(f, horizontal); break;
    }
    return f.Done();
}

// ---- Push: the old picture moves out as the new one enters beside it ----------------------------

void PushBand(Frame& f, const QRect& band, QPoint newAt, QPoint oldAt)
{
    f.Put(f.from, band, band.topLeft() + oldAt, band);
    f.Put(f.to, band, band.topLeft() + newAt, band);
}

QPoint Along(bool horizontal, int value)
{
    return horizontal ? QPoint(value, 0) : QPoint(0, value);
}

// Bands across the area, each pushed from alternate ends.
void PushBands(Frame& f, bool horizontal, int bands)
{
    const int length = horizontal ? f.w : f.h;
    const int moved = f.Of(length);
    for (int i = 0; i < bands; ++i) {
        const int a = Cut(horizontal ? f.h : f.w, i, bands);
        const int b = Cut(horizontal ? f.h : f.w, i + 1, bands);
        const QRect band = horizontal ? QRect(0, a, f.w, b - a) : QRect(a, 0, b - a, f.h);
        const int sign = i % 2 == 0 ? 1 : -1;
        PushBand(f, band, Along(horizontal, sign * (moved - length)), Along(horizontal, sign * moved));
    }
}

QImage PushFrame(Frame f, int row, int detail)
{
    const QRect all(0, 0, f.w, f.h);
    switch (row) {
    case PushSide: {
        const QPoint in = SideOffset(f, detail);
        const bool horizontal = detail < 2;
        const int length = horizontal ? f.w : f.h;
        const int sign = (detail == Left || detail == Top) ? 1 : -1;
        PushBand(f, all, in, Along(horizontal, sign * (length - f.Rest(length))));
        break;
    }
    case PushBar: PushBands(f, detail == 0, 2); break;
    default: PushBands(f, detail == 0, kStrips); break;
    }
    return f.Done();
}

// ---- Stretch: the new picture grows from nothing to the whole area --------------------------------

QImage StretchFrame(Frame f, int row, int detail)
{
    const QRect all(0, 0, f.w, f.h);
    switch (row) {
    case StretchSide: f.Scale(f.to, all, SideBand(f, detail)); break;
    case StretchDiagonal: f.Scale(f.to, all, CornerBox(f.w, f.h, detail, f.Of(f.w), f.Of(f.h))); break;
    case StretchZoom:
        if (detail == 1) {
            f.Scale(f.to, all, CentredBox(f.w, f.h, f.Of(f.w), f.Of(f.h)));
        } else {
            // The old picture shrinks away into the middle, the new one stands behind it.
            f.Reveal(all);
            f.Scale(f.from, all, CentredBox(f.w, f.h, f.Rest(f.w), f.Rest(f.h)));
        }
        break;
    case StretchBox: {
        const auto quads = Quadrants(f.w, f.h);
        static constexpr int kCornerOfQuadrant[4] = {LeftTop, RightTop, BottomLeft, BottomRight};
        if (detail == 0) {
            for (int corner = 0; corner < 4; ++corner) {
                const QRect& q = quads[size_t(corner)];
                f.Scale(f.to, q, CornerBox(f.w, f.h, kCornerOfQuadrant[corner], f.Of(q.width()), f.Of(q.height())));
            }
        } else {
            // The old picture's quarters are squeezed into their corners.
            f.Reveal(all);
            for (int corner = 0; corner < 4; ++corner) {
                const QRect& q = quads[size_t(corner)];
                f.Scale(f.from, q,
                        CornerBox(f.w, f.h, kCornerOfQuadrant[corner], f.Rest(q.width()), f.Rest(q.height())));
            }
        }
        break;
    }
    default: {
        // Two doors open out of the middle line, each half stretched from it.
        const bool horizontal = detail == 0;
        const int half = horizontal ? f.w / 2 : f.h / 2;
        const int other = (horizontal ? f.w : f.h) - half;
        const QRect first = horizontal ? QRect(0, 0, half, f.h) : QRect(0, 0, f.w, half);
        const QRect second = horizontal ? QRect(half, 0, other, f.h) : QRect(0, half, f.w, other);
        f.Scale(f.to, first,
                horizontal ? QRect(half - f.Of(half), 0, f.Of(half), f.h) : QRect(0, half - f.Of(half), f.w, f.Of(half)));
        f.Scale(f.to, second, horizontal ? QRect(half, 0, f.Of(other), f.h) : QRect(0, half, f.w, f.Of(other)));
        break;
    }
    }
    return f.Done();
}

// ---- Poker: the two halves turn over like cards, old face first, new face after --------------------

QImage PokerFrame(Frame f, int detail)
{
    const bool sideBySide = detail == 0;  // "Vertical": a left and a right card
    const QRect halves[2] = {sideBySide ? QRect(0, 0, f.w / 2, f.h) : QRect(0, 0, f.w, f.h / 2),
                             sideBySide ? QRect(f.w / 2, 0, f.w - f.w / 2, f.h) : QRect(0, f.h / 2, f.w, f.h - f.h / 2)};
    const bool newFace = f.p >= 0.5;
    const double turn = newFace ? 2.0 * f.p - 1.0 : 1.0 - 2.0 * f.p;
    f.painter.fillRect(QRect(0, 0, f.w, f.h), Qt::black);
    for (const QRect& card : halves) {
        const int across = sideBySide ? card.width() : card.height();
        const int shown = int(std::lround(turn * across));
        const QRect face = sideBySide ? QRect(card.x() + (across - shown) / 2, 0, shown, f.h)
                                      : QRect(0, card.y() + (across - shown) / 2, f.w, shown);
        f.Scale(newFace ? f.to : f.from, card, face);
    }
    return f.Done();
}

// ---- Checkboard: five by five cells, opened in a chequered wave from an edge -----------------------

QImage CheckboardFrame(Frame f, int detail)
{
    constexpr int kSlots = 2 * kCells;  // each cell opens over two slots of the wave
    for (int r = 0; r < kCells; ++r) {
        for (int c = 0; c < kCells; ++c) {
            const int distance = detail == Left ? c : detail == Right ? kCells - 1 - c : detail == Top ? r : kCells - 1 - r;
            const int order = 2 * distance + ((r + c) & 1);
            const double q = std::clamp((f.p * (kSlots + 1) - order) / 2.0, 0.0, 1.0);
            const QRect cell(Cut(f.w, c, kCells), Cut(f.h, r, kCells), Cut(f.w, c + 1, kCells) - Cut(f.w, c, kCells),
                             Cut(f.h, r + 1, kCells) - Cut(f.h, r, kCells));
            const int ow = int(std::lround(q * cell.width()));
            const int oh = int(std::lround(q * cell.height()));
            switch (detail) {
            case Left: f.Reveal(QRect(cell.x(), cell.y(), ow, cell.height())); break;
            case Right: f.Reveal(QRect(cell.right() + 1 - ow, cell.y(), ow, cell.height())); break;
            case Top: f.Reveal(QRect(cell.x(), cell.y(), cell.width(), oh)); break;
            default: f.Reveal(QRect(cell.x(), cell.bottom() + 1 - oh, cell.width(), oh)); break;
            }
        }
    }
    return f.Done();
}

bool MovesVertically(const QString& detail)
{
    return detail == u"Top" || detail == u"Bottom" || detail.startsWith(u"Vertical");
}

} // namespace

const std::vector<EffectRow>& EffectTable()
{
    static const std::vector<EffectRow> table = {
        {QStringLiteral("Slide Bar"), kBars, EffectFamily::Slide},
        {QStringLiteral("Slide Barn Door"), kBars, EffectFamily::Slide},
        {QStringLiteral("Slide Cross"), kInOut, EffectFamily::Slide},
        {QStringLiteral("Slide Side"), kSides, EffectFamily::Slide},
        {QStringLiteral("Slide Diagonal"), kCorners, EffectFamily::Slide},
        {QStringLiteral("Wipe Side"), kSides, EffectFamily::Wipe},
        {QStringLiteral("Wipe Bar"), kAxes, EffectFamily::Wipe},
        {QStringLiteral("Wipe Barn Door"), kAxes, EffectFamily::Wipe},
        {QStringLiteral("Wipe Cross"), kInOut, EffectFamily::Wipe},
        {QStringLiteral("Wipe Box"), kInOut, EffectFamily::Wipe},
        {QStringLiteral("Wipe Diagonal"), kCorners, EffectFamily::Wipe},
        {QStringLiteral("Wipe Blinds"), kAxes, EffectFamily::Wipe},
        {QStringLiteral("Wipe Strips"), kAxes, EffectFamily::Wipe},
        {QStringLiteral("Push Side"), kSides, EffectFamily::Push},
        {QStringLiteral("Push Bar"), kAxes, EffectFamily::Push},
        {QStringLiteral("Push Strips"), kAxes, EffectFamily::Push},
        {QStringLiteral("Stretch Side"), kSides, EffectFamily::Stretch},
        {QStringLiteral("Stretch Diagonal"), kCorners, EffectFamily::Stretch},
        {QStringLiteral("Stretch Zoom"), kInOut, EffectFamily::Stretch},
        {QStringLiteral("Stretch Box"), kInOut, EffectFamily::Stretch},
        {QStringLiteral("Stretch Barn Door"), kAxes, EffectFamily::Stretch},
        {QStringLiteral("Poker"), {QStringLiteral("Vertical"), QStringLiteral("Horizontal")}, EffectFamily::Poker},
        {QStringLiteral("Custom Checkboard"), kSides, EffectFamily::Checkboard},
    };
    return table;
}

std::optional<Effect> FindEffect(const QString& name, const QString& detail)
{
    const auto& table = EffectTable();
    for (size_t row = 0; row < table.size(); ++row) {
        if (table[row].Name != name)
            continue;
        return Effect{int(row), int(std::max<qsizetype>(0, table[row].Details.indexOf(detail)))};
    }
    return std::nullopt;
}

QImage TransitionFrame(const QImage& oldArea, const QImage& newArea, const Effect& effect, double progress,
                       qreal pixelRatio)
{
    if (progress >= 1.0 || oldArea.size() != newArea.size())
        return Whole(newArea);
    if (progress <= 0.0)
        return Whole(oldArea);
    const int row = effect.Row;
    const int detail = effect.Detail;
    switch (effect.Table().Family) {
    case EffectFamily::Slide: return SlideFrame(Frame(oldArea, newArea, progress, pixelRatio), row, detail);
    case EffectFamily::Wipe: return WipeFrame(Frame(oldArea, newArea, progress, pixelRatio), row, detail);
    case EffectFamily::Push: return PushFrame(Frame(oldArea, newArea, progress, pixelRatio), row, detail);
    case EffectFamily::Stretch: return StretchFrame(Frame(oldArea, newArea, progress, pixelRatio), row, detail);
    case EffectFamily::Poker: return PokerFrame(Frame(oldArea, newArea, progress, pixelRatio), detail);
    case EffectFamily::Checkboard: return CheckboardFrame(Frame(oldArea, newArea, progress, pixelRatio), detail);
    }
    return Whole(newArea);
}

// ---- Pace ----------------------------------------------------------------------------------------

TransitionPace TransitionPace::For(const Effect& effect, QSize logicalArea, int speed)
{
    TransitionPace pace;
    const double delayFactor = 11.0 - speed;
    if (effect.Row == WipeBlindsRow) {
        pace.FrameMs = std::max(0.0, 6.0 * delayFactor);
        pace.Frames = kBlindsRounds;
        pace.StepPixels = 1;
        pace.m_unit = 1.0 / kBlindsRounds;
        pace.m_lead = 1;
        return pace;
    }
    const double raw = (logicalArea.width() / 100.0) * (logicalArea.height() / 100.0) / 70.0 * speed;
    // Under 100 pixels the raw step is below 1; the run must still move to its end.
    pace.StepPixels = std::max(1.0, std::round(raw));
    const QString& detail = effect.Table().Details[effect.Detail];
    const int extent = std::max(1, MovesVertically(detail) ? logicalArea.height() : logicalArea.width());
    pace.FrameMs = std::max(0.0, 1.5 * delayFactor);
    pace.Frames = int(std::ceil(extent / pace.StepPixels));
    pace.m_unit = pace.StepPixels / extent;
    return pace;
}

double TransitionPace::ProgressAt(double elapsedMs) const
{
    if (FrameMs <= 0)
        return 1.0;
    const double frame = std::floor(std::max(0.0, elapsedMs) / FrameMs);
    if (frame >= Frames)
        return 1.0;
    return std::min(1.0, (frame + m_lead) * m_unit);
}

Transition::Transition(QImage oldArea, QImage newArea, const Effect& effect, const TransitionPace& pace,
                       qreal pixelRatio)
    : m_old(std::move(oldArea)), m_new(std::move(newArea)), m_effect(effect), m_pace(pace), m_pixelRatio(pixelRatio)
{
}

const QImage& Transition::FrameAt(double elapsedMs)
{
    const double progress = m_pace.ProgressAt(elapsedMs);
    if (progress >= 1.0)
        return m_new;
    if (progress != m_shownProgress) {
        m_frame = TransitionFrame(m_old, m_new, m_effect, progress, m_pixelRatio);
        m_shownProgress = progress;
    }
    return m_frame;
}
