// SPDX-License-Identifier: GPL-2.0-or-later
// The simulator's infrared camera: a V4L2 capture driver model behind the video I/O calls.
#include "simulatedcamera.h"

#include "simulatedworld.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <linux/version.h>
#include <linux/videodev2.h>
#include <sys/eventfd.h>
#include <sys/mman.h>
#include <unistd.h>

namespace {

// The board's driver takes a three-word control record (id, value, and a
// word that is always 0), hence requests of a 12-byte size; the standard
// two-word requests are answered as well.
constexpr unsigned long kBoardGetControl = 0xC00C561BUL;
constexpr unsigned long kBoardSetControl = 0xC00C561CUL;

struct ControlRange
{
    uint32_t id;
    const char *name;
    int minimum;
    int maximum;
    int defaultValue;
};
// Exposure in sensor lines (at most a frame's 1125 lines at 30 frames per
// second); gain as a plain multiplier. Sorted by id for enumeration.
constexpr ControlRange kControls[] = {
    {V4L2_CID_EXPOSURE, "Exposure", 1, 1125, 225},
    {V4L2_CID_GAIN, "Gain", 1, 16, 1},
};

struct FormatDescription
{
    uint32_t pixelFormat;
    const char *name;
};
// With neutral chroma both orders of the chroma pair carry the same bytes.
constexpr FormatDescription kFormats[] = {
    {V4L2_PIX_FMT_NV21, "Y/CrCb 4:2:0"},
    {V4L2_PIX_FMT_NV12, "Y/CbCr 4:2:0"},
};

constexpr size_t kLumaSize = static_cast<size_t>(SimulatedCamera::kWidth) * SimulatedCamera::kHeight;
constexpr size_t kImageSize = kLumaSize * 3 / 2;
constexpr std::chrono::nanoseconds kFramePeriod(1000000000LL / SimulatedCamera::kFramesPerSecond);

bool supportedFormat(uint32_t pixelFormat)
{
    return std::any_of(std::begin(kFormats), std::end(kFormats),
                       [pixelFormat](const FormatDescription &format) { return format.pixelFormat == pixelFormat; });
}

const ControlRange *findControl(uint32_t id)
{
    for (const ControlRange &range : kControls) {
        if (range.id == id)
            return &range;
    }
    return nullptr;
}

void copyName(uint8_t *target, size_t size, const char *name)
{
    std::memset(target, 0, size);
    std::strncpy(reinterpret_cast<char *>(target), name, size - 1);
}

size_t pageAligned(size_t size)
{
    const size_t page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
    return (size + page - 1) / page * page;
}

struct timeval toTimeval(std::chrono::steady_clock::time_point time)
{
    // libstdc++'s steady clock is CLOCK_MONOTONIC, the clock V4L2 stamps with.
    const auto since = std::chrono::duration_cast<std::chrono::microseconds>(time.time_since_epoch()).count();
    struct timeval value;
    value.tv_sec = static_cast<time_t>(since / 1000000);
    value.tv_usec = static_cast<suseconds_t>(since % 1000000);
    return value;
}

} // namespace

SimulatedCamera::Memory::~Memory()
{
    if (view)
        ::munmap(view, size);
    if (fd >= 0)
        ::close(fd);
}

SimulatedCamera &SimulatedCamera::instance()
{
    // Lives until the process ends: the capture thread may still be inside a
    // request while the program exits.
    static SimulatedCamera *const camera = new SimulatedCamera;
    return *camera;
}

SimulatedCamera::SimulatedCamera()
    : m_pixelFormat(V4L2_PIX_FMT_NV21)
    , m_exposure(kControls[0].defaultValue)
    , m_gain(kControls[1].defaultValue)
    , m_bufferStride(pageAligned(kImageSize))
    , m_renderer(kWidth, kHeight)
{
}

SimulatedCamera::~SimulatedCamera()
{
    for (const auto &handle : m_handles)
        ::close(handle.first);
    for (const auto &mapping : m_mappings)
        ::munmap(mapping.first, mapping.second.length);
}

// --- descriptors ---

