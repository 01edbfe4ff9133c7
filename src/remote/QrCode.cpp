#include "remote/QrCode.h"

#include <memory>
#include <qrencode.h>

namespace {

constexpr int kQuietModules = 4;

} // namespace

QImage QrCodeImage(const QString& text, int scale)
{
    const QByteArray bytes = text.toUtf8();
    const std::unique_ptr<QRcode, decltype(&QRcode_free)> code(
        QRcode_encodeString8bit(bytes.constData(), 0, QR_ECLEVEL_M), &QRcode_free);
    if (!code || scale < 1)
        return {};
    const int side = (code->width + 2 * kQuietModules) * scale;
    QImage image(side, side, QImage::Format_Grayscale8);
    image.fill(Qt::white);
    for (int y = 0; y < code->width; ++y) {
        for (int x = 0; x < code->width; ++x) {
            if (!(code->data[y * code->width + x] & 1))
                continue;
            for (int dy = 0; dy < scale; ++dy) {
                uchar* line = image.scanLine((y + kQuietModules) * scale + dy);
                std::fill_n(line + (x + kQuietModules) * scale, scale, uchar(0));
            }
        }
    }
    return image;
}
