#pragma once
// The karaoke page without a window: the composed frame, the rows of the current page and the
// title over the background layer, driven by the timeline. The window shows its frame; swtool renders
// it to files.

#include "core/ThemeClass.h"
#include "karaoke/BackgroundLayer.h"
#include "karaoke/KaraokeTimeline.h"
#include "karaoke/PageLayout.h"
#include "karaoke/TextPainter.h"

#include <QImage>
#include <functional>
#include <future>
#include <vector>

// The colours and alignment in force: the song's own values, else the settings.
struct EffectiveColors {
    QColor ForeColor, HighlightColor, OutlineColor1, OutlineColor2, OutlineColor3, OutlineColor4, BackColor;
    int16_t Alignment = 0;
};

class KaraokeView final : public KaraokeSurface {
public:
    KaraokeView(LyricsState& lyrics, ThemeClass& theme, const SongClock& song);

    // Rebuilds the layers for a new client size, fits the font when the setting asks, repaints.
    void ResizeMe(QSize size, qreal dpr, bool fullScreen);
    // The words over the background; over nothing, for a video song.
    const QImage& Frame() const { return m_frame; }
    // What the window shows of `area`: the video song's picture, its shape kept on black, under
    // the frame, else the frame alone.
    void Paint(QPainter& painter, const QRect& area) const;
    // The whole of what the window shows, as an image.
    QImage Composed() const;
    KaraokeTimeline& Timeline() { return m_timeline; }
    // A tick of the song clock: the disc graphics of an MP3+G song at `position`, else the
    // timeline's syllables and the video song's frame.
    void Tick(double& position);

    // The window's hooks: the part of the frame that changed, and the end-of-song timer.
    std::function<void(const QRect&)> Changed;
    std::function<void(bool enabled)> LastTimerSwitch;
    // A transition wants its frames stepped every so many milliseconds; 0 when it has ended.
    std::function<void(double intervalMs)> TransitionTimer;
    // Milliseconds on a steady clock; swtool sets its simulated one.
    std::function<double()> Clock;

    void ChangeLyrics();
    void ClearLyrics();
    void ClearNewLyrics();
    // Mode 1 only stops new syllables; any other mode also leaves the rows on the background.
    void FadeLyrics(int16_t& mode);
    void FitLyrics();
    void UpdateColors();
    // The user's settings changed while the window shows: colours, background picture and its
    // layout, font, fitting and alignment take effect on the page that shows.
    void ApplySettings();
    void SetPicture();
    void IncFont();
    void DecFont();
    void OffsetIn();
    void OffsetOut();
    // Rasterises the lines the next pages will show, on a worker, one line after the other; a
    // page takes each line as soon as it is ready. The window runs it after every syllable.
    void PrepareUpcoming();
    // The worker is still rasterising lines ahead.
    bool PreparingLines() const;
    // The window's own repaint: the page that stands, the title, or only the background from
    // 8 seconds after the last syllable.
    void Repaint();
    // The frame of the running transition that is due now; the last one ends it.
    void StepTransition();
    bool TransitionRunning() const { return m_back.TransitionRunning(); }
    // Where the timed picture stands, empty without one.
    QRect TimedPictureRect() const { return m_back.TimedPictureRect(); }

    int FontSize() const { return m_fontSize; }
    QFont Font() const;
    const EffectiveColors& Colors() const { return m_colors; }
    QRect BlockRect() const { return m_lastBlock; }

    // KaraokeSurface
    bool CanPaint() const override;
    bool WindowReady() const override { return m_ready; }
    void PaintPage(int32_t index, bool jump) override;
    void PaintTitle() override { PaintTitle(false); }
    void PaintTitle(bool force);
    void Restore() override;
    void SetLastTimer(bool enabled) override;
    void ChangePic(int16_t picture) override;
    void ShowPicture(int16_t picture) override;
    void DropPicture() override;
    void SetBackground(bool useDefault) override;
    void ClearRows() override;

private:
    int RowHeight() const;
    int BlockTop(int rows) const;
    void DrawPage();
    // The disc graphics at a song second, scaled to the window with their shape kept; only the
    // part that changed since the last tick is drawn again.
    void DrawGraphics(double position);
    bool LightNextSyllable();
    void DrawRow(const PageRow& row, int y, bool current);
    void DrawBall(int x, int y, const QString& line);
    void ResetFrame();
    void RepairLastBlock();
    void Show(const QRect& rect);
    int FitWidth(const QString& text, int size) const;
    // Lines mode, or lyrics timed by whole lines: a line lights at once.
    bool LightsLines() const;
    // Takes the lines the worker has finished into the painter's cache, waiting for none.
    void AdoptPreparedLines();

    LyricsState& m_lyrics;
    ThemeClass& m_theme;
    const SongClock& m_song;
    KaraokeTimeline m_timeline;
    PageLayout m_layout;
    TextPainter m_painter;
    BackgroundLayer m_back;

    QSize m_size;
    qreal m_dpr = 1.0;
    bool m_fullScreen = false;
    bool m_ready = false;
    bool m_painting = false;
    bool m_titleShown = false;
    bool m_pageShown = false;
    int m_fontSize = 20;
    EffectiveColors m_colors;

    QImage m_frame;
    Page m_page;
    Page m_shownPage;  // what the frame holds
    int32_t m_pageIndex = 0;
    QRect m_lastBlock;
    QImage m_shownGraphics;  // the disc graphics on the frame, unscaled; null when none are
    std::vector<std::future<PreparedImages>> m_preparedLines;
    std::future<void> m_preparer;  // waited for when the view goes
};
