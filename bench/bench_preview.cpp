// SPDX-License-Identifier: GPL-2.0-or-later
// Benchmark: preview conversion of a 1080p NV21 frame against a plain copy of its luminance plane.
#include "benchmark.h"
#include "previewconversion.h"

#include <cstring>
#include <random>

int main()
{
    const int width = 1920;
    const int height = 1080;
    const size_t plane = static_cast<size_t>(width) * height;
    bench::FrameRing ring(plane * 3 / 2);
    std::mt19937 random(7);
    for (auto &frame : ring.frames)
        for (auto &byte : frame)
            byte = static_cast<uint8_t>(random());
    std::vector<uint8_t> display(2 * plane);

    unsigned int sink = 0;
    const double conversion = bench::microsecondsPerCall(5, 200, [&](int i) {
        sink += convert_raw_to_img_buffer_scale(ring.at(i), display.data(), width, height, 880, 330).contrast;
    });
    const double copy = bench::microsecondsPerCall(5, 200, [&](int i) {
        std::memcpy(display.data() + plane, ring.at(i), plane);
        sink += display[plane + static_cast<size_t>(i)];
    });
    std::printf("preview conversion, 1920x1080 NV21 to 880x330 with statistics (us per frame)\n");
    bench::printRatio("conversion", conversion, "memcpy of the 2 MiB luminance", copy, 1.2);
    return sink == 12345 ? 1 : 0;
}
