#include "core/TextCodec.h"

#include <QStringDecoder>
#include <uchardet.h>
#include <algorithm>
#include <array>
#include <optional>

namespace {

// Unicode of bytes 0x80 to 0xFF; U+FFFD where the code page has no character.
constexpr std::array<char16_t, 128> kWindows1250 = {
    0x20AC, 0xFFFD, 0x201A, 0xFFFD, 0x201E, 0x2026, 0x2020, 0x2021,
    0xFFFD, 0x2030, 0x0160, 0x2039, 0x015A, 0x0164, 0x017D, 0x0179,
    0xFFFD, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
    0xFFFD, 0x2122, 0x0161, 0x203A, 0x015B, 0x0165, 0x017E, 0x017A,
    0x00A0, 0x02C7, 0x02D8, 0x0141, 0x00A4, 0x0104, 0x00A6, 0x00A7,
    0x00A8, 0x00A9, 0x015E, 0x00AB, 0x00AC, 0x00AD, 0x00AE, 0x017B,
    0x00B0, 0x00B1, 0x02DB, 0x0142, 0x00B4, 0x00B5, 0x00B6, 0x00B7,
    0x00B8, 0x0105, 0x015F, 0x00BB, 0x013D, 0x02DD, 0x013E, 0x017C,
    0x0154, 0x00C1, 0x00C2, 0x0102, 0x00C4, 0x0139, 0x0106, 0x00C7,
    0x010C, 0x00C9, 0x0118, 0x00CB, 0x011A, 0x00CD, 0x00CE, 0x010E,
    0x0110, 0x0143, 0x0147, 0x00D3, 0x00D4, 0x0150, 0x00D6, 0x00D7,
    0x0158, 0x016E, 0x00DA, 0x0170, 0x00DC, 0x00DD, 0x0162, 0x00DF,
    0x0155, 0x00E1, 0x00E2, 0x0103, 0x00E4, 0x013A, 0x0107, 0x00E7,
    0x010D, 0x00E9, 0x0119, 0x00EB, 0x011B, 0x00ED, 0x00EE, 0x010F,
    0x0111, 0x0144, 0x0148, 0x00F3, 0x00F4, 0x0151, 0x00F6, 0x00F7,
    0x0159, 0x016F, 0x00FA, 0x0171, 0x00FC, 0x00FD, 0x0163, 0x02D9,
};

constexpr std::array<char16_t, 128> kWindows1252 = {
    0x20AC, 0xFFFD, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
    0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0xFFFD, 0x017D, 0xFFFD,
    0xFFFD, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
    0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0xFFFD, 0x017E, 0x0178,
    0x00A0, 0x00A1, 0x00A2, 0x00A3, 0x00A4, 0x00A5, 0x00A6, 0x00A7,
    0x00A8, 0x00A9, 0x00AA, 0x00AB, 0x00AC, 0x00AD, 0x00AE, 0x00AF,
    0x00B0, 0x00B1, 0x00B2, 0x00B3, 0x00B4, 0x00B5, 0x00B6, 0x00B7,
    0x00B8, 0x00B9, 0x00BA, 0x00BB, 0x00BC, 0x00BD, 0x00BE, 0x00BF,
    0x00C0, 0x00C1, 0x00C2, 0x00C3, 0x00C4, 0x00C5, 0x00C6, 0x00C7,
    0x00C8, 0x00C9, 0x00CA, 0x00CB, 0x00CC, 0x00CD, 0x00CE, 0x00CF,
    0x00D0, 0x00D1, 0x00D2, 0x00D3, 0x00D4, 0x00D5, 0x00D6, 0x00D7,
    0x00D8, 0x00D9, 0x00DA, 0x00DB, 0x00DC, 0x00DD, 0x00DE, 0x00DF,
    0x00E0, 0x00E1, 0x00E2, 0x00E3, 0x00E4, 0x00E5, 0x00E6, 0x00E7,
    0x00E8, 0x00E9, 0x00EA, 0x00EB, 0x00EC, 0x00ED, 0x00EE, 0x00EF,
    0x00F0, 0x00F1, 0x00F2, 0x00F3, 0x00F4, 0x00F5, 0x00F6, 0x00F7,
    0x00F8, 0x00F9, 0x00FA, 0x00FB, 0x00FC, 0x00FD, 0x00FE, 0x00FF,
};

QString DecodeSingleByte(const QByteArray& bytes, const std::array<char16_t, 128>& high)
{
    QString text(bytes.size(), Qt::Uninitialized);
    QChar* out = text.data();
    for (char c : bytes) {
        const auto b = static_cast<unsigned char>(c);
        *out++ = QChar(b < 0x80 ? char16_t(b) : high[b - 0x80]);
    }
    return text;
}

} // namespace

