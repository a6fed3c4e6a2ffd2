// SPDX-License-Identifier: GPL-2.0-or-later
// The capture, recording, sensor and housekeeping threads over the simulated camera.
#include "camerathread.h"
#include "devicethread.h"
#include "gdata.h"
#include "hwthread.h"
#include "platform.h"
#include "simulatedcamera.h"
#include "simulatedrangingsensor.h"
#include "simulatedworld.h"
#include "testsupport.h"
#include "threadjoin.h"
#include "videothread.h"

#include <QElapsedTimer>
#include <QTest>
#include <sys/resource.h>
#include <csignal>

#include <ctime>
#include <memory>

namespace {

// Frames in a finished recording, read from its index.
int recordedFrames(const QString &path)
{
    const QByteArray file = TestDevice::readFile(path);
    const int idx1 = file.lastIndexOf("idx1");
    if (file.size() < 2056 || idx1 < 0)
        return -1;
    const auto *length = reinterpret_cast<const unsigned char *>(file.constData() + idx1 + 4);
    const int bytes = length[0] | length[1] << 8 | length[2] << 16 | length[3] << 24;
    return bytes / 16;
}

// A whole recording holds 90 frames, but only at full speed: the thread
// sanitizer's instrumentation slows the encoder past the six-second limit.
// Its run still checks every step for races; it only needs some frames.
void expectFullRecording(int frames)
{
#if defined(__SANITIZE_THREAD__)
    QVERIFY2(frames > 0, qPrintable(QString::number(frames)));
#else
    QCOMPARE(frames, 90);
#endif
}

// Records the values a worker thread's signal carries, delivered to the
// test's thread as the main window gets them: queued. (QSignalSpy would
// record them in the worker's thread, racing with the test reading them.)
class Reports : public QObject
{
public:
    template <class Sender, class Signal> Reports(Sender *sender, Signal signal)
    {
        connect(
            sender, signal, this, [this](auto value) { m_values << QVariant::fromValue(value); }, Qt::QueuedConnection);
    }
    int count() const { return m_values.size(); }
    QVariant at(int i) const { return m_values.at(i); }
    bool wait(int milliseconds)
    {
        const int before = count();
        return QTest::qWaitFor([&] { return count() > before; }, milliseconds);
    }

private:
    QList<QVariant> m_values;
};

} // namespace

class TestWorkers : public QObject, private DeviceFixture
{
    Q_OBJECT

private:
    std::unique_ptr<CameraThread> m_camera;
    std::unique_ptr<VideoThread> m_video;
    // What the recording thread reported since it started.
    std::unique_ptr<Reports> m_done;

    SimulatedCamera &camera() { return SimulatedCamera::instance(); }

    bool waitForMode(int mode, int milliseconds)
    {
        return QTest::qWaitFor([&] { return m_data->m_nCameraMode == mode; }, milliseconds);
    }

    // Starts capture and recording as the main window does, and lets the
    // start-up recording finish.
    void startRecorder(int idleWithinMs = 10000)
    {
        m_camera = std::make_unique<CameraThread>();
        m_video = std::make_unique<VideoThread>();
        m_done = std::make_unique<Reports>(m_video.get(), &VideoThread::video_thread_signal);
        threadjoin::start(m_camera.get());
        threadjoin::start(m_video.get());
        QVERIFY(waitForMode(2, 3000));
        QVERIFY(waitForMode(0, idleWithinMs));
    }

    // What the camera page does to record.
    void armRecording()
    {
        QCOMPARE(m_data->AVIFileOpen(), 1);
        m_data->m_nRecordFrameCount = 0;
        m_data->H264Emptyqueue();
        m_data->m_nCameraMode = 2;
    }

private slots:
    void init()
    {
        camera().resetFaults();
        camera().setPaced(false);
        setUp();
    }

    void cleanup()
    {
        for (QThread *thread : std::initializer_list<QThread *>{m_camera.get(), m_video.get()}) {
            if (thread) {
                thread->requestInterruption();
                threadjoin::wait(thread);
            }
        }
        m_camera.reset();
        m_video.reset();
        m_done.reset();
        tearDown();
        camera().resetFaults();
    }

    // --- recordings that cannot be filled ---

