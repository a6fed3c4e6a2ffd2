// SPDX-License-Identifier: GPL-2.0-or-later
// The housekeeping thread: Wi-Fi information, signal strength, network time and updates while idle.
#pragma once

#include <QThread>

class DeviceThread : public QThread
{
    Q_OBJECT

public:
    explicit DeviceThread(QObject *parent = nullptr);

signals:
    // Fresh Wi-Fi information: scan results, status and saved networks.
    void device_thread_signal(QString text);

protected:
    void run() override;
};
