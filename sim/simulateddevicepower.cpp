// SPDX-License-Identifier: GPL-2.0-or-later
// Device power of the simulator: battery, charger, screen and IR light of the simulated world.
#include "simulateddevicepower.h"

#include "simulatedworld.h"

#include <QDebug>
#include <QFile>

int SimulatedDevicePower::batteryPercent()
{
    return SimulatedWorld::instance().batteryPercent;
}

bool SimulatedDevicePower::externalPowerPresent()
{
    return SimulatedWorld::instance().externalPower;
}

void SimulatedDevicePower::setScreenOn(bool on)
{
    SimulatedWorld::instance().screenOn = on;
}

bool SimulatedDevicePower::isScreenOn()
{
    return SimulatedWorld::instance().screenOn;
}

void SimulatedDevicePower::setIrLight(bool on)
{
    SimulatedWorld::instance().irLight = on;
    // Switching the LED off at the end of a recording ends its flash too.
    if (!on)
        SimulatedWorld::instance().irFlashActive = false;
}

int SimulatedDevicePower::pitchDegrees()
{
    return SimulatedWorld::instance().pitchDegrees;
}

bool SimulatedDevicePower::sysfileWrite(const QString &path, const QByteArray &text)
{
    // The files are the simulator's own; writing the flash mode to the camera
    // driver's parameter is what starts the pulsed flash of a recording.
    QFile file(path);
    if (!file.exists() || !file.open(QIODevice::ReadWrite | QIODevice::Truncate)) {
        qDebug("sysfileWrite[%s]error", qPrintable(path));
        return false;
    }
    file.write(text);
    if (!m_flashParameter.isEmpty() && path == m_flashParameter)
        SimulatedWorld::instance().irFlashActive = text.trimmed() == "2";
    return true;
}
