// SPDX-License-Identifier: GPL-2.0-or-later
// The infrared camera as a V4L2 capture device: open, configure, map, and hand out one frame at a time.
#include "v4l2device.h"

#include "cameraretry.h"
#include "memlayer.h"
#include "videoio.h"

#include <QCoreApplication>
#include <QDebug>
#include <QThread>

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <linux/videodev2.h>
#include <sys/mman.h>

namespace {

// The board's driver takes a three-word control record (id, value, and a
// word that is always 0), so its get/set requests carry a 12-byte size.
struct ControlRecord
{
    unsigned int id;
    int value;
    unsigned int zero;
};
static_assert(sizeof(ControlRecord) == 12, "the driver expects three 32-bit words");

constexpr unsigned long kGetControl = 0xC00C561BUL;
constexpr unsigned long kSetControl = 0xC00C561CUL;
constexpr unsigned int kGain = 0x980913;     // V4L2_CID_GAIN
constexpr unsigned int kExposure = 0x980911; // V4L2_CID_EXPOSURE

// Consecutive dequeue failures, counted for the whole process: a restarted
// device object must not forget that the camera was already failing.
std::atomic<int> s_dequeueFailures{0};
// Set once a restart has been asked for: the failures that follow before the
// program ends belong to the same incident and spend no more of the budget.
std::atomic<bool> s_restartRequested{false};

// Ends the application's event loop from whichever thread captures.
void endEventLoop(int code)
{
    QCoreApplication *app = QCoreApplication::instance();
    if (!app)
        return;
    if (QThread::currentThread() == app->thread())
        QCoreApplication::exit(code);
    else
        QMetaObject::invokeMethod(
            app, [code] { QCoreApplication::exit(code); }, Qt::QueuedConnection);
}

void printFormat(const v4l2_format &format)
{
    const unsigned int pixelFormat = format.fmt.pix.pixelformat;
    qDebug("fmt.type:\t\t%d", format.type);
    qDebug("pix.pixelformat:\t%c%c%c%c", pixelFormat & 0xff, (pixelFormat >> 8) & 0xff, (pixelFormat >> 16) & 0xff,
           (pixelFormat >> 24) & 0xff);
    qDebug("pix.height:\t\t%d", format.fmt.pix.height);
    qDebug("pix.width:\t\t%d", format.fmt.pix.width);
    qDebug("pix.field:\t\t%d", format.fmt.pix.field);
}

} // namespace

V4l2Device::V4l2Device(int width, int height, VideoIo &io, std::string retryFile, std::string devicePath)
    : m_width(width)
    , m_height(height)
    , m_io(io)
    , m_retryFile(std::move(retryFile))
    , m_devicePath(std::move(devicePath))
{
}

V4l2Device::~V4l2Device() = default;

int V4l2Device::failureCount()
{
    return s_dequeueFailures;
}

void V4l2Device::resetFailureCount()
{
    s_dequeueFailures = 0;
    s_restartRequested = false;
}

