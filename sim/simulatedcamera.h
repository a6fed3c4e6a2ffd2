// SPDX-License-Identifier: GPL-2.0-or-later
// The simulator's infrared camera: a V4L2 capture driver model behind the video I/O calls.
#pragma once

#include "facerenderer.h"
#include "videoio.h"

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <sys/time.h>
#include <vector>

// Answers the requests of an NV21 1920 x 1080 capture device at 30 frames
// per second as its kernel driver would: the same structures, request codes
// and error numbers, real descriptors for select's bookkeeping and real
// shared memory behind mmap. Each frame shows the simulated world's child
// (SimulatedWorld) as the infrared sensor sees it, and the driver word of
// every dequeued buffer alternates odd and even with the LED's flash phase.
//
// The program uses the one instance(); a test may build its own for a clean
// state. Every public call is thread-safe.
class SimulatedCamera : public VideoIo
{
public:
    static constexpr const char *kDevicePath = "/dev/video0";
    static constexpr int kWidth = 1920;
    static constexpr int kHeight = 1080;
    static constexpr int kFramesPerSecond = 30;
    static constexpr int kMinBuffers = 2;
    static constexpr int kMaxBuffers = 16;

    static SimulatedCamera &instance();

    SimulatedCamera();
    ~SimulatedCamera() override;
    SimulatedCamera(const SimulatedCamera &) = delete;
    SimulatedCamera &operator=(const SimulatedCamera &) = delete;

    int open(const char *path, int flags) override;
    int close(int fd) override;
    int ioctl(int fd, unsigned long request, void *argument) override;
    void *mmap(void *address, size_t length, int protection, int flags, int fd, off_t offset) override;
    int munmap(void *address, size_t length) override;
    int select(int count, fd_set *read, fd_set *write, fd_set *except, struct timeval *timeout) override;

    // Faults. Each takes effect at the next request that it concerns.
    void setPresent(bool present);             // absent: open fails with ENOENT
    void setCaptureCapability(bool present);   // V4L2_CAP_VIDEO_CAPTURE in QUERYCAP
    void setStreamingCapability(bool present); // V4L2_CAP_STREAMING in QUERYCAP
    void setGrantedBufferCount(int count);     // REQBUFS grants this many whatever is asked; 0 = normal
    void setStreamOnFails(bool fails);         // STREAMON fails with EIO
    void failNextDequeues(int count);          // the next count DQBUFs fail with EIO
    void failNextSelects(int count);           // the next count selects fail with EINTR, as under a signal
    void setDelivering(bool delivering);       // false: the sensor sends nothing, select times out
    // Unpaced, a queued buffer is filled at once instead of at the next
    // 33 ms frame tick, so that tests need not wait.
    void setPaced(bool paced);
    // A driver whose LED word is always this value (-1: alternating, as normal).
    void setLedPhase(int word);
    // A healthy, present, paced camera again.
    void resetFaults();

    // What tests and the control panel may observe.
    int openDescriptors() const;
    int mappedBuffers() const;
    int exposure() const;
    int gain() const;
    int sceneRenders() const;
    int framesDequeued() const;

private:
    enum class BufferState { Dequeued, Queued, Done };

    struct Buffer
    {
        BufferState state = BufferState::Dequeued;
        bool filled = false;
        uint32_t sequence = 0;
        struct timeval timestamp = {};
        int mappings = 0;
    };

    // The memory of one set of buffers: a shared memory file that the
    // application maps like a driver's buffers, and the driver's own view of
    // it. It lives on while a dequeued frame is being drawn into it.
    struct Memory
    {
        ~Memory();
        int fd = -1;
        uint8_t *view = nullptr;
        size_t size = 0;
    };

    struct Mapping
    {
        std::shared_ptr<Memory> memory;
        unsigned int generation = 0;
        unsigned int index = 0;
        size_t length = 0;
    };

    struct Handle
    {
        bool nonBlocking = false;
    };

    // A dequeued buffer waiting to be drawn once the lock is released.
    struct Pending
    {
        std::shared_ptr<Memory> memory;
        size_t offset = 0;
        uint32_t sequence = 0;
        int exposure = 0;
        int gain = 0;
        uint64_t seed = 0;
    };

    using Clock = std::chrono::steady_clock;

    int queryCapabilities(void *argument);
    int enumerateFormats(void *argument);
    int setFormat(int fd, void *argument, bool tryOnly);
    int getFormat(void *argument);
    int streamParameters(void *argument);
    int control(unsigned int id, int *value, bool set);
    int queryControl(void *argument);
    int requestBuffers(int fd, void *argument);
    int queryBuffer(void *argument);
    int queueBuffer(int fd, void *argument);
    int dequeueBuffer(int fd, void *argument, std::unique_lock<std::mutex> &lock, Pending *pending);
    int streamOn(int fd, void *argument);
    int streamOff(int fd, void *argument);

    bool ownsQueue(int fd) const { return m_owner == -1 || m_owner == fd; }
    void fillRecord(unsigned int index, void *record) const;
    void releaseQueue();
    void stopStreaming();
    // Moves queued buffers to done for every frame tick that has passed.
    void advance(Clock::time_point now);
    // When the next frame can be ready, or max() when none will come by itself.
    Clock::time_point nextFrameTime() const;
    bool readable(int fd) const;
    void draw(const Pending &pending);

    mutable std::mutex m_mutex;
    std::condition_variable m_changed;

    std::map<int, Handle> m_handles;
    int m_owner = -1; // the descriptor whose REQBUFS holds the buffers

    uint32_t m_pixelFormat;
    int m_exposure;
    int m_gain;

    std::vector<Buffer> m_buffers;
    std::shared_ptr<Memory> m_memory;
    size_t m_bufferStride = 0; // page-aligned distance between buffer offsets
    unsigned int m_generation = 0;
    std::deque<unsigned int> m_queued;
    std::deque<unsigned int> m_done;
    std::map<void *, Mapping> m_mappings;

    bool m_streaming = false;
    Clock::time_point m_streamStart;
    uint64_t m_ticks = 0; // frame ticks since STREAMON that have been served
    uint64_t m_framesDrawn = 0;

    bool m_present = true;
    bool m_captureCapability = true;
    bool m_streamingCapability = true;
    int m_grantedBuffers = 0;
    bool m_streamOnFails = false;
    int m_failingDequeues = 0;
    int m_failingSelects = 0;
    bool m_delivering = true;
    int m_ledPhase = -1;
    bool m_paced = true;

    FaceRenderer m_renderer;
};
