#pragma once
// The 23 transition effects between two timed pictures. A frame is a pure function of the old
// area, the new area, the effect, its detail and the progress from 0 to 1; the pace says when
// each frame is due, so the window's timer and swtool's simulated clock show the same frame at
// the same moment.

#include <QImage>
#include <QString>
#include <QStringList>
#include <optional>
#include <vector>

enum class EffectFamily { Slide, Wipe, Push, Stretch, Poker, Checkboard };

// One row of the effect table: the name a picture record carries and its details, in order.
struct EffectRow {
    QString Name;
    QStringList Details;
    EffectFamily Family;
};

const std::vector<EffectRow>& EffectTable();

// An effect found by its exact name; a detail that is not the effect's own takes its first.
struct Effect {
    int Row = 0;
    int Detail = 0;
    const EffectRow& Table() const { return EffectTable()[size_t(Row)]; }
};
std::optional<Effect> FindEffect(const QString& name, const QString& detail);

// The frame at a progress: 0 is the old area, 1 the new area whole. Both areas have one size and
// are taken pixel for pixel; the pixel ratio keeps the blinds 20 logical pixels apart.
QImage TransitionFrame(const QImage& oldArea, const QImage& newArea, const Effect& effect, double progress,
                       qreal pixelRatio = 1.0);

// The pace of a run: delay factor 11 - speed, a step in pixels that grows with the area, one
// frame per step along the effect's axis. "Wipe Blinds" runs 20 rounds of 6 x d ms instead.
struct TransitionPace {
    double StepPixels = 1;
    double FrameMs = 0;
    int Frames = 1;  // frames after the first; the last one is the new area whole

    static TransitionPace For(const Effect& effect, QSize logicalArea, int speed);
    double ProgressAt(double elapsedMs) const;
    double DurationMs() const { return FrameMs * Frames; }

private:
    double m_unit = 1;  // progress per frame
    int m_lead = 0;     // frames done before the first is shown
};

// A running transition: the two areas made once, the frame of any moment composed from them.
class Transition {
public:
    Transition(QImage oldArea, QImage newArea, const Effect& effect, const TransitionPace& pace, qreal pixelRatio);

    // The frame due after this much time; the new area whole once the run is over.
    const QImage& FrameAt(double elapsedMs);
    bool Finished(double elapsedMs) const { return m_pace.ProgressAt(elapsedMs) >= 1.0; }
    const TransitionPace& Pace() const { return m_pace; }

private:
    QImage m_old;
    QImage m_new;
    Effect m_effect;
    TransitionPace m_pace;
    qreal m_pixelRatio;
    double m_shownProgress = -1;
    QImage m_frame;
};
