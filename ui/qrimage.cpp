// SPDX-License-Identifier: GPL-2.0-or-later
// A QR code as a black-and-white picture, drawn for phones and scanners to read off the screen.
#include "qrimage.h"

#include <qrencode.h>

#include <algorithm>
#include <memory>

namespace qrimage {

namespace {

// The white margin the QR standard asks for, in modules.
constexpr int kQuietModules = 4;

} // namespace

QImage render(const QString &text, int maxSide)
{
    const QByteArray bytes = text.toUtf8();
    // Level M survives a smudged screen or a little glare and keeps the
    // modules large enough for a phone at arm's length.
    const std::unique_ptr<QRcode, decltype(&QRcode_free)> code(
        QRcode_encodeString8bit(bytes.constData(), 0, QR_ECLEVEL_M), &QRcode_free);
    if (!code)
        return QImage();
    const int modules = code->width + 2 * kQuietModules;
    // A fractional scale would make modules of two sizes and blur their
    // edges when shown; the image is smaller instead.
    const int scale = maxSide / modules;
    if (scale < 1)
        return QImage();

    QImage image(modules * scale, modules * scale, QImage::Format_Grayscale8);
    image.fill(255);
    for (int y = 0; y < code->width; ++y) {
        for (int x = 0; x < code->width; ++x) {
            // Bit 0 of each module's byte is its colour; the rest say what the module is for.
            if (!(code->data[y * code->width + x] & 1))
                continue;
            for (int row = 0; row < scale; ++row) {
                uchar *line = image.scanLine((y + kQuietModules) * scale + row);
                std::fill_n(line + (x + kQuietModules) * scale, scale, uchar(0));
            }
        }
    }
    return image;
}

} // namespace qrimage
