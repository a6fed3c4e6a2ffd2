// SPDX-License-Identifier: GPL-2.0-or-later
// The simulated infrared camera, driven through the raw video I/O calls as the kernel would be.
#include "previewconversion.h"
#include "simulatedcamera.h"
#include "simulatedworld.h"

#include <QElapsedTimer>
#include <QTest>

#include <atomic>
#include <cerrno>
#include <cmath>
#include <fcntl.h>
#include <linux/videodev2.h>
#include <sys/mman.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

constexpr int kWidth = SimulatedCamera::kWidth;
constexpr int kHeight = SimulatedCamera::kHeight;
constexpr uint32_t kImageSize = kWidth * kHeight * 3 / 2;

// The board's three-word control record and its request codes.
struct ControlRecord
{
    uint32_t id;
    int32_t value;
    uint32_t zero;
};
constexpr unsigned long kSetControl = 0xC00C561CUL;

bool failsWith(int result, int error)
{
    return result == -1 && errno == error;
}

v4l2_buffer bufferRecord(uint32_t index = 0)
{
    v4l2_buffer record{};
    record.index = index;
    record.type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
    record.memory = V4L2_MEMORY_MMAP;
    return record;
}

// The figures the camera page judges the room's light and the focus by, of
// its 880 x 330 preview; -1 without a frame.
struct Figures
{
    double brightness = -1;
    double sharpness = -1;
};

Figures previewFigures(const std::vector<uint8_t> &frame)
{
    if (frame.size() != kImageSize)
        return {};
    std::vector<uint8_t> preview(2 * kWidth * kHeight);
    const PreviewStatistics figures =
        convert_raw_to_img_buffer_scale(frame.data(), preview.data(), kWidth, kHeight, 880, 330);
    return {double(figures.brightness), double(figures.contrast)};
}

struct Spot
{
    int x = -1;
    int y = -1;
    int value = -1;
};

// The brightest pixel: a glint.
Spot brightestSpot(const std::vector<uint8_t> &luma)
{
    Spot best;
    for (int y = 0; y < kHeight; ++y) {
        for (int x = 0; x < kWidth; ++x) {
            const int value = luma[y * kWidth + x];
            if (value > best.value)
                best = {x, y, value};
        }
    }
    return best;
}

// The mean of the pixels between the two radii around (cx, cy).
double ringMean(const std::vector<uint8_t> &luma, int cx, int cy, double inner, double outer)
{
    double sum = 0;
    int count = 0;
    for (int y = std::max(0, cy - int(outer)); y <= std::min(kHeight - 1, cy + int(outer)); ++y) {
        for (int x = std::max(0, cx - int(outer)); x <= std::min(kWidth - 1, cx + int(outer)); ++x) {
            const double r = std::hypot(x - cx, y - cy);
            if (r >= inner && r <= outer) {
                sum += luma[y * kWidth + x];
                ++count;
            }
        }
    }
    return count ? sum / count : -1;
}

// One eye, found by its glint: a ring just around the glint lies inside the
// pupil; the cheek below the eye is skin.
struct Eye
{
    double pupil;
    double skin;
    QString text() const { return QStringLiteral("pupil %1 skin %2").arg(pupil).arg(skin); }
};

Eye eyeAround(const std::vector<uint8_t> &luma, const Spot &glint)
{
    return {ringMean(luma, glint.x, glint.y, 6, 9), ringMean(luma, glint.x, glint.y + 90, 0, 10)};
}

} // namespace

