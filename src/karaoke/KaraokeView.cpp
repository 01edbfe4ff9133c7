#include "karaoke/KaraokeView.h"

#include "cdg/CdgScreen.h"
#include "core/Colors.h"
#include "karaoke/PicturePlacing.h"
#include "video/VideoStream.h"

#include <QFontMetrics>
#include <QPainter>
#include <algorithm>
#include <chrono>

namespace {

// The smallest rectangle that holds every pixel that differs; the whole of `after` when there
// is nothing to compare with.
QRect ChangedArea(const QImage& before, const QImage& after)
{
    if (before.size() != after.size() || before.format() != after.format())
        return after.rect();
    QRect changed;
    for (int y = 0; y < after.height(); ++y) {
        const auto* a = reinterpret_cast<const QRgb*>(before.constScanLine(y));
        const auto* b = reinterpret_cast<const QRgb*>(after.constScanLine(y));
        if (std::equal(a, a + after.width(), b))
            continue;
        int left = 0, right = after.width() - 1;
        while (a[left] == b[left])
            ++left;
        while (a[right] == b[right])
            --right;
        changed |= QRect(left, y, right - left + 1, 1);
    }
    return changed;
}

constexpr int kRowExtra = 9;
constexpr int kBlockInset = 8;
constexpr int kFramedTop = 20;
constexpr int kFramedBottom = 17;
constexpr int kTextInset = 4;
constexpr int kBottomClip = 8;
constexpr double kClearAfterLastSeconds = 8.0;
constexpr int kLargestFontSize = 1000;
constexpr int kLinesAhead = 5;

QColor Effective(int32_t song, int32_t setting)
{
    return ColorFromWin32(song != -1 ? song : setting);
}

int16_t Narrow(int value)
{
    return int16_t(std::clamp(value, -32768, 32767));
}

// The x of a row's box: the text and its 9 pixels of rim centred in the window.
int RowX(int clientWidth, int textWidth)
{
    return Narrow(clientWidth / 2 - (textWidth + kRowExtra) / 2);
}

} // namespace

KaraokeView::KaraokeView(LyricsState& lyrics, ThemeClass& theme, const SongClock& song)
    : m_lyrics(lyrics), m_theme(theme), m_song(song),
      m_timeline(lyrics, *this, song, [&theme] { return theme.LyricsOffset(); }),
      m_back(lyrics, theme),
      m_fontSize(theme.LyricsFontSize)
{
    m_back.TransitionTimer = [this](double intervalMs) {
        if (TransitionTimer)
            TransitionTimer(intervalMs);
    };
    Clock = [] {
        return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now().time_since_epoch()).count();
    };
    UpdateColors();
    SetPicture();
}

QFont KaraokeView::Font() const
{
    QFont font = m_theme.LyricsFontFace();
    font.setPointSize(std::max(1, m_fontSize));
    return font;
}

bool KaraokeView::CanPaint() const
{
    return m_ready && !m_frame.isNull() && !m_painting;
}

bool KaraokeView::LightsLines() const
{
    return m_theme.LyricsMode || m_lyrics.PlayLyrics[0].LineTimed;
}

void KaraokeView::UpdateColors()
{
    const LyricItem& song = m_lyrics.PlayLyrics[0];
    m_colors.ForeColor = Effective(song.ForeColor, m_theme.LyricsColor);
    m_colors.HighlightColor = Effective(song.HighlightColor, m_theme.LyricsHighlightColor);
    m_colors.OutlineColor1 = Effective(song.OutlineColor1, m_theme.LyricsOutlineColor1);
    m_colors.OutlineColor2 = Effective(song.OutlineColor2, m_theme.LyricsOutlineColor2);
    m_colors.OutlineColor3 = Effective(song.OutlineColor3, m_theme.LyricsOutlineColor3);
    m_colors.OutlineColor4 = Effective(song.OutlineColor4, m_theme.LyricsOutlineColor4);
    m_colors.BackColor = Effective(song.BackColor, m_theme.LyricsBackColor);
    m_back.SetBackColor(m_colors.BackColor);
    m_colors.Alignment = song.Alignment != -1 ? song.Alignment : m_theme.LyricsAlignment;
}

