// SPDX-License-Identifier: GPL-2.0-or-later
// A receipt printer behind a serial device node (the bound RFCOMM port), through termios.
#pragma once

#include "iprintertransport.h"

// Owns its descriptor. Line settings: raw mode (no output processing, so
// "\n" leaves as one byte and the command bytes pass untouched), 8 data bits,
// no parity, one stop bit, receiver on, modem lines ignored, and no flow
// control of either kind: RFCOMM paces the link with its own credits, and
// XON/XOFF would swallow the bytes 0x11 and 0x13 of the command stream.
class PosixSerialTransport : public IPrinterTransport
{
public:
    PosixSerialTransport(const QString &path, int baudRate);
    ~PosixSerialTransport() override;
    PosixSerialTransport(const PosixSerialTransport &) = delete;
    PosixSerialTransport &operator=(const PosixSerialTransport &) = delete;

    int open() override;
    bool isOpen() const override;
    int configure() override;
    int write(const char *bytes, int length) override;
    int flush(int timeoutMs) override;
    void close() override;

    QString name() const override { return m_path; }
    int baudRate() const override { return m_baudRate; }

    // The longest wait for room in the output buffer during one write.
    static constexpr int kWriteLimitMs = 2000;

private:
    QString m_path;
    int m_baudRate;
    int m_fd = -1;
};
