// SPDX-License-Identifier: GPL-2.0-or-later
// The one simulated world: what the simulated hardware senses and shows.
#include "simulatedworld.h"

SimulatedWorld &SimulatedWorld::instance()
{
    static SimulatedWorld world;
    return world;
}

SimulatedWorld::Refraction SimulatedWorld::refraction() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_refraction;
}

void SimulatedWorld::setRefraction(const Refraction &refraction)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_refraction = refraction;
}

void SimulatedWorld::reset()
{
    setRefraction(Refraction());
    childDistanceMm = 1080;
    pitchDegrees = 0;
    ambientLight = 10;
    irFlashActive = false;
    batteryPercent = 76;
    externalPower = false;
    screenOn = true;
    irLight = false;
}
