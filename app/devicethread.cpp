// SPDX-License-Identifier: GPL-2.0-or-later
// The housekeeping thread: Wi-Fi information, signal strength, network time and updates while idle.
#include "devicethread.h"

#include "gdata.h"

DeviceThread::DeviceThread(QObject *parent)
    : QThread(parent)
{
}

void DeviceThread::run()
{
    GData *data = g_pData;
    while (!isInterruptionRequested()) {
        // Network chores would compete with the camera for the processor
        // and the radio: they wait while a screening is under way.
        if (data->m_nCameraMode != 0) {
            msleep(100);
            continue;
        }
        if (data->m_nWifiChanged.exchange(0) != 0) {
            const QString text = data->getWIFIInfo();
            if (!text.isEmpty()) {
                emit device_thread_signal(text);
                msleep(1000);
            }
        }
        data->getRSSI();
        data->timerInternetTime();
        data->timerVersionCheck();
        msleep(1000);
    }
}
