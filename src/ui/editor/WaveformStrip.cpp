#include "ui/editor/WaveformStrip.h"

#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>

namespace {

constexpr double kShortestSpan = 0.05;
constexpr int kGrip = 4;  // pixels either side of a mark that take it
const QColor kBack(18, 22, 36);
const QColor kWave(96, 150, 220);
const QColor kMark(230, 200, 90);
const QColor kSelected(255, 120, 60);
const QColor kPlayhead(240, 240, 240);
const QColor kOnset(140, 220, 140);
const QColor kVoice(250, 160, 200, 170);

} // namespace

WaveformStrip::WaveformStrip(QWidget* parent) : QWidget(parent)
{
    setObjectName(QStringLiteral("Waveform"));
    setMinimumHeight(72);
    setFocusPolicy(Qt::ClickFocus);
    setAttribute(Qt::WA_OpaquePaintEvent);
}

void WaveformStrip::SetPeaks(std::optional<WaveformPeaks> peaks)
{
    m_peaks = std::move(peaks);
    m_start = 0;
    m_span = std::min(SongSeconds(), 20.0);
    Clamp();
    update();
}

void WaveformStrip::SetMarks(std::vector<Mark> marks)
{
    if (m_dragged >= 0 || marks == m_marks)
        return;
    m_marks = std::move(marks);
    update();
}

void WaveformStrip::SetVoiceBand(bool shown)
{
    m_voiceBand = shown;
    update();
}

void WaveformStrip::contextMenuEvent(QContextMenuEvent* event)
{
    QMenu menu(this);
    QAction* voice = menu.addAction(tr("Voice band"));
    voice->setCheckable(true);
    voice->setChecked(m_voiceBand);
    if (menu.exec(event->globalPos()) == voice)
        SetVoiceBand(!m_voiceBand);
}

void WaveformStrip::SetOnsets(std::vector<double> onsets)
{
    m_onsets = std::move(onsets);
    update();
}

void WaveformStrip::SetPlayhead(double seconds, bool playing)
{
    if (seconds == m_playhead)
        return;
    m_playhead = seconds;
    if (playing && m_dragged < 0 && (seconds < m_start || seconds > m_start + m_span)) {
        m_start = seconds - m_span * 0.1;
        Clamp();
    }
    update();
}

double WaveformStrip::SongSeconds() const
{
    return m_peaks ? std::max(m_peaks->Seconds(), kShortestSpan) : 10.0;
}

void WaveformStrip::Clamp()
{
    m_span = std::clamp(m_span, kShortestSpan, SongSeconds());
    m_start = std::clamp(m_start, 0.0, std::max(0.0, SongSeconds() - m_span));
}

double WaveformStrip::SecondsAt(int x) const
{
    return m_start + m_span * double(x) / std::max(1, width());
}

int WaveformStrip::XOf(double seconds) const
{
    return int(std::lround((seconds - m_start) / m_span * width()));
}

void WaveformStrip::ZoomBy(double factor, double aroundSeconds)
{
    const double share = (aroundSeconds - m_start) / m_span;
    m_span *= factor;
    Clamp();
    m_start = aroundSeconds - share * m_span;
    Clamp();
    update();
}

int WaveformStrip::MarkAt(int x) const
{
    int best = -1, bestDistance = kGrip + 1;
    for (size_t i = 0; i < m_marks.size(); ++i) {
        if (m_marks[i].seconds <= 0)
            continue;
        const int distance = std::abs(XOf(m_marks[i].seconds) - x);
        if (distance < bestDistance) {
            best = int(i);
            bestDistance = distance;
        }
    }
    return best;
}

