// SPDX-License-Identifier: GPL-2.0-or-later
// Every device node, file path and server endpoint the program touches, in one place.
#include "platform.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QSettings>
#include <QStringList>

#include <algorithm>
#include <iterator>

namespace {

struct StringKey
{
    const char *key;
    QString Platform::*member;
};

struct IntKey
{
    const char *key;
    int Platform::*member;
};

const StringKey kStringKeys[] = {
    {"paths/app_dir", &Platform::appDir},
    {"devices/video", &Platform::videoDevice},
    {"devices/i2c_pattern", &Platform::i2cDevicePattern},
    {"devices/led_loop", &Platform::ledLoopParameter},
    {"devices/led_val", &Platform::ledValueParameter},
    {"devices/ir_led", &Platform::irLedDevice},
    {"devices/pitch_sensor", &Platform::pitchSensorDevice},
    {"devices/display", &Platform::displayDevice},
    {"devices/battery_capacity", &Platform::batteryCapacityFile},
    {"devices/usb_online", &Platform::usbOnlineFile},
    {"devices/backlight_power", &Platform::backlightPowerFile},
    {"devices/printer_serial", &Platform::printerSerialDevice},
    {"paths/recording", &Platform::recordingFile},
    {"paths/camera_retry", &Platform::cameraRetryFile},
    {"paths/startup_script", &Platform::startupScript},
    {"paths/removable_media", &Platform::removableMedia},
    {"servers/analysis_default", &Platform::analysisDefaultServer},
    {"servers/analysis_us", &Platform::analysisHostUs},
    {"servers/analysis_india", &Platform::analysisHostIndia},
    {"servers/analysis_china", &Platform::analysisHostChina},
    {"servers/analysis_philippines", &Platform::analysisHostPhilippines},
    {"servers/cloud_print", &Platform::cloudPrintHost},
    {"servers/update_base_url", &Platform::updateBaseUrl},
    {"servers/time", &Platform::timeServer},
    {"servers/mail", &Platform::mailServer},
    {"servers/mail_security", &Platform::mailSecurity},
    {"servers/mail_user", &Platform::mailUser},
    {"servers/mail_password", &Platform::mailPassword},
    {"servers/mail_sender", &Platform::mailSender},
    {"servers/mail_ca_file", &Platform::mailCaFile},
    {"provisioning/interface", &Platform::provisioningInterface},
    {"provisioning/address", &Platform::provisioningAddress},
};

const IntKey kIntKeys[] = {
    {"paths/removable_media_mounted_only", &Platform::removableMediaMountedOnly},
    {"servers/analysis_port", &Platform::analysisPort},
    {"servers/time_port", &Platform::timePort},
    {"servers/mail_port", &Platform::mailPort},
    {"provisioning/command_port", &Platform::provisioningCommandPort},
    {"provisioning/status_port", &Platform::provisioningStatusPort},
};

} // namespace

Platform &Platform::instance()
{
    static Platform platform;
    return platform;
}

void Platform::resetToDefaults()
{
    instance() = Platform();
}

QString Platform::deploymentFilePath()
{
    const QString fromEnvironment = qEnvironmentVariable("ORVELLA_PLATFORM_FILE");
    if (!fromEnvironment.isEmpty())
        return fromEnvironment;
    return QCoreApplication::applicationDirPath() + QStringLiteral("/platform.ini");
}

bool Platform::load(const QString &path, QString *error)
{
    if (!QFileInfo::exists(path))
        return true;
    QSettings settings(path, QSettings::IniFormat);
    if (settings.status() != QSettings::NoError) {
        if (error)
            *error = QStringLiteral("cannot read %1").arg(path);
        return false;
    }
    for (const StringKey &entry : kStringKeys) {
        const QString key = QString::fromLatin1(entry.key);
        if (settings.contains(key))
            this->*entry.member = settings.value(key).toString();
    }
    bool allUsable = true;
    for (const IntKey &entry : kIntKeys) {
        const QString key = QString::fromLatin1(entry.key);
        if (!settings.contains(key))
            continue;
        bool ok = false;
        const int value = settings.value(key).toString().toInt(&ok);
        if (ok) {
            this->*entry.member = value;
        } else {
            allUsable = false;
            if (error)
                *error = QStringLiteral("%1: %2 is not a number").arg(path, key);
        }
    }
    // A misspelt key would otherwise leave a device talking to a placeholder
    // server without a word; the keys the start-up reads itself are known too.
    QStringList unknown;
    for (const QString &key : settings.allKeys()) {
        const QByteArray name = key.toLatin1();
        const bool known = name == "devices/simulated" ||
                           std::any_of(std::begin(kStringKeys), std::end(kStringKeys),
                                       [&](const StringKey &entry) { return name == entry.key; }) ||
                           std::any_of(std::begin(kIntKeys), std::end(kIntKeys),
                                       [&](const IntKey &entry) { return name == entry.key; });
        if (!known)
            unknown << key;
    }
    if (!unknown.isEmpty()) {
        allUsable = false;
        if (error)
            *error = QStringLiteral("%1: unknown key(s) %2").arg(path, unknown.join(QStringLiteral(", ")));
    }
    return allUsable;
}

QString Platform::applicationDir() const
{
    return appDir.isEmpty() ? QCoreApplication::applicationDirPath() : appDir;
}
