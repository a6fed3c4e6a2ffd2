// SPDX-License-Identifier: GPL-2.0-or-later
// Fuzz target: a time server's datagram of any length gives a time without harm.
#include "sntppacket.h"
#include "fuzzsupport.h"

using fuzzsupport::require;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray reply = fuzzsupport::bytes(data, size);
    const qint64 seconds = sntppacket::secsSinceEpoch(reply);
    require(seconds >= -sntppacket::kSecondsFrom1900To1970 &&
            seconds <= 0xffffffffLL - sntppacket::kSecondsFrom1900To1970);
    // Only the transmit timestamp counts: what comes before it does not.
    if (reply.size() >= 8) {
        QByteArray other = reply;
        other[0] = static_cast<char>(~other[0]);
        if (reply.size() > 8)
            require(sntppacket::transmitSeconds(other) == sntppacket::transmitSeconds(reply));
    }
    // The request carries a time that its own reading gives back.
    const qint64 now = 1700000000 + static_cast<qint64>(sntppacket::transmitSeconds(reply) % 100000000);
    const QByteArray request = sntppacket::buildRequest(now);
    require(request.size() == sntppacket::kRequestSize);
    require(sntppacket::secsSinceEpoch(request) == now);
    return 0;
}
