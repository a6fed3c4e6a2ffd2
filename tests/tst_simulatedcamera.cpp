// SPDX-License-Identifier: GPL-2.0-or-later
// The simulated infrared camera through the raw video I/O calls: the product's tests run over it,
// so its faults must happen as promised and its picture carry what the preview and recording measure.
#include "previewconversion.h"
#include "simulatedcamera.h"
#include "simulatedworld.h"

#include <QElapsedTimer>
#include <QTest>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <fcntl.h>
#include <linux/videodev2.h>
#include <sys/mman.h>
#include <vector>

namespace {

constexpr int kWidth = SimulatedCamera::kWidth;
constexpr int kHeight = SimulatedCamera::kHeight;
constexpr uint32_t kImageSize = kWidth * kHeight * 3 / 2;

bool failsWith(int result, int error)
{
    return result == -1 && errno == error;
}

// Brightness and contrast as the camera page sees them, on its 880 x 330 preview.
PreviewStatistics previewFigures(const std::vector<uint8_t> &frame)
{
    std::vector<uint8_t> preview(2 * kWidth * kHeight);
    return convert_raw_to_img_buffer_scale(frame.data(), preview.data(), kWidth, kHeight, 880, 330);
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

} // namespace

class TestSimulatedCamera : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<SimulatedCamera> m_camera;
    int m_fd = -1;
    std::vector<uint8_t *> m_maps;

    int io(unsigned long request, void *argument) { return m_camera->ioctl(m_fd, request, argument); }

    int queue(v4l2_buffer *record, uint32_t index, unsigned long request = VIDIOC_QBUF)
    {
        *record = v4l2_buffer{};
        record->index = index;
        record->type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
        record->memory = V4L2_MEMORY_MMAP;
        return io(request, record);
    }

    // Opens, maps and queues five buffers and starts streaming.
    bool start()
    {
        m_fd = m_camera->open("/dev/video0", O_RDWR | O_NONBLOCK);
        v4l2_requestbuffers request{};
        request.count = 5;
        request.type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
        request.memory = V4L2_MEMORY_MMAP;
        if (m_fd < 0 || io(VIDIOC_REQBUFS, &request) < 0 || request.count != 5)
            return false;
        for (uint32_t i = 0; i < 5; ++i) {
            v4l2_buffer record;
            void *start =
                queue(&record, i, VIDIOC_QUERYBUF) < 0
                    ? MAP_FAILED
                    : m_camera->mmap(nullptr, kImageSize, PROT_READ | PROT_WRITE, MAP_SHARED, m_fd, record.m.offset);
            if (start == MAP_FAILED || queue(&record, i) < 0)
                return false;
            m_maps.push_back(static_cast<uint8_t *>(start));
        }
        int type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
        return io(VIDIOC_STREAMON, &type) == 0;
    }

    int waitReadable(int milliseconds)
    {
        fd_set readable;
        FD_ZERO(&readable);
        FD_SET(m_fd, &readable);
        timeval timeout{0, milliseconds * 1000};
        return m_camera->select(m_fd + 1, &readable, nullptr, nullptr, &timeout);
    }

    // The next frame as the capture thread takes it: select, dequeue, copy,
    // and the buffer goes straight back. Empty when none came.
    std::vector<uint8_t> frameNow(v4l2_buffer *taken = nullptr)
    {
        v4l2_buffer record;
        if (waitReadable(900) != 1 || queue(&record, 0, VIDIOC_DQBUF) < 0)
            return {};
        std::vector<uint8_t> frame(m_maps[record.index], m_maps[record.index] + record.bytesused);
        if (taken)
            *taken = record;
        return queue(&record, record.index) == 0 ? frame : std::vector<uint8_t>();
    }

private slots:
    // The camera lets go of its descriptors and mappings when it goes.
    void init()
    {
        SimulatedWorld::instance().reset();
        m_camera = std::make_unique<SimulatedCamera>();
        m_camera->setPaced(false);
        m_maps.clear();
    }

