// SPDX-License-Identifier: GPL-2.0-or-later
// Finds Bluetooth printers and binds one to the serial port, by driving bluetoothctl and rfcomm.
#include "btprintermanager.h"

#include <QDebug>
#include <QRegularExpression>

#include <algorithm>

namespace {

const QString kBluetoothctl = QStringLiteral("bluetoothctl");
const QString kRfcomm = QStringLiteral("rfcomm");

// The system's own messages, shown to the operator as they are.
const QString kScanStartFailed = QStringLiteral("bluetoothctl 启动失败（扫描）");
const QString kBadMac = QStringLiteral("无效的 MAC 地址");
const QString kPairStartFailed = QStringLiteral("bluetoothctl 启动失败（配对）");
const QString kPairFailed = QStringLiteral("配对失败或超时");
const QString kReleaseFailed = QStringLiteral("无法执行 rfcomm（release）");
const QString kBindStartFailed = QStringLiteral("无法执行 rfcomm（bind）");
const QString kBindFailed = QStringLiteral("绑定失败或超时");

} // namespace

BtPrinterManager::BtPrinterManager(QObject *parent)
    : QObject(parent)
{
    qRegisterMetaType<BtDevice>();
    qRegisterMetaType<QList<BtDevice>>();
    m_scanTimer.setSingleShot(true);
    connect(&m_scanTimer, &QTimer::timeout, this, &BtPrinterManager::onScanTimeout);
    m_watchdog.setSingleShot(true);
}

BtPrinterManager::~BtPrinterManager()
{
    for (QProcess *process : {m_scanProcess, m_pairProcess, m_oneShot}) {
        if (!process)
            continue;
        process->disconnect(this);
        process->kill();
        process->waitForFinished(kOneShotLimitMs);
    }
}

void BtPrinterManager::setPrintString(std::function<QString(const QString &)> printString)
{
    m_printString = std::move(printString);
}

QString BtPrinterManager::stripColours(const QString &text)
{
    static const QRegularExpression colour(QStringLiteral("\\x1B\\[[0-9;]*[A-Za-z]"));
    return QString(text).remove(colour);
}

void BtPrinterManager::parseScanText(const QString &text, QMap<QString, BtDevice> &devices)
{
    static const QRegularExpression newDevice(QStringLiteral("\\[NEW\\]\\s+Device\\s+([0-9A-Fa-f:]{17})\\s+(.+)$"));
    static const QRegularExpression rssiChange(
        QStringLiteral("\\[CHG\\]\\s+Device\\s+([0-9A-Fa-f:]{17})\\s+RSSI:\\s+(-?\\d+)"));
    static const QRegularExpression listed(QStringLiteral("^Device\\s+([0-9A-Fa-f:]{17})\\s+(.+)$"));

    const QStringList lines = text.split(QRegularExpression(QStringLiteral("[\\r\\n]")), Qt::SkipEmptyParts);
    for (const QString &raw : lines) {
        const QString line = raw.trimmed();
        // The prompt left alone on its line when an event interrupts it.
        static const QRegularExpression prompt(QStringLiteral("^\\[[^\\]]*\\]#$"));
        if (line.isEmpty() || prompt.match(line).hasMatch())
            continue;
        QRegularExpressionMatch match = newDevice.match(line);
        if (!match.hasMatch())
            match = listed.match(line);
        if (match.hasMatch()) {
            BtDevice &device = devices[match.captured(1)];
            device.mac = match.captured(1);
            device.name = match.captured(2).trimmed();
            continue;
        }
        match = rssiChange.match(line);
        if (match.hasMatch()) {
            BtDevice &device = devices[match.captured(1)];
            device.mac = match.captured(1);
            if (device.name.isEmpty())
                device.name = device.mac;
            device.rssi = match.captured(2).toInt();
            continue;
        }
        qDebug("[SCAN] no-regex-match.");
    }
}

