// SPDX-License-Identifier: GPL-2.0-or-later
// One request and its reply with a network time server over UDP, each wait bounded.
#pragma once

#include <QByteArray>
#include <QString>

namespace sntpclient {

// Sends the request to host:port and takes the reply: every datagram waiting
// once the first has arrived is read, and the last one read is the reply.
// Returns false, leaving `reply` alone, when the server cannot be reached
// within connectMs (a host name is resolved within that time) or nothing
// answers within replyMs.
//
// Resolving a name runs a local event loop; call this from a worker thread,
// never from the GUI's, where the loop would run other pages' slots.
bool exchange(const QString &host, quint16 port, const QByteArray &request, QByteArray &reply, int connectMs = 3000,
              int replyMs = 3000);

} // namespace sntpclient
