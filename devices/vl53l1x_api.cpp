// SPDX-License-Identifier: GPL-2.0-or-later
// The ranging sensor's driver operations, built on the register transfers of its platform layer.
#include "vl53l1x_api.h"

#include "vl53l1x_platform.h"

#include <iterator>

namespace {

constexpr int kOk = 0;
constexpr int kFailed = 1;

constexpr uint16_t kVhvLoopBound = 0x0008;
constexpr uint16_t kVhvInit = 0x000B;
constexpr uint16_t kGpioMuxControl = 0x0030;
constexpr uint16_t kGpioStatus = 0x0031;
constexpr uint16_t kPhaseCalTimeout = 0x004B;
constexpr uint16_t kRangeTimeoutA = 0x005E;
constexpr uint16_t kVcselPeriodA = 0x0060;
constexpr uint16_t kRangeTimeoutB = 0x0061;
constexpr uint16_t kVcselPeriodB = 0x0063;
constexpr uint16_t kValidPhaseHigh = 0x0069;
constexpr uint16_t kInterMeasurementPeriod = 0x006C;
constexpr uint16_t kWindowOfInterest = 0x0078;
constexpr uint16_t kInitialPhase = 0x007A;
constexpr uint16_t kInterruptClear = 0x0086;
constexpr uint16_t kModeStart = 0x0087;
constexpr uint16_t kResultBlock = 0x0089;
constexpr uint16_t kOscillatorCalibration = 0x00DE;
constexpr uint16_t kFirmwareStatus = 0x00E5;

constexpr uint8_t kStartTimedRanging = 0x40;
constexpr uint8_t kStopRanging = 0x00;
constexpr uint8_t kClearRangeInterrupt = 0x01;
constexpr uint8_t kActiveLowBit = 0x10;

// The chip's default configuration, registers 0x002D to 0x0087. Almost all
// of it is tuning the chip needs but nobody may change; the user-visible part
// is long distance mode, a 100 ms budget (the B timeout 0x01F1 differs from
// the budget table's 0x01EA; kept as the chip's own default), a 100 ms
// inter-measurement period, an active-high data-ready line and ranging
// stopped.
constexpr uint16_t kConfigStart = 0x002D;
constexpr uint8_t kDefaultConfiguration[] = {
    0x00, 0x00, 0x00, 0x01, 0x02, 0x00, 0x02, 0x08, 0x00, 0x08, 0x10, 0x01, 0x01, 0x00, 0x00, 0x00, // 0x002D
    0x00, 0xFF, 0x00, 0x0F, 0x00, 0x00, 0x00, 0x00, 0x00, 0x20, 0x0B, 0x00, 0x00, 0x02, 0x0A, 0x21, // 0x003D
    0x00, 0x00, 0x05, 0x00, 0x00, 0x00, 0x00, 0xC8, 0x00, 0x00, 0x38, 0xFF, 0x01, 0x00, 0x08, 0x00, // 0x004D
    0x00, 0x01, 0xCC, 0x0F, 0x01, 0xF1, 0x0D, 0x01, 0x68, 0x00, 0x80, 0x08, 0xB8, 0x00, 0x00, 0x00, // 0x005D
    0x00, 0x0F, 0x89, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x01, 0x0F, 0x0D, 0x0E, 0x0E, 0x00, // 0x006D
    0x00, 0x02, 0xC7, 0xFF, 0x9B, 0x00, 0x00, 0x00, 0x01, 0x00, 0x00,                               // 0x007D
};
static_assert(std::size(kDefaultConfiguration) == 0x0087 - kConfigStart + 1, "one byte per register");

// SensorInit waits for the measurement that calibrates the chip. The first
// one of the default configuration takes about 100 ms; a chip that does not
// deliver within a second is not going to.
constexpr int kCalibrationPolls = 1000;
constexpr int kCalibrationPollMs = 1;

struct DistanceModeSettings
{
    uint16_t mode;
    uint8_t phaseCalTimeout;
    uint8_t vcselPeriodA;
    uint8_t vcselPeriodB;
    uint8_t validPhaseHigh;
    uint16_t windowOfInterest;
    uint16_t initialPhase;
};
constexpr DistanceModeSettings kDistanceModes[] = {
    {vl53l1x::kShortDistanceMode, 0x14, 0x07, 0x05, 0x38, 0x0705, 0x0606},
    {vl53l1x::kLongDistanceMode, 0x0A, 0x0F, 0x0D, 0xB8, 0x0F0D, 0x0E0E},
};

struct TimingBudget
{
    uint16_t milliseconds;
    uint16_t timeoutA;
    uint16_t timeoutB;
};
// The chip takes its budget as macro-period timeouts that depend on the
// distance mode; only these budgets have known values. 15 ms exists in short
// mode only.
constexpr TimingBudget kShortModeBudgets[] = {
    {15, 0x001D, 0x0027},  {20, 0x0051, 0x006E},  {33, 0x00D6, 0x006E},  {50, 0x01AE, 0x01E8},
    {100, 0x02E1, 0x0388}, {200, 0x03E1, 0x0496}, {500, 0x0591, 0x05C1},
};
constexpr TimingBudget kLongModeBudgets[] = {
    {20, 0x001E, 0x0022},  {33, 0x0060, 0x006E},  {50, 0x00AD, 0x00C6},
    {100, 0x01CC, 0x01EA}, {200, 0x02D9, 0x02F8}, {500, 0x048F, 0x04A4},
};

// The inter-measurement period is counted in oscillator ticks: the
// calibrated ticks per millisecond, scaled by the chip's 1.075.
constexpr double kOscillatorFactor = 1.075;
constexpr uint16_t kOscillatorMask = 0x03FF;

// The device's raw range status (bits 4:0 of the first result byte) as the
// driver reports it: 0 valid; 1 sigma, 2 signal, 4 out of bounds, 7 wrap
// around; the rest rarer conditions; 255 no update or unknown.
constexpr uint8_t kRangeStatusOfDevice[24] = {
    255, 255, 255, 5, 2, 4, 1, 7, 3, 0, 255, 255, 9, 13, 255, 255, 255, 255, 10, 6, 255, 255, 11, 12,
};
constexpr uint8_t kRawRangeStatusMask = 0x1F;
constexpr int kResultSize = 17;

int failedIf(bool failed)
{
    return failed ? kFailed : kOk;
}

template <size_t N> const TimingBudget *findBudget(const TimingBudget (&table)[N], uint16_t milliseconds)
{
    for (const TimingBudget &budget : table) {
        if (budget.milliseconds == milliseconds)
            return &budget;
    }
    return nullptr;
}

} // namespace

