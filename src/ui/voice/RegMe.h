#pragma once
// The indicator beside the main window while the voice plays or a take is recorded: a "REC"
// panel and a "VOICE" panel, each blinking while its activity runs.

#include "voice/VoiceRecorder.h"

#include <QTimer>
#include <QWidget>

struct PlayerState;

class RegMe final : public QWidget, public VoiceIndicator {
    Q_OBJECT
public:
    // `anchor` is the window the indicator stands beside.
    RegMe(const PlayerState& state, QWidget& anchor);

    void Show() override;
    void Hide() override;

    // Where the panels stand now: 0 shown, off screen while blinked away.
    int VocLeft() const { return m_vocLeft; }
    int RecoLeft() const { return m_recoLeft; }
    // One tick of the blink.
    void Blink();

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void PaintPanel(QPainter& painter, const QRectF& box, const QColor& lamp, const QString& text) const;

    const PlayerState& m_state;
    QWidget& m_anchor;
    QTimer m_timer;
    int m_vocLeft = 0;
    int m_recoLeft = 0;
};
