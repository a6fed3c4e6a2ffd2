// SPDX-License-Identifier: GPL-2.0-or-later
// One request and its reply with a network time server over UDP, each wait bounded.
#include "sntpclient.h"

#include <QEventLoop>
#include <QTimer>
#include <QUdpSocket>

namespace sntpclient {

namespace {

bool waitForConnection(QUdpSocket &socket, int timeoutMs)
{
    // waitForConnected would resolve a host name with the resolver's own,
    // much longer, limits; here the lookup has timeoutMs and no more.
    if (socket.state() == QAbstractSocket::HostLookupState || socket.state() == QAbstractSocket::ConnectingState) {
        QEventLoop loop;
        QTimer limit;
        limit.setSingleShot(true);
        QObject::connect(&limit, &QTimer::timeout, &loop, &QEventLoop::quit);
        QObject::connect(&socket, &QAbstractSocket::connected, &loop, &QEventLoop::quit);
        QObject::connect(&socket, &QAbstractSocket::errorOccurred, &loop, &QEventLoop::quit);
        limit.start(timeoutMs);
        loop.exec(QEventLoop::ExcludeUserInputEvents);
    }
    return socket.state() == QAbstractSocket::ConnectedState;
}

} // namespace

bool exchange(const QString &host, quint16 port, const QByteArray &request, QByteArray &reply, int connectMs,
              int replyMs)
{
    QUdpSocket socket;
    socket.connectToHost(host, port);
    if (!waitForConnection(socket, connectMs))
        return false;
    if (socket.write(request) != request.size())
        return false;
    if (!socket.waitForReadyRead(replyMs))
        return false;
    // A server that sent more than one datagram is taken at its latest word.
    bool received = false;
    while (socket.hasPendingDatagrams()) {
        QByteArray datagram(static_cast<int>(qMax<qint64>(socket.pendingDatagramSize(), 0)), '\0');
        const qint64 size = socket.readDatagram(datagram.data(), datagram.size());
        if (size < 0)
            break;
        datagram.truncate(static_cast<int>(size));
        reply = datagram;
        received = true;
    }
    return received;
}

} // namespace sntpclient
