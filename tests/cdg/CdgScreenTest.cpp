// The CD+G decoder on streams made here, an instruction at a time: presets, the border, colour
// tables, tiles and XOR tiles, both scrolls with their offsets and wrap, transparency; and the
// screen at a second is the same whether the song played there or jumped.

#include "cdg/CdgScreen.h"

#include <QRandomGenerator>
#include <gtest/gtest.h>
#include <initializer_list>

namespace {

QByteArray Packet(int instruction, std::initializer_list<int> data, int command = 9)
{
    QByteArray packet(CdgDecoder::kPacketBytes, '\0');
    packet[0] = char(command);
    packet[1] = char(instruction);
    int i = 4;
    for (int byte : data)
        packet[i++] = char(byte);
    return packet;
}

CdgScreen Played(std::initializer_list<QByteArray> packets, CdgScreen screen = {})
{
    for (const QByteArray& packet : packets)
        ApplyCdgPacket(screen, reinterpret_cast<const uint8_t*>(packet.constData()));
    return screen;
}

// A tile of `rows` (6-bit patterns, the leftmost pixel the highest bit), all 12 the same.
QByteArray TilePacket(int instruction, int colour0, int colour1, int row, int column, int pattern)
{
    QByteArray packet = Packet(instruction, {colour0, colour1, row, column});
    for (int i = 0; i < 12; ++i)
        packet[8 + i] = char(pattern);
    return packet;
}

int CountOf(const CdgScreen& screen, uint8_t colour)
{
    return int(std::count(screen.pixels.begin(), screen.pixels.end(), colour));
}

} // namespace

TEST(CdgScreen, PresetsFillTheScreenAndTheBorderAndRepeatsChangeNothing)
{
    const CdgScreen once = Played({Packet(1, {5, 0})});
    EXPECT_EQ(CountOf(once, 5), 300 * 216);
    EXPECT_EQ(Played({Packet(1, {5, 0}), Packet(1, {5, 1}), Packet(1, {5, 2})}), once) << "the repeats fill the same";

    const CdgScreen framed = Played({Packet(2, {0x17})}, once);
    EXPECT_EQ(framed.border, 7) << "the colour's low four bits";
    EXPECT_EQ(CountOf(framed, 7), 300 * 216 - 288 * 192);
    EXPECT_EQ(framed.At(5, 11), 7);
    EXPECT_EQ(framed.At(6, 12), 5) << "the area inside stays";
    EXPECT_EQ(framed.At(294, 100), 7);
    EXPECT_EQ(framed.At(100, 204), 7);
    EXPECT_EQ(Played({Packet(1, {3}, 8)}, once), once) << "another command is skipped";
}

TEST(CdgScreen, ColourTablesGiveTwelveBitColours)
{
    // Entry 0 red 15, green 0, blue 0; entry 1 red 0, green 15, blue 0; entry 2 blue 15; entry 3
    // red 1, green 10, blue 5.
    const CdgScreen low = Played({Packet(30, {0x3C, 0x00, 0x03, 0x30, 0x00, 0x0F, 0x06, 0x25})});
    EXPECT_EQ(low.colours[0], 0xF00);
    EXPECT_EQ(low.colours[1], 0x0F0);
    EXPECT_EQ(low.colours[2], 0x00F);
    EXPECT_EQ(low.colours[3], 0x1A5);
    EXPECT_EQ(low.Rgb(3), qRgb(17, 170, 85));
    const CdgScreen high = Played({Packet(31, {0x3F, 0x3F})}, low);
    EXPECT_EQ(high.colours[8], 0xFFF);
    EXPECT_EQ(high.colours[0], 0xF00) << "the low half stays";
    EXPECT_EQ(Played({Packet(28, {0x1B})}).transparent, 11);
}

TEST(CdgScreen, TilesDrawAndXorTilesMixWithWhatIsThere)
{
    const CdgScreen tile = Played({TilePacket(6, 2, 9, 3, 10, 0b100001)});
    // Row 3, column 10: pixels from (60, 36); the leftmost and rightmost columns in colour 9.
    EXPECT_EQ(tile.At(60, 36), 9);
    EXPECT_EQ(tile.At(61, 36), 2);
    EXPECT_EQ(tile.At(65, 47), 9);
    EXPECT_EQ(tile.At(66, 47), 0) << "the next tile untouched";
    EXPECT_EQ(CountOf(tile, 9), 24);
    EXPECT_EQ(CountOf(tile, 2), 48);

    const CdgScreen mixed = Played({TilePacket(38, 1, 12, 3, 10, 0b110000)}, tile);
    EXPECT_EQ(mixed.At(60, 36), 9 ^ 12);
    EXPECT_EQ(mixed.At(61, 36), 2 ^ 12);
    EXPECT_EQ(mixed.At(62, 36), 2 ^ 1);
    EXPECT_EQ(mixed.At(65, 36), 9 ^ 1);
    EXPECT_EQ(Played({TilePacket(6, 2, 9, 18, 10, 0x3F), TilePacket(6, 2, 9, 3, 50, 0x3F)}), CdgScreen{})
        << "a tile outside the screen is passed over";
}

