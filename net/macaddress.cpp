// SPDX-License-Identifier: GPL-2.0-or-later
// The device's hardware address, its identity towards the analysis server.
#include "macaddress.h"

#include <QNetworkInterface>

namespace macaddress {

QVector<Interface> systemInterfaces()
{
    QVector<Interface> result;
    const QList<QNetworkInterface> all = QNetworkInterface::allInterfaces();
    for (const QNetworkInterface &entry : all) {
        const QNetworkInterface::InterfaceFlags flags = entry.flags();
        Interface item;
        item.name = entry.name();
        item.hardwareAddress = entry.hardwareAddress();
        item.up = flags.testFlag(QNetworkInterface::IsUp);
        item.running = flags.testFlag(QNetworkInterface::IsRunning);
        item.loopback = flags.testFlag(QNetworkInterface::IsLoopBack);
        result << item;
    }
    return result;
}

QString choose(const QVector<Interface> &interfaces)
{
    // Running is not required: a Wi-Fi link still associating has its
    // address all the same.
    for (const Interface &entry : interfaces) {
        if (entry.up && !entry.loopback)
            return entry.hardwareAddress.toUpper();
    }
    return QString();
}

QString lookup(QString &cache, const Lister &list, const LogSink &log)
{
    if (!cache.isEmpty())
        return cache;
    const QVector<Interface> interfaces = list();
    for (const Interface &entry : interfaces) {
        log(QStringLiteral("GetETNetMACAddress ==1== [%1] [%2] [%3] [%4] [%5]")
                .arg(entry.name, entry.hardwareAddress)
                .arg(int(entry.up))
                .arg(int(entry.running))
                .arg(int(entry.loopback)));
    }
    cache = choose(interfaces);
    log(QStringLiteral("GetETNetMACAddress -- [%1]").arg(cache));
    return cache;
}

} // namespace macaddress
