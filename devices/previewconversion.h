// SPDX-License-Identifier: GPL-2.0-or-later
// Camera frames turned into the preview image and its brightness and sharpness figures.
#pragma once

#include <cstdint>

struct PreviewStatistics
{
    unsigned int brightness = 0; // mean grey level of the preview
    unsigned int contrast = 0;   // mean squared difference to the up-left neighbour: the focus figure
};

// From an NV21 frame of width x height: the luminance plane is copied whole
// to destination + width * height, and the first previewWidth x
// previewHeight bytes of destination receive every (width / previewWidth)-th
// pixel of every such row, starting at the top-left corner. destination
// holds 2 x width x height bytes.
PreviewStatistics convert_raw_to_img_buffer_scale(const uint8_t *source, uint8_t *destination, int width, int height,
                                                  int previewWidth, int previewHeight);

// From 16-bit little-endian samples (sourceWidth per row) to an 8-bit YUV
// 4:2:0 picture of outputWidth x outputHeight: each sample's top 8 of 10
// bits, centred with black margins, and neutral chroma. Returns 0.
int convert_raw_to_yuv_buffer_scale(const uint8_t *source, uint8_t *destination, unsigned int sourceWidth,
                                    unsigned int sourceHeight, unsigned int outputWidth, unsigned int outputHeight);
