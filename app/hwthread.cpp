// SPDX-License-Identifier: GPL-2.0-or-later
// The sensor polling thread: distance and pitch while the operator aims.
#include "hwthread.h"

#include "gdata.h"

HWThread::HWThread(QObject *parent)
    : QThread(parent)
{
}

void HWThread::run()
{
    GData *data = g_pData;
    unsigned int n = 0;
    while (!isInterruptionRequested()) {
        if (data->m_nCameraMode != 1) {
            msleep(100);
            continue;
        }
        // Distance every 200 ms; the cheap pitch reading in between.
        if (n % 4 != 0)
            data->m_nPitch = data->getDOF();
        else
            data->m_nDistance = data->getDistance();
        ++n;
        msleep(50);
    }
}
