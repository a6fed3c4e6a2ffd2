// SPDX-License-Identifier: GPL-2.0-or-later
// Shared fixtures: a throw-away device folder, the stand-ins on PATH, captured log lines.
#pragma once

// Tests hand GData the simulated devices, as the simulator's start-up does.
#include "cmdutil.h"
#include "devicefactory.h"
#include "gdata.h"

#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <memory>

// Everything a test may touch lives under one temporary folder: the
// application folder (CAMCFG/), the simulator's state and a private PATH with
// the stand-in programs first. Nothing reaches the host's Wi-Fi or power.
class TestDevice
{
public:
    TestDevice();
    ~TestDevice();
    TestDevice(const TestDevice &) = delete;
    TestDevice &operator=(const TestDevice &) = delete;

    QString root() const { return m_dir.path(); }
    QString appDir() const { return m_dir.path() + QStringLiteral("/app"); }
    QString simDir() const { return m_dir.path() + QStringLiteral("/sim"); }
    QString configFile() const { return appDir() + QStringLiteral("/CAMCFG/config.txt"); }
    QString calibrationFile() const { return appDir() + QStringLiteral("/CAMCFG/sensor_calibration.txt"); }

    // Lines the stand-ins appended to commands.log / events.log so far.
    QStringList commandsRun() const;
    QStringList events() const;
    void clearCommandLog() const;

    // Writes a file below the root, creating folders as needed.
    void writeFile(const QString &relativePath, const QByteArray &bytes) const;
    static QByteArray readFile(const QString &path);

private:
    QTemporaryDir m_dir;
    QByteArray m_oldPath;
    QByteArray m_oldSimDir;
};

// Collects every Qt message while alive, instead of printing it.
class LogCapture
{
public:
    LogCapture();
    ~LogCapture();
    LogCapture(const LogCapture &) = delete;
    LogCapture &operator=(const LogCapture &) = delete;

    QStringList lines() const;
    bool contains(const QString &text) const;
};

// A throw-away device, a fresh simulated world, the command runner and the
// device's data over them (as g_pData). A test class derives from it and calls
// setUp() and tearDown() from its init() and cleanup().
class DeviceFixture
{
protected:
    static constexpr qint64 kFrozenMs = 1700000000000LL; // 2023-11-14 22:13:20 UTC

    // With `start`, startDevice() too.
    void setUp(bool start = true);
    // The data anew; with `init`, read from the device's files, as after a restart.
    void startDevice(bool init = true);
    // Undoes all of the above and gives the process its own clock back.
    void tearDown();

    // From now on the device's clock reads `msecs` until advance() moves it on.
    void freezeClock(qint64 msecs = kFrozenMs);
    void advance(int seconds) { m_nowMs += 1000LL * seconds; }

    std::unique_ptr<TestDevice> m_device;
    std::unique_ptr<CmdUtil> m_cmd;
    std::unique_ptr<GData> m_data;
    qint64 m_nowMs = 0;
};