int SimulatedCamera::open(const char *path, int flags)
{
    if (!path) {
        errno = EFAULT;
        return -1;
    }
    std::lock_guard<std::mutex> lock(m_mutex);
    if (!m_present || std::strcmp(path, kDevicePath) != 0) {
        errno = ENOENT;
        return -1;
    }
    // A descriptor of our own, so that the caller's fd_set bookkeeping works
    // and the number cannot collide with another open file.
    const int fd = ::eventfd(0, EFD_CLOEXEC);
    if (fd < 0)
        return -1;
    if (fd >= FD_SETSIZE) {
        ::close(fd);
        errno = EMFILE;
        return -1;
    }
    m_handles[fd].nonBlocking = (flags & O_NONBLOCK) != 0;
    return fd;
}

int SimulatedCamera::close(int fd)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    if (m_handles.erase(fd) == 0) {
        errno = EBADF;
        return -1;
    }
    if (m_owner == fd)
        releaseQueue();
    ::close(fd);
    m_changed.notify_all();
    return 0;
}

// --- requests ---

int SimulatedCamera::ioctl(int fd, unsigned long request, void *argument)
{
    Pending pending;
    int result = 0;
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        if (m_handles.count(fd) == 0) {
            result = -EBADF;
        } else if (!argument) {
            result = -EFAULT;
        } else {
            switch (request) {
            case VIDIOC_QUERYCAP: result = queryCapabilities(argument); break;
            case VIDIOC_ENUM_FMT: result = enumerateFormats(argument); break;
            case VIDIOC_S_FMT: result = setFormat(fd, argument, false); break;
            case VIDIOC_TRY_FMT: result = setFormat(fd, argument, true); break;
            case VIDIOC_G_FMT: result = getFormat(argument); break;
            case VIDIOC_ENUM_FRAMESIZES: {
                auto *size = static_cast<v4l2_frmsizeenum *>(argument);
                if (size->index != 0 || !supportedFormat(size->pixel_format)) {
                    result = -EINVAL;
                    break;
                }
                size->type = V4L2_FRMSIZE_TYPE_DISCRETE;
                size->discrete.width = kWidth;
                size->discrete.height = kHeight;
                break;
            }
            case VIDIOC_ENUM_FRAMEINTERVALS: {
                auto *interval = static_cast<v4l2_frmivalenum *>(argument);
                if (interval->index != 0 || !supportedFormat(interval->pixel_format) ||
                    interval->width != static_cast<uint32_t>(kWidth) ||
                    interval->height != static_cast<uint32_t>(kHeight)) {
                    result = -EINVAL;
                    break;
                }
                interval->type = V4L2_FRMIVAL_TYPE_DISCRETE;
                interval->discrete.numerator = 1;
                interval->discrete.denominator = kFramesPerSecond;
                break;
            }
            case VIDIOC_ENUMINPUT: {
                auto *input = static_cast<v4l2_input *>(argument);
                if (input->index != 0) {
                    result = -EINVAL;
                    break;
                }
                const uint32_t index = input->index;
                std::memset(input, 0, sizeof(*input));
                input->index = index;
                copyName(input->name, sizeof(input->name), "Infrared sensor");
                input->type = V4L2_INPUT_TYPE_CAMERA;
                break;
            }
            case VIDIOC_G_INPUT: *static_cast<int *>(argument) = 0; break;
            case VIDIOC_S_INPUT: result = *static_cast<int *>(argument) == 0 ? 0 : -EINVAL; break;
            case VIDIOC_G_PARM:
            case VIDIOC_S_PARM: result = streamParameters(argument); break;
            case VIDIOC_QUERYCTRL: result = queryControl(argument); break;
            case kBoardGetControl:
            case VIDIOC_G_CTRL:
            case kBoardSetControl:
            case VIDIOC_S_CTRL: {
                // Both records start with the id and the value; the board's
                // third word is left as the caller sent it.
                uint32_t id;
                int32_t value;
                std::memcpy(&id, argument, sizeof(id));
                std::memcpy(&value, static_cast<char *>(argument) + sizeof(id), sizeof(value));
                result = control(id, &value, request == kBoardSetControl || request == VIDIOC_S_CTRL);
                std::memcpy(static_cast<char *>(argument) + sizeof(id), &value, sizeof(value));
                break;
            }
            case VIDIOC_REQBUFS: result = requestBuffers(fd, argument); break;
            case VIDIOC_QUERYBUF: result = queryBuffer(argument); break;
            case VIDIOC_QBUF: result = queueBuffer(fd, argument); break;
            case VIDIOC_DQBUF: result = dequeueBuffer(fd, argument, lock, &pending); break;
            case VIDIOC_STREAMON: result = streamOn(fd, argument); break;
            case VIDIOC_STREAMOFF: result = streamOff(fd, argument); break;
            default:
                // The board's kernel predates ENOTTY for unknown requests.
                result = -EINVAL;
                break;
            }
        }
    }
    if (result < 0) {
        errno = -result;
        return -1;
    }
    // The buffer now belongs to the caller alone, so it is drawn without the
    // lock: a scene change costs a render, and other threads must not wait.
    if (pending.memory)
        draw(pending);
    return 0;
}

