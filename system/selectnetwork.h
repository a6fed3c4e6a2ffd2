// SPDX-License-Identifier: GPL-2.0-or-later
// Makes one saved network the preferred one by priority, for both command runners.
#pragma once

#include <QDebug>
#include <QString>
#include <QStringList>

// The supplicant prefers the enabled network with the highest priority, so
// the chosen one gets 10 and every other saved network 1; select_network is
// not used because it disables all the others for good.
template <class Runner> QString selectNetworkByPriority(Runner &runner, int id, const char *logPrefix)
{
    const QStringList lines = runner.wireless_listnetwork().split('\n');
    qDebug() << (QByteArray(logPrefix) + "StrList: ").constData() << lines;
    qDebug() << (QByteArray(logPrefix) + "length: ").constData() << lines.size();
    // wpa_cli ends its last line with a newline; the empty piece after it is
    // not a line, so a header alone enables nothing.
    const int lineCount = lines.size() - (lines.last().isEmpty() ? 1 : 0);
    if (lineCount > 1) {
        // The first line is wpa_cli's column header.
        for (int i = 1; i < lines.size(); ++i) {
            const QStringList fields = lines.at(i).split('\t');
            if (fields.size() <= 2)
                continue;
            const int n = fields.at(0).trimmed().toInt();
            runner.wireless_setpriority(n, n == id ? 10 : 1);
        }
        runner.wireless_enableallnetwork();
    }
    return runner.wireless_reconfigure();
}
