// SPDX-License-Identifier: GPL-2.0-or-later
// Device power of the simulator: battery, charger, screen and IR light of the simulated world.
#pragma once

#include "devicepower.h"

class SimulatedDevicePower : public DevicePower
{
public:
    int batteryPercent() override;
    bool externalPowerPresent() override;
    void setScreenOn(bool on) override;
    bool isScreenOn() override;
    void setIrLight(bool on) override;
    int pitchDegrees() override;
    bool sysfileWrite(const QString &path, const QByteArray &text) override;

    // The camera driver's flash parameter, as the simulator's deployment names it.
    void setFlashParameterPath(const QString &path) { m_flashParameter = path; }

private:
    QString m_flashParameter;
};
