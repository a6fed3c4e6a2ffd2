// SPDX-License-Identifier: GPL-2.0-or-later
// The application's synchronous runner for the Wi-Fi supplicant, DHCP and power commands.
#include "cmdutil.h"

#include "selectnetwork.h"
#include "shellquote.h"

#include <QDebug>
#include <QProcess>

#include <cstdio>

CmdUtil *g_pCmdUtil = nullptr;

namespace {

const char kSetNetwork[] = "wpa_cli -i wlan0 set_network";

// Shared tail of both QProcess runners: the command has been started (or not).
QString collectOutput(QProcess &process, int limitMs = -1)
{
    if (process.state() == QProcess::NotRunning) {
        qDebug("failed to start, error %d", static_cast<int>(process.error()));
        return QString();
    }
    // Nothing is ever written to the programs; a closed stdin keeps one that
    // reads it from waiting for ever.
    process.closeWriteChannel();
    if (!process.waitForFinished(limitMs)) {
        qDebug("%s did not finish in time", qPrintable(process.program()));
        process.kill();
        process.waitForFinished(-1);
    }
    if (process.error() == QProcess::FailedToStart) {
        qDebug("failed to start, error %d", static_cast<int>(process.error()));
        return QString();
    }
    return QString::fromLocal8Bit(process.readAllStandardOutput());
}

} // namespace

CmdUtil::CmdUtil(QObject *parent)
    : QObject(parent)
    , m_cmdPoweroff(QStringLiteral("poweroff"))
    , m_cmdReboot(QStringLiteral("reboot"))
    , m_cmdScan(QStringLiteral("wpa_cli -i wlan0 scan"))
    , m_cmdScanResult(QStringLiteral("wpa_cli -i wlan0 scan_result"))
    , m_cmdListNetwork(QStringLiteral("wpa_cli -i wlan0 list_network"))
    , m_cmdAddNetwork(QStringLiteral("wpa_cli -i wlan0 add_network"))
    , m_cmdSelectNetwork(QStringLiteral("wpa_cli -i wlan0 select_network"))
    , m_cmdSetSsid(QString::fromLatin1(kSetNetwork))
    , m_cmdSetPsk(QString::fromLatin1(kSetNetwork))
    , m_cmdSetKeyMgmt(QString::fromLatin1(kSetNetwork))
    , m_cmdSetPriority(QString::fromLatin1(kSetNetwork))
    , m_cmdEnableNetwork(QStringLiteral("wpa_cli -i wlan0 enable_network"))
    , m_cmdDisableNetwork(QStringLiteral("wpa_cli -i wlan0 disable_network"))
    , m_cmdRemoveNetwork(QStringLiteral("wpa_cli -i wlan0 remove_network"))
    , m_cmdSaveConfig(QStringLiteral("wpa_cli -i wlan0 save_config"))
    , m_cmdReconfigure(QStringLiteral("wpa_cli -i wlan0 save_config"))
    , m_cmdStatus(QStringLiteral("wpa_cli -i wlan0 status"))
    , m_cmdSignalPoll(QStringLiteral("wpa_cli -i wlan0 signal_poll"))
    , m_cmdDhcp("udhcpc -i wlan0 -q -n -t 3 -T 2")
{
}

QString CmdUtil::sendCommand(const QString &command)
{
    // Split like a plain command line, without a shell: no quoting, no
    // expansion, so nothing in the text can start a second command.
    QStringList arguments = QProcess::splitCommand(command);
    if (arguments.isEmpty())
        return QString();
    const QString program = arguments.takeFirst();
    QProcess process;
    process.start(program, arguments, QIODevice::ReadWrite);
    return collectOutput(process, m_nCommandLimitMs);
}

QString CmdUtil::sendCommand(const QString &program, QStringList &arguments)
{
    QProcess process;
    process.start(program, arguments, QIODevice::ReadWrite);
    return collectOutput(process, m_nCommandLimitMs);
}

QString CmdUtil::sendCommand2(const char *command)
{
    // Through the shell, as popen would run it, but with the same time
    // limit as every other program.
    QProcess process;
    process.start(QStringLiteral("/bin/sh"), {QStringLiteral("-c"), QString::fromLocal8Bit(command)},
                  QIODevice::ReadWrite);
    const QByteArray output = collectOutput(process, m_nCommandLimitMs).toLocal8Bit().left(128);
    if (output.isEmpty()) {
        qDebug("sendCommand2 read error! \n");
        return QString();
    }
    qDebug("sendCommand2 Result[%s]", output.constData());
    return QString::fromLatin1(output);
}

QString CmdUtil::poweroff()
{
    return sendCommand(m_cmdPoweroff);
}

