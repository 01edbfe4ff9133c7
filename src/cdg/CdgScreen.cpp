#include "cdg/CdgScreen.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr uint8_t kGraphicsCommand = 9;
enum Instruction : uint8_t {
    kMemoryPreset = 1,
    kBorderPreset = 2,
    kTileBlock = 6,
    kScrollPreset = 20,
    kScrollCopy = 24,
    kTransparentColour = 28,
    kColoursLow = 30,
    kColoursHigh = 31,
    kTileBlockXor = 38,
};

constexpr int W = CdgScreen::kWidth;
constexpr int H = CdgScreen::kHeight;
constexpr int kTileColumns = W / CdgScreen::kTileWidth;   // 50
constexpr int kTileRows = H / CdgScreen::kTileHeight;     // 18

bool InBorder(int x, int y)
{
    return x < CdgScreen::kTileWidth || x >= W - CdgScreen::kTileWidth || y < CdgScreen::kTileHeight ||
           y >= H - CdgScreen::kTileHeight;
}

void Tile(CdgScreen& screen, const uint8_t* data, bool exclusiveOr)
{
    const uint8_t colours[2] = {uint8_t(data[0] & 0x0F), uint8_t(data[1] & 0x0F)};
    const int row = data[2] & 0x1F;
    const int column = data[3] & 0x3F;
    if (row >= kTileRows || column >= kTileColumns)
        return;
    for (int y = 0; y < CdgScreen::kTileHeight; ++y) {
        const uint8_t bits = data[4 + y] & 0x3F;
        for (int x = 0; x < CdgScreen::kTileWidth; ++x) {
            const uint8_t colour = colours[(bits >> (5 - x)) & 1];
            uint8_t& pixel = screen.At(column * CdgScreen::kTileWidth + x, row * CdgScreen::kTileHeight + y);
            pixel = exclusiveOr ? uint8_t((pixel ^ colour) & 0x0F) : colour;
        }
    }
}

// The whole memory moved a tile's width or height; what comes in is the colour, or with `copy`
// what went out on the other side.
void Scroll(CdgScreen& screen, const uint8_t* data, bool copy)
{
    const uint8_t colour = data[0] & 0x0F;
    const int horizontal = (data[1] & 0x30) >> 4;  // 1 right, 2 left
    const int vertical = (data[2] & 0x30) >> 4;    // 1 down, 2 up
    screen.horizontalOffset = std::min(data[1] & 0x07, CdgScreen::kTileWidth - 1);
    screen.verticalOffset = std::min(data[2] & 0x0F, CdgScreen::kTileHeight - 1);
    const int dx = horizontal == 1 ? CdgScreen::kTileWidth : horizontal == 2 ? -CdgScreen::kTileWidth : 0;
    const int dy = vertical == 1 ? CdgScreen::kTileHeight : vertical == 2 ? -CdgScreen::kTileHeight : 0;
    if (dx == 0 && dy == 0)
        return;
    const auto old = screen.pixels;
    for (int y = 0; y < H; ++y)
        for (int x = 0; x < W; ++x) {
            const int fromX = x - dx, fromY = y - dy;
            const bool inside = fromX >= 0 && fromX < W && fromY >= 0 && fromY < H;
            screen.At(x, y) = inside ? old[size_t(fromY * W + fromX)]
                              : copy ? old[size_t(((fromY + H) % H) * W + (fromX + W) % W)]
                                     : colour;
        }
}

void LoadColours(CdgScreen& screen, const uint8_t* data, int first)
{
    for (int i = 0; i < 8; ++i) {
        const int high = data[2 * i] & 0x3F;
        const int low = data[2 * i + 1] & 0x3F;
        const int red = high >> 2;
        const int green = ((high & 0x03) << 2) | (low >> 4);
        const int blue = low & 0x0F;
        screen.colours[size_t(first + i)] = uint16_t((red << 8) | (green << 4) | blue);
    }
}

} // namespace