class TestSimulatedCamera : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<SimulatedCamera> m_camera;
    int m_fd = -1;
    std::vector<uint8_t *> m_maps;

    void openCamera() { m_fd = m_camera->open("/dev/video0", O_RDWR | O_NONBLOCK); }
    int io(unsigned long request, void *argument) { return m_camera->ioctl(m_fd, request, argument); }

    int control(unsigned long request, uint32_t id, int *value)
    {
        ControlRecord record{id, *value, 0};
        const int result = io(request, &record);
        *value = record.value;
        return result;
    }

    int requestBuffers(uint32_t count)
    {
        v4l2_requestbuffers request{};
        request.count = count;
        request.type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
        request.memory = V4L2_MEMORY_MMAP;
        return io(VIDIOC_REQBUFS, &request) < 0 ? -1 : int(request.count);
    }

    int queue(uint32_t index)
    {
        v4l2_buffer record = bufferRecord(index);
        return io(VIDIOC_QBUF, &record);
    }

    int dequeue(v4l2_buffer *record)
    {
        *record = bufferRecord();
        return io(VIDIOC_DQBUF, record);
    }

    int streamOn()
    {
        int type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
        return io(VIDIOC_STREAMON, &type);
    }

    // Waits for readability as the capture thread does.
    int waitReadable(int milliseconds)
    {
        fd_set readable;
        FD_ZERO(&readable);
        FD_SET(m_fd, &readable);
        timeval timeout{milliseconds / 1000, (milliseconds % 1000) * 1000};
        return m_camera->select(m_fd + 1, &readable, nullptr, nullptr, &timeout);
    }

    // Opens and maps five buffers.
    bool mapBuffers()
    {
        openCamera();
        if (m_fd < 0 || requestBuffers(5) != 5)
            return false;
        for (uint32_t i = 0; i < 5; ++i) {
            v4l2_buffer record = bufferRecord(i);
            void *start = io(VIDIOC_QUERYBUF, &record) < 0 ? MAP_FAILED
                                                           : m_camera->mmap(nullptr, kImageSize, PROT_READ | PROT_WRITE,
                                                                            MAP_SHARED, m_fd, record.m.offset);
            if (start == MAP_FAILED)
                return false;
            m_maps.push_back(static_cast<uint8_t *>(start));
        }
        return true;
    }

    // Maps five buffers, queues them all and starts streaming.
    bool startStreaming(bool paced = true)
    {
        m_camera->setPaced(paced);
        if (!mapBuffers())
            return false;
        for (uint32_t i = 0; i < 5; ++i) {
            if (queue(i) < 0)
                return false;
        }
        return streamOn() == 0;
    }

    // The next frame as the capture thread takes it: select, dequeue, copy,
    // and the buffer goes straight back. Empty when none came.
    std::vector<uint8_t> frameNow(v4l2_buffer *taken = nullptr)
    {
        v4l2_buffer local;
        v4l2_buffer &record = taken ? *taken : local;
        if (waitReadable(2000) != 1 || dequeue(&record) < 0)
            return {};
        std::vector<uint8_t> frame(m_maps[record.index], m_maps[record.index] + record.bytesused);
        return queue(record.index) == 0 ? frame : std::vector<uint8_t>();
    }

