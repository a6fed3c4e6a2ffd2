// SPDX-License-Identifier: GPL-2.0-or-later
// The ranging sensor's platform layer: the process-wide I2C handle, register transfers and waits.
#include "vl53l1x_platform.h"

#include "linuxi2cbus.h"

#include <QDebug>

#include <cerrno>
#include <chrono>
#include <cstring>
#include <fcntl.h>
#include <linux/i2c-dev.h>
#include <thread>

namespace {

// Longest register run written in one transaction; the driver's longest is 4.
constexpr uint32_t kMaxWrite = 64;

LinuxI2cBus s_kernel;
I2cBus *s_bus = &s_kernel;
std::string s_devicePattern = "/dev/i2c-%d";
int s_handle = -1;
std::function<void(int)> s_wait;

// The pattern comes from a deployment file, so it is never used as a format.
std::string devicePath(int bus)
{
    std::string path = s_devicePattern;
    const std::string::size_type at = path.find("%d");
    if (at != std::string::npos)
        path.replace(at, 2, std::to_string(bus));
    return path;
}

int sendBytes(const uint8_t *bytes, size_t count)
{
    const ssize_t written = s_bus->write(s_handle, bytes, count);
    if (written != static_cast<ssize_t>(count)) {
        qDebug("Write failed with %d\n", static_cast<int>(written));
        return -1;
    }
    return 0;
}

void closeHandle()
{
    if (s_handle >= 0)
        s_bus->close(s_handle);
    s_handle = -1;
}

} // namespace

int VL53L1X_UltraLite_Linux_I2C_Init(uint16_t, int bus, uint8_t address)
{
    qDebug("I2C Bus number is %d\n", bus);
    // A failed initialisation is retried without a Deinit in between.
    closeHandle();
    const std::string path = devicePath(bus);
    const int fd = s_bus->open(path.c_str(), O_RDWR);
    if (fd < 0) {
        const int error = errno;
        qDebug(" Open failed, returned value = %d, i2c_hdl_name = %s\n", fd, path.c_str());
        qDebug("Open bus : %s", std::strerror(error));
        return -1;
    }
    if (s_bus->ioctl(fd, I2C_SLAVE, address) < 0) {
        qDebug("Failed to acquire bus access and/or talk to slave.");
        // The caller retries every reading; a kept descriptor would leak.
        s_bus->close(fd);
        return -1;
    }
    s_handle = fd;
    return 0;
}

int VL53L1X_UltraLite_Linux_I2C_Deinit()
{
    closeHandle();
    return 0;
}

int VL53L1_WriteMulti(uint16_t, uint16_t index, const uint8_t *data, uint32_t count)
{
    if (count > kMaxWrite || (count > 0 && !data))
        return -1;
    uint8_t bytes[2 + kMaxWrite];
    bytes[0] = static_cast<uint8_t>(index >> 8);
    bytes[1] = static_cast<uint8_t>(index & 0xFF);
    if (count > 0)
        std::memcpy(bytes + 2, data, count);
    return sendBytes(bytes, 2 + count);
}

int VL53L1_ReadMulti(uint16_t, uint16_t index, uint8_t *data, uint32_t count)
{
    if (!data)
        return -1;
    const uint8_t bytes[2] = {static_cast<uint8_t>(index >> 8), static_cast<uint8_t>(index & 0xFF)};
    if (sendBytes(bytes, sizeof bytes) != 0)
        return -1;
    const ssize_t received = s_bus->read(s_handle, data, count);
    if (received != static_cast<ssize_t>(count)) {
        qDebug("Read failed with %d\n", static_cast<int>(received));
        return -1;
    }
    return 0;
}

int VL53L1_WrByte(uint16_t dev, uint16_t index, uint8_t data)
{
    return VL53L1_WriteMulti(dev, index, &data, 1);
}

int VL53L1_WrWord(uint16_t dev, uint16_t index, uint16_t data)
{
    const uint8_t bytes[2] = {static_cast<uint8_t>(data >> 8), static_cast<uint8_t>(data & 0xFF)};
    return VL53L1_WriteMulti(dev, index, bytes, sizeof bytes);
}

int VL53L1_WrDWord(uint16_t dev, uint16_t index, uint32_t data)
{
    const uint8_t bytes[4] = {static_cast<uint8_t>(data >> 24), static_cast<uint8_t>((data >> 16) & 0xFF),
                              static_cast<uint8_t>((data >> 8) & 0xFF), static_cast<uint8_t>(data & 0xFF)};
    return VL53L1_WriteMulti(dev, index, bytes, sizeof bytes);
}

int VL53L1_RdByte(uint16_t dev, uint16_t index, uint8_t *data)
{
    return VL53L1_ReadMulti(dev, index, data, 1);
}

int VL53L1_RdWord(uint16_t dev, uint16_t index, uint16_t *data)
{
    uint8_t bytes[2];
    if (!data || VL53L1_ReadMulti(dev, index, bytes, sizeof bytes) != 0)
        return -1;
    *data = static_cast<uint16_t>(bytes[0] << 8 | bytes[1]);
    return 0;
}

int VL53L1_RdDWord(uint16_t dev, uint16_t index, uint32_t *data)
{
    uint8_t bytes[4];
    if (!data || VL53L1_ReadMulti(dev, index, bytes, sizeof bytes) != 0)
        return -1;
    *data = static_cast<uint32_t>(bytes[0]) << 24 | static_cast<uint32_t>(bytes[1]) << 16 |
            static_cast<uint32_t>(bytes[2]) << 8 | bytes[3];
    return 0;
}

int VL53L1_WaitMs(uint16_t, int32_t milliseconds)
{
    if (milliseconds <= 0)
        return 0;
    if (s_wait)
        s_wait(milliseconds);
    else
        std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
    return 0;
}

namespace vl53l1platform {

void useBus(I2cBus &bus, const std::string &devicePattern)
{
    if (&bus != s_bus)
        closeHandle();
    s_bus = &bus;
    s_devicePattern = devicePattern;
}

void setWait(std::function<void(int)> wait)
{
    s_wait = std::move(wait);
}

bool busOpen()
{
    return s_handle >= 0;
}

} // namespace vl53l1platform