void KaraokeView::ApplySettings()
{
    UpdateColors();
    SetPicture();
    m_fontSize = m_theme.LyricsFontSize;
    if (m_theme.LyricsFitFont)
        FitLyrics();
    SetBackground(!m_back.HasTimedPicture());
}

void KaraokeView::ResizeMe(QSize size, qreal dpr, bool fullScreen)
{
    m_size = size.expandedTo(QSize(1, 1));
    m_dpr = dpr;
    m_fullScreen = fullScreen;
    m_frame = QImage(m_size * m_dpr, QImage::Format_ARGB32_Premultiplied);
    m_frame.setDevicePixelRatio(m_dpr);
    m_lastBlock = {};
    m_back.Resize(m_size, m_dpr);
    if (m_lyrics.Video)
        m_lyrics.Video->SetTargetSize(m_frame.size());
    m_ready = true;
    if (m_theme.LyricsFitFont)
        FitLyrics();
    SetBackground(!m_back.HasTimedPicture());
}

// ---- The timeline's page -----------------------------------------------------------------------

int KaraokeView::RowHeight() const
{
    return Narrow(QFontMetrics(Font()).height() + kRowExtra);
}

int KaraokeView::BlockTop(int rows) const
{
    const int h = RowHeight();
    const int top = m_fullScreen ? 0 : kFramedTop;
    const int bottom = m_fullScreen ? 0 : kFramedBottom;
    switch (m_colors.Alignment) {
    case 1: return kBlockInset + top;
    case 2: return m_size.height() - rows * h - kBlockInset - bottom;
    default: return m_size.height() / 2 - rows * h / 2;
    }
}

void KaraokeView::PaintPage(int32_t index, bool jump)
{
    if (index == 0) {
        PaintTitle(false);
        return;
    }
    m_painting = true;
    m_titleShown = false;
    AdoptPreparedLines();
    if (jump)
        m_timeline.Fading = false;
    m_page = m_layout.Compose(m_lyrics.PlayLyrics, index, jump, m_theme.DisplayMode);
    m_pageIndex = index;
    if (index == int32_t(m_lyrics.PlayLyrics.size()) - 1)
        SetLastTimer(true);
    DrawPage();
    m_painting = false;
}

void KaraokeView::DrawPage()
{
    if (m_pageShown && LightNextSyllable())
        return;
    // After the title or a cleared screen the whole page is rebuilt, else only the last block.
    const QRect old = m_pageShown ? m_lastBlock : QRect(QPoint(0, 0), m_size);
    if (m_pageShown)
        RepairLastBlock();
    else
        ResetFrame();
    const int rows = int(m_page.Rows.size());
    const int h = RowHeight();
    const int top = BlockTop(rows);
    for (int row = 0; row < rows; ++row)
        DrawRow(m_page.Rows[size_t(row)], top + row * h, m_page.Rows[size_t(row)].Current);
    m_lastBlock = QRect(0, top, m_size.width(), rows * h + kBlockInset);
    m_pageShown = true;
    m_shownPage = m_page;
    Show(old.united(m_lastBlock));
}

