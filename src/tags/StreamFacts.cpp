#include "tags/StreamFacts.h"

#include "tags/Bytes.h"
#include "tags/EndTags.h"

#include <QByteArray>
#include <algorithm>
#include <array>
#include <cctype>
#include <cmath>
#include <limits>

namespace {

// Counts and rates from damaged headers can be far outside an int; they saturate instead.
int SaturatedInt(double value)
{
    if (!(value > std::numeric_limits<int>::min()))
        return std::isnan(value) ? 0 : std::numeric_limits<int>::min();
    return value < std::numeric_limits<int>::max() ? int(value) : std::numeric_limits<int>::max();
}

// ---- MPEG audio frames -------------------------------------------------------------------

enum MpegVersion { Mpeg25 = 0, MpegReserved = 1, Mpeg2 = 2, Mpeg1 = 3 };

struct FrameHeader {
    int Version = MpegReserved;
    int Layer = 0;  // 1, 2 or 3
    int Bitrate = 0;
    int Rate = 0;
    int Length = 0;
    int Samples = 0;
    int Mode = 0;
    int Emphasis = 0;
    bool Crc = false;
    bool Copyright = false;
    bool Original = false;
};

constexpr std::array<std::array<int, 16>, 5> kBitrates{{
    {0, 32, 64, 96, 128, 160, 192, 224, 256, 288, 320, 352, 384, 416, 448, 0},  // 1, I
    {0, 32, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320, 384, 0},     // 1, II
    {0, 32, 40, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320, 0},      // 1, III
    {0, 32, 48, 56, 64, 80, 96, 112, 128, 144, 160, 176, 192, 224, 256, 0},     // 2 and 2.5, I
    {0, 8, 16, 24, 32, 40, 48, 56, 64, 80, 96, 112, 128, 144, 160, 0},          // 2 and 2.5, II and III
}};
constexpr std::array<int, 3> kMpeg1Rates{44100, 48000, 32000};

bool ReadFrameHeader(QByteArrayView bytes, qsizetype at, FrameHeader& h)
{
    const uint32_t word = BigEndian(bytes, at, 4);
    if (at + 4 > bytes.size() || (word & 0xFFE00000u) != 0xFFE00000u)
        return false;
    h.Version = int(word >> 19) & 3;
    h.Layer = 4 - (int(word >> 17) & 3);
    const int bitrateIndex = int(word >> 12) & 15;
    const int rateIndex = int(word >> 10) & 3;
    if (h.Version == MpegReserved || h.Layer == 4 || bitrateIndex == 0 || bitrateIndex == 15 || rateIndex == 3)
        return false;
    const bool v1 = h.Version == Mpeg1;
    h.Bitrate = kBitrates[v1 ? h.Layer - 1 : (h.Layer == 1 ? 3 : 4)][bitrateIndex];
    h.Rate = kMpeg1Rates[rateIndex] >> (v1 ? 0 : h.Version == Mpeg2 ? 1 : 2);
    const int padding = int(word >> 9) & 1;
    if (h.Layer == 1) {
        h.Samples = 384;
        h.Length = (12 * h.Bitrate * 1000 / h.Rate + padding) * 4;
    } else {
        h.Samples = h.Layer == 3 && !v1 ? 576 : 1152;
        h.Length = h.Samples / 8 * h.Bitrate * 1000 / h.Rate + padding;
    }
    h.Crc = !((word >> 16) & 1);
    h.Mode = int(word >> 6) & 3;
    h.Copyright = (word >> 3) & 1;
    h.Original = (word >> 2) & 1;
    h.Emphasis = int(word) & 3;
    return true;
}

bool SameStream(const FrameHeader& a, const FrameHeader& b)
{
    return a.Version == b.Version && a.Layer == b.Layer && a.Rate == b.Rate;
}

// A frame counts as the stream's first when the frames behind it follow on at their lengths:
// three in a row, or as many as there are until the audio ends.
bool StartsStream(QByteArrayView bytes, qsizetype at, qsizetype audioEnd, const FrameHeader& first)
{
    qsizetype next = at + first.Length;
    for (int followers = 0; followers < 2; ++followers) {
        if (next >= audioEnd)
            return next == audioEnd || followers > 0;
        FrameHeader h;
        if (!ReadFrameHeader(bytes, next, h) || !SameStream(first, h))
            return false;
        next += h.Length;
    }
    return true;
}

constexpr qsizetype kFrameSearchWindow = 128 * 1024;

bool StartsWithOtherFormat(QByteArrayView bytes, qsizetype at)
{
    for (const char* magic : {"RIFF", "MAC ", "MP+", "MPCK", "OggS", "fLaC", "MThd"})
        if (HasAt(bytes, at, magic))
            return true;
    return false;
}

struct VbrInfo {
    uint32_t Frames = 0;
    uint32_t Bytes = 0;
    // LAME writes "Info" instead of "Xing" for a constant-rate file.
    bool ConstantRate = false;
};

// The Xing/Info or VBRI header in the first frame of an encoder that wrote one.
VbrInfo ReadVbrHeader(QByteArrayView bytes, qsizetype frame, const FrameHeader& h)
{
    VbrInfo info;
    const bool mono = h.Mode == 3;
    const int sideInfo = h.Version == Mpeg1 ? (mono ? 17 : 32) : (mono ? 9 : 17);
    for (const qsizetype at : {frame + 4 + sideInfo, frame + 6 + sideInfo}) {
        if (HasAt(bytes, at, "Xing") || HasAt(bytes, at, "Info")) {
            info.ConstantRate = HasAt(bytes, at, "Info");
            const uint32_t flags = BigEndian(bytes, at + 4, 4);
            qsizetype field = at + 8;
            if (flags & 1) {
                info.Frames = BigEndian(bytes, field, 4);
                field += 4;
            }
            if (flags & 2)
                info.Bytes = BigEndian(bytes, field, 4);
            return info;
        }
    }
    if (HasAt(bytes, frame + 36, "VBRI")) {
        info.Bytes = BigEndian(bytes, frame + 46, 4);
        info.Frames = BigEndian(bytes, frame + 50, 4);
    }
    return info;
}

QString MpegModeName(int mode)
{
    static const char* const names[] = {"Stereo", "Joint Stereo", "Dual Channel", "Mono"};
    return QString::fromLatin1(names[mode]);
}

QString EmphasisName(int emphasis)
{
    static const char* const names[] = {"None", "50/15 ms", "Reserved", "CCIT J.17"};
    return QString::fromLatin1(names[emphasis]);
}

// ---- Monkey's Audio --------------------------------------------------------------------------

QString CompressionName(uint32_t level)
{
    switch (level) {
    case 1000: return QStringLiteral("Fast");
    case 2000: return QStringLiteral("Normal");
    case 3000: return QStringLiteral("High");
    case 4000: return QStringLiteral("Extra High");
    case 5000: return QStringLiteral("Insane");
    default: return QStringLiteral("Unknown");
    }
}

// ---- Musepack ----------------------------------------------------------------------------------

constexpr std::array<int, 4> kMpcRates{44100, 48000, 37800, 32000};

QString MpcProfileName(int profile)
{
    static const char* const names[] = {
        "no profile", "Experimental", "unused", "unused", "unused", "below Telephone", "below Telephone",
        "Telephone", "Thumb", "Radio", "Standard", "Extreme", "Insane", "BrainDead", "above BrainDead",
        "above BrainDead"};
    return profile >= 0 && profile < 16 ? QString::fromLatin1(names[profile]) : QStringLiteral("invalid");
}

// SV8 sizes: seven bits a byte, high bit set on all bytes but the last.
uint64_t MpcVarint(QByteArrayView bytes, qsizetype& at)
{
    uint64_t value = 0;
    for (int i = 0; i < 9 && at < bytes.size(); ++i) {
        const uint32_t byte = ByteAt(bytes, at++);
        value = (value << 7) | (byte & 0x7F);
        if (!(byte & 0x80))
            break;
    }
    return value;
}

void FinishMpc(MpcFacts& facts, uint64_t samples, qsizetype audioBytes)
{
    facts.Frames = SaturatedInt(double((samples + 1151) / 1152));
    const double seconds = facts.Rate > 0 ? double(samples) / facts.Rate : 0;
    facts.Seconds = SaturatedInt(seconds);
    facts.Bitrate = seconds > 0 ? SaturatedInt(std::round(audioBytes * 8 / seconds / 1000)) : 0;
}

MpcFacts AnalyseMpcSv7(QByteArrayView bytes, qsizetype at, qsizetype audioEnd)
{
    MpcFacts facts;
    facts.StreamVersion = int16_t(ByteAt(bytes, at + 3) & 0x0F);
    const uint32_t frames = LittleEndian(bytes, at + 4, 4);
    const uint32_t flags = LittleEndian(bytes, at + 8, 4);
    const uint32_t gapless = LittleEndian(bytes, at + 20, 4);
    if (facts.StreamVersion != 7 || frames == 0 || at + 28 > bytes.size())
        return facts;
    facts.Rate = kMpcRates[(flags >> 16) & 3];
    facts.Profile = MpcProfileName(int(flags >> 20) & 15);
    facts.Mode = (flags >> 30) & 1 ? QStringLiteral("Joint Stereo") : QStringLiteral("Stereo");
    const uint32_t lastFrame = (gapless >> 31) ? (gapless >> 20) & 0x7FF : 1152;
    FinishMpc(facts, uint64_t(frames - 1) * 1152 + lastFrame, audioEnd - at - 28);
    facts.Frames = int(frames);
    facts.Valid = true;
    return facts;
}

MpcFacts AnalyseMpcSv8(QByteArrayView bytes, qsizetype at, qsizetype audioEnd)
{
    MpcFacts facts;
    facts.StreamVersion = 8;
    uint64_t samples = 0;
    bool header = false;
    qsizetype packet = at + 4;
    while (packet + 3 <= audioEnd) {
        const QByteArrayView key = bytes.sliced(packet, 2);
        if (!std::isupper(uint8_t(key[0])) || !std::isupper(uint8_t(key[1])))
            break;
        qsizetype field = packet + 2;
        const uint64_t size = MpcVarint(bytes, field);
        if (size < uint64_t(field - packet) || size > uint64_t(audioEnd - packet))
            break;
        if (key == "SH") {
            field += 4;  // CRC
            if (ByteAt(bytes, field++) != 8)
                return facts;
            samples = MpcVarint(bytes, field);
            samples -= std::min(samples, MpcVarint(bytes, field));  // silence at the start
            facts.Rate = kMpcRates[(ByteAt(bytes, field) >> 5) & 3];
            const uint32_t channels = (ByteAt(bytes, field + 1) >> 4) + 1;
            const bool midSide = (ByteAt(bytes, field + 1) >> 3) & 1;
            facts.Mode = channels == 1 ? QStringLiteral("Mono")
                                       : midSide ? QStringLiteral("Joint Stereo") : QStringLiteral("Stereo");
            header = true;
        } else if (key == "EI") {
            facts.Profile = MpcProfileName(int(ByteAt(bytes, field) >> 1) / 8);
        } else if (key == "AP" || key == "SE") {
            break;
        }
        packet += qsizetype(size);
    }
    if (!header || facts.Rate == 0)
        return facts;
    if (facts.Profile.isEmpty())
        facts.Profile = MpcProfileName(0);
    FinishMpc(facts, samples, audioEnd - at);
    facts.Valid = true;
    return facts;
}

// ---- Ogg Vorbis ----------------------------------------------------------------------------------

constexpr qsizetype kOggPageHeader = 27;

// Offset of the first packet's body in the page at `page`.
qsizetype OggPageBody(QByteArrayView bytes, qsizetype page)
{
    return page + kOggPageHeader + qsizetype(ByteAt(bytes, page + 26));
}

// The granule position of the last page: the count of samples in the stream.
int64_t LastGranule(QByteArrayView bytes)
{
    qsizetype at = bytes.lastIndexOf(QByteArrayView("OggS"));
    while (at >= 0) {
        const uint64_t granule = uint64_t(LittleEndian(bytes, at + 6, 4)) | (uint64_t(LittleEndian(bytes, at + 10, 4)) << 32);
        if (at + kOggPageHeader <= bytes.size() && granule != ~uint64_t(0))
            return int64_t(granule);
        at = at > 0 ? bytes.first(at).lastIndexOf(QByteArrayView("OggS")) : -1;
    }
    return 0;
}

} // namespace