    void cameraThatDeliversNothingGivesAHeaderOnlyFile()
    {
        // With restarts left, the failing camera would end the program
        // (and with it every later test's event loop); a spent budget only
        // reports.
        m_device->writeFile(QStringLiteral("camera.txt"), "0");
        camera().setDelivering(false);
        QElapsedTimer timer;
        timer.start();
        startRecorder(12000);
        // The limit ends the recording: six seconds, not the frame count.
        QVERIFY2(timer.elapsed() >= 6000, qPrintable(QString::number(timer.elapsed())));
        QCOMPARE(recordedFrames(Platform::instance().recordingFile), 0);
        QCOMPARE(QFileInfo(Platform::instance().recordingFile).size(), 2056);
        QCOMPARE(m_done->count(), 0);
    }

    void evenFramesAreNeverEncoded()
    {
        camera().setLedPhase(2);
        startRecorder();
        QCOMPARE(recordedFrames(Platform::instance().recordingFile), 0);
        // An armed recording reports once, holds the flash frames, and
        // leaves the next mode to the page.
        camera().setLedPhase(3);
        armRecording();
        QVERIFY(m_done->wait(10000));
        expectFullRecording(recordedFrames(Platform::instance().recordingFile));
        QTest::qWait(300);
        QCOMPARE(m_done->count(), 1);
        QCOMPARE(m_data->m_nCameraMode.load(), 3);
    }

    void ledLoopZeroClosesAtOnceAndStillReports()
    {
        startRecorder();
        m_data->m_nLedLoop = 0;
        QElapsedTimer timer;
        timer.start();
        armRecording();
        QVERIFY(m_done->wait(5000));
        QVERIFY2(timer.elapsed() < 2500, qPrintable(QString::number(timer.elapsed())));
        QCOMPARE(m_done->at(0).toInt(), 0);
        QCOMPARE(recordedFrames(Platform::instance().recordingFile), 0);
        QCOMPARE(m_data->m_nCameraMode.load(), 3);
    }

    // A recording the disk could not take is marked, so that it is never
    // uploaded; the next one with room again is whole and unmarked.
    void aFullDiskMarksTheRecording()
    {
        startRecorder();
        QCOMPARE(m_data->m_bRecordingBroken.load(), 0);
        struct rlimit old = {};
        ::getrlimit(RLIMIT_FSIZE, &old);
        const auto oldHandler = std::signal(SIGXFSZ, SIG_IGN);
        struct rlimit full = old;
        full.rlim_cur = 20000;
        ::setrlimit(RLIMIT_FSIZE, &full);
        armRecording();
        const bool reported = m_done->wait(10000);
        ::setrlimit(RLIMIT_FSIZE, &old);
        std::signal(SIGXFSZ, oldHandler);
        QVERIFY(reported);
        QCOMPARE(m_data->m_bRecordingBroken.load(), 1);
        // Handed back with the file closed: the page records again only then.
        QCOMPARE(m_data->m_nCameraMode.load(), 3);
        m_data->m_nCameraMode = 0;
        armRecording();
        QVERIFY(m_done->wait(10000));
        QCOMPARE(m_data->m_bRecordingBroken.load(), 0);
        expectFullRecording(recordedFrames(Platform::instance().recordingFile));
    }

    // --- normal recordings ---

    void startUpRecordingIsSilentAndReturnsToIdle()
    {
        startRecorder();
        QTest::qWait(700);
        QCOMPARE(m_done->count(), 0);
        expectFullRecording(recordedFrames(Platform::instance().recordingFile));
        // The flash was started through the camera driver's parameters and is off again.
        QCOMPARE(TestDevice::readFile(Platform::instance().ledLoopParameter), QByteArray("5"));
        QCOMPARE(TestDevice::readFile(Platform::instance().ledValueParameter), QByteArray("2"));
        QVERIFY(!SimulatedWorld::instance().irFlashActive);
    }

    void previewIsAnnouncedOnlyWhileEnabled()
    {
        camera().setPaced(true);
        m_camera = std::make_unique<CameraThread>();
        Reports previews(m_camera.get(), &CameraThread::camera_thread_signal);
        QCOMPARE(m_data->V4l2DeviceOpen(), 1);
        m_data->m_bPreviewEnabled = 0;
        m_data->m_nCameraMode = 1;
        threadjoin::start(m_camera.get());
        QTest::qWait(400);
        QCOMPARE(previews.count(), 0);
        SimulatedWorld::instance().ambientLight = 60;
        m_data->m_bPreviewEnabled = 1;
        QVERIFY(previews.wait(3000));
        // The preview's figures follow the scene: a bright room soon reads
        // bright, and a dim one soon reads dim. "Soon", because frames
        // already waiting in the driver's buffers show the scene as it was
        // when they were taken.
        const auto brightnessReaches = [this](auto reached) {
            return QTest::qWaitFor([&] { return reached(m_data->m_nPreviewBrightness); }, 3000);
        };
        QVERIFY2(brightnessReaches([](int value) { return value > 30; }),
                 qPrintable(QString::number(m_data->m_nPreviewBrightness)));
        SimulatedWorld::instance().ambientLight = 5;
        QVERIFY2(brightnessReaches([](int value) { return value <= 15; }),
                 qPrintable(QString::number(m_data->m_nPreviewBrightness)));
        m_data->m_nCameraMode = 0;
    }