// Within a line only the lit prefix grows: the new syllable is lit over the glyphs already on
// screen, which gives the very pixels of a full redraw. Anything else redraws the block.
bool KaraokeView::LightNextSyllable()
{
    const Page& shown = m_shownPage;
    if (m_theme.LyricsShowBall || shown.Rows.size() != m_page.Rows.size() || !m_page.SungText.startsWith(shown.SungText))
        return false;
    int current = -1;
    for (size_t i = 0; i < m_page.Rows.size(); ++i) {
        const PageRow& a = shown.Rows[i];
        const PageRow& b = m_page.Rows[i];
        if (a.Text != b.Text || a.Current != b.Current || a.Sung != b.Sung)
            return false;
        if (b.Current)
            current = int(i);
    }
    if (current < 0)
        return false;
    const QString litBefore = shown.SungText;
    m_shownPage = m_page;
    if (LightsLines())
        return true;  // the whole line is lit already

    const QFont font = Font();
    const QFontMetrics metrics(font);
    const QString& line = m_page.Rows[size_t(current)].Text;
    const int x = RowX(m_size.width(), metrics.horizontalAdvance(line)) + kTextInset;
    const int y = BlockTop(int(m_page.Rows.size())) + current * RowHeight() + kTextInset;
    const int from = metrics.horizontalAdvance(litBefore);
    const int to = metrics.horizontalAdvance(m_page.SungText);
    m_painter.DrawText(m_frame, line, font, m_colors.HighlightColor, x, y, to, from);
    Show(QRect(x + from, y, to - from + 1, RowHeight()));
    return true;
}

void KaraokeView::DrawRow(const PageRow& row, int y, bool current)
{
    if (row.Text.isEmpty())
        return;
    const QFont font = Font();
    const QFontMetrics metrics(font);
    const int x = RowX(m_size.width(), metrics.horizontalAdvance(row.Text));
    m_painter.OutlineText(m_frame, row.Text, font, m_colors.OutlineColor1, m_theme.LyricsOutlineWidth, x, y,
                          m_size.height() - kBottomClip);
    const int tx = x + kTextInset;
    const int ty = y + kTextInset;
    const bool linesMode = LightsLines();
    if (current && !linesMode) {
        m_painter.DrawText(m_frame, row.Text, font, m_colors.ForeColor, tx, ty);
        m_painter.DrawText(m_frame, row.Text, font, m_colors.HighlightColor, tx, ty,
                           metrics.horizontalAdvance(m_page.SungText));
    } else {
        const bool highlight = current || (linesMode && row.Sung);
        m_painter.DrawText(m_frame, row.Text, font, highlight ? m_colors.HighlightColor : m_colors.ForeColor, tx, ty);
    }
    if (current && m_theme.LyricsShowBall)
        DrawBall(x, y, row.Text);
}

// The ball marks the line, or in two-line syllable mode jumps to the syllable being sung.
void KaraokeView::DrawBall(int x, int y, const QString& line)
{
    const QFont font = Font();
    const QFontMetrics metrics(font);
    const int th = metrics.boundingRect(line).height();
    const bool linesMode = LightsLines();
    const int cx = !linesMode && m_theme.DisplayMode == int16_t(DisplayModes::TwoLines)
                       ? x + 3 + metrics.horizontalAdvance(m_page.SungText) - metrics.horizontalAdvance(m_page.Syllable)
                             + metrics.height() / 4
                       : x - th / 2;
    const int cy = y + th / 2 + 3;
    const int r = th / 6;
    QPainter painter(&m_frame);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(m_colors.OutlineColor1, 2));
    painter.setBrush(ColorFromWin32(m_theme.LyricsBallColor));
    painter.drawEllipse(QPoint(cx, cy), r, r);
}

// The frame back to the plain background; nothing of a page stands on it.
void KaraokeView::ResetFrame()
{
    m_frame = m_back.Image().copy();
    m_lastBlock = {};
    m_shownPage = {};
    m_shownGraphics = QImage();
}

void KaraokeView::RepairLastBlock()
{
    if (m_lastBlock.isEmpty())
        return;
    QPainter painter(&m_frame);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    const QRectF device(m_lastBlock.x() * m_dpr, m_lastBlock.y() * m_dpr, m_lastBlock.width() * m_dpr,
                        m_lastBlock.height() * m_dpr);
    painter.drawImage(QRectF(m_lastBlock), m_back.Image(), device);
}

void KaraokeView::Show(const QRect& rect)
{
    if (Changed)
        Changed(rect.intersected(QRect(QPoint(0, 0), m_size)));
}

