// SPDX-License-Identifier: GPL-2.0-or-later
// The infrared camera as a V4L2 capture device: open, configure, map, and hand out one frame at a time.
#pragma once

#include <string>

class VideoIo;

// Never copies image data: a pulled frame is the driver's mapped buffer,
// lent to the caller until push_frame. Results are 0 / -1; every failure is
// reported on the debug output by this class, since the camera has no user
// interface of its own.
class V4l2Device
{
public:
    struct buffer
    {
        void *start = nullptr;
        unsigned int physical = 0;
        unsigned int length = 0;
    };

    static constexpr unsigned int kBufferCount = 5;

    // io: the kernel or the simulated driver; retryFile: where the budget of
    // automatic restarts after repeated capture failures is kept; devicePath:
    // the capture node.
    V4l2Device(int width, int height, VideoIo &io, std::string retryFile = "/tmp/camera.txt",
               std::string devicePath = "/dev/video0");
    V4l2Device(const V4l2Device &) = delete;
    V4l2Device &operator=(const V4l2Device &) = delete;
    // Does nothing: close_device must have been called.
    ~V4l2Device();

    int open_device();
    int start_capture();
    void stop_capture();
    int pull_frame(void **start, unsigned int *physical, unsigned int *word, unsigned int *length, bool fill);
    int push_frame();
    void set_gain(int value);
    int get_gain();
    void set_exposure(int value);
    int get_exposure();
    int close_device();

    int fd() const { return m_fd; }

    // The consecutive dequeue failures of the whole process. A reset also
    // forgets a restart already asked for.
    static int failureCount();
    static void resetFailureCount();

private:
    bool setControl(unsigned int id, int value);
    bool getControl(unsigned int id, int *value);

    buffer *m_buffers = nullptr;
    int m_fd = -1;
    unsigned int m_bufferCount = kBufferCount;
    int m_currentIndex = -1;
    int m_width;
    int m_height;

    VideoIo &m_io;
    std::string m_retryFile;
    std::string m_devicePath;
};