QString ChannelModeName(int channels)
{
    if (channels == 1)
        return QStringLiteral("Mono");
    if (channels == 2)
        return QStringLiteral("Stereo");
    return QStringLiteral("%1 channels").arg(channels);
}

namespace {

// The length an ID3v2 header at `at` declares for its tag, header and footer included; 0 when
// no tag starts there.
qsizetype DeclaredId3v2Length(QByteArrayView bytes, qsizetype at)
{
    if (!HasAt(bytes, at, "ID3") || ByteAt(bytes, at + 3) == 0xFF)
        return 0;
    const uint32_t syncsafe = BigEndian(bytes, at + 6, 4);
    if (syncsafe & 0x80808080u)
        return 0;
    const qsizetype size = ((syncsafe & 0x7F000000) >> 3) | ((syncsafe & 0x7F0000) >> 2) | ((syncsafe & 0x7F00) >> 1)
                           | (syncsafe & 0x7F);
    const bool footer = ByteAt(bytes, at + 5) & 0x10;
    return 10 + size + (footer ? 10 : 0);
}

} // namespace

qsizetype Id3v2Span(QByteArrayView bytes)
{
    qsizetype at = 0;
    while (const qsizetype length = DeclaredId3v2Length(bytes, at))
        at = std::min<qsizetype>(bytes.size(), at + length);
    return at;
}

