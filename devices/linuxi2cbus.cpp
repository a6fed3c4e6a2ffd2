// SPDX-License-Identifier: GPL-2.0-or-later
// The I2C bus calls of the real device: straight to the Linux kernel.
#include "linuxi2cbus.h"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

int LinuxI2cBus::open(const char *path, int flags)
{
    return ::open(path, flags);
}

int LinuxI2cBus::close(int fd)
{
    return ::close(fd);
}

int LinuxI2cBus::ioctl(int fd, unsigned long request, unsigned long argument)
{
    return ::ioctl(fd, request, argument);
}

ssize_t LinuxI2cBus::read(int fd, void *buffer, size_t count)
{
    return ::read(fd, buffer, count);
}

ssize_t LinuxI2cBus::write(int fd, const void *buffer, size_t count)
{
    return ::write(fd, buffer, count);
}