int SimulatedCamera::queryCapabilities(void *argument)
{
    auto *capability = static_cast<v4l2_capability *>(argument);
    std::memset(capability, 0, sizeof(*capability));
    copyName(capability->driver, sizeof(capability->driver), "sim_ircam");
    copyName(capability->card, sizeof(capability->card), "Simulated IR camera 1080p");
    copyName(capability->bus_info, sizeof(capability->bus_info), "platform:sim_ircam.0");
    capability->version = LINUX_VERSION_CODE;
    uint32_t caps = 0;
    if (m_captureCapability)
        caps |= V4L2_CAP_VIDEO_CAPTURE;
    if (m_streamingCapability)
        caps |= V4L2_CAP_STREAMING;
    capability->device_caps = caps;
    capability->capabilities = caps | V4L2_CAP_DEVICE_CAPS;
    return 0;
}

int SimulatedCamera::enumerateFormats(void *argument)
{
    auto *description = static_cast<v4l2_fmtdesc *>(argument);
    if (description->type != V4L2_BUF_TYPE_VIDEO_CAPTURE || description->index >= std::size(kFormats))
        return -EINVAL;
    const FormatDescription &format = kFormats[description->index];
    const uint32_t index = description->index;
    std::memset(description, 0, sizeof(*description));
    description->index = index;
    description->type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
    copyName(description->description, sizeof(description->description), format.name);
    description->pixelformat = format.pixelFormat;
    return 0;
}

int SimulatedCamera::setFormat(int fd, void *argument, bool tryOnly)
{
    auto *format = static_cast<v4l2_format *>(argument);
    if (format->type != V4L2_BUF_TYPE_VIDEO_CAPTURE)
        return -EINVAL;
    // Like a sensor driver with one mode: any request is adjusted to what
    // the hardware can do, and the caller reads back what it got.
    const uint32_t pixelFormat = supportedFormat(format->fmt.pix.pixelformat)
                                     ? format->fmt.pix.pixelformat
                                     : static_cast<uint32_t>(V4L2_PIX_FMT_NV21);
    if (!tryOnly) {
        // Buffers sized for the current format may be in use.
        if (!m_buffers.empty() || !ownsQueue(fd))
            return -EBUSY;
        m_pixelFormat = pixelFormat;
    }
    std::memset(&format->fmt, 0, sizeof(format->fmt));
    v4l2_pix_format &pix = format->fmt.pix;
    pix.width = kWidth;
    pix.height = kHeight;
    pix.pixelformat = pixelFormat;
    pix.field = V4L2_FIELD_NONE;
    pix.bytesperline = kWidth;
    pix.sizeimage = kImageSize;
    pix.colorspace = V4L2_COLORSPACE_REC709;
    return 0;
}

int SimulatedCamera::getFormat(void *argument)
{
    auto *format = static_cast<v4l2_format *>(argument);
    if (format->type != V4L2_BUF_TYPE_VIDEO_CAPTURE)
        return -EINVAL;
    format->fmt.pix.pixelformat = m_pixelFormat;
    return setFormat(-1, argument, true);
}

// The sensor has one frame rate: setting another is answered with 1/30.
int SimulatedCamera::streamParameters(void *argument)
{
    auto *parameters = static_cast<v4l2_streamparm *>(argument);
    if (parameters->type != V4L2_BUF_TYPE_VIDEO_CAPTURE)
        return -EINVAL;
    std::memset(&parameters->parm, 0, sizeof(parameters->parm));
    parameters->parm.capture.capability = V4L2_CAP_TIMEPERFRAME;
    parameters->parm.capture.timeperframe.numerator = 1;
    parameters->parm.capture.timeperframe.denominator = kFramesPerSecond;
    return 0;
}

