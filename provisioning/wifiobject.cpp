// SPDX-License-Identifier: GPL-2.0-or-later
// Carries out provisioning commands with its own wirelessutil, in a provisioning worker thread.
#include "wifiobject.h"

#include "selectnetwork.h"
#include "wifiparsers.h"

#include <QThread>

namespace {

using provisioningprotocol::Verb;

constexpr int kJoinAttempts = 15;
constexpr int kJoinAttemptMs = 1000;
constexpr int kPauseStepMs = 100;

QByteArray ok(const QByteArray &text = QByteArray())
{
    return text.isEmpty() ? QByteArrayLiteral("OK\n") : QByteArrayLiteral("OK ") + text + '\n';
}

QByteArray error(const char *word)
{
    return QByteArrayLiteral("E ") + word + '\n';
}

// wirelessutil's reconfigure makes the supplicant reread its file, which
// would drop the priorities just set in memory; they are saved first.
class SavingRunner
{
public:
    explicit SavingRunner(wirelessutil &wireless)
        : m_wireless(wireless)
    {
    }
    QString wireless_listnetwork() { return m_wireless.wireless_listnetwork(); }
    QString wireless_setpriority(int id, int priority) { return m_wireless.wireless_setpriority(id, priority); }
    QString wireless_enableallnetwork() { return m_wireless.wireless_enableallnetwork(); }
    QString wireless_reconfigure()
    {
        if (!wifiparsers::isOk(m_wireless.wireless_saveconfig()))
            return QString();
        return m_wireless.wireless_reconfigure();
    }

private:
    wirelessutil &m_wireless;
};

} // namespace

WifiObject::WifiObject(QObject *parent)
    : QObject(parent)
    , m_wireless(this)
{
}

void WifiObject::execute(quint64 ticket, const provisioningprotocol::Command &command)
{
    QByteArray reply;
    switch (command.verb) {
    case Verb::Scan: reply = scan(); break;
    case Verb::List: reply = list(); break;
    case Verb::Status: reply = status(); break;
    case Verb::Add: reply = add(command.ssid, command.passphrase); break;
    case Verb::Connect: reply = connectSaved(command.ssid); break;
    case Verb::Forget: reply = forget(command.ssid); break;
    case Verb::Pin:
    case Verb::Quit:
        // Answered by the server itself; nothing reaches wpa_cli.
        reply = error("unknown-command");
        break;
    }
    if (command.verb == Verb::Add || command.verb == Verb::Connect || command.verb == Verb::Forget)
        emit networkChanged(static_cast<int>(command.verb), command.ssid, reply.startsWith("OK"));
    emit finished(ticket, reply);
}

QByteArray WifiObject::scan()
{
    m_wireless.wireless_scan();
    const QString text = m_wireless.wireless_scanresult();
    if (text.isEmpty())
        return error("failed");
    const wifiparsers::AccessPointList inRange = wifiparsers::parseScanResults(text);
    QByteArray reply;
    for (int i = 0; i < inRange.ssids.size(); ++i) {
        const bool secured = inRange.flags.at(i).contains(QLatin1String("WPA"));
        reply += "D " + QByteArray::number(inRange.signalLevels.at(i).toInt()) + (secured ? " wpa " : " open ") +
                 provisioningprotocol::encodeField(inRange.ssids.at(i)) + '\n';
    }
    return reply + ok(QByteArray::number(inRange.ssids.size()));
}

QByteArray WifiObject::list()
{
    const QString text = m_wireless.wireless_listnetwork();
    if (text.isEmpty())
        return error("failed");
    const QStringList saved = wifiparsers::parseSavedNetworks(text);
    QByteArray reply;
    for (const QString &ssid : saved)
        reply += "D " + provisioningprotocol::encodeField(ssid) + '\n';
    return reply + ok(QByteArray::number(saved.size()));
}

QByteArray WifiObject::status()
{
    const QString text = m_wireless.wireless_getstatus();
    if (text.isEmpty())
        return error("failed");
    const wifiparsers::LinkStatus link = wifiparsers::parseStatus(text);
    const QByteArray state = link.state.isEmpty() ? QByteArrayLiteral("UNKNOWN") : link.state.toLatin1();
    QByteArray line = "D " + provisioningprotocol::encodeField(QString::fromLatin1(state));
    if (link.state == QLatin1String("COMPLETED") && !link.ssid.isEmpty())
        line += ' ' + provisioningprotocol::encodeField(wifiparsers::ssidDecode(link.ssid));
    return line + '\n' + ok();
}

QByteArray WifiObject::add(const QString &ssid, const QString &passphrase)
{
    if (wifiparsers::findSavedNetwork(m_wireless.wireless_listnetwork(), ssid) >= 0)
        return error("exists");
    bool numbered = false;
    const int id = m_wireless.wireless_addnetwork().trimmed().toInt(&numbered);
    if (!numbered)
        return error("failed");

    const QString ssidReply = m_wireless.wireless_setssid(id, ssid);
    const QString keyReply = passphrase.isEmpty() ? m_wireless.wireless_setkeymgmt(id, QStringLiteral("NONE"))
                                                  : m_wireless.wireless_setpsk(id, passphrase);
    // Unlike the touch screen's join, a half-made entry is taken out again:
    // the next save would otherwise keep it.
    if (!wifiparsers::isOk(ssidReply) || !wifiparsers::isOk(keyReply) || !prefer(id)) {
        m_wireless.wireless_removenetwork(id);
        return error("failed");
    }

    QString state;
    for (int attempt = 0; attempt < kJoinAttempts; ++attempt) {
        if (!pause(kJoinAttemptMs))
            break;
        state = wifiparsers::lastWpaState(m_wireless.wireless_getstatus());
        // The supplicant has just reread its file and may still show the
        // link it dropped; after that a disconnection means the access point
        // turned the passphrase down.
        const bool rejected =
            state == QLatin1String("4WAY_HANDSHAKE") || (attempt > 0 && state == QLatin1String("DISCONNECTED"));
        if (rejected) {
            m_wireless.wireless_removenetwork(id);
            m_wireless.wireless_saveconfig();
            return error("rejected");
        }
        if (state == QLatin1String("COMPLETED"))
            break;
    }
    // Still associating after the last check: kept, as a slow access point
    // is not a wrong passphrase; the client sees the state it was left in.
    return ok(state.isEmpty() ? QByteArrayLiteral("UNKNOWN") : provisioningprotocol::encodeField(state));
}

QByteArray WifiObject::connectSaved(const QString &ssid)
{
    const int id = wifiparsers::findSavedNetwork(m_wireless.wireless_listnetwork(), ssid);
    if (id < 0)
        return error("not-saved");
    return prefer(id) ? ok() : error("failed");
}

QByteArray WifiObject::forget(const QString &ssid)
{
    const int id = wifiparsers::findSavedNetwork(m_wireless.wireless_listnetwork(), ssid);
    if (id < 0)
        return error("not-saved");
    if (!wifiparsers::isOk(m_wireless.wireless_removenetwork(id)))
        return error("failed");
    m_wireless.wireless_saveconfig();
    return ok();
}

bool WifiObject::prefer(int id)
{
    SavingRunner runner(m_wireless);
    return wifiparsers::isOk(selectNetworkByPriority(runner, id, ""));
}

bool WifiObject::pause(int ms)
{
    for (int waited = 0; waited < ms; waited += kPauseStepMs) {
        if (m_cancelled)
            return false;
        QThread::msleep(kPauseStepMs);
    }
    return !m_cancelled;
}