QString CmdUtil::reboot()
{
    return sendCommand(m_cmdReboot);
}

QString CmdUtil::wireless_scan()
{
    return sendCommand(m_cmdScan);
}

QString CmdUtil::wireless_scanresult()
{
    return sendCommand(m_cmdScanResult);
}

QString CmdUtil::wireless_listnetwork()
{
    return sendCommand(m_cmdListNetwork);
}

QString CmdUtil::wireless_addnetwork()
{
    return sendCommand(m_cmdAddNetwork);
}

QString CmdUtil::setQuotedField(const QString &setCommand, int id, const char *field, const QString &value)
{
    // wpa_cli wants these two fields in double quotes, so the value travels
    // through the shell inside '"..."'. A value the single quotes cannot
    // carry would break out of them: run nothing rather than a mangled or
    // injected command, which is what a broken command would have printed.
    const QByteArray bytes = value.toLocal8Bit();
    if (!shellquote::fitsSingleQuotes(bytes)) {
        qDebug("wireless_set%s: value not passed to the shell", field);
        return QString();
    }
    const QByteArray command =
        setCommand.toLocal8Bit() + ' ' + QByteArray::number(id) + ' ' + field + " '\"" + bytes + "\"'";
    return sendCommand2(command.constData());
}

QString CmdUtil::wireless_setssid(int id, const QString &ssid)
{
    return setQuotedField(m_cmdSetSsid, id, "ssid", ssid);
}

QString CmdUtil::wireless_setpsk(int id, const QString &psk)
{
    return setQuotedField(m_cmdSetPsk, id, "psk", psk);
}

QString CmdUtil::wireless_setkeymgmt(int id, const QString &mode)
{
    QString suffix;
    if (mode == QLatin1String("NONE"))
        suffix = QStringLiteral(" key_mgmt NONE");
    else if (mode == QLatin1String("WPA_PSK"))
        suffix = QStringLiteral(" key_mgmt WPA_PSK");
    else if (mode == QLatin1String("WPA2_PSK"))
        suffix = QStringLiteral(" key_mgmt WPA2_PSK");
    else
        return QString();
    return sendCommand(m_cmdSetKeyMgmt + ' ' + QString::number(id) + suffix);
}

QString CmdUtil::wireless_setpriority(int id, int priority)
{
    const QString command =
        m_cmdSetPriority + ' ' + QString::number(id) + QStringLiteral(" priority ") + QString::number(priority);
    qDebug("sendCommand [%s]", qPrintable(command));
    const QString result = sendCommand(command);
    qDebug("gotResult [%s]", qPrintable(result));
    return result;
}

QString CmdUtil::wireless_enablenetwork(int id)
{
    return sendCommand(m_cmdEnableNetwork + ' ' + QString::number(id));
}

QString CmdUtil::wireless_enableallnetwork()
{
    return sendCommand(m_cmdEnableNetwork + QStringLiteral(" all"));
}

QString CmdUtil::wireless_disablenetwork(int id)
{
    return sendCommand(m_cmdDisableNetwork + ' ' + QString::number(id));
}

QString CmdUtil::wireless_removenetwork(int id)
{
    return sendCommand(m_cmdRemoveNetwork + ' ' + QString::number(id));
}

QString CmdUtil::wireless_saveconfig()
{
    return sendCommand(m_cmdSaveConfig);
}

QString CmdUtil::wireless_reconfigure()
{
    return sendCommand(m_cmdReconfigure);
}

QString CmdUtil::wireless_getstatus()
{
    return sendCommand(m_cmdStatus);
}

QString CmdUtil::wireless_getRSSI()
{
    return sendCommand(m_cmdSignalPoll);
}

QString CmdUtil::wireless_udhcpnetwork()
{
    // With -q alone busybox's udhcpc retries for ever when no server
    // answers, holding the thread that also keeps the signal, the clock and
    // the network list up to date: -n gives up after three discovers two
    // seconds apart, and the limit covers a client that hangs regardless.
    QStringList arguments = QProcess::splitCommand(QString::fromLatin1(m_cmdDhcp));
    const QString program = arguments.takeFirst();
    QProcess process;
    process.start(program, arguments, QIODevice::ReadWrite);
    return collectOutput(process, kDhcpLimitMs);
}

QString CmdUtil::wireless_selectnetwork(int id)
{
    return selectNetworkByPriority(*this, id, "cmdUtil ");
}

bool CmdUtil::wireless_is_connected()
{
    if (wireless_getstatus().contains(QLatin1String("wpa_state=COMPLETED"))) {
        qDebug("WiFi is connected (wpa_cli)");
        return true;
    }
    qDebug("WiFi is not connected (wpa_cli)");
    return false;
}