int SimulatedCamera::control(unsigned int id, int *value, bool set)
{
    const ControlRange *range = findControl(id);
    if (!range)
        return -EINVAL;
    int &current = id == V4L2_CID_EXPOSURE ? m_exposure : m_gain;
    if (set) {
        // The control framework clamps integer controls into their range.
        current = std::clamp(*value, range->minimum, range->maximum);
        *value = current;
    } else {
        *value = current;
    }
    return 0;
}

int SimulatedCamera::queryControl(void *argument)
{
    auto *query = static_cast<v4l2_queryctrl *>(argument);
    const ControlRange *range = nullptr;
    if (query->id & V4L2_CTRL_FLAG_NEXT_CTRL) {
        const uint32_t after = query->id & ~(V4L2_CTRL_FLAG_NEXT_CTRL | V4L2_CTRL_FLAG_NEXT_COMPOUND);
        for (const ControlRange &candidate : kControls) {
            if (candidate.id > after) {
                range = &candidate;
                break;
            }
        }
    } else {
        range = findControl(query->id);
    }
    if (!range)
        return -EINVAL;
    std::memset(query, 0, sizeof(*query));
    query->id = range->id;
    query->type = V4L2_CTRL_TYPE_INTEGER;
    copyName(query->name, sizeof(query->name), range->name);
    query->minimum = range->minimum;
    query->maximum = range->maximum;
    query->step = 1;
    query->default_value = range->defaultValue;
    return 0;
}

// --- buffers ---

int SimulatedCamera::requestBuffers(int fd, void *argument)
{
    auto *request = static_cast<v4l2_requestbuffers *>(argument);
    if (request->type != V4L2_BUF_TYPE_VIDEO_CAPTURE || request->memory != V4L2_MEMORY_MMAP)
        return -EINVAL;
    if (!ownsQueue(fd) || m_streaming)
        return -EBUSY;
    request->flags = 0;
    std::memset(request->reserved, 0, sizeof(request->reserved));
    request->capabilities = V4L2_BUF_CAP_SUPPORTS_MMAP;
    if (request->count == 0) {
        releaseQueue();
        return 0;
    }
    const int granted = m_grantedBuffers > 0 ? m_grantedBuffers
                                             : std::clamp(static_cast<int>(request->count), kMinBuffers, kMaxBuffers);

    // Buffers still mapped from an earlier request stay valid for their
    // mappings (the kernel orphans them); the new set gets fresh memory.
    auto memory = std::make_shared<Memory>();
    memory->size = m_bufferStride * granted;
    memory->fd = ::memfd_create("simulated-camera-buffers", MFD_CLOEXEC);
    if (memory->fd < 0 || ::ftruncate(memory->fd, static_cast<off_t>(memory->size)) < 0)
        return -ENOMEM;
    void *view = ::mmap(nullptr, memory->size, PROT_READ | PROT_WRITE, MAP_SHARED, memory->fd, 0);
    if (view == MAP_FAILED)
        return -ENOMEM;
    memory->view = static_cast<uint8_t *>(view);

    releaseQueue();
    m_memory = std::move(memory);
    m_buffers.assign(granted, Buffer());
    ++m_generation;
    m_owner = fd;
    request->count = granted;
    return 0;
}

void SimulatedCamera::fillRecord(unsigned int index, void *argument) const
{
    auto *record = static_cast<v4l2_buffer *>(argument);
    const Buffer &buffer = m_buffers[index];
    std::memset(record, 0, sizeof(*record));
    record->index = index;
    record->type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
    record->memory = V4L2_MEMORY_MMAP;
    record->flags = V4L2_BUF_FLAG_TIMESTAMP_MONOTONIC | V4L2_BUF_FLAG_TSTAMP_SRC_EOF;
    if (buffer.mappings > 0)
        record->flags |= V4L2_BUF_FLAG_MAPPED;
    if (buffer.state == BufferState::Queued)
        record->flags |= V4L2_BUF_FLAG_QUEUED;
    if (buffer.state == BufferState::Done)
        record->flags |= V4L2_BUF_FLAG_DONE;
    record->field = V4L2_FIELD_NONE;
    record->m.offset = static_cast<uint32_t>(index * m_bufferStride);
    record->length = kImageSize;
    if (buffer.filled) {
        record->bytesused = kImageSize;
        record->sequence = buffer.sequence;
        record->timestamp = buffer.timestamp;
        // This platform's driver reports the LED's phase in the last word:
        // the flash fires on odd frames.
        record->reserved = m_ledPhase < 0 ? buffer.sequence : static_cast<uint32_t>(m_ledPhase);
    }
}

