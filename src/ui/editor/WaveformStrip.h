#pragma once
// The timing editor's picture of the song: its waveform, the playhead, and each timed row as a
// mark with its text, from the whole song down to 50 ms across. A click seeks, a mark dragged
// moves its row's stamp (never past its neighbours), the wheel and Ctrl+Plus / Ctrl+Minus zoom.

#include "editor/Waveform.h"

#include <QWidget>
#include <optional>
#include <vector>

class WaveformStrip final : public QWidget {
    Q_OBJECT
public:
    explicit WaveformStrip(QWidget* parent = nullptr);

    struct Mark {
        double seconds;  // 0 for a row without a time: not drawn
        double length;   // as a held tap measured it; 0 unknown
        QString text;
        bool selected;
        bool operator==(const Mark&) const = default;
    };
    // No peaks: the strip says the song's sound is not shown.
    void SetPeaks(std::optional<WaveformPeaks> peaks);
    bool HasPeaks() const { return m_peaks.has_value(); }
    void SetMarks(std::vector<Mark> marks);
    // Where sounds start, drawn as ticks along the foot of the strip.
    void SetOnsets(std::vector<double> onsets);
    // While playing, the view moves on to keep the playhead in it.
    void SetPlayhead(double seconds, bool playing);

    // The voice band's level drawn over the waveform, where singing starts shows best.
    void SetVoiceBand(bool shown);
    bool VoiceBand() const { return m_voiceBand; }

    void ZoomBy(double factor, double aroundSeconds);
    double VisibleSeconds() const { return m_span; }
    double FirstSecond() const { return m_start; }
    double SecondsAt(int x) const;
    int XOf(double seconds) const;

signals:
    void seekRequested(double seconds);
    // A mark let go at its new place: the row from 1.
    void stampMoved(int row, double seconds);

protected:
    void paintEvent(QPaintEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

private:
    double SongSeconds() const;
    void Clamp();
    // The mark under x, within a few pixels; -1 when none.
    int MarkAt(int x) const;

    std::optional<WaveformPeaks> m_peaks;
    std::vector<Mark> m_marks;
    std::vector<double> m_onsets;
    double m_playhead = 0;
    double m_start = 0;
    double m_span = 10;
    int m_dragged = -1;  // the index into m_marks being dragged
    bool m_moved = false;
    bool m_voiceBand = false;
};