TEST(CdgScreen, ScrollsMoveByATileAndPresetFillsOrCopyWraps)
{
    // A marker tile in the top left corner and one in the bottom right.
    const CdgScreen marked = Played({TilePacket(6, 0, 4, 0, 0, 0x3F), TilePacket(6, 0, 6, 17, 49, 0x3F)});
    const CdgScreen right = Played({Packet(20, {3, 0x10, 0x00})}, marked);
    EXPECT_EQ(right.At(6, 0), 4) << "moved a tile to the right";
    EXPECT_EQ(right.At(0, 0), 3) << "what comes in is the preset's colour";
    EXPECT_EQ(CountOf(right, 6), 0) << "the bottom right tile went out";

    const CdgScreen wrapped = Played({Packet(24, {3, 0x10, 0x00})}, marked);
    EXPECT_EQ(wrapped.At(0, 215), 6) << "copy: the tile that went out on the right comes in on the left";
    EXPECT_EQ(wrapped.At(6, 0), 4);
    EXPECT_EQ(CountOf(wrapped, 3), 0);

    const CdgScreen left = Played({Packet(24, {0, 0x20, 0x00})}, marked);
    EXPECT_EQ(left.At(294, 0), 4) << "left with wrap";
    EXPECT_EQ(left.At(288, 204), 6);
    const CdgScreen down = Played({Packet(20, {1, 0x00, 0x10})}, marked);
    EXPECT_EQ(down.At(0, 12), 4);
    EXPECT_EQ(down.At(0, 0), 1);
    const CdgScreen up = Played({Packet(24, {0, 0x00, 0x20})}, marked);
    EXPECT_EQ(up.At(0, 204), 4) << "up with wrap";
    EXPECT_EQ(up.At(294, 192), 6);
    const CdgScreen both = Played({Packet(24, {0, 0x10, 0x10})}, marked);
    EXPECT_EQ(both.At(6, 12), 4) << "right and down at once";
    EXPECT_EQ(both.At(0, 0), 6) << "the far corner wraps into the near one";
}

TEST(CdgScreen, OffsetsShiftThePictureInsideTheBorder)
{
    CdgScreen screen = Played({Packet(30, {0x3C, 0x00, 0x03, 0x30}), TilePacket(6, 0, 1, 1, 1, 0b100000)});
    screen = Played({Packet(20, {0, 0x03, 0x05})}, screen);
    EXPECT_EQ(screen.horizontalOffset, 3);
    EXPECT_EQ(screen.verticalOffset, 5);
    EXPECT_EQ(screen.At(6, 12), 1) << "the memory does not move";
    const QImage shown = CdgShownImage(screen);
    EXPECT_EQ(shown.pixel(6 - 3 + 6, 12 - 5 + 12), 0xFFFF0000u) << "the pixel at (6, 12) shows 3 left and 5 up";
    EXPECT_EQ(shown.pixel(6, 12), screen.Rgb(0));
    EXPECT_EQ(CdgRawImage(screen).pixel(6, 12), screen.Rgb(1));
    EXPECT_EQ(Played({Packet(20, {0, 0x07, 0x0F})}).horizontalOffset, 5) << "offsets are held to a tile";
}

TEST(CdgDecoder, TheScreenAtASecondIsTheSameAfterAnyJump)
{
    // A minute and a half of packets: random tiles, XOR tiles, scrolls and colour tables.
    QRandomGenerator random(35);
    QByteArray file;
    const int instructions[] = {1, 2, 6, 20, 24, 28, 30, 31, 38, 6, 38, 6};
    for (int i = 0; i < 300 * 90; ++i) {
        QByteArray packet(24, '\0');
        for (char& byte : packet)
            byte = char(random.bounded(256));
        packet[0] = char(random.bounded(10) == 0 ? 0 : 9);
        packet[1] = char(instructions[random.bounded(12)]);
        file += packet;
    }
    file += "cut";  // a last packet cut short
    CdgDecoder played(file);
    EXPECT_EQ(played.PacketCount(), 300 * 90);
    std::vector<CdgScreen> byPlaying;
    const std::vector<double> seconds = {0, 1.0 / 300, 9.999, 10, 33.3, 55.5, 89.99, 400};
    for (double t : seconds)
        byPlaying.push_back(played.ScreenAt(t));
    for (int round = 0; round < 2; ++round)
        for (size_t i = seconds.size(); i-- > 0;) {
            CdgDecoder jumped(file);
            EXPECT_EQ(jumped.ScreenAt(seconds[(i + size_t(round) * 3) % seconds.size()]),
                      byPlaying[(i + size_t(round) * 3) % seconds.size()]);
            EXPECT_EQ(played.ScreenAt(seconds[i]), byPlaying[i]) << "back to " << seconds[i];
        }

    CdgScreen byHand;
    for (int p = 0; p <= 300 * 33 + 90; ++p)
        ApplyCdgPacket(byHand, reinterpret_cast<const uint8_t*>(file.constData()) + p * 24);
    EXPECT_EQ(played.ScreenAt(33.3), byHand) << "every packet up to the second, that one included";
    EXPECT_EQ(CdgDecoder(QByteArray()).ScreenAt(5), CdgScreen{});
}
