// SPDX-License-Identifier: GPL-2.0-or-later
// The one place that chooses between the device's hardware and the simulated one.
#pragma once

#include "deviceset.h"

#include <QString>

// True when the deployment file asks for the simulated devices ([devices] simulated=true).
bool deploymentAsksForSimulator(const QString &deploymentFile);

// The kernel's camera, I2C bus, power files and clock, at the paths of Platform.
DeviceSet makeKernelDevices();

#ifdef ORVELLA_SIMULATOR
// The simulated world's camera, ranging sensor and power, and a clock that is
// corrected inside the process only: the host's clock belongs to someone else.
DeviceSet makeSimulatedDevices();
#endif