std::optional<qsizetype> FirstId3v2Span(QByteArrayView bytes)
{
    const qsizetype length = DeclaredId3v2Length(bytes, 0);
    if (length > bytes.size())
        return std::nullopt;
    return length;
}

WavFacts AnalyseWav(QByteArrayView bytes)
{
    WavFacts facts;
    if (!HasAt(bytes, 0, "RIFF") || !HasAt(bytes, 8, "WAVE"))
        return facts;
    bool format = false;
    qsizetype chunk = 12;
    while (chunk + 8 <= bytes.size()) {
        const qsizetype size = LittleEndian(bytes, chunk + 4, 4);
        const qsizetype body = chunk + 8;
        if (HasAt(bytes, chunk, "fmt ") && size >= 16) {
            facts.Format = int16_t(LittleEndian(bytes, body, 2));
            facts.Channels = int(LittleEndian(bytes, body + 2, 2));
            facts.Rate = int(LittleEndian(bytes, body + 4, 4));
            facts.BytesPerSecond = int(LittleEndian(bytes, body + 8, 4));
            facts.Bits = int(LittleEndian(bytes, body + 14, 2));
            format = true;
        } else if (HasAt(bytes, chunk, "data")) {
            if (!format || facts.Channels == 0 || facts.Rate <= 0)
                return facts;
            const qsizetype data = std::min<qsizetype>(size, bytes.size() - body);
            facts.HeaderSize = int(body);
            facts.Seconds = facts.BytesPerSecond > 0 ? double(data) / facts.BytesPerSecond : 0;
            facts.Size = bytes.size();
            facts.Mode = ChannelModeName(facts.Channels);
            facts.Valid = true;
            return facts;
        }
        chunk = body + size + (size & 1);
    }
    return facts;
}

