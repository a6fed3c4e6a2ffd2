// SPDX-License-Identifier: GPL-2.0-or-later
// GData: Wi-Fi management over the supplicant's command line.
#include "gdata.h"

#include "cmdutil.h"
#include "wifiparsers.h"

#include <QThread>

namespace {

// A join is given 15 checks a second apart; one still scanning or
// associating after that is kept and reported as joined.
constexpr int kJoinAttempts = 15;
constexpr int kJoinAttemptMs = 1000;

// Once the supplicant's networks have changed, whatever the outcome, the
// polling thread is asked for a fresh picture for the Wi-Fi table.
class RefreshAfterChange
{
public:
    explicit RefreshAfterChange(std::atomic<int> &flag)
        : m_flag(flag)
    {
    }
    ~RefreshAfterChange() { m_flag = 1; }
    RefreshAfterChange(const RefreshAfterChange &) = delete;
    RefreshAfterChange &operator=(const RefreshAfterChange &) = delete;

private:
    std::atomic<int> &m_flag;
};

int savedNetworkId(CmdUtil &cmd, const QString &ssid)
{
    return wifiparsers::findSavedNetwork(cmd.wireless_listnetwork(), ssid);
}

} // namespace

QString GData::getWIFIInfo()
{
    m_pCmdUtil->wireless_scan();
    // Read at once: the supplicant answers with the results it holds, and
    // the scan just requested shows in the next refresh.
    const QString scan = m_pCmdUtil->wireless_scanresult();
    const QString status = m_pCmdUtil->wireless_getstatus();
    const QString list = m_pCmdUtil->wireless_listnetwork();
    if (scan.isEmpty() || status.isEmpty() || list.isEmpty())
        return QString();
    analyseWIFIAPList(list);
    analyseWIFIStatus(status);
    analyseWIFIResult(scan);
    return scan + QLatin1Char(',') + status + QLatin1Char(',') + list;
}

void GData::getRSSI()
{
    m_nWifiRssi = wifiparsers::parseRssi(m_pCmdUtil->wireless_getRSSI());
}

void GData::analyseWIFIResult(const QString &text)
{
    wifiparsers::AccessPointList inRange = wifiparsers::parseScanResults(text);
    std::lock_guard<std::mutex> lock(wifiMutex);
    wifiSsidList = std::move(inRange.ssids);
    wifiSignalList = std::move(inRange.signalLevels);
    wifiFlagsList = std::move(inRange.flags);
}

void GData::analyseWIFIAPList(const QString &text)
{
    QStringList saved = wifiparsers::parseSavedNetworks(text);
    std::lock_guard<std::mutex> lock(wifiMutex);
    wifiSavedList = std::move(saved);
}

void GData::analyseWIFIStatus(const QString &text)
{
    const wifiparsers::LinkStatus status = wifiparsers::parseStatus(text);
    const bool completed = status.state == QLatin1String("COMPLETED");
    {
        std::lock_guard<std::mutex> lock(wifiMutex);
        wifiCurrentSsid = completed ? status.ssid : QString();
    }
    // An address is asked for once per association, not at every refresh:
    // udhcpc takes seconds when the server is slow. The last pair is only
    // ever touched by the thread that refreshes.
    if (!completed || (status.bssid == wifiLastBssid && status.ssid == wifiLastSsid))
        return;
    m_pCmdUtil->wireless_udhcpnetwork();
    wifiLastBssid = status.bssid;
    wifiLastSsid = status.ssid;
}

bool GData::addWIFI(const QString &ssid, const QString &psk)
{
    CmdUtil &cmd = *m_pCmdUtil;
    // A saved network is joined with switchWIFI; adding it again would leave
    // two entries of one name.
    if (savedNetworkId(cmd, ssid) >= 0)
        return false;

    bool numbered = false;
    const int id = cmd.wireless_addnetwork().trimmed().toInt(&numbered);
    // Without a number there is no new entry, and setting network 0 instead
    // would overwrite a saved one.
    if (!numbered)
        return false;
    const RefreshAfterChange refresh(m_nWifiChanged);

    const QString ssidReply = cmd.wireless_setssid(id, ssid);
    // A network offering only WEP arrives here without a password and is
    // joined as an open one: the device has no way to enter a WEP key.
    const QString keyReply =
        psk.isEmpty() ? cmd.wireless_setkeymgmt(id, QStringLiteral("NONE")) : cmd.wireless_setpsk(id, psk);
    // The half-made entry stays in the supplicant, unsaved, until a restart.
    if (!wifiparsers::isOk(ssidReply) || !wifiparsers::isOk(keyReply))
        return false;
    if (!wifiparsers::isOk(cmd.wireless_selectnetwork(id)))
        return false;

    for (int attempt = 0; attempt < kJoinAttempts; ++attempt) {
        if (m_fnWifiSleep)
            m_fnWifiSleep(kJoinAttemptMs);
        else
            QThread::msleep(kJoinAttemptMs);
        const QString state = wifiparsers::lastWpaState(cmd.wireless_getstatus());
        // A wrong passphrase fails in the handshake and the link then drops;
        // either sign means the access point turned the password down.
        if (state == QLatin1String("DISCONNECTED") || state == QLatin1String("4WAY_HANDSHAKE")) {
            wifiJoinRejected = true;
            cmd.wireless_removenetwork(id);
            return false;
        }
        if (state == QLatin1String("COMPLETED"))
            break;
    }
    // A network still scanning or associating after the last check is kept
    // and reported as joined: a slow access point is not a wrong password.
    cmd.wireless_saveconfig();
    return true;
}

bool GData::switchWIFI(const QString &ssid)
{
    CmdUtil &cmd = *m_pCmdUtil;
    const int id = savedNetworkId(cmd, ssid);
    if (id < 0)
        return false;
    const RefreshAfterChange refresh(m_nWifiChanged);
    // No wait for the association: the next refresh shows where it went.
    if (!wifiparsers::isOk(cmd.wireless_selectnetwork(id)))
        return false;
    cmd.wireless_saveconfig();
    return true;
}

bool GData::deleteWIFI(const QString &ssid)
{
    CmdUtil &cmd = *m_pCmdUtil;
    const int id = savedNetworkId(cmd, ssid);
    if (id < 0)
        return false;
    const RefreshAfterChange refresh(m_nWifiChanged);
    if (!wifiparsers::isOk(cmd.wireless_removenetwork(id)))
        return false;
    cmd.wireless_saveconfig();
    return true;
}

QString GData::SSIDDecode(const QString &text) const
{
    return wifiparsers::ssidDecode(text);
}

QString GData::Unicode2Txt(const QString &text) const
{
    return wifiparsers::unicodeToText(text);
}
