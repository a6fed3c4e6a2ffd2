// SPDX-License-Identifier: GPL-2.0-or-later
// The kernel calls a V4L2 capture device is driven with, as one replaceable interface.
#pragma once

#include <cstddef>
#include <sys/select.h>
#include <sys/types.h>

// Same arguments and results as the system calls of the same names: -1 (or
// MAP_FAILED) with errno set on failure. The device implementation passes
// straight through to the kernel; the simulator answers as a capture driver
// would, so the camera code above runs unchanged over either.
class VideoIo
{
public:
    virtual ~VideoIo() = default;

    virtual int open(const char *path, int flags) = 0;
    virtual int close(int fd) = 0;
    virtual int ioctl(int fd, unsigned long request, void *argument) = 0;
    virtual void *mmap(void *address, size_t length, int protection, int flags, int fd, off_t offset) = 0;
    virtual int munmap(void *address, size_t length) = 0;
    virtual int select(int count, fd_set *read, fd_set *write, fd_set *except, struct timeval *timeout) = 0;
};
