// SPDX-License-Identifier: GPL-2.0-or-later
// Every device node, file path and server endpoint the program touches, in one place.
#pragma once

#include <QString>

// Defaults are the device's own values. A deployment file (INI) next to the
// program, or the one named by ORVELLA_PLATFORM_FILE, overrides any of them;
// the simulator and the tests point them at their own folders and servers.
// External programs are not listed here: they are run by name, and the
// simulator puts its stand-ins first on PATH.
struct Platform
{
    // Folder holding CAMCFG/ and the update files; empty means the program's own folder.
    QString appDir;

    // Devices.
    QString videoDevice = QStringLiteral("/dev/video0");
    QString i2cDevicePattern = QStringLiteral("/dev/i2c-%d");
    QString ledLoopParameter = QStringLiteral("/sys/module/vfe_v4l2/parameters/led_loop");
    QString ledValueParameter = QStringLiteral("/sys/module/vfe_v4l2/parameters/led_val");
    QString irLedDevice = QStringLiteral("/dev/irled");
    // The inertial sensor as an IIO device: in_accel_{x,y,z}_raw.
    QString pitchSensorDevice = QStringLiteral("/sys/bus/iio/devices/iio:device0");
    QString displayDevice = QStringLiteral("/dev/disp");
    QString batteryCapacityFile = QStringLiteral("/sys/class/power_supply/battery/capacity");
    QString usbOnlineFile = QStringLiteral("/sys/class/power_supply/usb/online");
    QString backlightPowerFile = QStringLiteral("/sys/class/backlight/backlight/bl_power");
    QString printerSerialDevice = QStringLiteral("/dev/rfcomm0");

    // Files outside the application folder.
    QString recordingFile = QStringLiteral("/tmp/pupil_video.avi");
    QString cameraRetryFile = QStringLiteral("/tmp/camera.txt");
    QString startupScript = QStringLiteral("/root/appstart.sh");
    // Where a USB drive appears; history exports are copied there when one
    // is in. On the device the folder exists without a drive, so only a
    // mounted file system there counts; the simulator's folder is the drive.
    QString removableMedia = QStringLiteral("/media/usb");
    int removableMediaMountedOnly = 1;

    // Servers. Host names are placeholders of the reserved .example domain
    // until a deployment names the real ones; the time server is the public
    // NTP pool instead, because a device whose clock was never set is never
    // network-ready and cannot screen at all.
    QString analysisDefaultServer = QStringLiteral("analysis.orvella.example:15000");
    QString analysisHostUs = QStringLiteral("us.analysis.orvella.example");
    QString analysisHostIndia = QStringLiteral("in.analysis.orvella.example");
    QString analysisHostChina = QStringLiteral("cn.analysis.orvella.example");
    QString analysisHostPhilippines = QStringLiteral("ph.analysis.orvella.example");
    int analysisPort = 15000;
    QString cloudPrintHost = QStringLiteral("print.orvella.example");
    QString updateBaseUrl = QStringLiteral("http://update.orvella.example/");
    QString timeServer = QStringLiteral("pool.ntp.org");
    int timePort = 123;
    QString mailServer = QStringLiteral("mail.orvella.example");
    int mailPort = 25;
    // "none", "starttls" or "tls" (encrypted from the start, usually port 465).
    QString mailSecurity = QStringLiteral("starttls");
    // Empty: the mail server takes the reports without a login.
    QString mailUser;
    QString mailPassword;
    QString mailSender = QStringLiteral("screener@orvella.example");
    // PEM certificates trusted for the mail server; empty means the system's.
    QString mailCaFile;

    // Wi-Fi provisioning: the servers listen on this address only, which
    // must belong to this interface (the device's USB network link, never
    // the Wi-Fi the clinic shares), for a few minutes at the operator's word.
    QString provisioningInterface = QStringLiteral("usb0");
    QString provisioningAddress = QStringLiteral("192.168.7.1");
    int provisioningCommandPort = 7301;
    int provisioningStatusPort = 7302;

    static Platform &instance();
    static void resetToDefaults();

    // The deployment file in force: ORVELLA_PLATFORM_FILE when set, else
    // platform.ini beside the program.
    static QString deploymentFilePath();

    // Applies the keys found in the file; keys absent from it keep their
    // values. Returns false with a reason when the file exists but cannot be
    // read or a number in it is not one (that key keeps its value); a missing
    // file is not an error.
    bool load(const QString &path, QString *error = nullptr);

    QString applicationDir() const;
};
