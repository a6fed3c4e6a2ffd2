// SPDX-License-Identifier: GPL-2.0-or-later
// The camera device over the simulated driver, and a whole recording from camera to AVI file.
#include "avilib.h"
#include "cedarxutil.h"
#include "gdata.h"
#include "platform.h"
#include "simulatedcamera.h"
#include "testsupport.h"
#include "v4l2device.h"

#include <QEventLoop>
#include <QProcess>
#include <QStandardPaths>
#include <QTest>
#include <QTimer>

#include <memory>

class TestCamera : public QObject, private DeviceFixture
{
    Q_OBJECT

private:
    std::unique_ptr<SimulatedCamera> m_camera;
    std::unique_ptr<V4l2Device> m_v4l2;

    QString retryFile() const { return m_device->root() + QStringLiteral("/camera.txt"); }

    // GData over the shared simulated camera, as the application starts it.
    GData &startGData()
    {
        SimulatedCamera::instance().resetFaults();
        SimulatedCamera::instance().setPaced(false);
        startDevice();
        return *m_data;
    }

    void makeDevice() { m_v4l2 = std::make_unique<V4l2Device>(1920, 1080, *m_camera, retryFile().toStdString()); }

    // Opens and starts streaming, as the application does.
    void openStreaming()
    {
        makeDevice();
        QCOMPARE(m_v4l2->open_device(), 0);
        QCOMPARE(m_v4l2->start_capture(), 0);
    }

    // Pulls inside a running event loop, so that a request to end the loop
    // can be seen; returns the loop's exit code (-1: the loop was not ended).
    int pullInEventLoop(int *pullResult)
    {
        QEventLoop loop;
        QTimer::singleShot(0, [&] {
            void *start = nullptr;
            unsigned int physical = 0, word = 0, length = 0;
            *pullResult = m_v4l2->pull_frame(&start, &physical, &word, &length, true);
            QTimer::singleShot(50, &loop, [&loop] { loop.exit(-1); });
        });
        return loop.exec();
    }

private slots:
    void init()
    {
        setUp(false);
        m_camera = std::make_unique<SimulatedCamera>();
        m_camera->setPaced(false);
        V4l2Device::resetFailureCount();
    }

    void cleanup()
    {
        if (m_v4l2 && m_v4l2->fd() >= 0) {
            m_v4l2->stop_capture();
            m_v4l2->close_device();
        }
        m_v4l2.reset();
        m_camera.reset();
        tearDown();
    }

    // --- opening fails cleanly ---

    void openingFailsCleanly_data()
    {
        QTest::addColumn<int>("fault");
        QTest::addColumn<QString>("message");
        QTest::newRow("no camera") << 0 << "open_device FAIL";
        QTest::newRow("no capture") << 1 << "Device /dev/video: NOT supports capture.";
        QTest::newRow("no streaming") << 2 << "Device /dev/video: NOT supports streaming.";
        QTest::newRow("one buffer") << 3 << "ioctl VIDIOC_REQBUFS error";
        QTest::newRow("six buffers") << 4 << "ioctl VIDIOC_REQBUFS error";
        QTest::newRow("stream on refused") << 5 << "ioctl VIDIOC_STREAMON error";
    }

    void openingFailsCleanly()
    {
        QFETCH(int, fault);
        QFETCH(QString, message);
        m_camera->setPresent(fault != 0);
        m_camera->setCaptureCapability(fault != 1);
        m_camera->setStreamingCapability(fault != 2);
        m_camera->setGrantedBufferCount(fault == 3 ? 1 : fault == 4 ? 6 : 0);
        m_camera->setStreamOnFails(fault == 5);
        makeDevice();
        LogCapture log;
        if (fault == 5) {
            QCOMPARE(m_v4l2->open_device(), 0);
            QCOMPARE(m_v4l2->start_capture(), -1);
        } else {
            QCOMPARE(m_v4l2->open_device(), -1);
            QCOMPARE(m_camera->mappedBuffers(), 0);
        }
        QVERIFY(log.lines().contains(message));
    }

    // --- dequeue failures and the restart budget ---

