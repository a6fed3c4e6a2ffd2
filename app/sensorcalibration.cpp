// SPDX-License-Identifier: GPL-2.0-or-later
// The factory calibration of the distance and pitch readings, CAMCFG/sensor_calibration.txt.
#include "sensorcalibration.h"

#include "atomicfile.h"

#include <QDebug>
#include <QFile>
#include <QStringList>

namespace sensorcalibration {

bool read(const QString &path, sensor_calibrate_data_t &out)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) {
        qDebug() << "Unable to open calibration file for reading:" << path;
        out = sensor_calibrate_data_t();
        return false;
    }
    return parse(file.readAll(), out);
}

bool parse(const QByteArray &bytes, sensor_calibrate_data_t &out)
{
    const QString text = QString::fromUtf8(bytes).trimmed();
    const QStringList parts = text.split(QLatin1Char(','));
    if (parts.size() != 2) {
        qDebug() << "Invalid calibration file format:" << text;
        return false;
    }
    out.distance_offset = parts.at(0).toInt();
    out.pitch_offset = parts.at(1).toInt();
    return true;
}

bool write(const QString &path, const sensor_calibrate_data_t &data)
{
    const QByteArray line =
        QByteArray::number(data.distance_offset) + ',' + QByteArray::number(data.pitch_offset) + '\n';
    if (!atomicfile::write(path, line)) {
        qDebug() << "Unable to open calibration file for writing:" << path;
        return false;
    }
    return true;
}

} // namespace sensorcalibration
