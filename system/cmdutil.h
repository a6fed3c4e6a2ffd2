// SPDX-License-Identifier: GPL-2.0-or-later
// The application's synchronous runner for the Wi-Fi supplicant, DHCP and power commands.
#pragma once

#include <QObject>
#include <QString>
#include <QStringList>

// Every operation blocks until the program has exited and hands back its
// standard output; an empty text means the program could not run or said
// nothing, and callers decide success by content.
class CmdUtil : public QObject
{
    Q_OBJECT

public:
    // Longest wait for an address: the client's own retries take about six
    // seconds.
    static constexpr int kDhcpLimitMs = 15000;
    // Longest wait for any other program: a supplicant that stopped
    // answering would otherwise freeze the thread that asked (the GUI's, or
    // the one that keeps the signal, the clock and the network list). A
    // program still running then is killed, and its output reads as empty.
    static constexpr int kCommandLimitMs = 20000;
    void setCommandLimitMs(int milliseconds) { m_nCommandLimitMs = milliseconds; }

    explicit CmdUtil(QObject *parent = nullptr);

    QString sendCommand(const QString &command);
    QString sendCommand(const QString &program, QStringList &arguments);
    QString sendCommand2(const char *command);

    QString poweroff();
    QString reboot();

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
    QString wireless_getRSSI();
    QString wireless_udhcpnetwork();
    QString wireless_selectnetwork(int id);
    bool wireless_is_connected();

private:
    int m_nCommandLimitMs = kCommandLimitMs;
    QString setQuotedField(const QString &setCommand, int id, const char *field, const QString &value);

    const QString m_cmdPoweroff;
    const QString m_cmdReboot;
    const QString m_cmdScan;
    const QString m_cmdScanResult;
    const QString m_cmdListNetwork;
    const QString m_cmdAddNetwork;
    const QString m_cmdSelectNetwork;
    const QString m_cmdSetSsid;
    const QString m_cmdSetPsk;
    const QString m_cmdSetKeyMgmt;
    const QString m_cmdSetPriority;
    const QString m_cmdEnableNetwork;
    const QString m_cmdDisableNetwork;
    const QString m_cmdRemoveNetwork;
    const QString m_cmdSaveConfig;
    // Holds the save command on purpose: the device saves rather than
    // making the supplicant reread a configuration it has not written yet.
    const QString m_cmdReconfigure;
    const QString m_cmdStatus;
    const QString m_cmdSignalPoll;
    const char *const m_cmdDhcp;
};

extern CmdUtil *g_pCmdUtil;