int VL53L1X_BootState(uint16_t dev, uint8_t *state)
{
    if (!state)
        return kFailed;
    // The firmware may not answer at all while it boots: not booted either.
    if (VL53L1_RdByte(dev, kFirmwareStatus, state) != 0) {
        *state = 0;
        return kFailed;
    }
    return kOk;
}

int VL53L1X_GetSensorId(uint16_t dev, uint16_t *id)
{
    if (!id)
        return kFailed;
    return failedIf(VL53L1_RdWord(dev, vl53l1x::kModelIdRegister, id) != 0);
}

int VL53L1X_SensorInit(uint16_t dev)
{
    // One register per transaction: the way the default configuration is
    // known to load, where a burst is not.
    for (size_t i = 0; i < std::size(kDefaultConfiguration); ++i) {
        if (VL53L1_WrByte(dev, static_cast<uint16_t>(kConfigStart + i), kDefaultConfiguration[i]) != 0)
            return kFailed;
    }
    if (VL53L1X_StartRanging(dev) != kOk)
        return kFailed;
    uint8_t ready = 0;
    for (int poll = 0; poll < kCalibrationPolls; ++poll) {
        VL53L1X_CheckForDataReady(dev, &ready);
        if (ready)
            break;
        VL53L1_WaitMs(dev, kCalibrationPollMs);
    }
    if (!ready) {
        VL53L1X_StopRanging(dev);
        return kFailed;
    }
    if (VL53L1X_ClearInterrupt(dev) != kOk || VL53L1X_StopRanging(dev) != kOk)
        return kFailed;
    // Two VHV loop bounds, and the next VHV search starts from the
    // temperature of this calibration.
    if (VL53L1_WrByte(dev, kVhvLoopBound, 0x09) != 0 || VL53L1_WrByte(dev, kVhvInit, 0x00) != 0)
        return kFailed;
    return kOk;
}

int VL53L1X_SetDistanceMode(uint16_t dev, uint16_t mode)
{
    const DistanceModeSettings *settings = nullptr;
    for (const DistanceModeSettings &candidate : kDistanceModes) {
        if (candidate.mode == mode)
            settings = &candidate;
    }
    uint16_t budget = 0;
    if (!settings || VL53L1X_GetTimingBudgetInMs(dev, &budget) != kOk)
        return kFailed;
    if (VL53L1_WrByte(dev, kPhaseCalTimeout, settings->phaseCalTimeout) != 0 ||
        VL53L1_WrByte(dev, kVcselPeriodA, settings->vcselPeriodA) != 0 ||
        VL53L1_WrByte(dev, kVcselPeriodB, settings->vcselPeriodB) != 0 ||
        VL53L1_WrByte(dev, kValidPhaseHigh, settings->validPhaseHigh) != 0 ||
        VL53L1_WrWord(dev, kWindowOfInterest, settings->windowOfInterest) != 0 ||
        VL53L1_WrWord(dev, kInitialPhase, settings->initialPhase) != 0)
        return kFailed;
    // The timeouts that express the budget differ between the modes. A
    // budget the new mode does not have fails here, with the mode already
    // switched.
    return VL53L1X_SetTimingBudgetInMs(dev, budget);
}

