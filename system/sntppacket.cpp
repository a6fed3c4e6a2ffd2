// SPDX-License-Identifier: GPL-2.0-or-later
// The bytes of a simple network time exchange: the client's request and the time in the server's reply.
#include "sntppacket.h"

namespace sntppacket {

QByteArray buildRequest(qint64 secsSinceEpoch)
{
    QByteArray request(kRequestSize, '\0');
    request[0] = char(0x1B); // leap indicator 0, version 3, client mode
    request[1] = 0;          // stratum
    request[2] = 4;          // poll
    request[3] = char(0xFA); // precision
    request[5] = 1;          // root delay
    request[9] = 1;          // root dispersion
    // The era wraps in 2036; 32 bits are what go on the wire.
    const auto seconds = static_cast<quint32>(secsSinceEpoch + kSecondsFrom1900To1970);
    for (int i = 0; i < 4; ++i)
        request[40 + i] = char(seconds >> (24 - 8 * i));
    return request;
}

quint32 transmitSeconds(const QByteArray &reply)
{
    const QByteArray tail = reply.right(8);
    quint32 seconds = 0;
    for (int i = 0; i < 4; ++i) {
        const quint32 byte = i < tail.size() ? static_cast<quint8>(tail.at(i)) : 0;
        seconds |= byte << (24 - 8 * i);
    }
    return seconds;
}

qint64 secsSinceEpoch(const QByteArray &reply)
{
    return static_cast<qint64>(transmitSeconds(reply)) - kSecondsFrom1900To1970;
}

} // namespace sntppacket
