// SPDX-License-Identifier: GPL-2.0-or-later
// The I2C bus calls of the real device: straight to the Linux kernel.
#pragma once

#include "i2cbus.h"

class LinuxI2cBus : public I2cBus
{
public:
    int open(const char *path, int flags) override;
    int close(int fd) override;
    int ioctl(int fd, unsigned long request, unsigned long argument) override;
    ssize_t read(int fd, void *buffer, size_t count) override;
    ssize_t write(int fd, const void *buffer, size_t count) override;
};