QProcess *BtPrinterManager::startBluetoothctl()
{
    auto *process = new QProcess(this);
    process->setProcessChannelMode(QProcess::MergedChannels);
    process->start(kBluetoothctl, QStringList());
    if (!process->waitForStarted(kStartLimitMs)) {
        process->kill();
        process->waitForFinished(kOneShotLimitMs);
        delete process;
        return nullptr;
    }
    return process;
}

void BtPrinterManager::endProcess(QProcess *&process)
{
    if (!process)
        return;
    process->disconnect(this);
    if (process->state() != QProcess::NotRunning) {
        process->kill();
        process->waitForFinished(kOneShotLimitMs);
    }
    process->deleteLater();
    process = nullptr;
}

// --- scan ------------------------------------------------------------------

void BtPrinterManager::startScan(int durationMs)
{
    if (m_scanProcess)
        return;
    m_devices.clear();
    m_scanCarry.clear();
    m_scanProcess = startBluetoothctl();
    if (!m_scanProcess) {
        emit errorOccurred(kScanStartFailed);
        emit scanResultReady(QList<BtDevice>());
        return;
    }
    connect(m_scanProcess, &QProcess::readyRead, this, &BtPrinterManager::onScanOutput);
    m_scanProcess->write("scan on\n");
    m_scanTimer.start(durationMs);
}

bool BtPrinterManager::isScanning() const
{
    return m_scanProcess != nullptr;
}

void BtPrinterManager::onScanOutput()
{
    if (!m_scanProcess)
        return;
    // A line, or a colour sequence, may be cut between two reads: only whole
    // lines are looked at, the rest waits for the next read.
    QString text = m_scanCarry + QString::fromUtf8(m_scanProcess->readAll());
    const int end = std::max(text.lastIndexOf(QLatin1Char('\n')), text.lastIndexOf(QLatin1Char('\r')));
    m_scanCarry = text.mid(end + 1);
    text.truncate(end + 1);
    if (text.isEmpty())
        return;
    const QString cleaned = stripColours(text);
    qDebug("[SCAN] deansi: %s", qPrintable(cleaned));
    parseScanText(cleaned, m_devices);
    emit scanUpdated(m_devices.values());
}

void BtPrinterManager::onScanTimeout()
{
    finishScan();
}

void BtPrinterManager::finishScan()
{
    if (!m_scanProcess)
        return;
    m_scanTimer.stop();
    m_scanProcess->write("scan off\n");
    m_scanProcess->write("exit\n");
    m_scanProcess->waitForFinished(kScanExitLimitMs);
    onScanOutput();
    if (!m_scanCarry.isEmpty())
        parseScanText(stripColours(m_scanCarry), m_devices);
    m_scanCarry.clear();
    endProcess(m_scanProcess);
    emit scanResultReady(m_devices.values());
}

// --- bind ------------------------------------------------------------------

bool BtPrinterManager::isBinding() const
{
    return m_step != Step::Idle;
}

void BtPrinterManager::bindDevice(const QString &mac, int channel)
{
    const QString trimmed = mac.trimmed();
    const int usedChannel = std::max(1, channel);
    // The address also goes into bluetoothctl's command input, where a line
    // break would start a command of its own: only the six pairs pass.
    static const QRegularExpression macPattern(QStringLiteral("^[0-9A-Fa-f:]{17}$"));
    if (trimmed.size() != 17 || !macPattern.match(trimmed).hasMatch()) {
        emit bindFinished(false, trimmed, usedChannel, kBadMac);
        return;
    }
    if (m_step != Step::Idle) {
        // One attempt at a time: the new one fails, the running one goes on.
        emit bindFinished(false, trimmed, usedChannel, kPairFailed);
        return;
    }
    m_mac = trimmed;
    m_channel = usedChannel;
    m_bPaired = false;
    m_bPairTimedOut = false;
    m_pairOutput.clear();

    m_pairProcess = startBluetoothctl();
    if (!m_pairProcess) {
        emit bindFinished(false, m_mac, m_channel, kPairStartFailed);
        return;
    }
    m_step = Step::Pairing;
    connect(m_pairProcess, &QProcess::readyRead, this, &BtPrinterManager::onPairOutput);
    connect(m_pairProcess, QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished), this,
            &BtPrinterManager::onPairFinished);
    m_pairProcess->write(QStringLiteral("agent on\ndefault-agent\npair %1\ntrust %1\nexit\n").arg(m_mac).toUtf8());
    m_watchdog.disconnect();
    connect(&m_watchdog, &QTimer::timeout, this, &BtPrinterManager::onPairWatchdog);
    m_watchdog.start(kPairLimitMs);
}