int VL53L1X_GetDistanceMode(uint16_t dev, uint16_t *mode)
{
    uint8_t timeout = 0;
    if (!mode || VL53L1_RdByte(dev, kPhaseCalTimeout, &timeout) != 0)
        return kFailed;
    for (const DistanceModeSettings &settings : kDistanceModes) {
        if (settings.phaseCalTimeout == timeout) {
            *mode = settings.mode;
            return kOk;
        }
    }
    return kFailed;
}

int VL53L1X_SetTimingBudgetInMs(uint16_t dev, uint16_t milliseconds)
{
    uint16_t mode = 0;
    if (VL53L1X_GetDistanceMode(dev, &mode) != kOk)
        return kFailed;
    const TimingBudget *budget = mode == vl53l1x::kShortDistanceMode ? findBudget(kShortModeBudgets, milliseconds)
                                                                     : findBudget(kLongModeBudgets, milliseconds);
    if (!budget)
        return kFailed;
    return failedIf(VL53L1_WrWord(dev, kRangeTimeoutA, budget->timeoutA) != 0 ||
                    VL53L1_WrWord(dev, kRangeTimeoutB, budget->timeoutB) != 0);
}

int VL53L1X_GetTimingBudgetInMs(uint16_t dev, uint16_t *milliseconds)
{
    uint16_t timeoutA = 0;
    if (!milliseconds || VL53L1_RdWord(dev, kRangeTimeoutA, &timeoutA) != 0)
        return kFailed;
    // The A timeouts of all budgets in both modes are distinct, so the mode
    // need not be read.
    for (const TimingBudget &budget : kShortModeBudgets) {
        if (budget.timeoutA == timeoutA) {
            *milliseconds = budget.milliseconds;
            return kOk;
        }
    }
    for (const TimingBudget &budget : kLongModeBudgets) {
        if (budget.timeoutA == timeoutA) {
            *milliseconds = budget.milliseconds;
            return kOk;
        }
    }
    *milliseconds = 0;
    return kFailed;
}

int VL53L1X_SetInterMeasurementInMs(uint16_t dev, uint32_t milliseconds)
{
    uint16_t calibration = 0;
    if (VL53L1_RdWord(dev, kOscillatorCalibration, &calibration) != 0)
        return kFailed;
    const uint32_t ticksPerMs = calibration & kOscillatorMask;
    const auto period = static_cast<uint32_t>(static_cast<double>(ticksPerMs * milliseconds) * kOscillatorFactor);
    return failedIf(VL53L1_WrDWord(dev, kInterMeasurementPeriod, period) != 0);
}

int VL53L1X_GetInterruptPolarity(uint16_t dev, uint8_t *polarity)
{
    uint8_t control = 0;
    if (!polarity || VL53L1_RdByte(dev, kGpioMuxControl, &control) != 0)
        return kFailed;
    *polarity = (control & kActiveLowBit) ? 0 : 1;
    return kOk;
}

int VL53L1X_StartRanging(uint16_t dev)
{
    return failedIf(VL53L1_WrByte(dev, kModeStart, kStartTimedRanging) != 0);
}

int VL53L1X_StopRanging(uint16_t dev)
{
    return failedIf(VL53L1_WrByte(dev, kModeStart, kStopRanging) != 0);
}

int VL53L1X_CheckForDataReady(uint16_t dev, uint8_t *ready)
{
    if (!ready)
        return kFailed;
    *ready = 0;
    uint8_t polarity = 0;
    uint8_t status = 0;
    if (VL53L1X_GetInterruptPolarity(dev, &polarity) != kOk || VL53L1_RdByte(dev, kGpioStatus, &status) != 0)
        return kFailed;
    *ready = (status & 0x01) == polarity ? 1 : 0;
    return kOk;
}

int VL53L1X_GetResult(uint16_t dev, VL53L1X_Result *result)
{
    if (!result)
        return kFailed;
    *result = VL53L1X_Result();
    uint8_t bytes[kResultSize];
    if (VL53L1_ReadMulti(dev, kResultBlock, bytes, kResultSize) != 0)
        return kFailed;
    const uint8_t raw = bytes[0] & kRawRangeStatusMask;
    // Raw codes past the table are as unknown as the table's own unknowns.
    result->Status = raw < std::size(kRangeStatusOfDevice) ? kRangeStatusOfDevice[raw] : vl53l1x::kUnknownRangeStatus;
    // The rates are 9.7 fixed-point MCPS; times 8 is the driver's
    // approximation of kcps, truncated to 16 bits like every field.
    result->Ambient = static_cast<uint16_t>((bytes[7] << 8 | bytes[8]) * 8);
    result->NumSPADs = bytes[3];
    result->SigPerSPAD = static_cast<uint16_t>((bytes[15] << 8 | bytes[16]) * 8);
    result->Distance = static_cast<uint16_t>(bytes[13] << 8 | bytes[14]);
    return kOk;
}

int VL53L1X_ClearInterrupt(uint16_t dev)
{
    return failedIf(VL53L1_WrByte(dev, kInterruptClear, kClearRangeInterrupt) != 0);
}
