// SPDX-License-Identifier: GPL-2.0-or-later
// The simulator's network time server: answers the device's time requests over UDP with the host's time.
//
// Usage: orvella-timeserver [--address ADDRESS] [--port PORT]
//   ADDRESS  a loopback address to answer on (default 127.0.0.1)
//   PORT     UDP port (default 12300; 0 picks a free one)
// Prints "orvella-timeserver: answering on ADDRESS:PORT" once it listens, then
// runs until it is terminated. It never sets any clock.
#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDateTime>
#include <QHostAddress>
#include <QNetworkDatagram>
#include <QUdpSocket>
#include <QtEndian>

#include <cstdio>

namespace {

constexpr int kPacketSize = 48;
constexpr quint64 kSecondsFrom1900To1970 = 2208988800ULL;

// A 64-bit network timestamp: seconds since 1900 and the fraction of a second in 1/2^32.
quint64 networkTime(qint64 msecsSinceEpoch)
{
    const quint64 seconds = static_cast<quint64>(msecsSinceEpoch / 1000) + kSecondsFrom1900To1970;
    const quint64 fraction = (static_cast<quint64>(msecsSinceEpoch % 1000) << 32) / 1000;
    return (seconds << 32) | fraction;
}

void putTime(QByteArray &packet, int offset, quint64 time)
{
    qToBigEndian(time, packet.data() + offset);
}

// The server's answer to a client request, or nothing for any other packet.
QByteArray answer(const QByteArray &request, qint64 receivedMs)
{
    if (request.size() < kPacketSize)
        return QByteArray();
    const auto first = static_cast<quint8>(request.at(0));
    const int version = (first >> 3) & 0x7;
    const int mode = first & 0x7;
    if (mode != 3 || version < 1)
        return QByteArray();

    QByteArray reply(kPacketSize, '\0');
    reply[0] = char((version << 3) | 4); // no leap warning, the client's version, server mode
    reply[1] = 1;                        // stratum 1: the host's clock is the reference
    reply[2] = request.at(2);            // the client's poll interval
    reply[3] = char(-10);                // precision about a millisecond, as the host time is read
    reply.replace(12, 4, QByteArray("LOCL", 4));
    const qint64 nowMs = QDateTime::currentMSecsSinceEpoch();
    putTime(reply, 16, networkTime(nowMs));                               // reference
    reply.replace(24, 8, request.mid(40, 8));                             // originate: the client's transmit time
    putTime(reply, 32, networkTime(receivedMs));                          // receive
    putTime(reply, 40, networkTime(QDateTime::currentMSecsSinceEpoch())); // transmit
    return reply;
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Answers network time requests with the host's time."));
    parser.addHelpOption();
    const QCommandLineOption addressOption(QStringLiteral("address"), QStringLiteral("Loopback address to answer on."),
                                           QStringLiteral("address"), QStringLiteral("127.0.0.1"));
    const QCommandLineOption portOption(QStringLiteral("port"), QStringLiteral("UDP port; 0 picks a free one."),
                                        QStringLiteral("port"), QStringLiteral("12300"));
    parser.addOption(addressOption);
    parser.addOption(portOption);
    parser.process(app);

    const QHostAddress address(parser.value(addressOption));
    bool portOk = false;
    const uint port = parser.value(portOption).toUInt(&portOk);
    // The simulated device's server must not be reachable from the network.
    if (!address.isLoopback()) {
        std::fprintf(stderr, "orvella-timeserver: %s is not a loopback address\n",
                     qPrintable(parser.value(addressOption)));
        return 2;
    }
    if (!portOk || port > 65535) {
        std::fprintf(stderr, "orvella-timeserver: %s is not a port\n", qPrintable(parser.value(portOption)));
        return 2;
    }

    QUdpSocket socket;
    if (!socket.bind(address, static_cast<quint16>(port))) {
        std::fprintf(stderr, "orvella-timeserver: cannot listen on %s:%u: %s\n", qPrintable(address.toString()), port,
                     qPrintable(socket.errorString()));
        return 1;
    }
    QObject::connect(&socket, &QUdpSocket::readyRead, [&socket] {
        while (socket.hasPendingDatagrams()) {
            const QNetworkDatagram request = socket.receiveDatagram();
            const QByteArray reply = answer(request.data(), QDateTime::currentMSecsSinceEpoch());
            if (!reply.isEmpty())
                socket.writeDatagram(request.makeReply(reply));
        }
    });
    std::printf("orvella-timeserver: answering on %s:%u\n", qPrintable(socket.localAddress().toString()),
                socket.localPort());
    std::fflush(stdout);
    return app.exec();
}
