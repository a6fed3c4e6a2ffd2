// SPDX-License-Identifier: GPL-2.0-or-later
// One Bluetooth device seen by a scan.
#pragma once

#include <QMetaType>
#include <QString>

struct BtDevice
{
    // Six colon-separated hexadecimal pairs, 17 characters, as bluetoothctl prints it.
    QString mac;
    QString name;
    // dBm; 0 until the scan reports a strength.
    int rssi = 0;
};

Q_DECLARE_METATYPE(BtDevice)
