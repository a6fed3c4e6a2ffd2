// SPDX-License-Identifier: GPL-2.0-or-later
// The device's hardware address, its identity towards the analysis server.
#pragma once

#include <QString>
#include <QVector>

#include <functional>

namespace macaddress {

struct Interface
{
    QString name;
    QString hardwareAddress;
    bool up = false;
    bool running = false;
    bool loopback = false;
};

using Lister = std::function<QVector<Interface>()>;
using LogSink = std::function<void(const QString &)>;

// In the order the system lists them.
QVector<Interface> systemInterfaces();

// The first interface that is up and not loopback, its address in upper case;
// empty when none qualifies.
QString choose(const QVector<Interface> &interfaces);

// Returns the cached address, or lists the interfaces, logs each and caches
// what it chose. Only a found address is kept, so a device that asks before
// its Wi-Fi is up asks the system again next time.
QString lookup(QString &cache, const Lister &list, const LogSink &log);

} // namespace macaddress
