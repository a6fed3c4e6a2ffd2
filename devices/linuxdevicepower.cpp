// SPDX-License-Identifier: GPL-2.0-or-later
// Device power on the board: the kernel's power-supply, backlight and IIO interfaces and the IR LED node.
#include "linuxdevicepower.h"

#include <QDebug>
#include <QFile>

#include <cmath>
#include <fcntl.h>
#include <unistd.h>

namespace {

bool readNumber(const QString &path, double *value)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    bool ok = false;
    *value = file.readAll().trimmed().toDouble(&ok);
    return ok;
}

} // namespace

LinuxDevicePower::LinuxDevicePower(Paths paths)
    : m_paths(std::move(paths))
{
}

int LinuxDevicePower::batteryPercent()
{
    double percent = 0;
    if (!readNumber(m_paths.batteryCapacity, &percent))
        return 0;
    return static_cast<int>(percent < 0 ? 0 : (percent > 100 ? 100 : percent));
}

bool LinuxDevicePower::externalPowerPresent()
{
    double online = 0;
    return readNumber(m_paths.usbOnline, &online) && online != 0;
}

void LinuxDevicePower::setScreenOn(bool on)
{
    // bl_power takes the framebuffer blanking levels: 0 unblanked, 4 powered down.
    if (sysfileWrite(m_paths.backlightPower, on ? "0" : "4"))
        m_screenOn = on;
}

bool LinuxDevicePower::isScreenOn()
{
    return m_screenOn;
}

void LinuxDevicePower::setIrLight(bool on)
{
    sysfileWrite(m_paths.irLed, on ? "1" : "0");
}

int LinuxDevicePower::pitchFromAcceleration(double x, double y, double z)
{
    const double horizontal = std::sqrt(y * y + z * z);
    if (x == 0 && horizontal == 0)
        return 0;
    const double degrees = std::atan2(x, horizontal) * 180.0 / M_PI;
    return static_cast<int>(std::lround(degrees));
}

int LinuxDevicePower::pitchDegrees()
{
    double x = 0, y = 0, z = 0;
    const QString dir = m_paths.accelerometerDir;
    if (!readNumber(dir + QStringLiteral("/in_accel_x_raw"), &x) ||
        !readNumber(dir + QStringLiteral("/in_accel_y_raw"), &y) ||
        !readNumber(dir + QStringLiteral("/in_accel_z_raw"), &z))
        return 0;
    // The raw counts share one scale, which cancels out of the angle.
    return pitchFromAcceleration(x, y, z);
}

bool LinuxDevicePower::sysfileWrite(const QString &path, const QByteArray &text)
{
    const QByteArray name = QFile::encodeName(path);
    // Parameter files exist or they do not: opening never creates one.
    const int fd = ::open(name.constData(), O_RDWR | O_CLOEXEC);
    if (fd < 0) {
        qDebug("sysfileWrite[%s]error", name.constData());
        return false;
    }
    const bool written = ::write(fd, text.constData(), static_cast<size_t>(text.size())) == text.size();
    ::close(fd);
    return written;
}
