#pragma once
// What stands behind the lyrics: the back colour, the base picture in its layout, the timed
// picture with its border, and the transition that brings a timed picture in. The karaoke page
// draws its rows over Image().

#include "core/ThemeClass.h"
#include "karaoke/Transitions.h"
#include "lyrics/LyricsData.h"

#include <QColor>
#include <QImage>
#include <functional>
#include <optional>

class BackgroundLayer {
public:
    BackgroundLayer(const LyricsState& lyrics, const ThemeClass& theme);

    void Resize(QSize size, qreal dpr);
    void SetBackColor(const QColor& color) { m_backColor = color; }
    const QImage& Image() const { return m_background; }

    // The song's own picture, else the settings'; a song picture that cannot be shown leaves
    // the back colour.
    void LoadBasePicture();
    // The song asks for another base picture than the one loaded, or none could be loaded.
    bool BasePictureStale() const;

    // Loads the timed picture of the song's picture row; one that cannot be read is dropped.
    void LoadTimedPicture(int16_t picture);
    void DropTimedPicture();
    bool HasTimedPicture() const { return !m_timedPicture.isNull(); }
    // Where the background holds the timed picture, empty without one.
    QRect TimedPictureRect() const { return m_timedRect; }

    // The background anew, with or without the timed picture; a running transition ends.
    void Compose(bool withTimedPicture);
    // Brings the loaded timed picture in through its row's effect, else the settings' default;
    // "None" or a name not in the table shows it at once. False when nothing changed.
    bool ShowTimedPicture(int16_t picture, double nowMs);
    // The transition's frame due at nowMs; the last one ends it. True when the image changed.
    bool StepTransition(double nowMs);
    bool TransitionRunning() const { return m_transition.has_value(); }
    void EndTransition();

    // A transition wants its frames stepped every so many milliseconds; 0 when it has ended.
    std::function<void(double intervalMs)> TransitionTimer;

private:
    QImage Composed(bool withTimedPicture);
    void DrawBasePicture(QPainter& painter) const;

    const LyricsState& m_lyrics;
    const ThemeClass& m_theme;
    QSize m_size{1, 1};
    qreal m_dpr = 1.0;
    QColor m_backColor;

    QImage m_basePicture;
    QString m_basePictureName;
    QImage m_timedPicture;
    QImage m_background;
    QRect m_timedRect;
    std::optional<Transition> m_transition;
    QImage m_transitionTarget;
    QRect m_transitionArea;  // in device pixels
    double m_transitionStart = 0;
    double m_transitionProgress = -1;
};