int V4l2Device::open_device()
{
    // The log names the node by its number, as it always has.
    const size_t digits = m_devicePath.find_last_not_of("0123456789") + 1;
    const int number = std::atoi(m_devicePath.c_str() + digits);
    m_fd = m_io.open(m_devicePath.c_str(), O_RDWR | O_NONBLOCK);
    if (m_fd < 0) {
        qDebug("open_device FAIL");
        return -1;
    }
    qDebug("open_device OK [%d]", number);

    v4l2_capability capability;
    std::memset(&capability, 0, sizeof capability);
    if (m_io.ioctl(m_fd, VIDIOC_QUERYCAP, &capability) < 0) {
        qDebug("Error opening device %s: unable to query device.", "/dev/video");
        return -1;
    }
    qDebug("driver:\t\t%s", reinterpret_cast<const char *>(capability.driver));
    qDebug("card:\t\t%s", reinterpret_cast<const char *>(capability.card));
    qDebug("bus_info:\t\t%s", reinterpret_cast<const char *>(capability.bus_info));
    qDebug("version:\t\t%d", capability.version);
    qDebug("capabilities:\t\t%x", capability.capabilities);
    if (!(capability.capabilities & V4L2_CAP_VIDEO_CAPTURE)) {
        qDebug("Device %s: NOT supports capture.", "/dev/video");
        return -1;
    }
    qDebug("Device %s: supports capture.", "/dev/video");
    if (!(capability.capabilities & V4L2_CAP_STREAMING)) {
        qDebug("Device %s: NOT supports streaming.", "/dev/video");
        return -1;
    }
    qDebug("Device %s: supports streaming.", "/dev/video");

    qDebug("Support format:");
    v4l2_fmtdesc description;
    std::memset(&description, 0, sizeof description);
    description.type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
    while (m_io.ioctl(m_fd, VIDIOC_ENUM_FMT, &description) == 0) {
        qDebug("\t%d.%s", description.index + 1, reinterpret_cast<const char *>(description.description));
        ++description.index;
    }

    int input = 0;
    if (m_io.ioctl(m_fd, VIDIOC_S_INPUT, &input) < 0) {
        qDebug("Unable to set input");
        return -1;
    }

    qDebug("set format...");
    v4l2_format format;
    std::memset(&format, 0, sizeof format);
    format.type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
    format.fmt.pix.width = static_cast<unsigned int>(m_width);
    format.fmt.pix.height = static_cast<unsigned int>(m_height);
    format.fmt.pix.pixelformat = V4L2_PIX_FMT_NV21;
    format.fmt.pix.field = V4L2_FIELD_ANY;
    printFormat(format);
    if (m_io.ioctl(m_fd, VIDIOC_S_FMT, &format) < 0) {
        qDebug("Unable to set format");
        return -1;
    }
    qDebug("\nget format...");
    if (m_io.ioctl(m_fd, VIDIOC_G_FMT, &format) < 0) {
        qDebug("Unable to get format");
        return -1;
    }
    printFormat(format);

    v4l2_streamparm parameters;
    std::memset(&parameters, 0, sizeof parameters);
    parameters.type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
    parameters.parm.capture.timeperframe.numerator = 1;
    parameters.parm.capture.timeperframe.denominator = 30;
    parameters.parm.capture.capturemode = 0;
    if (m_io.ioctl(m_fd, VIDIOC_S_PARM, &parameters) < 0) {
        qDebug("Unable to set frame rate");
        return -1;
    }
    if (m_io.ioctl(m_fd, VIDIOC_G_PARM, &parameters) < 0) {
        qDebug("Unable to get frame rate");
        return -1;
    }
    qDebug("numerator:%d\ndenominator:%d", parameters.parm.capture.timeperframe.numerator,
           parameters.parm.capture.timeperframe.denominator);

    int value = 0;
    if (!getControl(kGain, &value)) {
        qDebug("Unable to get gain control");
        return -1;
    }
    qDebug("get gain_ctrl:%d\n", value);
    if (!getControl(kExposure, &value)) {
        qDebug("Unable to get exposure control");
        return -1;
    }
    qDebug("get exposure_ctrl:%d\n", value);

    v4l2_requestbuffers request;
    std::memset(&request, 0, sizeof request);
    request.count = m_bufferCount;
    request.type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
    request.memory = V4L2_MEMORY_MMAP;
    if (m_io.ioctl(m_fd, VIDIOC_REQBUFS, &request) < 0) {
        qDebug("ioctl VIDIOC_REQBUFS fail");
        return -1;
    }
    if (request.count < 2 || request.count > kBufferCount) {
        qDebug("ioctl VIDIOC_REQBUFS error");
        return -1;
    }

    // The driver may grant fewer buffers than asked for, yet closing always
    // walks the full count: the array has room for the full count so that
    // walk stays inside it (unused records are empty and fail to unmap).
    m_buffers = static_cast<buffer *>(std::calloc(kBufferCount, sizeof(buffer)));
    if (!m_buffers) {
        qDebug("calloc error");
        return -1;
    }
    for (unsigned int index = 0; index < request.count; ++index) {
        v4l2_buffer record;
        std::memset(&record, 0, sizeof record);
        record.index = index;
        record.type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
        record.memory = V4L2_MEMORY_MMAP;
        if (m_io.ioctl(m_fd, VIDIOC_QUERYBUF, &record) < 0) {
            qDebug("ioctl VIDIOC_QUERYBUF error");
            return -1;
        }
        m_buffers[index].length = record.length;
        void *start = m_io.mmap(nullptr, record.length, PROT_READ | PROT_WRITE, MAP_SHARED, m_fd, record.m.offset);
        // MAP_FAILED is refused too: an unusable address kept here would be
        // handed out as a frame later.
        if (start == nullptr || start == MAP_FAILED) {
            qDebug("mmap error");
            return -1;
        }
        m_buffers[index].start = start;
        unsigned long physical = 0;
        mem_addr_vir2phy(reinterpret_cast<unsigned long>(start), &physical);
        m_buffers[index].physical = static_cast<unsigned int>(physical);
    }
    qDebug("Open device success");
    return 0;
}

int V4l2Device::start_capture()
{
    for (unsigned int index = 0; index < m_bufferCount; ++index) {
        v4l2_buffer record;
        std::memset(&record, 0, sizeof record);
        record.index = index;
        record.type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
        record.memory = V4L2_MEMORY_MMAP;
        if (m_io.ioctl(m_fd, VIDIOC_QBUF, &record) < 0) {
            qDebug("ioctl VIDIOC_QBUF error");
            return -1;
        }
    }
    int type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
    if (m_io.ioctl(m_fd, VIDIOC_STREAMON, &type) < 0) {
        qDebug("ioctl VIDIOC_STREAMON error");
        return -1;
    }
    qDebug("Start capture......");
    return 0;
}

