// SPDX-License-Identifier: GPL-2.0-or-later
// The one place that chooses between the device's hardware and the simulated one.
#include "devicefactory.h"

#include "linuxdevicepower.h"
#include "linuxi2cbus.h"
#include "linuxvideoio.h"
#include "platform.h"
#include "systemclock.h"

#ifdef ORVELLA_SIMULATOR
#include "simulatedcamera.h"
#include "simulateddevicepower.h"
#include "simulatedrangingsensor.h"
#endif

#include <QSettings>

bool deploymentAsksForSimulator(const QString &deploymentFile)
{
    return QSettings(deploymentFile, QSettings::IniFormat).value(QStringLiteral("devices/simulated"), false).toBool();
}

DeviceSet makeKernelDevices()
{
    static LinuxVideoIo camera;
    static LinuxI2cBus bus;
    static systemclock::KernelClock clock;
    const Platform &platform = Platform::instance();
    DeviceSet devices;
    devices.power = std::make_unique<LinuxDevicePower>(
        LinuxDevicePower::Paths{platform.batteryCapacityFile, platform.usbOnlineFile, platform.backlightPowerFile,
                                platform.irLedDevice, platform.pitchSensorDevice});
    devices.camera = &camera;
    devices.rangingSensorBus = &bus;
    devices.clock = &clock;
    return devices;
}

#ifdef ORVELLA_SIMULATOR
DeviceSet makeSimulatedDevices()
{
    static systemclock::ProcessClock clock;
    Platform &platform = Platform::instance();
    // Left at the device's path, the sensor set-up would edit the host's own
    // start-up script; the simulator has none unless its deployment names one.
    if (platform.startupScript == Platform().startupScript)
        platform.startupScript.clear();
    auto power = std::make_unique<SimulatedDevicePower>();
    power->setFlashParameterPath(platform.ledValueParameter);
    DeviceSet devices;
    devices.power = std::move(power);
    devices.camera = &SimulatedCamera::instance();
    devices.rangingSensorBus = &SimulatedRangingSensor::instance();
    devices.clock = &clock;
    return devices;
}
#endif
