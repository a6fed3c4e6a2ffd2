// SPDX-License-Identifier: GPL-2.0-or-later
// The capture thread: pulls camera frames, prepares the preview, feeds the encoder during a recording.
#include "camerathread.h"

#include "gdata.h"

namespace {

// Frames pulled and the pending preview announcement, for the whole process.
unsigned int s_frameCounter = 0;
int s_previewPrepared = 0;

constexpr unsigned long kFailedPullPauseMs = 50;

} // namespace

CameraThread::CameraThread(QObject *parent)
    : QThread(parent)
{
}

void CameraThread::run()
{
    GData *data = g_pData;
    while (!isInterruptionRequested()) {
        if (data->m_nCameraMode == 0) {
            msleep(100);
            continue;
        }
        while (data->m_nCameraMode != 0 && !isInterruptionRequested()) {
            if (data->m_nCameraMode == 3) {
                msleep(100);
                break;
            }
            // A camera that is missing or failing fails at once, select
            // interrupted by a signal too: without a pause this loop would
            // spin at full speed until the camera recovers.
            if (!data->V4l2DevicePullFrame()) {
                msleep(kFailedPullPauseMs);
                break;
            }
            // The flash fires on odd frames only; those are the recording,
            // at half the camera's rate, which is what the file declares.
            // A frame the encoder refuses (its stream not started yet, or
            // already closed) is not queued: an empty chunk would take a
            // real frame's place in the recording.
            if (data->m_nCameraMode == 2 && data->m_nFrameWord % 2 == 1) {
                if (data->RAW2H264() == 0)
                    data->H264Enqueue();
                data->m_pupilPhoto.offer(static_cast<const uint8_t *>(data->m_pFrame), GData::kCameraWidth,
                                         GData::kCameraHeight);
            }
            // A preview prepared on one multiple of three is announced on
            // the next, so the display buffer is complete when the GUI reads it.
            if (s_frameCounter % 3 == 0) {
                if (s_previewPrepared) {
                    emit camera_thread_signal(0);
                    s_previewPrepared = 0;
                } else if (data->m_bPreviewEnabled) {
                    data->RAW2IMG();
                    s_previewPrepared = 1;
                }
            }
            ++s_frameCounter;
            data->V4l2DevicePushFrame();
        }
    }
}
