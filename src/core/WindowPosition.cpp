#include "core/WindowPosition.h"

#include "core/Numbers.h"
#include "core/SettingsStore.h"

#include <QStringList>
#include <algorithm>

namespace {

const QString kPlayerPosition = QStringLiteral("player position");

std::optional<QList<int>> ReadNumbers(const SettingsStore& store, const QString& key, int count)
{
    const QString text = store.RegReadString(key);
    if (text.isEmpty())
        return std::nullopt;
    const QStringList parts = text.split(u',');
    if (parts.size() < count)
        return std::nullopt;
    QList<int> numbers;
    for (int i = 0; i < count; ++i)
        numbers << ToInt32(NumericValue(parts[i]));
    return numbers;
}

int ToPixels(int twips) { return twips / kTwipsPerPixel; }

QString GeometryText(const QRect& g)
{
    return QStringLiteral("%1,%2,%3,%4")
        .arg(g.left() * kTwipsPerPixel)
        .arg(g.top() * kTwipsPerPixel)
        .arg(g.width() * kTwipsPerPixel)
        .arg(g.height() * kTwipsPerPixel);
}

QRect GeometryOf(const QList<int>& n)
{
    return QRect(ToPixels(n[0]), ToPixels(n[1]), ToPixels(n[2]), ToPixels(n[3]));
}

} // namespace

std::optional<QRect> ReadWindowPosition(const SettingsStore& store, const QString& key)
{
    const auto numbers = ReadNumbers(store, key, 4);
    if (!numbers)
        return std::nullopt;
    return GeometryOf(*numbers);
}

void WriteWindowPosition(SettingsStore& store, const QString& key, const QRect& geometry)
{
    store.RegWriteString(key, GeometryText(geometry));
}

std::optional<PlayerPosition> ReadPlayerPosition(const SettingsStore& store)
{
    const auto numbers = ReadNumbers(store, kPlayerPosition, 6);
    if (!numbers)
        return std::nullopt;
    return PlayerPosition{GeometryOf(*numbers), (*numbers)[4] != 0, (*numbers)[5] != 0};
}

void WritePlayerPosition(SettingsStore& store, const PlayerPosition& position)
{
    store.RegWriteString(kPlayerPosition, GeometryText(position.geometry) +
                                              (position.playlistOpen ? QStringLiteral(",1") : QStringLiteral(",0")) +
                                              (position.controlsOpen ? QStringLiteral(",1") : QStringLiteral(",0")));
}

QPoint DefaultPlayerPlace(const QRect& screen, const QSize& size)
{
    return QPoint(screen.left() + (screen.width() - size.width()) / 2,
                  screen.top() + (screen.height() - size.height()) / 2 + 2820 / kTwipsPerPixel);
}

QPoint DefaultPlaylistPlace(const QRect& player)
{
    return QPoint(player.left(), player.top() + player.height());
}

QPoint DefaultControlsPlace(const QRect& player, const QSize& size)
{
    if (player.top() - size.height() >= 0)
        return QPoint(player.left(), player.top() - size.height());
    return QPoint(player.left() + player.width(), player.top());
}

QRect PlaceBeside(const QRect& player, const QSize& size, const QRect& screen)
{
    const int w = size.width();
    const int h = size.height();
    const int besideTop = std::clamp(player.bottom() + 1 - h, screen.top(), std::max(screen.top(), screen.bottom() + 1 - h));
    const int stackedLeft =
        std::clamp(player.center().x() - w / 2, screen.left(), std::max(screen.left(), screen.right() + 1 - w));
    const QRect candidates[] = {
        QRect(QPoint(player.left() - w, besideTop), size),
        QRect(QPoint(player.right() + 1, besideTop), size),
        QRect(QPoint(stackedLeft, player.top() - h), size),
        QRect(QPoint(stackedLeft, player.bottom() + 1), size),
    };
    for (const QRect& place : candidates)
        if (screen.contains(place) && !place.intersects(player))
            return place;
    return QRect(screen.topLeft(), size);
}