    // A pull whose loop is not ended did not restart the program.
    void goodFrameResetsTheCountAndSpentBudgetOnlyReports()
    {
        m_device->writeFile(QStringLiteral("camera.txt"), "0\n");
        openStreaming();
        m_camera->failNextDequeues(1);
        LogCapture log;
        int pulled = 0;
        QCOMPARE(pullInEventLoop(&pulled), -1);
        QCOMPARE(pulled, -1);
        QCOMPARE(V4l2Device::failureCount(), 1);
        QCOMPARE(pullInEventLoop(&pulled), -1);
        QCOMPARE(pulled, 0);
        QCOMPARE(V4l2Device::failureCount(), 0);

        m_camera->failNextDequeues(3);
        for (int i = 0; i < 3; ++i)
            QCOMPARE(pullInEventLoop(&pulled), -1);
        // The budget is read from the second failure in a row on.
        QCOMPARE(log.lines().filter(QStringLiteral("RetryCount:")), (QStringList{"RetryCount: 0", "RetryCount: 0"}));
        QCOMPARE(TestDevice::readFile(retryFile()), QByteArray("0\n"));
        // The count is not reset once the budget is spent.
        QCOMPARE(V4l2Device::failureCount(), 3);
    }

    // --- frames ---

    void framesAlternateTheLedPhaseAndFillOnlyWhenAsked()
    {
        openStreaming();
        QCOMPARE(m_v4l2->push_frame(), -1);
        void *start = reinterpret_cast<void *>(0x1234);
        unsigned int physical = 7, word = 99, length = 5, previous = 0;
        QCOMPARE(m_v4l2->pull_frame(&start, &physical, &word, &length, false), 0);
        QCOMPARE(start, reinterpret_cast<void *>(0x1234));
        QCOMPARE(physical, 7u);
        QCOMPARE(length, 5u);
        QVERIFY(word != 99u);
        for (int i = 0; i < 6; ++i) {
            previous = word;
            QCOMPARE(m_v4l2->push_frame(), 0);
            QCOMPARE(m_v4l2->pull_frame(&start, &physical, &word, &length, true), 0);
            QVERIFY(word % 2 != previous % 2);
        }
        QVERIFY(start != reinterpret_cast<void *>(0x1234));
        QCOMPARE(length, 1920u * 1080u * 3u / 2u);
        QVERIFY(physical != 0);
        QCOMPARE(m_v4l2->push_frame(), 0);
    }

    void controlsReachTheCameraAndCloseReleasesEverything()
    {
        openStreaming();
        m_v4l2->set_exposure(300);
        m_v4l2->set_gain(3);
        QCOMPARE(m_camera->exposure(), 300);
        QCOMPARE(m_camera->gain(), 3);
        QVERIFY(m_camera->mappedBuffers() > 0);
        m_v4l2->stop_capture();
        QCOMPARE(m_v4l2->close_device(), 0);
        QCOMPARE(m_camera->mappedBuffers(), 0);
        QCOMPARE(m_camera->openDescriptors(), 0);
        m_v4l2.reset();
    }

    // --- GData's camera and recording ---

    void openingTwiceDoesNotTouchTheCamera()
    {
        GData &data = startGData();
        const SimulatedCamera &camera = SimulatedCamera::instance();
        QCOMPARE(data.V4l2DeviceOpen(), 1);
        QCOMPARE(camera.openDescriptors(), 1);
        QCOMPARE(data.V4l2DeviceOpen(), 1);
        QCOMPARE(camera.openDescriptors(), 1);
        data.V4l2DeviceClose();
        QCOMPARE(camera.openDescriptors(), 0);
        QCOMPARE(data.V4l2DeviceOpen(), 1);
        QCOMPARE(camera.openDescriptors(), 0);
        // The device is gone: frames fail rather than reaching freed memory.
        QCOMPARE(data.V4l2DevicePullFrame(), 0);
    }

    // The deployment file names the capture node; the simulated driver
    // answers only at /dev/video0.
    void theDeploymentsVideoNodeIsTheOneOpened_data()
    {
        QTest::addColumn<QString>("node");
        QTest::addColumn<int>("opened");
        QTest::newRow("the driver's node") << QStringLiteral("/dev/video0") << 1;
        QTest::newRow("another node") << QStringLiteral("/dev/video3") << 0;
    }

    void theDeploymentsVideoNodeIsTheOneOpened()
    {
        QFETCH(QString, node);
        QFETCH(int, opened);
        Platform::instance().videoDevice = node;
        GData &data = startGData();
        QCOMPARE(data.V4l2DeviceOpen(), opened);
        QCOMPARE(SimulatedCamera::instance().openDescriptors(), opened);
        data.V4l2DeviceClose();
    }

    void aQueueWithoutAWriterStopsGrowing()
    {
        GData &data = startGData();
        for (std::size_t i = 0; i < GData::kMaxQueuedFrames + 5; ++i)
            data.H264Enqueue();
        std::size_t queued = 0;
        for (; data.H264Dequeue(); ++queued)
            data.AVIFileWrite();
        QCOMPARE(queued, GData::kMaxQueuedFrames);
    }

