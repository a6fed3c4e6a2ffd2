// SPDX-License-Identifier: GPL-2.0-or-later
// The video I/O calls of a real camera: straight to the Linux kernel.
#pragma once

#include "videoio.h"

class LinuxVideoIo : public VideoIo
{
public:
    int open(const char *path, int flags) override;
    int close(int fd) override;
    int ioctl(int fd, unsigned long request, void *argument) override;
    void *mmap(void *address, size_t length, int protection, int flags, int fd, off_t offset) override;
    int munmap(void *address, size_t length) override;
    int select(int count, fd_set *read, fd_set *write, fd_set *except, struct timeval *timeout) override;
};
