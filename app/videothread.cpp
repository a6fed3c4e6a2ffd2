// SPDX-License-Identifier: GPL-2.0-or-later
// The recording thread: opens the camera, then writes each recording's encoded frames to the AVI file.
#include "videothread.h"

#include "cedarxutil.h"
#include "gdata.h"
#include "platform.h"
#include "systemclock.h"

#include <QDebug>
#include <QElapsedTimer>

VideoThread::VideoThread(QObject *parent)
    : QThread(parent)
{
}

void VideoThread::run()
{
    GData *data = g_pData;
    if (data->V4l2DeviceOpen()) {
        qDebug("Camera open succeed");
    } else {
        data->V4l2DeviceClose();
        qDebug("Camera open failed");
    }
    if (data->m_bTorchOn) {
        data->m_bTorchOn = 0;
        data->FlashOff();
    }
    // A first recording right at start-up warms up the camera, the encoder
    // and the flash; nobody waits for it, so it is not reported. Without it
    // the thread still serves every later recording: the file may open then.
    if (data->AVIFileOpen()) {
        data->m_nRecordFrameCount = 0;
        data->H264Emptyqueue();
        data->m_nCameraMode = 2;
        record(false);
        msleep(500);
    } else {
        qDebug("AVI File open failed");
    }
    data->m_bStartupRecording = 0;
    while (!isInterruptionRequested()) {
        if (data->m_nCameraMode != 2) {
            msleep(100);
            continue;
        }
        record(true);
        msleep(500);
    }
}

void VideoThread::record(bool reportWhenDone)
{
    GData *data = g_pData;
    const Platform &platform = Platform::instance();
    // The six-second limit runs on a monotonic clock: the wall clock may be
    // corrected by network time in the middle of a recording.
    QElapsedTimer elapsed;
    elapsed.start();
    if (data->m_pCedarx)
        data->m_pCedarx->StartH264CedarX();
    data->sysfileWrite(platform.ledLoopParameter, QByteArray::number(data->m_nLedLoop));
    data->sysfileWrite(platform.ledValueParameter, QByteArray::number(2));
    data->m_nRecordStartTime = systemclock::nowSecs();

    if (data->m_nLedLoop > 0) {
        const int frames = 18 * data->m_nLedLoop;
        for (int counted = 0; counted < frames;) {
            // Past six seconds the remaining frames are given up at once:
            // a recording never holds the operator longer than that.
            if (elapsed.elapsed() >= 6000) {
                ++counted;
                continue;
            }
            if (!data->H264Dequeue()) {
                msleep(10);
                continue;
            }
            data->AVIFileWrite();
            ++counted;
        }
    }

    data->AVIFileClose();
    if (data->m_pCedarx)
        data->m_pCedarx->CloseCedarX();
    data->FlashOff();
    data->m_nCameraMode = 3;
    msleep(500);
    // Frames encoded after the end belong to no recording.
    data->H264Emptyqueue();
    if (reportWhenDone) {
        emit video_thread_signal(0);
    } else {
        // Only the state this recording left: a session the GUI began in the
        // meantime keeps its own.
        int finished = 3;
        data->m_nCameraMode.compare_exchange_strong(finished, 0);
    }
}