void KaraokeView::PaintTitle(bool force)
{
    const QString& title = m_lyrics.LyricsTitleText;
    if (!m_ready || title.isEmpty() || !m_theme.ShowLyricsTitle || (m_titleShown && !force))
        return;
    const QStringList parts = title.split(u'|');
    QFont font = Font();
    auto widest = [&] {
        const QFontMetrics metrics(font);
        int width = 0;
        for (const QString& part : parts)
            width = std::max(width, metrics.horizontalAdvance(part));
        return width;
    };
    while (widest() > m_size.width() * 3 / 4 && font.pointSize() > 1)
        font.setPointSize(font.pointSize() - 1);

    ResetFrame();
    const QFontMetrics metrics(font);
    const int h = metrics.height() + kRowExtra;
    const int top = m_size.height() / 2 - int(parts.size()) * h / 2;
    for (qsizetype i = 0; i < parts.size(); ++i) {
        const int x = RowX(m_size.width(), metrics.horizontalAdvance(parts[i]));
        const int y = top + int(i) * h;
        m_painter.OutlineText(m_frame, parts[i], font, m_colors.OutlineColor1, m_theme.LyricsOutlineWidth, x, y,
                              m_size.height() - kBottomClip);
        m_painter.DrawText(m_frame, parts[i], font, i == 0 ? m_colors.ForeColor : m_colors.HighlightColor,
                           x + kTextInset, y + kTextInset);
    }
    m_pageShown = false;
    m_titleShown = true;
    Show(QRect(QPoint(0, 0), m_size));
}

void KaraokeView::Restore()
{
    if (m_back.Image().isNull())
        return;
    ResetFrame();
    m_pageShown = false;
    m_titleShown = false;
    Show(QRect(QPoint(0, 0), m_size));
}

void KaraokeView::SetLastTimer(bool enabled)
{
    if (LastTimerSwitch)
        LastTimerSwitch(enabled);
}

void KaraokeView::ClearRows()
{
    m_layout.ClearRows();
}

void KaraokeView::PrepareUpcoming()
{
    AdoptPreparedLines();
    const auto& lyrics = m_lyrics.PlayLyrics;
    const int32_t last = int32_t(lyrics.size()) - 1;
    if (!m_ready || m_pageIndex > last || PreparingLines())
        return;
    // The lines that the next pages bring onto the rows; before the first page, the first lines.
    const QFont font = Font();
    std::vector<std::packaged_task<PreparedImages()>> tasks;
    int32_t i = std::max(1, m_pageIndex);
    for (int lines = 0; lines < kLinesAhead && i <= last; ++lines) {
        if (auto job = m_painter.PrepareJob(lyrics[size_t(i)].LineText, font, m_colors.ForeColor,
                                            m_colors.HighlightColor, m_colors.OutlineColor1,
                                            m_theme.LyricsOutlineWidth, m_dpr)) {
            tasks.emplace_back(std::move(job));
            m_preparedLines.push_back(tasks.back().get_future());
        }
        while (i <= last && !lyrics[size_t(i)].LineEnd)
            ++i;
        ++i;
    }
    if (!tasks.empty())
        m_preparer = std::async(std::launch::async, [tasks = std::move(tasks)]() mutable {
            for (auto& task : tasks)
                task();
        });
}

bool KaraokeView::PreparingLines() const
{
    return m_preparer.valid() && m_preparer.wait_for(std::chrono::seconds(0)) != std::future_status::ready;
}

void KaraokeView::AdoptPreparedLines()
{
    const auto ready = [](const std::future<PreparedImages>& line) {
        return line.wait_for(std::chrono::seconds(0)) == std::future_status::ready;
    };
    for (auto& line : m_preparedLines)
        if (ready(line))
            m_painter.Adopt(line.get());
    std::erase_if(m_preparedLines, [](const std::future<PreparedImages>& line) { return !line.valid(); });
}

// ---- Pictures and background ---------------------------------------------------------------------

void KaraokeView::SetPicture()
{
    m_back.LoadBasePicture();
}