void BtPrinterManager::onPairOutput()
{
    if (!m_pairProcess)
        return;
    m_pairOutput += m_pairProcess->readAll();
    // "Already" covers a device paired before: bluetoothctl refuses the pair
    // command then, and the link is as good.
    if (m_pairOutput.contains("Pairing successful") || m_pairOutput.contains("Paired: yes") ||
        m_pairOutput.contains("Already"))
        m_bPaired = true;
}

void BtPrinterManager::onPairWatchdog()
{
    qDebug("[BIND] pairing still running after %d ms, killed", kPairLimitMs);
    m_bPairTimedOut = true;
    if (m_pairProcess)
        m_pairProcess->kill();
}

void BtPrinterManager::onPairFinished()
{
    m_watchdog.stop();
    onPairOutput();
    endProcess(m_pairProcess);
    if (!m_bPaired || m_bPairTimedOut) {
        failBind(kPairFailed);
        return;
    }
    m_step = Step::Releasing;
    if (!startOneShot(kRfcomm, {QStringLiteral("release"), QStringLiteral("0")}))
        failBind(kReleaseFailed);
}

bool BtPrinterManager::startOneShot(const QString &program, const QStringList &arguments, const QByteArray &input)
{
    m_oneShot = new QProcess(this);
    m_oneShot->setProcessChannelMode(QProcess::MergedChannels);
    connect(m_oneShot, QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished), this,
            &BtPrinterManager::onOneShotFinished);
    m_oneShot->start(program, arguments);
    if (!m_oneShot->waitForStarted(kOneShotLimitMs)) {
        qDebug("%s", qPrintable(program + QStringLiteral(" 启动失败")));
        endProcess(m_oneShot);
        return false;
    }
    if (!input.isEmpty())
        m_oneShot->write(input);
    m_oneShot->closeWriteChannel();
    m_watchdog.disconnect();
    connect(&m_watchdog, &QTimer::timeout, this, &BtPrinterManager::onKillOneShot);
    m_watchdog.start(kOneShotLimitMs);
    return true;
}

void BtPrinterManager::onKillOneShot()
{
    if (m_oneShot) {
        qDebug("[BIND] %s still running after %d ms, killed", qPrintable(m_oneShot->program()), kOneShotLimitMs);
        m_oneShot->kill();
    }
}

void BtPrinterManager::onOneShotFinished()
{
    m_watchdog.stop();
    const bool succeeded = m_oneShot && m_oneShot->exitStatus() == QProcess::NormalExit && m_oneShot->exitCode() == 0;
    if (m_oneShot)
        qDebug("[BIND] %s: %s", qPrintable(m_oneShot->arguments().join(QLatin1Char(' '))),
               m_oneShot->readAll().trimmed().constData());
    endProcess(m_oneShot);

    if (m_step == Step::Releasing) {
        // Nothing bound yet is as good as released.
        m_step = Step::Binding;
        if (!startOneShot(kRfcomm, {QStringLiteral("bind"), QStringLiteral("0"), m_mac, QString::number(m_channel)}))
            failBind(kBindStartFailed);
        return;
    }
    if (!succeeded) {
        failBind(kBindFailed);
        return;
    }
    qDebug("Bind OK, Print blank");
    const QString status = m_printString ? m_printString(QStringLiteral(" ")) : QString();
    m_step = Step::Idle;
    emit bindFinished(true, m_mac, m_channel, status);
}

void BtPrinterManager::failBind(const QString &message)
{
    m_watchdog.stop();
    m_step = Step::Idle;
    emit bindFinished(false, m_mac, m_channel, message);
}
