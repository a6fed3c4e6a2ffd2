// SPDX-License-Identifier: GPL-2.0-or-later
// Shared fixtures: a throw-away device folder, the stand-ins on PATH, captured log lines.
#include "testsupport.h"

#include "platform.h"
#include "simulatedworld.h"
#include "systemclock.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <mutex>

namespace {

std::mutex s_logMutex;
QStringList s_logLines;
QtMessageHandler s_previousHandler = nullptr;

void captureMessage(QtMsgType, const QMessageLogContext &, const QString &text)
{
    std::lock_guard<std::mutex> locker(s_logMutex);
    s_logLines << text;
}

QStringList readLines(const QString &path)
{
    QStringList lines = QString::fromUtf8(TestDevice::readFile(path)).split('\n');
    if (!lines.isEmpty() && lines.last().isEmpty())
        lines.removeLast();
    return lines;
}

} // namespace

TestDevice::TestDevice()
    : m_oldPath(qgetenv("PATH"))
    , m_oldSimDir(qgetenv("ORVELLA_SIM_DIR"))
{
    QDir().mkpath(appDir());
    QDir().mkpath(simDir());
    Platform::resetToDefaults();
    Platform &platform = Platform::instance();
    platform.appDir = appDir();
    // Every file the device writes outside its own folder goes here too.
    const QString sys = simDir() + QStringLiteral("/sys");
    QDir().mkpath(sys);
    platform.recordingFile = root() + QStringLiteral("/pupil_video.avi");
    platform.cameraRetryFile = root() + QStringLiteral("/camera.txt");
    platform.startupScript = root() + QStringLiteral("/appstart.sh");
    platform.ledLoopParameter = sys + QStringLiteral("/led_loop");
    platform.ledValueParameter = sys + QStringLiteral("/led_val");
    for (const QString &parameter : {platform.ledLoopParameter, platform.ledValueParameter}) {
        QFile file(parameter);
        if (file.open(QIODevice::WriteOnly))
            file.write("0");
    }
    platform.irLedDevice = sys + QStringLiteral("/irled");
    platform.batteryCapacityFile = sys + QStringLiteral("/capacity");
    platform.usbOnlineFile = sys + QStringLiteral("/online");
    platform.backlightPowerFile = sys + QStringLiteral("/bl_power");
    platform.pitchSensorDevice = sys + QStringLiteral("/iio");
    platform.printerSerialDevice = sys + QStringLiteral("/rfcomm0");
    // Provisioning on a loopback address of its own, on any free ports.
    platform.provisioningInterface = QStringLiteral("lo");
    platform.provisioningAddress = QStringLiteral("127.0.0.61");
    platform.provisioningCommandPort = 0;
    platform.provisioningStatusPort = 0;
    // A loopback address nobody serves: the worker threads' time requests
    // never leave the machine, and a test that wants the time starts a server.
    platform.timeServer = QStringLiteral("127.0.0.123");
    // Nor do update checks: nothing listens there, so they fail at once.
    platform.updateBaseUrl = QStringLiteral("http://127.0.0.124:9/");
    qputenv("ORVELLA_SIM_DIR", QFile::encodeName(simDir()));
    // Only the stand-ins and the basic system tools: a host wpa_cli or
    // poweroff must never be reached from a test.
    qputenv("PATH", QByteArray(ORVELLA_SIM_BIN_DIR) + ":/usr/bin:/bin");
}

TestDevice::~TestDevice()
{
    qputenv("PATH", m_oldPath);
    if (m_oldSimDir.isNull())
        qunsetenv("ORVELLA_SIM_DIR");
    else
        qputenv("ORVELLA_SIM_DIR", m_oldSimDir);
    Platform::resetToDefaults();
}

QStringList TestDevice::commandsRun() const
{
    return readLines(simDir() + QStringLiteral("/commands.log"));
}

QStringList TestDevice::events() const
{
    return readLines(simDir() + QStringLiteral("/events.log"));
}

void TestDevice::clearCommandLog() const
{
    QFile::remove(simDir() + QStringLiteral("/commands.log"));
}

void TestDevice::writeFile(const QString &relativePath, const QByteArray &bytes) const
{
    const QString path = root() + '/' + relativePath;
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    if (file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        file.write(bytes);
}

QByteArray TestDevice::readFile(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return QByteArray();
    return file.readAll();
}

LogCapture::LogCapture()
{
    std::lock_guard<std::mutex> locker(s_logMutex);
    s_logLines.clear();
    s_previousHandler = qInstallMessageHandler(captureMessage);
}

LogCapture::~LogCapture()
{
    qInstallMessageHandler(s_previousHandler);
}

QStringList LogCapture::lines() const
{
    std::lock_guard<std::mutex> locker(s_logMutex);
    return s_logLines;
}

bool LogCapture::contains(const QString &text) const
{
    const QStringList all = lines();
    return std::any_of(all.begin(), all.end(), [&text](const QString &line) { return line.contains(text); });
}

void DeviceFixture::setUp(bool start)
{
    m_device = std::make_unique<TestDevice>();
    SimulatedWorld::instance().reset();
    m_cmd = std::make_unique<CmdUtil>();
    if (start)
        startDevice();
}

void DeviceFixture::startDevice(bool init)
{
    m_data = std::make_unique<GData>(m_cmd.get(), makeSimulatedDevices());
    if (init)
        m_data->Init(nullptr);
    g_pData = m_data.get();
}

void DeviceFixture::tearDown()
{
    g_pData = nullptr;
    m_data.reset();
    m_cmd.reset();
    systemclock::setSourceForTesting(nullptr);
    systemclock::setOffsetMSecs(0);
    m_device.reset();
}

void DeviceFixture::freezeClock(qint64 msecs)
{
    m_nowMs = msecs;
    systemclock::setSourceForTesting([this] { return m_nowMs; });
}
