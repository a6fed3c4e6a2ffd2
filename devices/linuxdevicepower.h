// SPDX-License-Identifier: GPL-2.0-or-later
// Device power on the board: the kernel's power-supply, backlight and IIO interfaces and the IR LED node.
#pragma once

#include "devicepower.h"

#include <atomic>

class LinuxDevicePower : public DevicePower
{
public:
    struct Paths
    {
        QString batteryCapacity;  // power-supply class: charge in percent
        QString usbOnline;        // power-supply class: 1 while external power is present
        QString backlightPower;   // backlight class bl_power: 0 on, 4 powered down
        QString irLed;            // IR LED node: "1" lit, "0" dark
        QString accelerometerDir; // IIO device folder with in_accel_{x,y,z}_raw
    };

    explicit LinuxDevicePower(Paths paths);

    int batteryPercent() override;
    bool externalPowerPresent() override;
    void setScreenOn(bool on) override;
    bool isScreenOn() override;
    void setIrLight(bool on) override;
    int pitchDegrees() override;
    bool sysfileWrite(const QString &path, const QByteArray &text) override;

    // Pitch from one gravity reading: the lens axis is the sensor's x axis,
    // so the tilt is the angle between x and the horizontal plane.
    static int pitchFromAcceleration(double x, double y, double z);

private:
    Paths m_paths;
    std::atomic<bool> m_screenOn{true};
};