QString DecodeText(const QByteArray& bytes, bool polish)
{
    // The decoder drops a leading byte order mark.
    QStringDecoder utf8(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    QString text = utf8.decode(bytes);
    return utf8.hasError() ? DecodeSingleByte(bytes, polish ? kWindows1250 : kWindows1252) : text;
}

namespace {

// Detection reads this much at the most: enough to tell any encoding, bounded for any file.
constexpr qsizetype kDetectedBytes = qsizetype(1) << 20;

// The encoding the bytes look like; empty when the detector is unsure or sees plain ASCII.
QByteArray DetectedEncoding(const QByteArray& bytes)
{
    uchardet_t detector = uchardet_new();
    uchardet_handle_data(detector, bytes.constData(), size_t(std::min(bytes.size(), kDetectedBytes)));
    uchardet_data_end(detector);
    QByteArray name = uchardet_get_charset(detector);
    uchardet_delete(detector);
    return name == "ASCII" ? QByteArray() : name;
}

std::optional<QString> DecodeAs(const QByteArray& encoding, const QByteArray& bytes)
{
    if (encoding.isEmpty())
        return std::nullopt;
    QStringDecoder decoder(encoding.constData(), QStringDecoder::Flag::Stateless);
    if (!decoder.isValid())
        return std::nullopt;
    QString text = decoder.decode(bytes);
    return decoder.hasError() ? std::nullopt : std::optional<QString>(std::move(text));
}

bool IsUtf8(const QByteArray& bytes)
{
    QStringDecoder utf8(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    // The decoding runs when its result becomes a string.
    const QString decoded = utf8.decode(bytes);
    return !utf8.hasError();
}

} // namespace

QString DecodeAnyText(const QByteArray& bytes, bool polish)
{
    if (bytes.startsWith("\xFF\xFE") || bytes.startsWith("\xFE\xFF")) {
        QStringDecoder utf16(bytes.startsWith("\xFF") ? QStringDecoder::Utf16LE : QStringDecoder::Utf16BE);
        return utf16.decode(bytes.mid(2));
    }
    QStringDecoder utf8(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const QString text = utf8.decode(bytes);
    if (!utf8.hasError())
        return text;
    if (auto detected = DecodeAs(DetectedEncoding(bytes), bytes))
        return *detected;
    return DecodeText(bytes, polish);
}

QStringList DecodeTexts(const QList<QByteArray>& texts, bool polish)
{
    const QByteArray together = QByteArray(texts.join('\n')).left(kDetectedBytes);
    const QByteArray encoding = IsUtf8(together) ? QByteArray() : DetectedEncoding(together);
    QStringList decoded;
    for (const QByteArray& text : texts)
        decoded << DecodeAs(encoding, text).value_or(DecodeText(text, polish));
    return decoded;
}

QByteArray EncodeText(const QString& text)
{
    return text.toUtf8();
}

namespace {

// Without a replacement a character the page lacks fails the whole text.
std::optional<QByteArray> EncodeSingleByte(const QString& text, const std::array<char16_t, 128>& high,
                                           std::optional<char> replacement = std::nullopt)
{
    QByteArray bytes;
    bytes.reserve(text.size());
    for (const QChar c : text) {
        if (c.unicode() < 0x80) {
            bytes.append(char(c.unicode()));
            continue;
        }
        const auto it = std::find(high.begin(), high.end(), c.unicode());
        if (it == high.end() || c.unicode() == 0xFFFD) {
            if (!replacement)
                return std::nullopt;
            bytes.append(*replacement);
            continue;
        }
        bytes.append(char(0x80 + (it - high.begin())));
    }
    return bytes;
}

} // namespace

QByteArray EncodeLegacyField(const QString& text, bool polish, qsizetype size)
{
    if (const auto legacy = EncodeSingleByte(text, polish ? kWindows1250 : kWindows1252))
        return legacy->left(size);
    QByteArray utf8;
    for (qsizetype i = 0; i < text.size();) {
        const qsizetype length = text.at(i).isHighSurrogate() && i + 1 < text.size() ? 2 : 1;
        const QByteArray next = text.mid(i, length).toUtf8();
        if (utf8.size() + next.size() > size)
            break;
        utf8 += next;
        i += length;
    }
    return utf8;
}

QByteArray EncodeWindows1250(const QString& text)
{
    return *EncodeSingleByte(text, kWindows1250, '?');
}

QString DecodeWindows1250(const QByteArray& bytes)
{
    return DecodeSingleByte(bytes, kWindows1250);
}
