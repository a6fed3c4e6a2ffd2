// SPDX-License-Identifier: GPL-2.0-or-later
// One print job on the Bluetooth receipt printer: open with retries, reset the printer, send the text.
#include "bluetoothprint.h"

#include "iprintertransport.h"

#include <QByteArray>
#include <QDebug>
#include <QTextCodec>

namespace bluetoothprint {

namespace {

void sendFlushed(IPrinterTransport &transport, const QByteArray &bytes)
{
    if (transport.write(bytes.constData(), bytes.size()) == 0)
        transport.flush(kFlushLimitMs);
}

} // namespace

QByteArray initialisation()
{
    return QByteArray("\x1b\x40\x1b\x74\x00\x1b\x61\x00\x1b\x45\x00", 11);
}

Status printText(IPrinterTransport &transport, const QString &text, const std::function<void(int ms)> &sleep)
{
    bool opened = false;
    for (int attempt = 1; attempt <= kOpenAttempts && !opened; ++attempt) {
        opened = transport.open() == 0;
        if (opened)
            break;
        qDebug("open transport failed: %s@%d (attempt %d/%d)", qPrintable(transport.name()), transport.baudRate(),
               attempt, kOpenAttempts);
        sleep(attempt * kRetryStepMs);
    }
    if (!opened)
        return Status::OpenFailed;
    if (!transport.isOpen()) {
        qDebug("printer init failed");
        return Status::InitFailed;
    }

    const QByteArray init = initialisation();
    sendFlushed(transport, init.left(2));
    // The printer's Chinese table would want GB18030, but receipts go out as
    // UTF-8 as they always have; the codec is only looked up.
    (void)QTextCodec::codecForName("GB18030");
    sendFlushed(transport, init.mid(2, 3));
    sendFlushed(transport, init.mid(5, 3));
    sendFlushed(transport, init.mid(8, 3));

    const QByteArray bytes = text.toUtf8();
    if (bytes.isEmpty())
        qDebug("no text found");
    else
        sendFlushed(transport, bytes + '\n');
    transport.close();
    return Status::Ok;
}

} // namespace bluetoothprint
