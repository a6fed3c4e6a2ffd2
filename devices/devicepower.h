// SPDX-License-Identifier: GPL-2.0-or-later
// The device's power-related hardware: battery gauge, external power, screen, IR light, tilt.
#pragma once

#include <QByteArray>
#include <QString>

// One implementation drives the kernel's interfaces on the device; the
// simulator's reads and writes the simulated world. Every call is quick and
// may come from any thread.
class DevicePower
{
public:
    virtual ~DevicePower() = default;

    // Charge in percent, 0 to 100.
    virtual int batteryPercent() = 0;
    // True while a charger or USB host powers the device.
    virtual bool externalPowerPresent() = 0;

    virtual void setScreenOn(bool on) = 0;
    virtual bool isScreenOn() = 0;

    // The infrared LED as a steady aiming light (the pulsed flash of a
    // recording is the camera driver's business).
    virtual void setIrLight(bool on) = 0;

    // The device's tilt in whole degrees, positive with the lens pointing up.
    virtual int pitchDegrees() = 0;

    // Writes the text to a device or driver parameter file (opened read-write,
    // never created); false when it cannot be opened.
    virtual bool sysfileWrite(const QString &path, const QByteArray &text) = 0;
};
