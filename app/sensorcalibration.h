// SPDX-License-Identifier: GPL-2.0-or-later
// The factory calibration of the distance and pitch readings, CAMCFG/sensor_calibration.txt.
#pragma once

#include <QByteArray>
#include <QString>

#include <cstdint>

struct sensor_calibrate_data_t
{
    int32_t distance_offset = 0;
    int32_t pitch_offset = 0;
};

namespace sensorcalibration {

// "distance,pitch" after trimming, exactly two parts. On a missing file both
// fields become 0; on a malformed one they are left as they were.
bool read(const QString &path, sensor_calibrate_data_t &out);
// The file's bytes as read does; false, with out untouched, when malformed.
bool parse(const QByteArray &bytes, sensor_calibrate_data_t &out);
bool write(const QString &path, const sensor_calibrate_data_t &data);

} // namespace sensorcalibration