MpegFacts AnalyseMpeg(QByteArrayView bytes)
{
    MpegFacts facts;
    const qsizetype start = Id3v2Span(bytes);
    const qsizetype audioEnd = bytes.size() - EndTagSpan(bytes);
    if (StartsWithOtherFormat(bytes, start))
        return facts;
    const qsizetype searchEnd = std::min(audioEnd, start + kFrameSearchWindow);
    FrameHeader h;
    qsizetype at = start;
    for (; at + 4 <= searchEnd; ++at)
        if (ReadFrameHeader(bytes, at, h) && StartsStream(bytes, at, audioEnd, h))
            break;
    if (at + 4 > searchEnd)
        return facts;

    const VbrInfo vbr = ReadVbrHeader(bytes, at, h);
    const qsizetype audioBytes = vbr.Bytes > 0 ? qsizetype(vbr.Bytes) : audioEnd - at;
    const double frames = vbr.Frames > 0 ? double(vbr.Frames)
                                         : std::round(double(audioEnd - at) * h.Rate / (h.Samples / 8.0 * h.Bitrate * 1000));
    const double seconds = frames * h.Samples / h.Rate;
    facts.Valid = true;
    facts.FirstFrame = at;
    facts.Text1 = h.Version == Mpeg1 ? QStringLiteral("MPEG 1.0") : h.Version == Mpeg2 ? QStringLiteral("MPEG 2.0") : QStringLiteral("MPEG 2.5");
    facts.Text2 = QStringLiteral("Layer ") + QString(h.Layer, u'I');
    facts.Mode = MpegModeName(h.Mode);
    facts.Emphasis = EmphasisName(h.Emphasis);
    const bool averaged = vbr.Frames > 0 && !vbr.ConstantRate && seconds > 0;
    facts.Bitrate = averaged ? SaturatedInt(std::round(audioBytes * 8 / seconds / 1000)) : h.Bitrate;
    facts.Rate = h.Rate;
    facts.Frames = SaturatedInt(frames);
    facts.Seconds = SaturatedInt(seconds);
    facts.Size = bytes.size();
    facts.Crc = h.Crc;
    facts.Copyright = h.Copyright;
    facts.Original = h.Original;
    return facts;
}

