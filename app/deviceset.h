// SPDX-License-Identifier: GPL-2.0-or-later
// The hardware GData drives, built by the program's start-up and handed over whole.
#pragma once

#include "devicepower.h"

#include <memory>

class I2cBus;
class VideoIo;

namespace systemclock {
class Clock;
}

// GData sees only these interfaces; which implementation stands behind each
// is decided once, where the program starts. The camera, the sensor's bus and
// the clock live as long as the process (one kernel, one camera), so GData
// borrows them; the power layer keeps per-instance state and is GData's own.
struct DeviceSet
{
    std::unique_ptr<DevicePower> power;
    VideoIo *camera = nullptr;
    I2cBus *rangingSensorBus = nullptr;
    systemclock::Clock *clock = nullptr;

    bool complete() const { return power && camera && rangingSensorBus && clock; }
};