    // A camera that fails at once costs no CPU while the capture thread
    // retries: one that did not open at start-up (a press of the camera
    // button then opens it under the running thread), or a select that a
    // signal keeps interrupting.
    void aFailingCameraIsRetriedQuietlyAndRecovers_data()
    {
        QTest::addColumn<bool>("missingAtStartUp");
        QTest::newRow("missing at start-up") << true;
        QTest::newRow("select interrupted") << false;
    }

    void aFailingCameraIsRetriedQuietlyAndRecovers()
    {
        QFETCH(bool, missingAtStartUp);
        camera().setPresent(!missingAtStartUp);
        QCOMPARE(m_data->V4l2DeviceOpen(), missingAtStartUp ? 0 : 1);
        if (missingAtStartUp)
            m_data->V4l2DeviceClose();
        else
            camera().failNextSelects(1 << 30);
        m_camera = std::make_unique<CameraThread>();
        threadjoin::start(m_camera.get());
        m_data->m_nCameraMode = 1;
        const std::clock_t cpuBefore = std::clock();
        QTest::qWait(600);
        const double cpuMs = 1000.0 * double(std::clock() - cpuBefore) / CLOCKS_PER_SEC;
        QVERIFY2(cpuMs < 150, qPrintable(QString::number(cpuMs)));

        const int dequeued = camera().framesDequeued();
        if (missingAtStartUp) {
            camera().setPresent(true);
            QCOMPARE(m_data->V4l2DeviceOpen(), 1);
        } else {
            camera().failNextSelects(0);
        }
        QTRY_VERIFY_WITH_TIMEOUT(camera().framesDequeued() > dequeued + 3, 3000);
        m_data->m_nCameraMode = 0;
    }

    // --- sensors while aiming ---

    // A ranging chip that has stopped answering costs the distance, never the pitch.
    void aimingValuesAreMeasuredOnlyWhileAiming_data()
    {
        QTest::addColumn<bool>("silentRangingChip");
        QTest::newRow("healthy") << false;
        QTest::newRow("silent ranging chip") << true;
    }

    void aimingValuesAreMeasuredOnlyWhileAiming()
    {
        QFETCH(bool, silentRangingChip);
        SimulatedRangingSensor::instance().setSilent(silentRangingChip);
        SimulatedWorld::instance().pitchDegrees = 4;
        HWThread sensors;
        m_data->m_nPitch = 99;
        m_data->m_nDistance = 0;
        threadjoin::start(&sensors);
        QTest::qWait(300);
        QCOMPARE(m_data->m_nPitch.load(), 99);
        m_data->m_nCameraMode = 1;
        QTRY_COMPARE_WITH_TIMEOUT(m_data->m_nPitch.load(), 4, 2000);
        if (silentRangingChip) {
            QTRY_COMPARE_WITH_TIMEOUT(m_data->m_nDistance.load(), 200, 2000);
            SimulatedWorld::instance().pitchDegrees = -3;
            QTRY_COMPARE_WITH_TIMEOUT(m_data->m_nPitch.load(), -3, 3000);
        }
        m_data->m_nCameraMode = 0;
        sensors.requestInterruption();
        threadjoin::wait(&sensors);
        SimulatedRangingSensor::instance().setSilent(false);
    }

    void housekeepingWaitsWhileTheCameraWorks()
    {
        DeviceThread housekeeping;
        Reports reports(&housekeeping, &DeviceThread::device_thread_signal);
        m_data->m_nCameraMode = 1;
        m_data->m_nWifiChanged = 1;
        threadjoin::start(&housekeeping);
        QTest::qWait(400);
        QCOMPARE(m_data->m_nWifiChanged.load(), 1);
        m_data->m_nCameraMode = 0;
        QTRY_COMPARE_WITH_TIMEOUT(m_data->m_nWifiChanged.load(), 0, 3000);
        housekeeping.requestInterruption();
        threadjoin::wait(&housekeeping);
    }
};

QTEST_GUILESS_MAIN(TestWorkers)
#include "tst_workers.moc"