    void recordingIsAValidH264Video()
    {
        const QString ffprobe = QStandardPaths::findExecutable(QStringLiteral("ffprobe"));
        if (ffprobe.isEmpty())
            QSKIP("ffprobe is not installed (scripts/setup installs it)");
        Platform::instance().recordingFile = m_device->root() + QStringLiteral("/pupil_video.avi");
        GData &data = startGData();
        QCOMPARE(data.V4l2DeviceOpen(), 1);
        QCOMPARE(data.AVIFileOpen(), 1);
        // A second open would truncate the file under its writer.
        QCOMPARE(data.AVIFileOpen(), 0);
        QCOMPARE(data.m_pCedarx->StartH264CedarX(), 0);

        // The capture side: only the flash-phase frames (odd words) are encoded.
        QList<int> keyFrames;
        int encoded = 0;
        while (encoded < 90) {
            QCOMPARE(data.V4l2DevicePullFrame(), 1);
            if (data.m_nFrameWord % 2 == 1) {
                QCOMPARE(data.RAW2H264(), 0);
                if (data.m_nKeyFrame)
                    keyFrames << encoded;
                data.H264Enqueue();
                ++encoded;
            }
            QCOMPARE(data.V4l2DevicePushFrame(), 0);
        }
        // The writing side.
        int written = 0;
        while (data.H264Dequeue()) {
            data.AVIFileWrite();
            ++written;
        }
        QCOMPARE(written, 90);
        QCOMPARE(data.AVIFileClose(), 0);
        data.m_pCedarx->CloseCedarX();
        QCOMPARE(keyFrames, (QList<int>{0, 30, 60}));

        // Decoded: each frame's key flag, then the stream and its duration.
        QProcess probe;
        probe.start(ffprobe, QStringLiteral("-v error -count_frames -show_entries stream=codec_name,width,height,"
                                            "r_frame_rate,nb_read_frames:format=duration:frame=key_frame -of "
                                            "default=nw=1:nk=1 %1")
                                 .arg(Platform::instance().recordingFile)
                                 .split(QLatin1Char(' ')));
        QVERIFY(probe.waitForFinished(60000));
        QByteArray expected;
        for (int i = 0; i < 90; ++i)
            expected += keyFrames.contains(i) ? "1\n" : "0\n";
        QCOMPARE(probe.readAllStandardOutput(), expected + "h264\n1920\n1080\n15/1\n90\n6.000000\n");

        // The index, the file's last chunk, flags the same frames.
        const QByteArray file = TestDevice::readFile(Platform::instance().recordingFile);
        const int indexAt = file.size() - 90 * 16;
        QCOMPARE(file.mid(indexAt - 8, 4), QByteArray("idx1"));
        QList<int> indexedKeys;
        for (int i = 0; i < 90; ++i) {
            const QByteArray entry = file.mid(indexAt + 16 * i, 16);
            QCOMPARE(entry.left(4), QByteArray("00db"));
            if (static_cast<unsigned char>(entry.at(4)) & 0x10)
                indexedKeys << i;
        }
        QCOMPARE(indexedKeys, keyFrames);
    }

    // Last on purpose: once the application has been asked to exit, every
    // event loop of this thread returns at once until the main loop runs
    // again, which it never does in a test program.
    void twoFailuresRestartWhileTheBudgetLasts()
    {
        openStreaming();
        m_camera->failNextDequeues(2);
        LogCapture log;
        int pulled = 0;
        QCOMPARE(pullInEventLoop(&pulled), -1);
        QCOMPARE(pullInEventLoop(&pulled), 1);
        QCOMPARE(pulled, -1);
        QVERIFY(log.lines().contains(QStringLiteral("too much VIDIOC_DQBUF error, restart device")));
        QVERIFY(log.lines().contains(QStringLiteral("RetryCount: 2")));
        QCOMPARE(TestDevice::readFile(retryFile()), QByteArray("1"));
        QCOMPARE(V4l2Device::failureCount(), 0);

        // Until the program has ended, further failures are the same
        // incident: they spend nothing more and ask for no second restart.
        // (The asked-for end keeps this thread's event loops from running,
        // so the pulls go direct.)
        m_camera->failNextDequeues(4);
        for (int failure = 0; failure < 4; ++failure) {
            void *start = nullptr;
            unsigned int physical = 0, word = 0, length = 0;
            QCOMPARE(m_v4l2->pull_frame(&start, &physical, &word, &length, true), -1);
        }
        QCOMPARE(TestDevice::readFile(retryFile()), QByteArray("1"));
        QCOMPARE(log.lines().filter(QStringLiteral("too much VIDIOC_DQBUF error")).size(), 1);
    }
};

QTEST_GUILESS_MAIN(TestCamera)
#include "tst_camera.moc"
