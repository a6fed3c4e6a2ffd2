// SPDX-License-Identifier: GPL-2.0-or-later
// The provisioning server's lean twin of CmdUtil: wpa_cli and udhcpc through popen.
#pragma once

#include <QObject>
#include <QString>

#include <cstddef>

// Unlike CmdUtil it reads a bounded amount of output (512 bytes, 4096 for
// scan results) and its reconfigure really makes the supplicant reread its
// configuration.
class wirelessutil : public QObject
{
    Q_OBJECT

public:
    explicit wirelessutil(QObject *parent = nullptr);

    QString wireless_scan();
    QString wireless_scanresult();
    QString wireless_listnetwork();
    QString wireless_addnetwork();
    QString wireless_setssid(int id, const QString &ssid);
    QString wireless_setpsk(int id, const QString &psk);
    QString wireless_setkeymgmt(int id, const QString &mode);
    QString wireless_setpriority(int id, int priority);
    QString wireless_enablenetwork(int id);
    QString wireless_enableallnetwork();
    QString wireless_disablenetwork(int id);
    QString wireless_removenetwork(int id);
    QString wireless_saveconfig();
    QString wireless_reconfigure();
    QString wireless_getstatus();
    QString wireless_udhcpnetwork();
    QString wireless_selectnetwork(int id);

private:
    enum class Logging { Always, FailuresOnly };

    static constexpr std::size_t kCommandSize = 512;
    static constexpr std::size_t kReadLimit = 512;
    static constexpr std::size_t kScanReadLimit = 4096;

    QString run(const char *logName, const char *command, std::size_t readLimit = kReadLimit,
                Logging logging = Logging::Always);
    QString runWithId(const char *logName, const char *base, int id, const char *suffix = "");
    QString setQuotedField(const char *logName, const char *base, int id, const char *field, const QString &value);

    const char *const m_cmdScan;
    const char *const m_cmdScanResult;
    const char *const m_cmdListNetwork;
    const char *const m_cmdAddNetwork;
    const char *const m_cmdSelectNetwork;
    const char *const m_cmdSetSsid;
    const char *const m_cmdSetPsk;
    const char *const m_cmdSetKeyMgmt;
    const char *const m_cmdSetPriority;
    const char *const m_cmdEnableNetwork;
    const char *const m_cmdDisableNetwork;
    const char *const m_cmdRemoveNetwork;
    const char *const m_cmdSaveConfig;
    const char *const m_cmdReconfigure;
    const char *const m_cmdStatus;
    const char *const m_cmdDhcp;
};