int SimulatedCamera::queryBuffer(void *argument)
{
    auto *record = static_cast<v4l2_buffer *>(argument);
    if (record->type != V4L2_BUF_TYPE_VIDEO_CAPTURE || record->index >= m_buffers.size())
        return -EINVAL;
    fillRecord(record->index, record);
    return 0;
}

int SimulatedCamera::queueBuffer(int fd, void *argument)
{
    auto *record = static_cast<v4l2_buffer *>(argument);
    if (record->type != V4L2_BUF_TYPE_VIDEO_CAPTURE || record->memory != V4L2_MEMORY_MMAP)
        return -EINVAL;
    if (!ownsQueue(fd))
        return -EBUSY;
    if (record->index >= m_buffers.size() || m_buffers[record->index].state != BufferState::Dequeued)
        return -EINVAL;
    // Frame ticks that passed while this buffer was away went by without it.
    advance(Clock::now());
    m_buffers[record->index].state = BufferState::Queued;
    m_queued.push_back(record->index);
    fillRecord(record->index, record);
    m_changed.notify_all();
    return 0;
}

int SimulatedCamera::dequeueBuffer(int fd, void *argument, std::unique_lock<std::mutex> &lock, Pending *pending)
{
    auto *record = static_cast<v4l2_buffer *>(argument);
    if (record->type != V4L2_BUF_TYPE_VIDEO_CAPTURE || record->memory != V4L2_MEMORY_MMAP)
        return -EINVAL;
    if (!ownsQueue(fd))
        return -EBUSY;
    if (m_failingDequeues > 0) {
        --m_failingDequeues;
        return -EIO;
    }
    for (;;) {
        if (m_handles.count(fd) == 0)
            return -EBADF;
        if (!m_streaming)
            return -EINVAL;
        advance(Clock::now());
        if (!m_done.empty())
            break;
        if (m_handles.at(fd).nonBlocking)
            return -EAGAIN;
        // A blocking read waits as long as the sensor takes, as the kernel
        // does; a camera that sends nothing keeps it waiting.
        const Clock::time_point next = nextFrameTime();
        if (next == Clock::time_point::max())
            m_changed.wait(lock);
        else
            m_changed.wait_until(lock, next);
    }
    const unsigned int index = m_done.front();
    m_done.pop_front();
    m_buffers[index].state = BufferState::Dequeued;
    fillRecord(index, record);
    pending->memory = m_memory;
    pending->offset = index * m_bufferStride;
    pending->sequence = m_buffers[index].sequence;
    pending->exposure = m_exposure;
    pending->gain = m_gain;
    pending->seed = ++m_framesDrawn;
    return 0;
}

int SimulatedCamera::streamOn(int fd, void *argument)
{
    if (*static_cast<int *>(argument) != V4L2_BUF_TYPE_VIDEO_CAPTURE || m_buffers.empty())
        return -EINVAL;
    if (!ownsQueue(fd))
        return -EBUSY;
    if (m_streamOnFails)
        return -EIO;
    if (m_streaming)
        return 0;
    m_streaming = true;
    m_streamStart = Clock::now();
    m_ticks = 0;
    m_changed.notify_all();
    return 0;
}

int SimulatedCamera::streamOff(int fd, void *argument)
{
    if (*static_cast<int *>(argument) != V4L2_BUF_TYPE_VIDEO_CAPTURE)
        return -EINVAL;
    if (!ownsQueue(fd))
        return -EBUSY;
    stopStreaming();
    return 0;
}

void SimulatedCamera::stopStreaming()
{
    // Every buffer comes back to the application, filled or not.
    m_streaming = false;
    for (Buffer &buffer : m_buffers)
        buffer.state = BufferState::Dequeued;
    m_queued.clear();
    m_done.clear();
    m_changed.notify_all();
}

void SimulatedCamera::releaseQueue()
{
    stopStreaming();
    m_buffers.clear();
    m_memory.reset();
    m_owner = -1;
}

// --- frame timing ---