void KaraokeView::ChangePic(int16_t picture)
{
    m_back.LoadTimedPicture(picture);
}

void KaraokeView::ShowPicture(int16_t picture)
{
    if (m_ready && m_back.ShowTimedPicture(picture, Clock()))
        Repaint();
}

void KaraokeView::StepTransition()
{
    if (m_back.StepTransition(Clock()))
        Repaint();
}

void KaraokeView::DropPicture()
{
    m_back.DropTimedPicture();
}

void KaraokeView::SetBackground(bool useDefault)
{
    if (!m_ready)
        return;
    m_back.Compose(!useDefault);
    Repaint();
}

// ---- Song and window events --------------------------------------------------------------------

void KaraokeView::ChangeLyrics()
{
    UpdateColors();
    if (m_back.BasePictureStale())
        SetPicture();
    DropPicture();
    if (const int16_t start = StartPicture(m_lyrics))
        ChangePic(start);
    m_layout.Reset();
    m_timeline.Restart();
    m_timeline.Fading = false;
    m_titleShown = false;
    m_pageShown = false;
    m_pageIndex = 0;
    if (m_lyrics.Video && m_ready)
        m_lyrics.Video->SetTargetSize(m_frame.size());
    SetBackground(false);
    PaintTitle(false);
    PrepareUpcoming();
}

void KaraokeView::ClearLyrics()
{
    m_layout.ClearRows();
    m_timeline.Restart();
}

void KaraokeView::ClearNewLyrics()
{
    m_layout.Reset();
    m_timeline.Restart();
    m_pageShown = false;
    SetBackground(true);
}

void KaraokeView::FadeLyrics(int16_t& mode)
{
    m_timeline.Fading = true;
    if (mode == 1 || !m_pageShown)
        return;
    for (PageRow& row : m_page.Rows)
        row.Current = false;
    DrawPage();
}

void KaraokeView::Tick(double& position)
{
    if (m_lyrics.Graphics) {
        DrawGraphics(position);
        return;
    }
    m_timeline.IsPlaying(position);
    if (m_lyrics.Video && m_lyrics.Video->Advance(position))
        Show(QRect(QPoint(0, 0), m_size));
}

void KaraokeView::Paint(QPainter& painter, const QRect& area) const
{
    const QRectF source(area.x() * m_dpr, area.y() * m_dpr, area.width() * m_dpr, area.height() * m_dpr);
    if (m_lyrics.Video) {
        painter.fillRect(area, Qt::black);
        // The frame was scaled to the window already; drawn again only while the window's new
        // size has not reached the decoder.
        if (const QImage& picture = m_lyrics.Video->Current(); !picture.isNull()) {
            painter.setRenderHint(QPainter::SmoothPixmapTransform);
            painter.drawImage(FittedInMiddle(picture.size(), m_size), picture);
        }
    }
    painter.drawImage(QRectF(area), m_frame, source);
}

QImage KaraokeView::Composed() const
{
    QImage image(m_frame.size(), QImage::Format_RGB32);
    image.setDevicePixelRatio(m_dpr);
    image.fill(Qt::black);
    QPainter painter(&image);
    Paint(painter, QRect(QPoint(0, 0), m_size));
    return image;
}

