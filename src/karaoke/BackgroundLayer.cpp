#include "karaoke/BackgroundLayer.h"

#include "karaoke/PicturePlacing.h"

#include <QFileInfo>
#include <QPainter>
#include <QPixmap>

namespace {

enum class PictureLayout : int16_t { Tiled = 0, Stretched = 1, Original = 2 };

QString WantedBasePicture(const LyricsState& lyrics, const ThemeClass& theme)
{
    const QString& song = lyrics.PlayLyrics[0].Picture;
    return song.isEmpty() ? theme.LyricsPicPath() : song;
}

} // namespace

BackgroundLayer::BackgroundLayer(const LyricsState& lyrics, const ThemeClass& theme) : m_lyrics(lyrics), m_theme(theme)
{
}

void BackgroundLayer::Resize(QSize size, qreal dpr)
{
    m_size = size.expandedTo(QSize(1, 1));
    m_dpr = dpr;
}

void BackgroundLayer::LoadBasePicture()
{
    const QString& song = m_lyrics.PlayLyrics[0].Picture;
    QImage picture;
    if (!song.isEmpty() && QFileInfo(song).isFile())
        picture.load(song);
    m_basePictureName = WantedBasePicture(m_lyrics, m_theme);
    if (!picture.isNull())
        m_basePicture = picture;
    else
        m_basePicture = song.isEmpty() ? m_theme.LyricsPicture() : QImage();
}

bool BackgroundLayer::BasePictureStale() const
{
    return m_basePicture.isNull() || WantedBasePicture(m_lyrics, m_theme) != m_basePictureName;
}

void BackgroundLayer::LoadTimedPicture(int16_t picture)
{
    if (picture < 1 || size_t(picture) >= m_lyrics.PlayPictures.size())
        return;
    const QString& file = m_lyrics.PlayPictures[size_t(picture)].File;
    QImage image;
    if (!QFileInfo(file).isFile() || !image.load(file)) {
        DropTimedPicture();
        return;
    }
    m_timedPicture = image;
}

void BackgroundLayer::DropTimedPicture()
{
    m_timedPicture = {};
}

void BackgroundLayer::DrawBasePicture(QPainter& painter) const
{
    const QRectF client(QPointF(0, 0), QSizeF(m_size));
    switch (PictureLayout(m_theme.LyricsPicLayout)) {
    case PictureLayout::Tiled:
        painter.drawTiledPixmap(client, QPixmap::fromImage(m_basePicture));
        break;
    case PictureLayout::Stretched:
        painter.drawImage(client, m_basePicture);
        break;
    default: {
        const QSizeF size = QSizeF(m_basePicture.size()) / m_basePicture.devicePixelRatio();
        painter.drawImage(QRectF(client.center() - QPointF(size.width() / 2, size.height() / 2), size), m_basePicture);
    }
    }
}

QImage BackgroundLayer::Composed(bool withTimedPicture)
{
    QImage background(m_size * m_dpr, QImage::Format_ARGB32_Premultiplied);
    background.setDevicePixelRatio(m_dpr);
    // A video song's picture stands behind the words instead.
    if (m_lyrics.Video) {
        m_timedRect = {};
        background.fill(Qt::transparent);
        return background;
    }
    background.fill(m_backColor);
    QPainter painter(&background);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    if (!m_basePicture.isNull())
        DrawBasePicture(painter);
    m_timedRect = {};
    if (withTimedPicture && !m_timedPicture.isNull()) {
        m_timedRect = PictureRect(m_lyrics.PlayLyrics[0], m_timedPicture.size(), m_size);
        painter.drawImage(QRectF(m_timedRect), m_timedPicture);
        DrawImageBorder(painter, m_timedRect, m_theme.ImageBorder);
    }
    return background;
}

void BackgroundLayer::Compose(bool withTimedPicture)
{
    EndTransition();
    m_background = Composed(withTimedPicture);
}

bool BackgroundLayer::ShowTimedPicture(int16_t picture, double nowMs)
{
    if (m_timedPicture.isNull() || picture < 1 || size_t(picture) >= m_lyrics.PlayPictures.size())
        return false;
    EndTransition();
    const PictureItem& item = m_lyrics.PlayPictures[size_t(picture)];
    const bool own = !item.Effect.isEmpty();
    const auto effect = FindEffect(own ? item.Effect : m_theme.ImageEffect, own ? item.Detail : m_theme.EffectDetail);
    const QRect before = m_timedRect;
    QImage target = Composed(true);
    const QRect area = before.united(m_timedRect).intersected(QRect(QPoint(0, 0), m_size));
    if (!effect || area.isEmpty()) {
        m_background = std::move(target);
        return true;
    }
    const TransitionPace pace = TransitionPace::For(*effect, area.size(), own ? item.Speed : m_theme.EffectSpeed);
    m_transitionArea = QRect((QPointF(area.topLeft()) * m_dpr).toPoint(), (QSizeF(area.size()) * m_dpr).toSize())
                           .intersected(m_background.rect());
    // The areas are worked on pixel for pixel, whatever the screen's ratio.
    QImage oldArea = m_background.copy(m_transitionArea);
    QImage newArea = target.copy(m_transitionArea);
    oldArea.setDevicePixelRatio(1.0);
    newArea.setDevicePixelRatio(1.0);
    m_transition.emplace(std::move(oldArea), std::move(newArea), *effect, pace, m_dpr);
    m_transitionTarget = std::move(target);
    m_transitionStart = nowMs;
    m_transitionProgress = -1;
    if (TransitionTimer)
        TransitionTimer(pace.FrameMs);
    StepTransition(nowMs);
    return true;
}

bool BackgroundLayer::StepTransition(double nowMs)
{
    if (!m_transition)
        return false;
    const double elapsed = nowMs - m_transitionStart;
    if (m_transition->Finished(elapsed)) {
        // The last frame is the new background whole, so rounding leaves no old pixels.
        m_background = m_transitionTarget;
        EndTransition();
        return true;
    }
    const double progress = m_transition->Pace().ProgressAt(elapsed);
    if (progress == m_transitionProgress)
        return false;
    m_transitionProgress = progress;
    const QImage& frame = m_transition->FrameAt(elapsed);
    QPainter painter(&m_background);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    const QRectF device(m_transitionArea);
    painter.drawImage(QRectF(device.topLeft() / m_dpr, device.size() / m_dpr), frame, QRectF(frame.rect()));
    return true;
}

void BackgroundLayer::EndTransition()
{
    if (!m_transition)
        return;
    m_transition.reset();
    m_transitionTarget = {};
    if (TransitionTimer)
        TransitionTimer(0);
}
