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

QRect KeepOnScreen(const QRect& window, const QRect& screen)
{
    const QSize size = window.size().boundedTo(screen.size());
    const int left = std::clamp(window.left(), screen.left(), screen.right() + 1 - size.width());
    const int top = std::clamp(window.top(), screen.top(), screen.bottom() + 1 - size.height());
    return QRect(QPoint(left, top), size);
}

namespace {

// A playlist shorter than this shows too few rows to be of use; the screen gives way first.
constexpr int kShortestFirstPlaylist = 120;

QSize KaraokeSizeIn(const QSize& room)
{
    const double scale = std::min({1.0, double(room.width()) / kKaraokeFirstSize.width(),
                                   double(room.height()) / kKaraokeFirstSize.height()});
    return QSize(int(kKaraokeFirstSize.width() * scale), int(kKaraokeFirstSize.height() * scale));
}

int Area(const QSize& size) { return size.width() * size.height(); }

// Narrower than this, the karaoke window would show only a few letters a line.
constexpr int kSmallestKaraokeWidth = 160;

// The karaoke window's largest place beside `taken` that leaves it uncovered; an empty rectangle
// when no part of the screen beside it has a useful size.
QRect KaraokeRoom(const QRect& screen, const QRect& taken)
{
    const QRect inside = taken & screen;
    if (inside.isEmpty())
        return QRect(screen.topLeft(), KaraokeSizeIn(screen.size()));
    const QRect rooms[] = {
        QRect(QPoint(screen.left(), screen.top()), QPoint(screen.right(), inside.top() - 1)),
        QRect(QPoint(screen.left(), screen.top()), QPoint(inside.left() - 1, screen.bottom())),
        QRect(QPoint(inside.right() + 1, screen.top()), QPoint(screen.right(), screen.bottom())),
        QRect(QPoint(screen.left(), inside.bottom() + 1), QPoint(screen.right(), screen.bottom())),
    };
    QRect best;
    for (const QRect& room : rooms) {
        if (room.isEmpty())
            continue;
        const QSize size = KaraokeSizeIn(room.size());
        if (Area(size) <= Area(best.size()))
            continue;
        best = QRect(QPoint(room.left() + (room.width() - size.width()) / 2,
                            room.top() + (room.height() - size.height()) / 2),
                     size);
    }
    return best.width() < kSmallestKaraokeWidth ? QRect() : best;
}

} // namespace

QRect PlaceKaraoke(const QRect& screen, const QRect& taken)
{
    const QRect room = KaraokeRoom(screen, taken);
    return room.isEmpty() ? KeepOnScreen(QRect(screen.topLeft(), kKaraokeFirstSize), screen) : room;
}

FirstRunPlaces ArrangeFirstRun(const QRect& screen, const QSize& player, const QSize& playlist)
{
    const int listHeight =
        std::min(playlist.height(), std::max(screen.height() - player.height(), kShortestFirstPlaylist));
    const QSize column(std::max(player.width(), playlist.width()), player.height() + listHeight);
    const QPoint centred = DefaultPlayerPlace(screen, player);
    const int top = std::clamp(centred.y(), screen.top(), std::max(screen.top(), screen.bottom() + 1 - column.height()));
    const int lefts[] = {std::clamp(centred.x(), screen.left(), std::max(screen.left(), screen.right() + 1 - column.width())),
                         screen.right() + 1 - column.width(), screen.left()};

    int chosenLeft = lefts[0];
    int room = -1;
    for (const int left : lefts) {
        const int karaoke = Area(KaraokeRoom(screen, QRect(QPoint(left, top), column)).size());
        if (karaoke > room) {
            room = karaoke;
            chosenLeft = left;
        }
    }
    return {KeepOnScreen(QRect(QPoint(chosenLeft, top), player), screen),
            KeepOnScreen(QRect(QPoint(chosenLeft, top + player.height()), QSize(playlist.width(), listHeight)), screen)};
}
