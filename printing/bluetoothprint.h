// SPDX-License-Identifier: GPL-2.0-or-later
// One print job on the Bluetooth receipt printer: open with retries, reset the printer, send the text.
#pragma once

#include <QString>

#include <functional>

class IPrinterTransport;

namespace bluetoothprint {

enum class Status { Ok, OpenFailed, InitFailed };

constexpr int kBaudRate = 9600;
constexpr int kOpenAttempts = 3;
// After failed attempt n the job sleeps n times this long.
constexpr int kRetryStepMs = 300;
constexpr int kFlushLimitMs = 2000;

// ESC @ (initialise), ESC t 0 (character table 0), ESC a 0 (left), ESC E 0 (bold off).
QByteArray initialisation();

// The text goes out as UTF-8 followed by "\n"; an empty text sends only the
// initialisation. `sleep` waits the given milliseconds between attempts.
Status printText(IPrinterTransport &transport, const QString &text, const std::function<void(int ms)> &sleep);

} // namespace bluetoothprint