void SimulatedCamera::advance(Clock::time_point now)
{
    if (!m_streaming)
        return;
    auto complete = [this](Clock::time_point at) {
        const unsigned int index = m_queued.front();
        m_queued.pop_front();
        Buffer &buffer = m_buffers[index];
        buffer.state = BufferState::Done;
        buffer.filled = true;
        buffer.sequence = static_cast<uint32_t>(m_ticks);
        buffer.timestamp = toTimeval(at);
        m_done.push_back(index);
        ++m_ticks;
    };
    if (!m_paced) {
        while (m_delivering && !m_queued.empty())
            complete(now);
        return;
    }
    // The sensor runs on its own clock from STREAMON: each tick fills the
    // oldest queued buffer, or is lost when none is queued.
    const uint64_t due = static_cast<uint64_t>((now - m_streamStart) / kFramePeriod);
    while (m_ticks < due) {
        if (!m_delivering || m_queued.empty()) {
            m_ticks = due;
            break;
        }
        complete(m_streamStart + kFramePeriod * static_cast<int64_t>(m_ticks + 1));
    }
}

SimulatedCamera::Clock::time_point SimulatedCamera::nextFrameTime() const
{
    if (!m_streaming || !m_delivering || m_queued.empty())
        return Clock::time_point::max();
    if (!m_paced)
        return Clock::now();
    return m_streamStart + kFramePeriod * static_cast<int64_t>(m_ticks + 1);
}

bool SimulatedCamera::readable(int fd) const
{
    // As the kernel's poll: an error (not streaming, or another descriptor
    // holds the buffers) counts as readable, so that DQBUF reports it.
    if (!m_streaming || !ownsQueue(fd))
        return true;
    return !m_done.empty();
}

int SimulatedCamera::select(int count, fd_set *read, fd_set *write, fd_set *except, struct timeval *timeout)
{
    if (count < 0 || count > FD_SETSIZE ||
        (timeout && (timeout->tv_sec < 0 || timeout->tv_usec < 0 || timeout->tv_usec >= 1000000))) {
        errno = EINVAL;
        return -1;
    }
    const Clock::time_point start = Clock::now();
    const Clock::time_point deadline =
        timeout ? start + std::chrono::seconds(timeout->tv_sec) + std::chrono::microseconds(timeout->tv_usec)
                : Clock::time_point::max();

    std::unique_lock<std::mutex> lock(m_mutex);
    if (m_failingSelects > 0) {
        --m_failingSelects;
        lock.unlock();
        errno = EINTR;
        return -1;
    }
    for (;;) {
        const Clock::time_point now = Clock::now();
        advance(now);
        fd_set readReady, writeReady;
        FD_ZERO(&readReady);
        FD_ZERO(&writeReady);
        int ready = 0;
        for (int fd = 0; fd < count; ++fd) {
            const bool wantRead = read && FD_ISSET(fd, read);
            const bool wantWrite = write && FD_ISSET(fd, write);
            const bool wantExcept = except && FD_ISSET(fd, except);
            if (!wantRead && !wantWrite && !wantExcept)
                continue;
            if (m_handles.count(fd) == 0) {
                lock.unlock();
                errno = EBADF;
                return -1;
            }
            if (wantRead && readable(fd)) {
                FD_SET(fd, &readReady);
                ++ready;
            }
            // A capture device is never writable; only an error wakes a writer.
            if (wantWrite && (!m_streaming || !ownsQueue(fd))) {
                FD_SET(fd, &writeReady);
                ++ready;
            }
        }
        if (ready > 0 || now >= deadline) {
            if (read)
                *read = readReady;
            if (write)
                *write = writeReady;
            if (except)
                FD_ZERO(except);
            if (timeout) {
                // Linux leaves the time not slept in the time-out.
                const auto left = std::chrono::duration_cast<std::chrono::microseconds>(
                                      std::max(deadline - now, Clock::duration::zero()))
                                      .count();
                timeout->tv_sec = static_cast<time_t>(left / 1000000);
                timeout->tv_usec = static_cast<suseconds_t>(left % 1000000);
            }
            return ready;
        }
        // Wait for the next frame, the time-out, or a change from another
        // thread; the wait releases the lock.
        const Clock::time_point wake = std::min(deadline, nextFrameTime());
        if (wake == Clock::time_point::max())
            m_changed.wait(lock);
        else
            m_changed.wait_until(lock, wake);
    }
}

// --- memory ---

