// SPDX-License-Identifier: GPL-2.0-or-later
// A QR code as a black-and-white picture, drawn for phones and scanners to read off the screen.
#pragma once

#include <QImage>
#include <QString>

namespace qrimage {

// The text (UTF-8) as a QR code no larger than maxSide pixels square:
// whole pixels per module and the four-module white margin scanners need
// around it. A null image when the text does not fit a QR code or maxSide
// cannot hold one pixel per module.
QImage render(const QString &text, int maxSide);

} // namespace qrimage
