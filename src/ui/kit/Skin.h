#pragma once
// The main window's skin: the window in its three button states (normal, hover, pressed) drawn
// from SVG, the lamp strips and the disabled strip, and the hit regions of the fifteen buttons
// taken from the shapes of their elements.

#include <QImage>
#include <QRegion>
#include <QSvgRenderer>
#include <array>
#include <map>

class Skin {
public:
    static constexpr int kButtons = 15;
    enum State { Normal = 0, Hover = 1, Pressed = 2 };

    Skin();

    QSize Size() const { return m_size; }
    // The whole window in one state, at a device pixel ratio.
    const QImage& Picture(int state, qreal dpr);
    const QImage& Lamps(bool on, qreal dpr);
    const QImage& Disabled(qreal dpr);

    // Button n (1 to 15): its shape as a region, and the box around it, in window pixels.
    const QRegion& ButtonRegion(int button) const { return m_buttons[size_t(button - 1)]; }
    QRect ButtonRect(int button) const { return ButtonRegion(button).boundingRect(); }
    // The first button whose shape holds the point; 0 for none.
    int ButtonAt(QPoint point) const;
    const QRegion& WindowRegion() const { return m_window; }
    // A named part of the picture: "caption", "display", "progress", "volume", "minimize", "close".
    QRect Element(const QString& id) const;

private:
    QRegion ShapeOf(const QString& id) const;
    static QImage Render(QSvgRenderer& renderer, QSize size, qreal dpr);
    const QImage& Cached(const QString& key, QSvgRenderer& renderer, QSize size, qreal dpr);

    std::array<QSvgRenderer, 3> m_states;
    QSvgRenderer m_lampsOff;
    QSvgRenderer m_lampsOn;
    QSvgRenderer m_disabled;
    QSize m_size;
    std::array<QRegion, kButtons> m_buttons;
    QRegion m_window;
    std::map<QString, QImage> m_pictures;
};