void *SimulatedCamera::mmap(void *address, size_t length, int protection, int flags, int fd, off_t offset)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    if (m_handles.count(fd) == 0) {
        errno = EBADF;
        return MAP_FAILED;
    }
    // As videobuf2: shared and readable, at a buffer's offset, no longer
    // than the buffer.
    const size_t index = offset >= 0 ? static_cast<size_t>(offset) / m_bufferStride : 0;
    if (length == 0 || !(flags & MAP_SHARED) || !(protection & PROT_READ) || offset < 0 ||
        static_cast<size_t>(offset) % m_bufferStride != 0 || index >= m_buffers.size() ||
        pageAligned(length) > m_bufferStride) {
        errno = EINVAL;
        return MAP_FAILED;
    }
    void *start = ::mmap(address, length, protection, flags, m_memory->fd, offset);
    if (start == MAP_FAILED)
        return MAP_FAILED;
    m_mappings[start] = Mapping{m_memory, m_generation, static_cast<unsigned int>(index), length};
    ++m_buffers[index].mappings;
    return start;
}

int SimulatedCamera::munmap(void *address, size_t length)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    const auto it = m_mappings.find(address);
    // Only whole mappings made here; the kernel would unmap anything, but a
    // stray address is a bug worth reporting in the simulator.
    if (it == m_mappings.end() || length == 0 || pageAligned(length) != pageAligned(it->second.length)) {
        errno = EINVAL;
        return -1;
    }
    if (::munmap(address, it->second.length) < 0)
        return -1;
    if (it->second.generation == m_generation && it->second.index < m_buffers.size())
        --m_buffers[it->second.index].mappings;
    m_mappings.erase(it);
    return 0;
}

// --- the picture ---

void SimulatedCamera::draw(const Pending &pending)
{
    const SimulatedWorld &world = SimulatedWorld::instance();
    FaceScene scene;
    scene.distanceMm = world.childDistanceMm;
    scene.pitchDegrees = world.pitchDegrees;
    scene.ambientLight = world.ambientLight;
    scene.aimingLight = world.irLight;
    scene.flashFrame = world.irFlashActive && (pending.sequence & 1) != 0;
    scene.exposure = pending.exposure;
    scene.gain = pending.gain;
    uint8_t *frame = pending.memory->view + pending.offset;
    m_renderer.expose(scene, pending.seed, frame);
    std::memset(frame + kLumaSize, 128, kImageSize - kLumaSize);
}

// --- faults and observations ---

void SimulatedCamera::setPresent(bool present)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_present = present;
}

void SimulatedCamera::setCaptureCapability(bool present)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_captureCapability = present;
}

void SimulatedCamera::setStreamingCapability(bool present)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_streamingCapability = present;
}

void SimulatedCamera::setGrantedBufferCount(int count)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_grantedBuffers = std::max(0, count);
}

void SimulatedCamera::setStreamOnFails(bool fails)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_streamOnFails = fails;
}

void SimulatedCamera::failNextDequeues(int count)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_failingDequeues = std::max(0, count);
    m_changed.notify_all();
}

void SimulatedCamera::failNextSelects(int count)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_failingSelects = std::max(0, count);
}

void SimulatedCamera::setDelivering(bool delivering)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    // Ticks before the change are served under the old setting.
    advance(Clock::now());
    m_delivering = delivering;
    m_changed.notify_all();
}

void SimulatedCamera::setPaced(bool paced)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    const Clock::time_point now = Clock::now();
    advance(now);
    if (paced && !m_paced) {
        // Carry on ticking from now, one period after the frames so far.
        m_streamStart = now - kFramePeriod * static_cast<int64_t>(m_ticks);
    }
    m_paced = paced;
    m_changed.notify_all();
}

void SimulatedCamera::resetFaults()
{
    setPaced(true);
    setDelivering(true);
    std::lock_guard<std::mutex> lock(m_mutex);
    m_present = true;
    m_captureCapability = true;
    m_streamingCapability = true;
    m_grantedBuffers = 0;
    m_streamOnFails = false;
    m_failingDequeues = 0;
    m_failingSelects = 0;
    m_ledPhase = -1;
}

void SimulatedCamera::setLedPhase(int word)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_ledPhase = word;
}

int SimulatedCamera::openDescriptors() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return static_cast<int>(m_handles.size());
}

int SimulatedCamera::mappedBuffers() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return static_cast<int>(m_mappings.size());
}

int SimulatedCamera::exposure() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_exposure;
}

int SimulatedCamera::gain() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_gain;
}

int SimulatedCamera::framesDequeued() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return static_cast<int>(m_framesDrawn);
}

int SimulatedCamera::sceneRenders() const
{
    return m_renderer.renderCount();
}