    // At the sensor's pace: nothing the moment streaming starts, then frames
    // in order, the driver word telling the LED's phase: odd and even by turns.
    void framesComeInOrderAtTheSensorsPace()
    {
        m_camera->setPaced(true);
        QElapsedTimer timer;
        timer.start();
        QVERIFY(start());
        v4l2_buffer record;
        QVERIFY(failsWith(queue(&record, 0, VIDIOC_DQBUF), EAGAIN));
        for (uint32_t i = 0; i < 4; ++i) {
            QVERIFY(!frameNow(&record).empty());
            QCOMPARE(record.sequence, i);
            QCOMPARE(record.reserved, i);
        }
        const qint64 pacedMs = 4 * 1000 / SimulatedCamera::kFramesPerSecond;
        QVERIFY2(timer.elapsed() >= pacedMs - 10, qPrintable(QString::number(timer.elapsed())));
    }

    void previewFiguresFollowTheScene()
    {
        QVERIFY(start());
        SimulatedWorld &world = SimulatedWorld::instance();
        const double dim = previewFigures(frameNow()).brightness;
        // The camera page asks for a room darker than 20 without the light.
        QVERIFY2(dim > 2 && dim < 20, qPrintable(QString::number(dim)));
        world.ambientLight = 60;
        QVERIFY(previewFigures(frameNow()).brightness > dim + 25);
        world.ambientLight = 0;
        QVERIFY(previewFigures(frameNow()).brightness < dim);
        world.ambientLight = 10;
        world.irLight = true;
        const double aimed = previewFigures(frameNow()).brightness;
        QVERIFY2(aimed > dim + 20, qPrintable(QStringLiteral("%1 -> %2").arg(dim).arg(aimed)));

        // Sharpest at the working distance: rising to it, falling beyond, clearly.
        std::vector<double> sharpness;
        QString figures;
        for (int distance : {800, 900, 1000, 1080, 1150, 1300, 1500}) {
            world.childDistanceMm = distance;
            sharpness.push_back(previewFigures(frameNow()).contrast);
            figures += QStringLiteral("%1 mm: %2  ").arg(distance).arg(sharpness.back(), 0, 'f', 1);
        }
        QVERIFY2(std::is_sorted(sharpness.begin(), sharpness.begin() + 4), qPrintable(figures));
        QVERIFY2(std::is_sorted(sharpness.rbegin(), sharpness.rbegin() + 4), qPrintable(figures));
        QVERIFY2(sharpness[3] > 1.5 * sharpness[1] && sharpness[3] > 1.5 * sharpness[5], qPrintable(figures));
    }

    void pupilsBrightOnlyOnOddWordsWithTheFlash_data()
    {
        QTest::addColumn<bool>("flash");
        QTest::newRow("recording flash") << true;
        QTest::newRow("aiming light only") << false;
    }

    void pupilsBrightOnlyOnOddWordsWithTheFlash()
    {
        QFETCH(bool, flash);
        SimulatedWorld::instance().irFlashActive = flash;
        SimulatedWorld::instance().irLight = !flash;
        QVERIFY(start());
        int bright = 0;
        for (int i = 0; i < 4; ++i) {
            v4l2_buffer record;
            const std::vector<uint8_t> frame = frameNow(&record);
            QCOMPARE(frame.size(), size_t(kImageSize));
            // The brightest pixel is a glint; a ring just around it lies in
            // the pupil, and the cheek below the eye is skin.
            const auto glint = std::max_element(frame.begin(), frame.begin() + kWidth * kHeight) - frame.begin();
            const int x = int(glint % kWidth);
            const int y = int(glint / kWidth);
            const double pupil = ringMean(frame, x, y, 6, 9);
            const double skin = ringMean(frame, x, y + 90, 0, 10);
            const QString figures =
                QStringLiteral("word %1 pupil %2 skin %3").arg(record.reserved).arg(pupil).arg(skin);
            if (flash && record.reserved % 2) {
                ++bright;
                QVERIFY2(pupil > skin, qPrintable(figures));
            } else {
                QVERIFY2(pupil < 0.5 * skin, qPrintable(figures));
            }
        }
        QCOMPARE(bright, flash ? 2 : 0);
    }
};

QTEST_GUILESS_MAIN(TestSimulatedCamera)
#include "tst_simulatedcamera.moc"
