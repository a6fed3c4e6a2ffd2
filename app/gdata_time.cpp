// SPDX-License-Identifier: GPL-2.0-or-later
// GData: network time and the local time of the chosen zone.
#include "gdata.h"

#include "platform.h"
#include "sntpclient.h"
#include "sntppacket.h"
#include "systemclock.h"

#include <QDebug>

#include <mutex>

void GData::updateTimeFromeWeb()
{
    qDebug("updateTimeFromeWeb");
    const Platform &platform = Platform::instance();
    QByteArray reply;
    const QByteArray request = sntppacket::buildRequest(systemclock::nowSecs());
    if (!sntpclient::exchange(platform.timeServer, static_cast<quint16>(platform.timePort), request, reply))
        return;
    // The clock runs in UTC; the zone is added only where time is shown or stored.
    const qint64 secs = sntppacket::secsSinceEpoch(reply);
    if (m_devices.clock->setSecs(secs) != 0) {
        qDebug("updateTimeFromeWeb: the clock refused %lld", static_cast<long long>(secs));
        return;
    }
    m_bNetworkReady = 1;
}

void GData::timerInternetTime()
{
    // Once per power-up is enough: the board's clock drifts by seconds a
    // day, while the clock label and the idle timers count minutes.
    if (m_bNetworkReady)
        return;
    // The GUI's worker and the polling thread both tick; a second exchange
    // while one waits on a silent server would only wait as well.
    static std::mutex exchanging;
    std::unique_lock<std::mutex> lock(exchanging, std::try_to_lock);
    if (!lock.owns_lock())
        return;
    updateTimeFromeWeb();
}

QDateTime GData::getLocalTime() const
{
    // No zone observes daylight saving: the offset is fixed hours ("5.5"
    // gives 19800 s), truncated to whole seconds.
    const QDateTime utc = QDateTime::fromMSecsSinceEpoch(systemclock::nowMSecs(), Qt::UTC);
    const qint64 offset = static_cast<qint64>(m_strTimeZone.toDouble() * 3600.0);
    return utc.addSecs(offset);
}
