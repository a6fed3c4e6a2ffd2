// SPDX-License-Identifier: GPL-2.0-or-later
// The video I/O calls of a real camera: straight to the Linux kernel.
#include "linuxvideoio.h"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <unistd.h>

int LinuxVideoIo::open(const char *path, int flags)
{
    return ::open(path, flags);
}

int LinuxVideoIo::close(int fd)
{
    return ::close(fd);
}

int LinuxVideoIo::ioctl(int fd, unsigned long request, void *argument)
{
    return ::ioctl(fd, request, argument);
}

void *LinuxVideoIo::mmap(void *address, size_t length, int protection, int flags, int fd, off_t offset)
{
    return ::mmap(address, length, protection, flags, fd, offset);
}

int LinuxVideoIo::munmap(void *address, size_t length)
{
    return ::munmap(address, length);
}

int LinuxVideoIo::select(int count, fd_set *read, fd_set *write, fd_set *except, struct timeval *timeout)
{
    return ::select(count, read, write, except, timeout);
}
