// SPDX-License-Identifier: GPL-2.0-or-later
// The kernel calls an I2C bus is driven with from user space, as one replaceable interface.
#pragma once

#include <cstddef>
#include <sys/types.h>

// Same arguments and results as the system calls of the same names on a
// Linux I2C device node ("/dev/i2c-N"): -1 with errno set on failure. A
// write sends one transaction with the bytes given; a read fetches count
// bytes from the slave chosen by the I2C_SLAVE request. The device
// implementation passes straight through to the kernel; the simulator answers
// with a chip model, so the sensor driver above runs unchanged over either.
class I2cBus
{
public:
    virtual ~I2cBus() = default;

    virtual int open(const char *path, int flags) = 0;
    virtual int close(int fd) = 0;
    virtual int ioctl(int fd, unsigned long request, unsigned long argument) = 0;
    virtual ssize_t read(int fd, void *buffer, size_t count) = 0;
    virtual ssize_t write(int fd, const void *buffer, size_t count) = 0;
};