void V4l2Device::stop_capture()
{
    int type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
    // The start message is reused for the stop request; the log has always
    // read so and service scripts look for it.
    if (m_io.ioctl(m_fd, VIDIOC_STREAMOFF, &type) < 0)
        qDebug("ioctl VIDIOC_STREAMON error");
}

int V4l2Device::pull_frame(void **start, unsigned int *physical, unsigned int *word, unsigned int *length, bool fill)
{
    v4l2_buffer record;
    std::memset(&record, 0, sizeof record);
    record.type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
    record.memory = V4L2_MEMORY_MMAP;

    // FD_SET of a closed device's -1 would write outside the set.
    if (m_fd < 0)
        return -1;
    fd_set readable;
    FD_ZERO(&readable);
    FD_SET(m_fd, &readable);
    timeval timeout = {2, 0};
    // A time-out is not special: the dequeue below then fails on the
    // non-blocking descriptor and is counted like any other failure.
    if (m_io.select(m_fd + 1, &readable, nullptr, nullptr, &timeout) < 0) {
        qDebug("ioctl select error");
        return -1;
    }

    if (m_io.ioctl(m_fd, VIDIOC_DQBUF, &record) < 0) {
        qDebug("ioctl VIDIOC_DQBUF error");
        const int failures = ++s_dequeueFailures;
        if (failures >= 2 && !s_restartRequested) {
            qDebug("too much VIDIOC_DQBUF error, restart device");
            const int retries = cameraretry::get(m_retryFile);
            qDebug("RetryCount: %d", retries);
            if (retries > 0) {
                // A fresh start of the program reopens the camera from
                // scratch, which clears a stalled driver; the budget keeps a
                // dead camera from restarting the program for ever.
                cameraretry::set(m_retryFile, retries - 1);
                s_dequeueFailures = 0;
                s_restartRequested = true;
                endEventLoop(1);
            }
        }
        return -1;
    }

    // The board's driver fills the record's last word (the LED phase).
    *word = record.reserved;
    s_dequeueFailures = 0;
    if (fill) {
        *start = m_buffers[record.index].start;
        *length = m_buffers[record.index].length;
        *physical = m_buffers[record.index].physical;
    }
    m_currentIndex = static_cast<int>(record.index);
    return 0;
}

int V4l2Device::push_frame()
{
    if (m_currentIndex == -1) {
        qDebug("push_frame error");
        return -1;
    }
    v4l2_buffer record;
    std::memset(&record, 0, sizeof record);
    record.index = static_cast<unsigned int>(m_currentIndex);
    record.type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
    record.memory = V4L2_MEMORY_MMAP;
    if (m_io.ioctl(m_fd, VIDIOC_QBUF, &record) < 0) {
        qDebug("ioctl VIDIOC_QBUF error");
        return -1;
    }
    return 0;
}

bool V4l2Device::setControl(unsigned int id, int value)
{
    ControlRecord control = {id, value, 0};
    return m_io.ioctl(m_fd, kSetControl, &control) >= 0;
}

bool V4l2Device::getControl(unsigned int id, int *value)
{
    ControlRecord control = {id, 0, 0};
    if (m_io.ioctl(m_fd, kGetControl, &control) < 0)
        return false;
    *value = control.value;
    return true;
}

void V4l2Device::set_gain(int value)
{
    if (setControl(kGain, value))
        qDebug("set gain control : %d\n", value);
    else
        qDebug("Unable to set gain control");
}

int V4l2Device::get_gain()
{
    int value = 0;
    if (!getControl(kGain, &value)) {
        qDebug("Unable to get gain control");
        return -1;
    }
    qDebug("get gain control : %d\n", value);
    return value;
}

void V4l2Device::set_exposure(int value)
{
    if (setControl(kExposure, value))
        qDebug("set exposure control : %d\n", value);
    else
        qDebug("Unable to set exposure control");
}

int V4l2Device::get_exposure()
{
    int value = 0;
    if (!getControl(kExposure, &value)) {
        qDebug("Unable to get exposure control");
        return -1;
    }
    qDebug("get exposure control : %d\n", value);
    return value;
}

int V4l2Device::close_device()
{
    if (m_buffers) {
        for (unsigned int index = 0; index < m_bufferCount; ++index) {
            if (m_io.munmap(m_buffers[index].start, m_buffers[index].length) < 0)
                qDebug("munmap error");
        }
        std::free(m_buffers);
        m_buffers = nullptr;
    }
    if (m_io.close(m_fd) < 0) {
        qDebug("Close device FAIL");
        return -1;
    }
    qDebug("Close device success");
    return 0;
}
