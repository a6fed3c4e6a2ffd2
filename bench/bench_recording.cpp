// SPDX-License-Identifier: GPL-2.0-or-later
// Benchmark: whole recordings in the simulator, with the preview running: frames kept, encoder load.
#include "camerathread.h"
#include "cedarxutil.h"
#include "cmdutil.h"
#include "devicefactory.h"
#include "gdata.h"
#include "platform.h"
#include "simulatedcamera.h"
#include "simulatedworld.h"
#include "videothread.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QThread>

#include <cstdio>

namespace {

int framesInRecording(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return -1;
    const QByteArray bytes = file.readAll();
    const int idx1 = bytes.lastIndexOf("idx1");
    if (idx1 < 0)
        return -1;
    const auto *length = reinterpret_cast<const unsigned char *>(bytes.constData() + idx1 + 4);
    return (length[0] | length[1] << 8 | length[2] << 16 | length[3] << 24) / 16;
}

bool waitForMode(int mode, int milliseconds)
{
    QElapsedTimer timer;
    timer.start();
    while (timer.elapsed() < milliseconds) {
        if (g_pData->m_nCameraMode == mode)
            return true;
        QThread::msleep(10);
    }
    return false;
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
    QTemporaryDir folder;
    Platform &platform = Platform::instance();
    platform.appDir = folder.path();
    platform.recordingFile = folder.path() + QStringLiteral("/pupil_video.avi");
    platform.cameraRetryFile = folder.path() + QStringLiteral("/camera.txt");
    platform.ledLoopParameter = folder.path() + QStringLiteral("/led_loop");
    platform.ledValueParameter = folder.path() + QStringLiteral("/led_val");
    for (const QString &path : {platform.ledLoopParameter, platform.ledValueParameter}) {
        QFile file(path);
        file.open(QIODevice::WriteOnly);
    }
    // A child aimed at with the light on: the scene the recordings are made of.
    SimulatedWorld::instance().irLight = true;

    CmdUtil cmd;
    GData data(&cmd, makeSimulatedDevices());
    data.Init(nullptr);
    g_pData = &data;
    CameraThread camera;
    VideoThread video;
    camera.start();
    video.start();
    // The start-up recording first, then the preview as on the camera page.
    if (!waitForMode(2, 5000) || !waitForMode(0, 15000)) {
        std::printf("the start-up recording did not run\n");
        return 1;
    }
    data.m_bPreviewEnabled = 1;

    const int rounds = 5;
    int complete = 0;
    std::printf("recordings of the simulated camera at 30 frames per second, preview running\n");
    for (int round = 0; round < rounds; ++round) {
        const cedarxutil::Statistics before = data.m_pCedarx->statistics();
        data.AVIFileOpen();
        data.m_nRecordFrameCount = 0;
        data.H264Emptyqueue();
        data.m_nCameraMode = 2;
        if (!waitForMode(3, 15000)) {
            std::printf("recording %d did not finish\n", round + 1);
            return 1;
        }
        const cedarxutil::Statistics after = data.m_pCedarx->statistics();
        const int frames = framesInRecording(platform.recordingFile);
        const long long encoded = after.frames - before.frames;
        const double perFrame = encoded > 0 ? double(after.microseconds - before.microseconds) / encoded : 0;
        // An encoded frame is due every other camera frame: 66.7 ms at 15 per second.
        std::printf("recording %d: %d of 90 frames written; encoder %.1f ms per frame, %.0f%% of the 66.7 ms "
                    "between recorded frames\n",
                    round + 1, frames, perFrame / 1000.0, 100.0 * perFrame / 66667.0);
        complete += frames == 90;
        data.m_nCameraMode = 1;
        QThread::msleep(300);
    }
    std::printf("%d of %d recordings complete (target: all)\n", complete, rounds);
    // Why a frame can be missing although the encoder keeps up: the 90 flash
    // frames come at 15 per second, so the last one arrives 5.93 s after
    // the first, and the first up to 67 ms after the recording's clock
    // starts; with the 6-second limit only about 50 ms are left for that
    // first wait, the last frame's encoding and its write.
    std::printf("90 flash frames span %.2f s at 15 per second; the first arrives 0 to 67 ms after the 6 s window "
                "opens\n",
                89.0 / 15.0);
    data.m_nCameraMode = 0;
    camera.requestInterruption();
    video.requestInterruption();
    camera.wait();
    video.wait();
    g_pData = nullptr;
    return complete == rounds ? 0 : 1;
}