private slots:
    void init()
    {
        SimulatedWorld::instance().reset();
        m_camera = std::make_unique<SimulatedCamera>();
    }

    void cleanup()
    {
        for (uint8_t *start : m_maps)
            m_camera->munmap(start, kImageSize);
        m_maps.clear();
        if (m_fd >= 0)
            m_camera->close(m_fd);
        m_fd = -1;
        m_camera.reset();
        SimulatedWorld::instance().reset();
    }

    // --- buffers ---

    void buffersComeBackInQueueOrder()
    {
        m_camera->setPaced(false);
        QVERIFY(mapBuffers());
        const uint32_t order[] = {3, 1, 4, 0, 2};
        for (uint32_t index : order)
            QCOMPARE(queue(index), 0);
        QVERIFY(failsWith(queue(3), EINVAL)); // already queued
        QCOMPARE(streamOn(), 0);
        v4l2_buffer record;
        for (uint32_t k = 0; k < 5; ++k) {
            QCOMPARE(dequeue(&record), 0);
            QCOMPARE(record.index, order[k]);
            QCOMPARE(record.sequence, k);
            QCOMPARE(record.bytesused, kImageSize);
        }
        // All five are with the application now: nothing to wait for.
        QVERIFY(failsWith(dequeue(&record), EAGAIN));
        QCOMPARE(waitReadable(30), 0);
    }

    // --- timing ---

    void framesArePacedUnlessToldNotTo_data()
    {
        QTest::addColumn<bool>("paced");
        QTest::newRow("paced") << true;
        QTest::newRow("unpaced") << false;
    }

    void framesArePacedUnlessToldNotTo()
    {
        QFETCH(bool, paced);
        QVERIFY(startStreaming(paced));
        v4l2_buffer record;
        // Nothing is ready the moment paced streaming starts.
        QVERIFY(!paced || failsWith(dequeue(&record), EAGAIN));
        QElapsedTimer timer;
        timer.start();
        timeval previous{0, 0};
        uint32_t word = 0;
        constexpr int kFrames = 20;
        for (int i = 0; i < kFrames; ++i) {
            QVERIFY(!frameNow(&record).empty());
            // Each frame is stamped at its tick of the sensor clock, and the
            // driver word tells the LED's phase: odd and even by turns.
            timeval step;
            timersub(&record.timestamp, &previous, &step);
            QVERIFY(i == 0 || record.reserved % 2 != word % 2);
            QVERIFY(i == 0 || !paced || (step.tv_sec == 0 && step.tv_usec >= 33000));
            previous = record.timestamp;
            word = record.reserved;
        }
        // Generous bounds either side of the time the frames would take paced.
        const qint64 pacedMs = kFrames * 1000 / SimulatedCamera::kFramesPerSecond;
        const qint64 elapsed = timer.elapsed();
        QVERIFY2(paced ? elapsed >= pacedMs - 100 && elapsed < 5 * pacedMs : elapsed < pacedMs - 100,
                 qPrintable(QString::number(elapsed)));
    }

    // --- the picture ---

    void lightAndControlsSetTheBrightness()
    {
        QVERIFY(startStreaming(false));
        SimulatedWorld &world = SimulatedWorld::instance();
        const std::vector<uint8_t> frame = frameNow();
        QCOMPARE(frame.size(), size_t(kImageSize));
        // Neutral chroma, and a little noise so that frames differ.
        QVERIFY(std::all_of(frame.begin() + kWidth * kHeight, frame.end(), [](uint8_t c) { return c == 128; }));
        QVERIFY(frameNow() != frame);
        const double dim = previewFigures(frame).brightness;
        // The camera page asks for a room darker than 20 without the light.
        QVERIFY2(dim > 2 && dim < 20, qPrintable(QString::number(dim)));
        world.ambientLight = 60;
        const double lit = previewFigures(frameNow()).brightness;
        QVERIFY2(lit > dim + 25, qPrintable(QStringLiteral("%1 -> %2").arg(dim).arg(lit)));
        world.ambientLight = 0;
        QVERIFY(previewFigures(frameNow()).brightness < dim);

        world.ambientLight = 10;
        world.irLight = true;
        const double aimed = previewFigures(frameNow()).brightness;
        QVERIFY2(aimed > dim + 20, qPrintable(QStringLiteral("%1 -> %2").arg(dim).arg(aimed)));
        int exposure = 450;
        QCOMPARE(control(kSetControl, V4L2_CID_EXPOSURE, &exposure), 0);
        QVERIFY(previewFigures(frameNow()).brightness > aimed * 1.5);
        exposure = 225;
        int gain = 2;
        QCOMPARE(control(kSetControl, V4L2_CID_EXPOSURE, &exposure), 0);
        QCOMPARE(control(kSetControl, V4L2_CID_GAIN, &gain), 0);
        QVERIFY(previewFigures(frameNow()).brightness > aimed * 1.5);
    }

    void sharpestAtTheWorkingDistance()
    {
        QVERIFY(startStreaming(false));
        SimulatedWorld::instance().irLight = true;
        std::vector<double> sharpness;
        QString figures;
        for (int distance : {800, 900, 1000, 1080, 1150, 1300, 1500}) {
            SimulatedWorld::instance().childDistanceMm = distance;
            sharpness.push_back(previewFigures(frameNow()).sharpness);
            figures += QStringLiteral("%1 mm: %2  ").arg(distance).arg(sharpness.back(), 0, 'f', 1);
        }
        // Rising to the working distance, falling beyond it, clearly.
        QVERIFY2(std::is_sorted(sharpness.begin(), sharpness.begin() + 4), qPrintable(figures));
        QVERIFY2(std::is_sorted(sharpness.rbegin(), sharpness.rbegin() + 4), qPrintable(figures));
        QVERIFY2(sharpness[3] > 1.5 * sharpness[1] && sharpness[3] > 1.5 * sharpness[5], qPrintable(figures));
    }

    void brightPupilOnlyOnOddWordsWithTheFlash()
    {
        QVERIFY(startStreaming(false));
        int bright = 0;
        for (bool flash : {true, true, true, true, false, false}) {
            // Without the recording's flash, odd frames keep dark pupils too.
            SimulatedWorld::instance().irFlashActive = flash;
            SimulatedWorld::instance().irLight = !flash;
            v4l2_buffer record;
            const std::vector<uint8_t> frame = frameNow(&record);
            const Eye eye = eyeAround(frame, brightestSpot(frame));
            const QString figures = QStringLiteral("word %1 ").arg(record.reserved) + eye.text();
            if (flash && record.reserved % 2) {
                ++bright;
                QVERIFY2(eye.pupil > eye.skin, qPrintable(figures));
            } else {
                QVERIFY2(eye.pupil < 0.5 * eye.skin, qPrintable(figures));
            }
        }
        QCOMPARE(bright, 2);
    }

    // --- threads ---

    void captureThreadSurvivesChangesFromOtherThreads()
    {
        QVERIFY(startStreaming());
        std::atomic<bool> stop{false};
        std::atomic<int> frames{0};
        std::thread capture([&] {
            while (!stop) {
                v4l2_buffer record;
                if (waitReadable(200) == 1 && dequeue(&record) == 0) {
                    ++frames;
                    queue(record.index);
                }
            }
        });
        QElapsedTimer timer;
        timer.start();
        for (int i = 0; timer.elapsed() < 600; ++i) {
            m_camera->failNextDequeues(i % 5 == 0 ? 1 : 0);
            m_camera->setDelivering(i % 7 != 0);
            m_camera->setPaced(i % 11 != 0);
            int gain = 1 + (i / 10) % 2;
            control(kSetControl, V4L2_CID_GAIN, &gain);
            SimulatedWorld::instance().childDistanceMm = (i / 10) % 2 ? 1000 : 1080;
            SimulatedWorld::instance().irFlashActive = (i / 5) % 2;
            std::this_thread::sleep_for(std::chrono::milliseconds(15));
        }
        // Healthy again, the camera keeps delivering: nothing is wedged.
        m_camera->resetFaults();
        const int before = frames;
        timer.restart();
        while (frames < before + 5 && timer.elapsed() < 3000)
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        stop = true;
        capture.join();
        QVERIFY2(frames >= before + 5, qPrintable(QStringLiteral("%1 -> %2").arg(before).arg(int(frames))));
    }
};

QTEST_GUILESS_MAIN(TestSimulatedCamera)
#include "tst_simulatedcamera.moc"
