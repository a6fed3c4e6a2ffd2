// SPDX-License-Identifier: GPL-2.0-or-later
// The byte link to a receipt printer, so that the command stream does not depend on how the bytes travel.
#pragma once

#include <QString>

// Device convention: 0 on success, -1 on failure; the caller logs.
class IPrinterTransport
{
public:
    virtual ~IPrinterTransport() = default;

    // Opens and configures the link.
    virtual int open() = 0;
    virtual bool isOpen() const = 0;
    virtual int configure() = 0;
    // Every byte or -1.
    virtual int write(const char *bytes, int length) = 0;
    // Waits until the bytes have left, for at most the given time.
    virtual int flush(int timeoutMs) = 0;
    virtual void close() = 0;

    // For the log lines: where the link goes and how fast.
    virtual QString name() const = 0;
    virtual int baudRate() const = 0;
};
