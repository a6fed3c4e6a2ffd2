// SPDX-License-Identifier: GPL-2.0-or-later
// Camera frames for the benchmarks: what the simulated camera delivers while a child is aimed at.
#pragma once

#include "simulatedcamera.h"
#include "simulatedworld.h"
#include "v4l2device.h"

#include <QtGlobal>

#include <cstdint>
#include <cstring>
#include <vector>

namespace bench {

// `count` NV21 1080p frames of a well-aimed child with the aiming light on
// and the recording flash pulsing, copied out of the driver's buffers.
inline std::vector<std::vector<uint8_t>> simulatedFrames(int count)
{
    // The camera's start-up report is of no interest here.
    const QtMessageHandler previous =
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
    SimulatedWorld &world = SimulatedWorld::instance();
    world.childDistanceMm = 1080;
    world.irLight = true;
    world.irFlashActive = true;
    SimulatedCamera camera;
    camera.setPaced(false);
    V4l2Device device(1920, 1080, camera, "/dev/null");
    std::vector<std::vector<uint8_t>> frames;
    if (device.open_device() != 0 || device.start_capture() != 0)
        return frames;
    while (static_cast<int>(frames.size()) < count) {
        void *start = nullptr;
        unsigned int physical = 0, word = 0, length = 0;
        if (device.pull_frame(&start, &physical, &word, &length, true) != 0)
            break;
        const auto *bytes = static_cast<const uint8_t *>(start);
        frames.emplace_back(bytes, bytes + length);
        device.push_frame();
    }
    device.stop_capture();
    device.close_device();
    world.reset();
    qInstallMessageHandler(previous);
    return frames;
}

} // namespace bench
