// SPDX-License-Identifier: GPL-2.0-or-later
// The provisioning server's lean twin of CmdUtil: wpa_cli and udhcpc through popen.
#include "wirelessutil.h"

#include "selectnetwork.h"
#include "shellquote.h"

#include <QDebug>
#include <QVarLengthArray>

#include <cstdio>
#include <cstdlib>

wirelessutil::wirelessutil(QObject *parent)
    : QObject(parent)
    , m_cmdScan("wpa_cli -i wlan0 scan")
    , m_cmdScanResult("wpa_cli -i wlan0 scan_result")
    , m_cmdListNetwork("wpa_cli -i wlan0 list_network")
    , m_cmdAddNetwork("wpa_cli -i wlan0 add_network")
    , m_cmdSelectNetwork("wpa_cli -i wlan0 select_network")
    , m_cmdSetSsid("wpa_cli -i wlan0 set_network")
    , m_cmdSetPsk("wpa_cli -i wlan0 set_network")
    , m_cmdSetKeyMgmt("wpa_cli -i wlan0 set_network")
    , m_cmdSetPriority("wpa_cli -i wlan0 set_network")
    , m_cmdEnableNetwork("wpa_cli -i wlan0 enable_network")
    , m_cmdDisableNetwork("wpa_cli -i wlan0 disable_network")
    , m_cmdRemoveNetwork("wpa_cli -i wlan0 remove_network")
    , m_cmdSaveConfig("wpa_cli -i wlan0 save_config")
    , m_cmdReconfigure("wpa_cli -i wlan0 reconfigure")
    , m_cmdStatus("wpa_cli -i wlan0 status")
    , m_cmdDhcp("udhcpc -i wlan0")
{
}

QString wirelessutil::run(const char *logName, const char *command, std::size_t readLimit, Logging logging)
{
    FILE *pipe = ::popen(command, "r");
    if (!pipe) {
        qDebug("%s popen error!\n", logName);
        return QString();
    }
    // One read, as much as fits: longer output is cut at the limit.
    QVarLengthArray<char, kScanReadLimit + 1> buffer(static_cast<int>(readLimit + 1));
    const std::size_t count = std::fread(buffer.data(), 1, readLimit, pipe);
    ::pclose(pipe);
    buffer[static_cast<int>(count)] = '\0';
    if (count == 0) {
        qDebug("%s read error! \n", logName);
        return QString();
    }
    if (logging == Logging::Always)
        qDebug("%s result is \n%s\n", logName, buffer.constData());
    return QString::fromLatin1(buffer.constData(), static_cast<int>(count));
}

QString wirelessutil::runWithId(const char *logName, const char *base, int id, const char *suffix)
{
    char command[kCommandSize];
    const int length = std::snprintf(command, sizeof command, "%s %d%s", base, id, suffix);
    if (length < 0 || static_cast<std::size_t>(length) >= sizeof command)
        return QString();
    return run(logName, command);
}

QString wirelessutil::setQuotedField(const char *logName, const char *base, int id, const char *field,
                                     const QString &value)
{
    // Same rule as CmdUtil: text that would leave the single quotes, or that
    // does not fit the command buffer, runs nothing.
    const QByteArray bytes = value.toLocal8Bit();
    if (!shellquote::fitsSingleQuotes(bytes)) {
        qDebug("%s: value not passed to the shell", logName);
        return QString();
    }
    char command[kCommandSize];
    const int length = std::snprintf(command, sizeof command, "%s %d %s '\"%s\"'", base, id, field, bytes.constData());
    if (length < 0 || static_cast<std::size_t>(length) >= sizeof command) {
        qDebug("%s: value too long", logName);
        return QString();
    }
    return run(logName, command);
}

QString wirelessutil::wireless_scan()
{
    return run("wireless_scan", m_cmdScan);
}

QString wirelessutil::wireless_scanresult()
{
    return run("wireless_scanresult", m_cmdScanResult, kScanReadLimit, Logging::FailuresOnly);
}

QString wirelessutil::wireless_listnetwork()
{
    return run("wireless_listnetwork", m_cmdListNetwork);
}

QString wirelessutil::wireless_addnetwork()
{
    const QString result = run("wireless_addnetwork", m_cmdAddNetwork, kReadLimit, Logging::FailuresOnly);
    if (!result.isEmpty()) {
        const QByteArray bytes = result.toLatin1();
        qDebug("wireless_addnetwork result is \n%s\n index : %d", bytes.constData(), std::atoi(bytes.constData()));
    }
    return result;
}

QString wirelessutil::wireless_setssid(int id, const QString &ssid)
{
    return setQuotedField("wireless_setssid", m_cmdSetSsid, id, "ssid", ssid);
}

QString wirelessutil::wireless_setpsk(int id, const QString &psk)
{
    return setQuotedField("wireless_setpsk", m_cmdSetPsk, id, "psk", psk);
}

QString wirelessutil::wireless_setkeymgmt(int id, const QString &mode)
{
    const char *suffix = nullptr;
    if (mode == QLatin1String("NONE"))
        suffix = " key_mgmt NONE";
    else if (mode == QLatin1String("WPA_PSK"))
        suffix = " key_mgmt WPA_PSK";
    else if (mode == QLatin1String("WPA2_PSK"))
        suffix = " key_mgmt WPA2_PSK";
    else
        return QString();
    return runWithId("wireless_setkeymgmt", m_cmdSetKeyMgmt, id, suffix);
}

QString wirelessutil::wireless_setpriority(int id, int priority)
{
    char command[kCommandSize];
    std::snprintf(command, sizeof command, "%s %d priority %d", m_cmdSetPriority, id, priority);
    qDebug("wireless_setnetwork priority [%s]\n", command);
    return run("wireless_set_priority", command);
}

QString wirelessutil::wireless_enablenetwork(int id)
{
    return runWithId("wireless_enablenetwork", m_cmdEnableNetwork, id);
}

QString wirelessutil::wireless_enableallnetwork()
{
    char command[kCommandSize];
    std::snprintf(command, sizeof command, "%s all", m_cmdEnableNetwork);
    return run("wireless_enablenetwork", command);
}

QString wirelessutil::wireless_disablenetwork(int id)
{
    return runWithId("wireless_disablenetwork", m_cmdDisableNetwork, id);
}

QString wirelessutil::wireless_removenetwork(int id)
{
    return runWithId("wireless_removenetwork", m_cmdRemoveNetwork, id);
}

QString wirelessutil::wireless_saveconfig()
{
    return run("wireless_saveconfig", m_cmdSaveConfig);
}

QString wirelessutil::wireless_reconfigure()
{
    return run("wireless_saveconfig", m_cmdReconfigure);
}

QString wirelessutil::wireless_getstatus()
{
    return run("wireless_getstatus", m_cmdStatus, kReadLimit, Logging::FailuresOnly);
}

QString wirelessutil::wireless_udhcpnetwork()
{
    return run("wireless_udhcpnetwork", m_cmdDhcp, kReadLimit, Logging::FailuresOnly);
}

QString wirelessutil::wireless_selectnetwork(int id)
{
    return selectNetworkByPriority(*this, id, "");
}
