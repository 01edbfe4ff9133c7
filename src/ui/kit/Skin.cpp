#include "ui/kit/Skin.h"

#include <QBitmap>
#include <QPainter>

namespace {

const char* const kStateFiles[3] = {":/skin/player-normal.svg", ":/skin/player-hover.svg", ":/skin/player-pressed.svg"};

} // namespace

Skin::Skin()
    : m_lampsOff(QStringLiteral(":/skin/lamps-off.svg")), m_lampsOn(QStringLiteral(":/skin/lamps-on.svg")),
      m_disabled(QStringLiteral(":/skin/disabled.svg"))
{
    for (size_t i = 0; i < m_states.size(); ++i)
        m_states[i].load(QString::fromLatin1(kStateFiles[i]));
    m_size = m_states[Normal].defaultSize();
    for (int button = 1; button <= kButtons; ++button)
        m_buttons[size_t(button - 1)] = ShapeOf(QStringLiteral("button-%1").arg(button));
    m_window = ShapeOf(QStringLiteral("window"));
}

// The pixels an element covers when drawn alone, as a region.
QRegion Skin::ShapeOf(const QString& id) const
{
    QSvgRenderer& renderer = const_cast<QSvgRenderer&>(m_states[Normal]);
    if (!renderer.elementExists(id))
        return {};
    QImage image(m_size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    const QRectF bounds = renderer.transformForElement(id).mapRect(renderer.boundsOnElement(id));
    renderer.render(&painter, id, bounds);
    painter.end();
    return QRegion(QBitmap::fromImage(image.createAlphaMask()));
}

QRect Skin::Element(const QString& id) const
{
    QSvgRenderer& renderer = const_cast<QSvgRenderer&>(m_states[Normal]);
    return renderer.transformForElement(id).mapRect(renderer.boundsOnElement(id)).toAlignedRect();
}

int Skin::ButtonAt(QPoint point) const
{
    for (int button = 1; button <= kButtons; ++button)
        if (ButtonRegion(button).contains(point))
            return button;
    return 0;
}

QImage Skin::Render(QSvgRenderer& renderer, QSize size, qreal dpr)
{
    QImage image(size * dpr, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    renderer.render(&painter);
    painter.end();
    image.setDevicePixelRatio(dpr);
    return image;
}

const QImage& Skin::Cached(const QString& key, QSvgRenderer& renderer, QSize size, qreal dpr)
{
    const QString full = key + u'@' + QString::number(dpr);
    auto it = m_pictures.find(full);
    if (it == m_pictures.end())
        it = m_pictures.emplace(full, Render(renderer, size, dpr)).first;
    return it->second;
}

const QImage& Skin::Picture(int state, qreal dpr)
{
    return Cached(QStringLiteral("state%1").arg(state), m_states[size_t(state)], m_size, dpr);
}

const QImage& Skin::Lamps(bool on, qreal dpr)
{
    return on ? Cached(QStringLiteral("lampsOn"), m_lampsOn, m_lampsOn.defaultSize(), dpr)
              : Cached(QStringLiteral("lampsOff"), m_lampsOff, m_lampsOff.defaultSize(), dpr);
}

const QImage& Skin::Disabled(qreal dpr)
{
    return Cached(QStringLiteral("disabled"), m_disabled, m_disabled.defaultSize(), dpr);
}
