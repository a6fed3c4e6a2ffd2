// SPDX-License-Identifier: GPL-2.0-or-later
// Camera frames turned into the preview image and its brightness and sharpness figures.
#include "previewconversion.h"

#include <cstring>

PreviewStatistics convert_raw_to_img_buffer_scale(const uint8_t *source, uint8_t *destination, int width, int height,
                                                  int previewWidth, int previewHeight)
{
    PreviewStatistics statistics;
    if (width <= 0 || height <= 0 || previewWidth <= 0 || previewHeight <= 0 || previewWidth > width ||
        static_cast<int64_t>(previewHeight - 1) * (width / previewWidth) >= height)
        return statistics;
    const size_t plane = static_cast<size_t>(width) * static_cast<size_t>(height);
    const size_t rowBytes = static_cast<size_t>(width);
    const int step = width / previewWidth;
    const int w = previewWidth;
    uint64_t sum = 0;
    uint64_t squares = 0;
    uint64_t count = 0;
    // One pass over the frame: each row is copied whole into the second half
    // of the display buffer (the copy replaces the whole region, so it needs
    // no clearing first), and a row that the preview samples is sampled
    // while it is still in the cache: reading the frame twice would cost a
    // second trip to memory on every frame.
    //
    // The copy is memcpy, one row at a time so that a sampled row is still
    // in the cache. Streaming stores of our own gained nothing measurable
    // over it on x86 (they also push the display buffer, which a plain copy
    // leaves in the cache, out to memory every frame) and were a second
    // path that the board never ran; its cores detect whole-line writes and
    // stream them by themselves.
    for (int r = 0; r < height; ++r) {
        const uint8_t *row = source + static_cast<size_t>(r) * rowBytes;
        std::memcpy(destination + plane + static_cast<size_t>(r) * rowBytes, row, rowBytes);
        if (r % step != 0 || r / step >= previewHeight)
            continue;
        const int y = r / step;
        uint8_t *out = destination + static_cast<size_t>(y) * static_cast<size_t>(w);
        if (step == 2) {
            // Its own loop, so that the compiler sees a constant stride and
            // loads the row de-interleaved (NEON vld2, SSE2 masks and packs).
            for (int x = 0; x < w; ++x)
                out[x] = row[2 * x];
        } else {
            for (int x = 0; x < w; ++x)
                out[x] = row[static_cast<size_t>(x) * static_cast<size_t>(step)];
        }
        if (y == 0)
            continue;
        // Statistics over every output index k > w, against the pixel at
        // k - w - 1: the up-left neighbour, which for the first pixel of a
        // row is the last pixel of the row two above. The first row and the
        // first pixel of the second row have no such neighbour and are left
        // out. Per-row sums in 32 bits (enough for rows of up to 66 000
        // pixels) keep the loop in vector lanes.
        const int first = y == 1 ? 1 : 0;
        const uint8_t *upLeft = out - w - 1;
        uint32_t rowSum = 0;
        uint32_t rowSquares = 0;
        for (int x = first; x < w; ++x) {
            const int p = out[x];
            const int d = upLeft[x] - p;
            rowSum += static_cast<uint32_t>(p);
            rowSquares += static_cast<uint32_t>(d * d);
        }
        sum += rowSum;
        squares += rowSquares;
        count += static_cast<uint64_t>(w - first);
    }

    if (count > 0) {
        statistics.brightness = static_cast<unsigned int>(sum / count);
        statistics.contrast = static_cast<unsigned int>(squares / count);
    }
    return statistics;
}

int convert_raw_to_yuv_buffer_scale(const uint8_t *source, uint8_t *destination, unsigned int sourceWidth,
                                    unsigned int sourceHeight, unsigned int outputWidth, unsigned int outputHeight)
{
    // Unsigned on purpose: a source larger than the output wraps the margins
    // to huge values, and every output byte then reads as margin.
    const unsigned int top = (outputHeight - sourceHeight) / 2;
    const unsigned int left = (outputWidth - sourceWidth) / 2;
    for (unsigned int y = 0; y < outputHeight; ++y) {
        uint8_t *out = destination + static_cast<size_t>(y) * outputWidth;
        for (unsigned int x = 0; x < outputWidth; ++x) {
            if (y < top || y >= sourceHeight + top || x < left || x >= sourceWidth + left) {
                out[x] = 0;
                continue;
            }
            const uint8_t *sample = source + (static_cast<size_t>(y - top) * sourceWidth + (x - left)) * 2;
            out[x] = static_cast<uint8_t>((sample[0] + 256u * sample[1]) >> 2);
        }
    }
    std::memset(destination + static_cast<size_t>(outputWidth) * outputHeight, 128,
                static_cast<size_t>(outputWidth) * outputHeight / 2);
    return 0;
}
