// SPDX-License-Identifier: GPL-2.0-or-later
// The camera device over the simulated driver, and a whole recording from camera to AVI file.
#include "avilib.h"
#include "cedarxutil.h"
#include "cmdutil.h"
#include "gdata.h"
#include "platform.h"
#include "simulatedcamera.h"
#include "testsupport.h"
#include "v4l2device.h"

#include <QEventLoop>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QStandardPaths>
#include <QTest>
#include <QTimer>

#include <memory>

namespace {

bool anyLineIs(const QStringList &lines, const QString &text)
{
    return lines.contains(text);
}

} // namespace

class TestCamera : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<TestDevice> m_device;
    std::unique_ptr<SimulatedCamera> m_camera;
    std::unique_ptr<V4l2Device> m_v4l2;

    QString retryFile() const { return m_device->root() + QStringLiteral("/camera.txt"); }

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
        m_device = std::make_unique<TestDevice>();
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
        m_device.reset();
    }

    // --- opening fails cleanly ---

    void deviceWithoutCaptureOrStreamingIsRefused_data()
    {
        QTest::addColumn<bool>("capture");
        QTest::addColumn<QString>("message");
        QTest::newRow("no capture") << false << "Device /dev/video: NOT supports capture.";
        QTest::newRow("no streaming") << true << "Device /dev/video: NOT supports streaming.";
    }

    void deviceWithoutCaptureOrStreamingIsRefused()
    {
        QFETCH(bool, capture);
        QFETCH(QString, message);
        m_camera->setCaptureCapability(capture);
        m_camera->setStreamingCapability(false);
        makeDevice();
        LogCapture log;
        QCOMPARE(m_v4l2->open_device(), -1);
        QVERIFY(anyLineIs(log.lines(), message));
        QVERIFY(!log.contains(QStringLiteral("Support format:")));
    }

    void wrongBufferGrantsAreRefused_data()
    {
        QTest::addColumn<int>("granted");
        QTest::newRow("one") << 1;
        QTest::newRow("six") << 6;
    }

    void wrongBufferGrantsAreRefused()
    {
        QFETCH(int, granted);
        m_camera->setGrantedBufferCount(granted);
        makeDevice();
        LogCapture log;
        QCOMPARE(m_v4l2->open_device(), -1);
        QVERIFY(anyLineIs(log.lines(), QStringLiteral("ioctl VIDIOC_REQBUFS error")));
        QCOMPARE(m_camera->mappedBuffers(), 0);
    }

    void missingCameraAndRefusedStreaming()
    {
        m_camera->setPresent(false);
        makeDevice();
        LogCapture log;
        QCOMPARE(m_v4l2->open_device(), -1);
        QVERIFY(anyLineIs(log.lines(), QStringLiteral("open_device FAIL")));

        m_camera->setPresent(true);
        m_camera->setStreamOnFails(true);
        makeDevice();
        QCOMPARE(m_v4l2->open_device(), 0);
        QCOMPARE(m_v4l2->start_capture(), -1);
        QVERIFY(anyLineIs(log.lines(), QStringLiteral("ioctl VIDIOC_STREAMON error")));
    }

    void pushBeforePullIsAnError()
    {
        openStreaming();
        LogCapture log;
        QCOMPARE(m_v4l2->push_frame(), -1);
        QVERIFY(anyLineIs(log.lines(), QStringLiteral("push_frame error")));
    }

    // --- dequeue failures and the restart budget ---

    void oneFailureThenAGoodFrameResetsTheCount()
    {
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
        QVERIFY(!log.contains(QStringLiteral("restart device")));
    }

    void spentBudgetOnlyReports()
    {
        m_device->writeFile(QStringLiteral("camera.txt"), "0\n");
        openStreaming();
        m_camera->failNextDequeues(3);
        LogCapture log;
        int pulled = 0;
        QCOMPARE(pullInEventLoop(&pulled), -1);
        QCOMPARE(pullInEventLoop(&pulled), -1);
        QCOMPARE(pullInEventLoop(&pulled), -1);
        QCOMPARE(log.lines().filter(QStringLiteral("RetryCount: 0")).size(), 2);
        QCOMPARE(TestDevice::readFile(retryFile()), QByteArray("0\n"));
        // The count is not reset once the budget is spent.
        QCOMPARE(V4l2Device::failureCount(), 3);
    }

    // --- frames ---

    void pullWithoutFillLeavesTheOutputsAlone()
    {
        openStreaming();
        void *start = reinterpret_cast<void *>(0x1234);
        unsigned int physical = 7, word = 99, length = 5;
        QCOMPARE(m_v4l2->pull_frame(&start, &physical, &word, &length, false), 0);
        QCOMPARE(start, reinterpret_cast<void *>(0x1234));
        QCOMPARE(physical, 7u);
        QCOMPARE(length, 5u);
        QVERIFY(word != 99u);
        QCOMPARE(m_v4l2->push_frame(), 0);

        QCOMPARE(m_v4l2->pull_frame(&start, &physical, &word, &length, true), 0);
        QVERIFY(start != reinterpret_cast<void *>(0x1234));
        QCOMPARE(length, 1920u * 1080u * 3u / 2u);
        QVERIFY(physical != 0);
        QCOMPARE(m_v4l2->push_frame(), 0);
    }

    void framesAlternateTheLedPhase()
    {
        openStreaming();
        unsigned int previous = 0;
        for (int i = 0; i < 6; ++i) {
            void *start = nullptr;
            unsigned int physical = 0, word = 0, length = 0;
            QCOMPARE(m_v4l2->pull_frame(&start, &physical, &word, &length, true), 0);
            if (i > 0)
                QVERIFY(word % 2 != previous % 2);
            previous = word;
            QCOMPARE(m_v4l2->push_frame(), 0);
        }
    }

    void controlsReachTheCamera()
    {
        openStreaming();
        m_v4l2->set_exposure(300);
        m_v4l2->set_gain(3);
        QCOMPARE(m_v4l2->get_exposure(), 300);
        QCOMPARE(m_v4l2->get_gain(), 3);
        QCOMPARE(m_camera->exposure(), 300);
        QCOMPARE(m_camera->gain(), 3);
    }

    void closeReleasesEverything()
    {
        openStreaming();
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
        SimulatedCamera &camera = SimulatedCamera::instance();
        camera.resetFaults();
        camera.setPaced(false);
        CmdUtil cmd;
        GData data(&cmd);
        data.Init(nullptr);
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

    void recordingIsAValidH264Video()
    {
        const QString ffprobe = QStandardPaths::findExecutable(QStringLiteral("ffprobe"));
        if (ffprobe.isEmpty())
            QSKIP("ffprobe is not installed (scripts/setup installs it)");
        SimulatedCamera &camera = SimulatedCamera::instance();
        camera.resetFaults();
        camera.setPaced(false);
        Platform::instance().recordingFile = m_device->root() + QStringLiteral("/pupil_video.avi");
        CmdUtil cmd;
        GData data(&cmd);
        data.Init(nullptr);
        QCOMPARE(data.V4l2DeviceOpen(), 1);
        QCOMPARE(data.AVIFileOpen(), 1);
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

        QProcess probe;
        probe.start(ffprobe, {QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-count_frames"),
                              QStringLiteral("-show_streams"), QStringLiteral("-show_format"),
                              QStringLiteral("-show_entries"), QStringLiteral("frame=key_frame"), QStringLiteral("-of"),
                              QStringLiteral("json"), Platform::instance().recordingFile});
        QVERIFY(probe.waitForFinished(60000));
        const QJsonObject report = QJsonDocument::fromJson(probe.readAllStandardOutput()).object();
        const QJsonArray streams = report.value(QStringLiteral("streams")).toArray();
        QCOMPARE(streams.size(), 1);
        const QJsonObject video = streams.at(0).toObject();
        QCOMPARE(video.value(QStringLiteral("codec_name")).toString(), QStringLiteral("h264"));
        QCOMPARE(video.value(QStringLiteral("width")).toInt(), 1920);
        QCOMPARE(video.value(QStringLiteral("height")).toInt(), 1080);
        QCOMPARE(video.value(QStringLiteral("nb_read_frames")).toString(), QStringLiteral("90"));
        QCOMPARE(video.value(QStringLiteral("r_frame_rate")).toString(), QStringLiteral("15/1"));
        QCOMPARE(
            report.value(QStringLiteral("format")).toObject().value(QStringLiteral("duration")).toString().toDouble(),
            6.0);
        QList<int> decodedKeys;
        const QJsonArray frames = report.value(QStringLiteral("frames")).toArray();
        for (int i = 0; i < frames.size(); ++i) {
            if (frames.at(i).toObject().value(QStringLiteral("key_frame")).toInt() == 1)
                decodedKeys << i;
        }
        QCOMPARE(decodedKeys, keyFrames);

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
        QVERIFY(anyLineIs(log.lines(), QStringLiteral("too much VIDIOC_DQBUF error, restart device")));
        QVERIFY(anyLineIs(log.lines(), QStringLiteral("RetryCount: 2")));
        QCOMPARE(TestDevice::readFile(retryFile()), QByteArray("1"));
        QCOMPARE(V4l2Device::failureCount(), 0);
    }
};

QTEST_GUILESS_MAIN(TestCamera)
#include "tst_camera.moc"