ApeFacts AnalyseApe(QByteArrayView bytes)
{
    ApeFacts facts;
    const qsizetype at = Id3v2Span(bytes);
    if (!HasAt(bytes, at, "MAC "))
        return facts;
    const uint32_t version = LittleEndian(bytes, at + 4, 2);
    uint32_t level = 0, flags = 0, blocksPerFrame = 0, finalFrameBlocks = 0, totalFrames = 0;
    if (version >= 3980) {
        const qsizetype header = at + LittleEndian(bytes, at + 8, 4);
        level = LittleEndian(bytes, header, 2);
        blocksPerFrame = LittleEndian(bytes, header + 4, 4);
        finalFrameBlocks = LittleEndian(bytes, header + 8, 4);
        totalFrames = LittleEndian(bytes, header + 12, 4);
        facts.Bits = int(LittleEndian(bytes, header + 16, 2));
        facts.Channels = int(LittleEndian(bytes, header + 18, 2));
        facts.Rate = int(LittleEndian(bytes, header + 20, 4));
        if (header + 24 > bytes.size())
            return facts;
    } else {
        level = LittleEndian(bytes, at + 6, 2);
        flags = LittleEndian(bytes, at + 8, 2);
        facts.Channels = int(LittleEndian(bytes, at + 10, 2));
        facts.Rate = int(LittleEndian(bytes, at + 12, 4));
        totalFrames = LittleEndian(bytes, at + 24, 4);
        finalFrameBlocks = LittleEndian(bytes, at + 28, 4);
        facts.Bits = flags & 1 ? 8 : flags & 8 ? 24 : 16;
        blocksPerFrame = version >= 3950 ? 73728 * 4 : version >= 3900 || (version >= 3800 && level == 4000) ? 73728 : 9216;
        if (at + 32 > bytes.size())
            return facts;
    }
    if (facts.Rate <= 0 || facts.Channels <= 0 || facts.Bits <= 0 || totalFrames == 0)
        return facts;
    const double samples = double(totalFrames - 1) * blocksPerFrame + finalFrameBlocks;
    const double pcmBytes = samples * facts.Channels * facts.Bits / 8;
    facts.Version = QString::number(version / 1000.0, 'f', 2);
    facts.Mode = CompressionName(level);
    facts.Seconds = SaturatedInt(samples / facts.Rate);
    facts.Size = bytes.size();
    facts.Ratio = pcmBytes > 0 ? 100.0 * double(bytes.size()) / pcmBytes : 0;
    facts.Valid = true;
    return facts;
}

MpcFacts AnalyseMpc(QByteArrayView bytes)
{
    const qsizetype at = Id3v2Span(bytes);
    const qsizetype audioEnd = bytes.size() - EndTagSpan(bytes);
    MpcFacts facts = HasAt(bytes, at, "MPCK") ? AnalyseMpcSv8(bytes, at, audioEnd)
                     : HasAt(bytes, at, "MP+") ? AnalyseMpcSv7(bytes, at, audioEnd)
                                               : MpcFacts{};
    facts.Size = bytes.size();
    return facts;
}

OggFacts AnalyseOgg(QByteArrayView bytes)
{
    OggFacts facts;
    if (!HasAt(bytes, 0, "OggS"))
        return facts;
    const qsizetype id = OggPageBody(bytes, 0);
    if (!HasAt(bytes, id, "\x01vorbis") || id + 30 > bytes.size())
        return facts;
    const int channels = int(ByteAt(bytes, id + 11));
    facts.Rate = int(LittleEndian(bytes, id + 12, 4));
    facts.Nominal = int(int32_t(LittleEndian(bytes, id + 20, 4)) / 1000);
    if (channels == 0 || facts.Rate <= 0)
        return facts;

    const qsizetype comment = bytes.indexOf(QByteArrayView("\x03vorbis"), id);
    if (comment >= 0) {
        const qsizetype vendorLength = LittleEndian(bytes, comment + 7, 4);
        if (vendorLength <= bytes.size() - comment - 11)
            facts.Vendor = QString::fromUtf8(bytes.sliced(comment + 11, vendorLength));
    }
    facts.Seconds = double(LastGranule(bytes)) / facts.Rate;
    facts.Size = bytes.size();
    facts.Average = facts.Seconds > 0 ? SaturatedInt(std::round(bytes.size() * 8 / facts.Seconds / 1000)) : 0;
    facts.Mode = ChannelModeName(channels);
    facts.Valid = true;
    return facts;
}