void KaraokeView::DrawGraphics(double position)
{
    if (!m_ready)
        return;
    QImage shown = CdgShownImage(m_lyrics.Graphics->ScreenAt(position));
    const QRect changed = ChangedArea(m_shownGraphics, shown);
    if (changed.isEmpty())
        return;
    const bool whole = m_shownGraphics.isNull();
    m_shownGraphics = std::move(shown);
    // The screen's place in the frame, in device pixels, its shape kept.
    const QRectF place = FittedInMiddle(m_shownGraphics.size(), m_frame.size());
    const double scale = place.width() / m_shownGraphics.width();
    // Only what changed is drawn again: the whole screen drawn through a clip is the same there
    // as drawn whole, without a seam where the scale is not whole.
    const QRect clip = whole ? QRect(QPoint(0, 0), m_frame.size())
                             : QRectF(place.x() + (changed.x() - 1) * scale, place.y() + (changed.y() - 1) * scale,
                                      (changed.width() + 2) * scale, (changed.height() + 2) * scale)
                                   .toAlignedRect()
                                   .intersected(QRect(QPoint(0, 0), m_frame.size()));
    QPainter painter(&m_frame);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.resetTransform();
    painter.scale(1 / m_dpr, 1 / m_dpr);
    painter.setClipRect(clip);
    painter.setRenderHint(QPainter::SmoothPixmapTransform, m_theme.CdgSmooth);
    if (whole)
        painter.fillRect(clip, Qt::black);
    painter.drawImage(place, m_shownGraphics);
    painter.end();
    const QRectF logical(clip.x() / m_dpr, clip.y() / m_dpr, clip.width() / m_dpr, clip.height() / m_dpr);
    Show(logical.toAlignedRect());
}

void KaraokeView::Repaint()
{
    if (!m_ready)
        return;
    if (m_lyrics.Graphics) {
        m_shownGraphics = QImage();
        DrawGraphics(m_song.Position());
        return;
    }
    ResetFrame();
    const auto& lyrics = m_lyrics.PlayLyrics;
    // The text leaves the screen 8 seconds after the last syllable.
    if (m_pageShown && lyrics.size() > 1 && m_song.Position() >= lyrics.back().Time + kClearAfterLastSeconds)
        m_pageShown = false;
    if (m_pageShown)
        DrawPage();
    else if (m_lyrics.CurrentLyric == 0)
        PaintTitle(true);
    Show(QRect(QPoint(0, 0), m_size));
}

int KaraokeView::FitWidth(const QString& text, int size) const
{
    QFont font = Font();
    font.setPointSize(size);
    return QFontMetrics(font).horizontalAdvance(text) + 16;
}

void KaraokeView::FitLyrics()
{
    if (m_lyrics.LongestLine.isEmpty()) {
        m_fontSize = m_theme.LyricsFontSize;
        return;
    }
    const QString text = m_lyrics.LongestLine + (m_theme.LyricsShowBall ? QStringLiteral("oo") : QString());
    const int width = m_size.width();
    int size = std::max(1, m_fontSize);
    int w = FitWidth(text, size);
    const bool inBand = width - 30 >= w && width - 40 < w;
    if (!inBand) {
        // Start near the answer; the two loops below settle it exactly.
        size = std::clamp(int(double(size) * (width - 35) / std::max(1, w)), 1, kLargestFontSize);
        w = FitWidth(text, size);
        while (width - 30 < w && size > 1)
            w = FitWidth(text, --size);
        while (width - 40 >= w && size < kLargestFontSize)
            w = FitWidth(text, ++size);
        // One point can be wider than the band; a line never goes past the 30 margin.
        while (width - 30 < w && size > 1)
            w = FitWidth(text, --size);
    }
    const int limit = m_theme.DisplayMode == int16_t(DisplayModes::ThreeLines) ? (m_size.height() - 139) / 3
                                                                                : (m_size.height() - 132) / 2;
    QFont font = Font();
    font.setPointSize(size);
    while (QFontMetrics(font).boundingRect(QStringLiteral("Mg")).height() > limit && size > 1)
        font.setPointSize(--size);
    m_fontSize = size;
}

void KaraokeView::IncFont()
{
    ++m_fontSize;
    if (m_theme.LyricsFitFont)
        FitLyrics();
    Repaint();
}

void KaraokeView::DecFont()
{
    m_fontSize = std::max(1, m_fontSize - 1);
    if (m_theme.LyricsFitFont)
        FitLyrics();
    Repaint();
}

void KaraokeView::OffsetIn()
{
    m_theme.SetLyricsOffset(m_theme.LyricsOffset() + 0.1);
}

void KaraokeView::OffsetOut()
{
    m_theme.SetLyricsOffset(m_theme.LyricsOffset() - 0.1);
}
