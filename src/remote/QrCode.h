#pragma once
// A QR code of a text, for a phone's camera: black modules on white with the quiet zone the
// readers need around them.

#include <QImage>
#include <QString>

// Each module `scale` pixels square; a null image when the text cannot be encoded.
QImage QrCodeImage(const QString& text, int scale);
