// SPDX-License-Identifier: GPL-2.0-or-later
// The one simulated world: what the simulated hardware senses and shows.
#pragma once

#include <atomic>
#include <mutex>

// Plain values read and written from any thread (the device's worker
// threads, the GUI, the tests, later the control panel).
class SimulatedWorld
{
public:
    static SimulatedWorld &instance();

    // The scene in front of the camera.
    std::atomic<int> childDistanceMm{1080}; // lens to the child's eyes
    std::atomic<int> pitchDegrees{0};       // device tilt, positive = nose up
    std::atomic<int> ambientLight{10};      // room light, 0 (dark) to 100 (daylight)
    // The camera driver's pulsed flash of a recording (its led_val set to 2).
    std::atomic<bool> irFlashActive{false};

    std::atomic<int> batteryPercent{76};
    std::atomic<bool> externalPower{false};
    std::atomic<bool> screenOn{true};
    std::atomic<bool> irLight{false};

    // The refraction the simulated analysis server answers for the child.
    struct Refraction
    {
        double osSphere = 0.50;
        double odSphere = 0.25;
        double osCylinder = -0.50;
        double odCylinder = -0.75;
        int pupilDistance = 58;
        int osAxis = 90;
        int odAxis = 175;
    };
    Refraction refraction() const;
    void setRefraction(const Refraction &refraction);

    // Back to the values of a freshly started simulator.
    void reset();

private:
    mutable std::mutex m_mutex;
    Refraction m_refraction;
};
