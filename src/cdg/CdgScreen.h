#pragma once
// CD+G, the graphics of karaoke discs: 300 packets of 24 bytes a second draw a 300 x 216 screen
// of 16 colours (a 288 x 192 area inside a border of 6 x 12 pixels) in tiles of 6 x 12, with
// presets, scrolls and colour tables. The decoder keeps the whole file and a picture of the
// screen every few seconds, so the screen at any song second is the state after every packet up
// to it, whether the song played there or jumped.

#include <QByteArray>
#include <QImage>
#include <array>
#include <cstdint>
#include <vector>

// Three hours of packets: a larger file is no CD+G file.
inline constexpr qint64 kLargestCdgFile = qint64(3) * 3600 * 300 * 24;

struct CdgScreen {
    static constexpr int kWidth = 300;
    static constexpr int kHeight = 216;
    static constexpr int kTileWidth = 6;
    static constexpr int kTileHeight = 12;

    std::array<uint8_t, kWidth * kHeight> pixels{};  // colour indices, row by row
    std::array<uint16_t, 16> colours{};              // 12-bit RGB, 4 bits each
    uint8_t border = 0;
    int horizontalOffset = 0;  // 0 to 5: the picture's shift to the left, for smooth scrolling
    int verticalOffset = 0;    // 0 to 11: up
    int transparent = -1;      // the colour shown through (over a video), -1 none

    uint8_t& At(int x, int y) { return pixels[size_t(y * kWidth + x)]; }
    uint8_t At(int x, int y) const { return pixels[size_t(y * kWidth + x)]; }
    QRgb Rgb(uint8_t index) const;
    bool operator==(const CdgScreen&) const = default;
};

// One packet applied to the screen; a packet of another command changes nothing.
void ApplyCdgPacket(CdgScreen& screen, const uint8_t* packet);

// The memory as decoded, border included, one pixel a pixel.
QImage CdgRawImage(const CdgScreen& screen);
// What a player shows: the screen moved by its offsets, the border over its edges.
QImage CdgShownImage(const CdgScreen& screen);

class CdgDecoder {
public:
    static constexpr int kPacketBytes = 24;
    static constexpr int kPacketsPerSecond = 300;

    // The file's bytes; a last packet cut short is left out.
    explicit CdgDecoder(QByteArray bytes);

    int64_t PacketCount() const { return m_packetCount; }
    double Seconds() const { return double(m_packetCount) / kPacketsPerSecond; }
    // The screen after every packet whose time is not later than `seconds`.
    const CdgScreen& ScreenAt(double seconds);

private:
    // Every this many packets the screen is kept: a jump replays at most that many.
    static constexpr int64_t kSnapshotPackets = 10 * kPacketsPerSecond;
    void RunTo(int64_t packets);

    QByteArray m_bytes;
    int64_t m_packetCount = 0;
    CdgScreen m_screen;
    int64_t m_applied = 0;               // packets in m_screen
    std::vector<CdgScreen> m_snapshots;  // [i]: after i * kSnapshotPackets packets
};

