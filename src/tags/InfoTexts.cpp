#include "tags/InfoTexts.h"

#include <QLocale>
#include <QStringList>
#include <cmath>

namespace {

const QString kCrLf = QStringLiteral("\r\n");

QString YesNo(bool flag)
{
    return flag ? QStringLiteral("Yes") : QStringLiteral("No");
}

} // namespace

QString FormatThousands(int32_t value)
{
    const QString digits = QString::number(value);
    const qsizetype n = digits.size();
    const QString last = digits.right(3);
    if (n >= 1 && n <= 3)
        return digits;
    if (n <= 6)
        return digits.left(n - 3) + u' ' + last;
    if (n <= 9)
        return digits.left(n - 6) + u' ' + digits.mid(n - 7, 3) + u' ' + last;
    if (n <= 11)
        return digits.left(n - 9) + u' ' + digits.mid(n - 10, 3) + u' ' + digits.mid(n - 7, 3) + u' ' + last;
    return {};
}

QString FormatSeconds(double seconds)
{
    const long long whole = static_cast<long long>(seconds);
    const long long minutes = whole / 60;
    const long long rest = whole % 60;
    const QString minuteText = minutes < 1 ? QStringLiteral("00") : minutes < 10 ? u'0' + QString::number(minutes) : QString::number(minutes);
    return minuteText + u':' + QString::number(rest).rightJustified(2, u'0');
}

QString WavInfoText(const WavFacts& wav)
{
    return QStringList{
               QStringLiteral("File size: ") + FormatThousands(int32_t(wav.Size)) + QStringLiteral(" bytes"),
               QStringLiteral("Length: ") + FormatSeconds(wav.Seconds),
               QStringLiteral("Format: %1").arg(wav.Format),
               QStringLiteral("Mode: ") + wav.Mode,
               QStringLiteral("Channels: %1").arg(wav.Channels),
               QStringLiteral("Sample rate: %1 Hz").arg(wav.Rate),
               QStringLiteral("Bits per sample: %1").arg(wav.Bits),
               QStringLiteral("Bytes per second: %1").arg(wav.BytesPerSecond),
               QStringLiteral("Header size: %1").arg(wav.HeaderSize),
           }.join(kCrLf)
           + kCrLf;
}

QString MpegInfoText(const MpegFacts& mpeg)
{
    return QStringList{
        QStringLiteral("Size: %1 bytes").arg(mpeg.Size),
        QStringLiteral("Length: %1 seconds").arg(mpeg.Seconds),
        mpeg.Text1 + u' ' + mpeg.Text2,
        QStringLiteral("%1 kbit, %2 frames").arg(mpeg.Bitrate).arg(mpeg.Frames),
        QStringLiteral("%1Hz ").arg(mpeg.Rate) + mpeg.Mode,
        QStringLiteral("CRCs: ") + YesNo(mpeg.Crc),
        QStringLiteral("Copyrighted: ") + YesNo(mpeg.Copyright),
        QStringLiteral("Original: ") + YesNo(mpeg.Original),
        QStringLiteral("Emphasis: ") + mpeg.Emphasis,
    }.join(kCrLf);
}

QString ApeFormatText(const ApeFacts& ape, bool id3v1, bool id3v2, bool apeTag)
{
    const QString tag = id3v1 ? QStringLiteral("ID3v1 Tag") : id3v2 ? QStringLiteral("Id3v2 Tag") : apeTag ? QStringLiteral("APE Tag") : QString();
    return QStringList{
        QStringLiteral("Version: ") + ape.Version,
        QStringLiteral("Mode: ") + ape.Mode,
        QStringLiteral("Tag: ") + tag,
    }.join(kCrLf);
}

QString ApeAudioText(const ApeFacts& ape)
{
    return QStringLiteral("Sample Rate: %1\r\nChannels: %2\r\nBits Per Sample: %3\r\n").arg(ape.Rate).arg(ape.Channels).arg(ape.Bits);
}

QString ApeInfoText(const ApeFacts& ape)
{
    const double ratio = std::round(ape.Ratio * 100) / 100;
    return QStringList{
        QStringLiteral("Length: ") + FormatSeconds(ape.Seconds),
        QStringLiteral("File Size: ") + FormatThousands(int32_t(ape.Size / 1000)) + QStringLiteral(" kB"),
        QStringLiteral("Compression: ") + QLocale().toString(ratio, 'g', 15) + QStringLiteral(" %"),
    }.join(kCrLf);
}

QString MpcTagText(bool id3v1, bool id3v2, int apeTagVersion)
{
    QString tag;
    if (id3v2)
        tag = QStringLiteral("Force ID3v1");
    if (id3v1)
        tag = QStringLiteral("ID3v1");
    if (apeTagVersion == 1000)
        tag = QStringLiteral("APE v1.00");
    else if (apeTagVersion == 2000)
        tag = QStringLiteral("APE v2.00");
    return tag;
}

QString MpcInfoText(const MpcFacts& mpc)
{
    return QStringList{
        QStringLiteral("Stream Version %1  Profile: '").arg(mpc.StreamVersion) + mpc.Profile + u'\'',
        QStringLiteral("Bitrate: %1 Kb/s").arg(mpc.Bitrate),
        QStringLiteral("Frames: %1").arg(mpc.Frames),
        QStringLiteral("Playtime: %1 sec.").arg(mpc.Seconds),
        QStringLiteral("Mode: ") + mpc.Mode,
        QStringLiteral("Size: ") + FormatThousands(int32_t(mpc.Size)) + QStringLiteral(" Bytes"),
    }.join(kCrLf);
}

QString OggInfoText(const OggFacts& ogg)
{
    return QStringList{
        QStringLiteral("Length: ") + FormatSeconds(ogg.Seconds),
        QStringLiteral("Average bitrate: %1 kbps").arg(ogg.Average),
        QStringLiteral("File size: ") + FormatThousands(int32_t(ogg.Size)) + QStringLiteral(" bytes"),
        QStringLiteral("Nominal bitrate: %1 kbps").arg(ogg.Nominal),
        QStringLiteral("Mode: ") + ogg.Mode,
        QStringLiteral(" Sampling rate: %1 Hz").arg(ogg.Rate),
        QStringLiteral("Vendor:"),
        ogg.Vendor,
    }.join(kCrLf);
}