void WaveformStrip::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.fillRect(rect(), kBack);
    const int middle = height() / 2;
    if (!m_peaks) {
        painter.setPen(kWave);
        painter.drawLine(0, middle, width(), middle);
        return;
    }
    // One column of the wave a device pixel, from the peaks of the seconds it covers.
    painter.save();
    const qreal ratio = devicePixelRatioF();
    painter.scale(1 / ratio, 1 / ratio);
    painter.setPen(kWave);
    const int columns = int(width() * ratio), half = int(height() * ratio) / 2 - 2;
    const double perColumn = m_span / std::max(1, columns);
    for (int x = 0; x < columns; ++x) {
        const double from = m_start + x * perColumn;
        const auto [low, high] = m_peaks->Range(from, from + std::max(perColumn, 1.0 / WaveformPeaks::kPeaksPerSecond));
        painter.drawLine(x, half + 2 - int(high * half), x, half + 2 - int(low * half));
    }
    if (m_voiceBand) {
        painter.setPen(kVoice);
        const int foot = int(height() * ratio);
        for (int x = 0; x < columns; ++x) {
            const double from = m_start + x * perColumn;
            const float level = m_peaks->VoiceLevel(from, from + std::max(perColumn, 1.0 / WaveformPeaks::kPeaksPerSecond));
            painter.drawLine(x, foot, x, foot - int(level * (foot - 2)));
        }
    }
    painter.restore();
    painter.setPen(kOnset);
    const auto firstOnset = std::lower_bound(m_onsets.begin(), m_onsets.end(), m_start);
    for (auto it = firstOnset; it != m_onsets.end() && *it <= m_start + m_span; ++it)
        painter.drawLine(XOf(*it), height() - 6, XOf(*it), height());
    const QFontMetrics metrics(font());
    for (const Mark& mark : m_marks) {
        if (mark.seconds <= 0 || mark.seconds < m_start || mark.seconds > m_start + m_span)
            continue;
        const int x = XOf(mark.seconds);
        painter.setPen(mark.selected ? kSelected : kMark);
        painter.drawLine(x, 0, x, height());
        if (mark.length > 0)
            painter.fillRect(QRect(QPoint(x, height() - 10), QPoint(XOf(mark.seconds + mark.length), height() - 8)),
                             mark.selected ? kSelected : kMark);
        painter.drawText(x + 3, metrics.ascent() + 1, mark.text.trimmed());
    }
    painter.setPen(kPlayhead);
    const int playhead = XOf(m_playhead);
    painter.drawLine(playhead, 0, playhead, height());
}

void WaveformStrip::wheelEvent(QWheelEvent* event)
{
    const double steps = event->angleDelta().y() / 120.0;
    ZoomBy(std::pow(0.8, steps), SecondsAt(int(event->position().x())));
    event->accept();
}

void WaveformStrip::keyPressEvent(QKeyEvent* event)
{
    if (event->modifiers() & Qt::ControlModifier && (event->key() == Qt::Key_Plus || event->key() == Qt::Key_Equal))
        ZoomBy(0.5, m_playhead >= m_start && m_playhead <= m_start + m_span ? m_playhead : m_start + m_span / 2);
    else if (event->modifiers() & Qt::ControlModifier && event->key() == Qt::Key_Minus)
        ZoomBy(2.0, m_playhead >= m_start && m_playhead <= m_start + m_span ? m_playhead : m_start + m_span / 2);
    else
        QWidget::keyPressEvent(event);
}

void WaveformStrip::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton)
        return;
    m_dragged = MarkAt(int(event->position().x()));
    m_moved = false;
    if (m_dragged < 0)
        emit seekRequested(std::max(0.0, SecondsAt(int(event->position().x()))));
}

void WaveformStrip::mouseMoveEvent(QMouseEvent* event)
{
    if (m_dragged < 0)
        return;
    std::vector<double> stamps;
    stamps.reserve(m_marks.size());
    for (const Mark& mark : m_marks)
        stamps.push_back(mark.seconds);
    m_marks[size_t(m_dragged)].seconds = DraggedStamp(stamps, m_dragged, SecondsAt(int(event->position().x())));
    m_moved = true;
    update();
}

void WaveformStrip::mouseReleaseEvent(QMouseEvent*)
{
    const int dragged = m_dragged;
    m_dragged = -1;
    if (dragged >= 0 && m_moved)
        emit stampMoved(dragged + 1, m_marks[size_t(dragged)].seconds);
}
