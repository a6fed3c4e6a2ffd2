// SPDX-License-Identifier: GPL-2.0-or-later
// The ranging sensor's driver operations, built on the register transfers of its platform layer.
#pragma once

#include <cstdint>

// Every operation returns 0 on success and 1 when a transfer failed or a
// value is outside what the chip accepts; the caller decides what that
// means. `dev` is handed to the platform layer unchanged.

namespace vl53l1x {

constexpr uint16_t kModelIdRegister = 0x010F; // word: model id (MSB), module type (LSB)
constexpr uint16_t kExpectedModelId = 0xEEAC;

constexpr uint16_t kShortDistanceMode = 1;
constexpr uint16_t kLongDistanceMode = 2;

// Range status of a result that is not a valid distance for any other reason
// the chip's status table names.
constexpr uint8_t kUnknownRangeStatus = 255;

} // namespace vl53l1x

struct VL53L1X_Result
{
    uint8_t Status = vl53l1x::kUnknownRangeStatus; // 0: valid range; see the driver for the others
    uint16_t Distance = 0;                         // millimetres
    uint16_t Ambient = 0;                          // ambient rate, about kcps
    uint16_t SigPerSPAD = 0;                       // total return signal rate, about kcps
    uint16_t NumSPADs = 0;                         // effective SPADs of the measurement
};

// state: 0 while the firmware boots, non-zero once it has booted.
int VL53L1X_BootState(uint16_t dev, uint8_t *state);
int VL53L1X_GetSensorId(uint16_t dev, uint16_t *id);
// Loads the default configuration and runs one measurement for the chip's
// calibration; leaves the sensor stopped, in long mode, with a 100 ms budget.
int VL53L1X_SensorInit(uint16_t dev);
int VL53L1X_SetDistanceMode(uint16_t dev, uint16_t mode);
int VL53L1X_GetDistanceMode(uint16_t dev, uint16_t *mode);
// 15 (short mode only), 20, 33, 50, 100, 200 or 500 ms.
int VL53L1X_SetTimingBudgetInMs(uint16_t dev, uint16_t milliseconds);
int VL53L1X_GetTimingBudgetInMs(uint16_t dev, uint16_t *milliseconds);
// Should be at least the timing budget, or the real period doubles.
int VL53L1X_SetInterMeasurementInMs(uint16_t dev, uint32_t milliseconds);
// polarity: 1 when the data-ready line is active high.
int VL53L1X_GetInterruptPolarity(uint16_t dev, uint8_t *polarity);
int VL53L1X_StartRanging(uint16_t dev);
int VL53L1X_StopRanging(uint16_t dev);
// ready: 1 when a measurement waits to be read; 0 also when the check failed.
int VL53L1X_CheckForDataReady(uint16_t dev, uint8_t *ready);
// On failure the result's status is kUnknownRangeStatus.
int VL53L1X_GetResult(uint16_t dev, VL53L1X_Result *result);
// Re-arms the data-ready indication; needed after every result.
int VL53L1X_ClearInterrupt(uint16_t dev);
