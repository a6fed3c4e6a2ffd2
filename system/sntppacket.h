// SPDX-License-Identifier: GPL-2.0-or-later
// The bytes of a simple network time exchange: the client's request and the time in the server's reply.
#pragma once

#include <QByteArray>
#include <QtGlobal>

namespace sntppacket {

constexpr int kRequestSize = 48;
// Network time counts from 1900-01-01, the system clock from 1970-01-01.
constexpr qint64 kSecondsFrom1900To1970 = 2208988800LL;

// The 48-byte client request (version 3, client mode) whose transmit
// timestamp carries the given time, in whole seconds.
QByteArray buildRequest(qint64 secsSinceEpoch);

// Seconds since 1900 of the reply's transmit timestamp: the first four of
// its last eight bytes, most significant first. A reply shorter than that
// reads its missing bytes as zero; nothing here judges whether the time is
// plausible.
quint32 transmitSeconds(const QByteArray &reply);

// The same time as seconds since 1970; negative for a reply that says 0.
qint64 secsSinceEpoch(const QByteArray &reply);

} // namespace sntppacket
