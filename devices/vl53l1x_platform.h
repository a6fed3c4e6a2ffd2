// SPDX-License-Identifier: GPL-2.0-or-later
// The ranging sensor's platform layer: the process-wide I2C handle, register transfers and waits.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

class I2cBus;

// The chip's registers have 16-bit indexes, sent MSB first; words and
// dwords travel MSB first as well. A read is an index write followed by a
// separate read transaction. There is one sensor, so the layer keeps the bus
// handle itself and `dev` is only passed along. Results are 0, or -1 after
// the reason has been printed.
int VL53L1X_UltraLite_Linux_I2C_Init(uint16_t dev, int bus, uint8_t address);
int VL53L1X_UltraLite_Linux_I2C_Deinit();

int VL53L1_WriteMulti(uint16_t dev, uint16_t index, const uint8_t *data, uint32_t count);
int VL53L1_ReadMulti(uint16_t dev, uint16_t index, uint8_t *data, uint32_t count);
int VL53L1_WrByte(uint16_t dev, uint16_t index, uint8_t data);
int VL53L1_WrWord(uint16_t dev, uint16_t index, uint16_t data);
int VL53L1_WrDWord(uint16_t dev, uint16_t index, uint32_t data);
int VL53L1_RdByte(uint16_t dev, uint16_t index, uint8_t *data);
int VL53L1_RdWord(uint16_t dev, uint16_t index, uint16_t *data);
int VL53L1_RdDWord(uint16_t dev, uint16_t index, uint32_t *data);
int VL53L1_WaitMs(uint16_t dev, int32_t milliseconds);

namespace vl53l1platform {

// Where Init finds the bus: the kernel's I2C interface or the simulated
// chip, and the device node with "%d" standing for the bus number. A bus
// still open through another interface is released first. Until called:
// the kernel and "/dev/i2c-%d".
void useBus(I2cBus &bus, const std::string &devicePattern);

// Replaces the sleep behind VL53L1_WaitMs, so that tests need not wait in
// real time; an empty function restores the sleep.
void setWait(std::function<void(int)> wait);

bool busOpen();

} // namespace vl53l1platform