QRgb CdgScreen::Rgb(uint8_t index) const
{
    const uint16_t c = colours[index & 0x0F];
    return qRgb(((c >> 8) & 0x0F) * 17, ((c >> 4) & 0x0F) * 17, (c & 0x0F) * 17);
}

void ApplyCdgPacket(CdgScreen& screen, const uint8_t* packet)
{
    if ((packet[0] & 0x3F) != kGraphicsCommand)
        return;
    const uint8_t* data = packet + 4;
    switch (packet[1] & 0x3F) {
    case kMemoryPreset:
        // Sent several times (its repeat count in data[1]) so that one lost packet still clears
        // the screen; each fills the same.
        screen.pixels.fill(data[0] & 0x0F);
        break;
    case kBorderPreset:
        screen.border = data[0] & 0x0F;
        for (int y = 0; y < H; ++y)
            for (int x = 0; x < W; ++x)
                if (InBorder(x, y))
                    screen.At(x, y) = screen.border;
        break;
    case kTileBlock:
        Tile(screen, data, false);
        break;
    case kTileBlockXor:
        Tile(screen, data, true);
        break;
    case kScrollPreset:
        Scroll(screen, data, false);
        break;
    case kScrollCopy:
        Scroll(screen, data, true);
        break;
    case kTransparentColour:
        screen.transparent = data[0] & 0x0F;
        break;
    case kColoursLow:
        LoadColours(screen, data, 0);
        break;
    case kColoursHigh:
        LoadColours(screen, data, 8);
        break;
    default:
        break;
    }
}

QImage CdgRawImage(const CdgScreen& screen)
{
    QImage image(W, H, QImage::Format_RGB32);
    for (int y = 0; y < H; ++y) {
        auto* line = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < W; ++x)
            line[x] = screen.Rgb(screen.At(x, y));
    }
    return image;
}

QImage CdgShownImage(const CdgScreen& screen)
{
    QImage image(W, H, QImage::Format_RGB32);
    const QRgb border = screen.Rgb(screen.border);
    for (int y = 0; y < H; ++y) {
        auto* line = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < W; ++x)
            line[x] = InBorder(x, y) ? border : screen.Rgb(screen.At(x + screen.horizontalOffset, y + screen.verticalOffset));
    }
    return image;
}

CdgDecoder::CdgDecoder(QByteArray bytes)
    : m_bytes(std::move(bytes)), m_packetCount(m_bytes.size() / kPacketBytes), m_snapshots{CdgScreen{}}
{
}

void CdgDecoder::RunTo(int64_t packets)
{
    packets = std::clamp<int64_t>(packets, 0, m_packetCount);
    if (packets < m_applied || packets - m_applied > kSnapshotPackets) {
        // From the last picture kept at or before the packet, never further back than needed.
        const auto kept = std::min<int64_t>(packets / kSnapshotPackets, int64_t(m_snapshots.size()) - 1);
        if (packets < m_applied || kept * kSnapshotPackets > m_applied) {
            m_screen = m_snapshots[size_t(kept)];
            m_applied = kept * kSnapshotPackets;
        }
    }
    const auto* data = reinterpret_cast<const uint8_t*>(m_bytes.constData());
    for (; m_applied < packets; ++m_applied) {
        ApplyCdgPacket(m_screen, data + m_applied * kPacketBytes);
        if ((m_applied + 1) % kSnapshotPackets == 0 && (m_applied + 1) / kSnapshotPackets == int64_t(m_snapshots.size()))
            m_snapshots.push_back(m_screen);
    }
}

const CdgScreen& CdgDecoder::ScreenAt(double seconds)
{
    const double packets = std::isfinite(seconds) ? std::floor(seconds * kPacketsPerSecond + 1e-6) + 1 : 0;
    RunTo(seconds < 0 ? 0 : int64_t(std::min(packets, double(m_packetCount))));
    return m_screen;
}
