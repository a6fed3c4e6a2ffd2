// SPDX-License-Identifier: GPL-2.0-or-later
// Shared fixtures: a throw-away device folder, the stand-ins on PATH, captured log lines.
#pragma once

// Tests hand GData the simulated devices, as the simulator's start-up does.
#include "devicefactory.h"

#include <QString>
#include <QStringList>
#include <QTemporaryDir>

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
