// SPDX-License-Identifier: GPL-2.0-or-later
// Fuzz target: a calibration file of any content is read without harm, and what it accepts writes back the same.
#include "sensorcalibration.h"
#include "fuzzsupport.h"

using fuzzsupport::require;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    sensor_calibrate_data_t read;
    read.distance_offset = 17;
    read.pitch_offset = -3;
    if (!sensorcalibration::parse(fuzzsupport::bytes(data, size), read)) {
        require(read.distance_offset == 17 && read.pitch_offset == -3);
        return 0;
    }
    // The line the calibration is saved as reads back as the same values.
    const QByteArray line =
        QByteArray::number(read.distance_offset) + ',' + QByteArray::number(read.pitch_offset) + '\n';
    sensor_calibrate_data_t again;
    require(sensorcalibration::parse(line, again));
    require(again.distance_offset == read.distance_offset && again.pitch_offset == read.pitch_offset);
    return 0;
}
