// SPDX-License-Identifier: GPL-2.0-or-later
// The simulated radio world behind the wpa_cli stand-in: access points, saved networks, association.
#include "wifiworld.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QSaveFile>
#include <QTextStream>

#include <algorithm>
#include <cctype>
#include <cstdio>

namespace sim {

namespace {

const char kOk[] = "OK\n";
const char kFail[] = "FAIL\n";
const char kStationAddress[] = "02:0f:b5:4a:11:c8";

QString readText(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return QString();
    return QString::fromUtf8(file.readAll());
}

void writeText(const QString &path, const QString &text)
{
    QSaveFile file(path);
    if (file.open(QIODevice::WriteOnly)) {
        file.write(text.toUtf8());
        file.commit();
    }
}

// The supplicant's rule for ssid and psk values: a quoted string, or hex bytes.
std::optional<QByteArray> parseStringValue(const QString &value)
{
    if (value.size() >= 2 && value.startsWith('"')) {
        const int end = value.lastIndexOf('"');
        if (end <= 0)
            return std::nullopt;
        return value.mid(1, end - 1).toUtf8();
    }
    if (value.size() % 2 != 0)
        return std::nullopt;
    const QByteArray hex = value.toLatin1();
    for (const char c : hex) {
        if (!std::isxdigit(static_cast<unsigned char>(c)))
            return std::nullopt;
    }
    return QByteArray::fromHex(hex);
}

bool isPrintable(const QByteArray &bytes)
{
    return std::all_of(bytes.begin(), bytes.end(), [](char c) {
        const auto u = static_cast<unsigned char>(c);
        return u >= 0x20 && u < 0x7f && c != '"';
    });
}

QString configValue(const QByteArray &bytes)
{
    if (isPrintable(bytes))
        return QLatin1Char('"') + QString::fromLatin1(bytes) + QLatin1Char('"');
    return QString::fromLatin1(bytes.toHex());
}

bool validKeyMgmt(const QString &value)
{
    static const QStringList known = {QStringLiteral("NONE"),    QStringLiteral("WPA-PSK"),
                                      QStringLiteral("WPA-EAP"), QStringLiteral("IEEE8021X"),
                                      QStringLiteral("SAE"),     QStringLiteral("WPA-PSK-SHA256")};
    const QStringList words = value.split(' ', Qt::SkipEmptyParts);
    if (words.isEmpty())
        return false;
    return std::all_of(words.begin(), words.end(), [](const QString &w) { return known.contains(w); });
}

qint64 nowMs()
{
    return QDateTime::currentMSecsSinceEpoch();
}

// A link's strength wanders a little, as a real one does: within 2 dBm of
// the access point's level, in steps of five seconds counted from the moment
// the link came up, the same for every poll inside one step. A fresh link
// starts at the access point's level.
int rssiDrift(qint64 linkAgeMs)
{
    static const int steps[] = {0, 1, 2, 1, 0, -1, -2, -1};
    return steps[(std::max<qint64>(linkAgeMs, 0) / 5000) % 8];
}

} // namespace

WifiWorld::WifiWorld(const QString &stateDir)
    : m_dir(stateDir)
{
    const int join = qEnvironmentVariableIntValue("ORVELLA_SIM_WIFI_JOIN_MS");
    if (join > 0)
        m_joinMs = join;
}

QByteArray WifiWorld::escapeSsid(const QByteArray &ssid)
{
    // Same escaping as wpa_cli's printf_encode: printable ASCII as it is,
    // everything else (UTF-8 included) as \xNN.
    QByteArray out;
    for (const char c : ssid) {
        const auto u = static_cast<unsigned char>(c);
        switch (c) {
        case '"': out += "\\\""; break;
        case '\\': out += "\\\\"; break;
        case '\n': out += "\\n"; break;
        case '\r': out += "\\r"; break;
        case '\t': out += "\\t"; break;
        case '\033': out += "\\e"; break;
        default:
            if (u >= 0x20 && u < 0x7f) {
                out += c;
            } else {
                char hex[5];
                std::snprintf(hex, sizeof hex, "\\x%02x", u);
                out += hex;
            }
        }
    }
    return out;
}

QString WifiWorld::defaultWorldText()
{
    return QStringLiteral(
        "# Access points in range: bssid, frequency, signal (dBm), flags, ssid, passphrase.\n"
        "3c:7a:8a:10:20:01\t2437\t-42\t[WPA2-PSK-CCMP][ESS]\tClinic-Screening\teyes2026\n"
        "3c:7a:8a:10:20:02\t5180\t-66\t[WPA2-PSK-CCMP][ESS]\tClinic-Screening\teyes2026\n"
        "f0:9f:c2:31:44:10\t2412\t-55\t[WPA-PSK-TKIP+CCMP][WPA2-PSK-CCMP][ESS]\tSchool Nurse Office\tnurse-4412\n"
        "a4:2b:b0:77:01:9e\t2462\t-61\t[ESS]\tGuest\t\n"
        "60:a4:4c:e2:91:05\t2422\t-71\t[WPA2-PSK-CCMP][ESS]\t\u773c\u79d1\u7b5b\u67e5\tshaicha2026\n"
        "d8:07:b6:52:3a:11\t5240\t-76\t[WPA2-PSK-CCMP][ESS]\tCl\u00ednica Ni\u00f1os\tninos-2026\n"
        "00:1a:2b:3c:4d:5e\t2447\t-83\t[WEP][ESS]\tOldRouter\t\n"
        "12:34:56:78:9a:bc\t2457\t-79\t[WPA2-PSK-CCMP][ESS]\t\t\n");
}

QString WifiWorld::defaultConfigText()
{
    return QStringLiteral("ctrl_interface=/var/run/wpa_supplicant\n"
                          "update_config=1\n"
                          "\n"
                          "network={\n"
                          "\tssid=\"Clinic-Screening\"\n"
                          "\tpsk=\"eyes2026\"\n"
                          "\tpriority=10\n"
                          "}\n");
}

void WifiWorld::loadWorld()
{
    const QString path = m_dir + QStringLiteral("/world.tsv");
    if (!QFile::exists(path))
        writeText(path, defaultWorldText());
    m_world.clear();
    const QStringList lines = readText(path).split('\n');
    for (const QString &line : lines) {
        if (line.isEmpty() || line.startsWith('#'))
            continue;
        const QStringList f = line.split('\t');
        if (f.size() < 5)
            continue;
        AccessPoint ap;
        ap.bssid = f.at(0);
        ap.frequency = f.at(1).toInt();
        ap.signal = f.at(2).toInt();
        ap.flags = f.at(3);
        ap.ssid = f.at(4).toUtf8();
        ap.passphrase = f.size() > 5 ? f.at(5).toUtf8() : QByteArray();
        m_world.append(ap);
    }
}

void WifiWorld::loadConfig()
{
    const QString path = m_dir + QStringLiteral("/wpa_supplicant.conf");
    if (!QFile::exists(path))
        writeText(path, defaultConfigText());
    m_networks.clear();
    Network current;
    bool inBlock = false;
    const QStringList lines = readText(path).split('\n');
    for (const QString &raw : lines) {
        const QString line = raw.trimmed();
        if (line == QLatin1String("network={")) {
            current = Network();
            current.disabled = false;
            inBlock = true;
        } else if (line == QLatin1String("}") && inBlock) {
            current.id = m_networks.size();
            m_networks.append(current);
            inBlock = false;
        } else if (inBlock) {
            const int eq = line.indexOf('=');
            if (eq < 0)
                continue;
            const QString key = line.left(eq);
            const QString value = line.mid(eq + 1);
            if (key == QLatin1String("ssid"))
                current.ssid = parseStringValue(value).value_or(QByteArray());
            else if (key == QLatin1String("psk"))
                current.psk = parseStringValue(value).value_or(QByteArray());
            else if (key == QLatin1String("key_mgmt"))
                current.keyMgmt = value;
            else if (key == QLatin1String("priority"))
                current.priority = value.toInt();
            else if (key == QLatin1String("disabled"))
                current.disabled = value == QLatin1String("1");
        }
    }
}

QString WifiWorld::configText() const
{
    QString text = QStringLiteral("ctrl_interface=/var/run/wpa_supplicant\nupdate_config=1\n");
    for (const Network &n : m_networks) {
        text += QStringLiteral("\nnetwork={\n\tssid=") + configValue(n.ssid) + '\n';
        if (!n.psk.isEmpty())
            text += QStringLiteral("\tpsk=") + configValue(n.psk) + '\n';
        if (n.keyMgmt != QLatin1String("WPA-PSK WPA-EAP"))
            text += QStringLiteral("\tkey_mgmt=") + n.keyMgmt + '\n';
        if (n.priority != 0)
            text += QStringLiteral("\tpriority=") + QString::number(n.priority) + '\n';
        if (n.disabled)
            text += QStringLiteral("\tdisabled=1\n");
        text += QStringLiteral("}\n");
    }
    return text;
}

void WifiWorld::load()
{
    QDir().mkpath(m_dir);
    loadWorld();
    const QString runtime = m_dir + QStringLiteral("/runtime.tsv");
    if (!QFile::exists(runtime)) {
        // A fresh supplicant starts from its configuration file, and has
        // been running since the device booted: a network it can join is
        // joined already.
        loadConfig();
        refreshAssociation(nowMs() - 10LL * m_joinMs);
        return;
    }
    m_networks.clear();
    const QStringList lines = readText(runtime).split('\n');
    for (const QString &line : lines) {
        const QStringList f = line.split('\t');
        if (f.at(0) == QLatin1String("assoc") && f.size() >= 4) {
            m_assocId = f.at(1).toInt();
            m_assocSinceMs = f.at(2).toLongLong();
            m_assocKey = QByteArray::fromHex(f.at(3).toLatin1());
        } else if (f.at(0) == QLatin1String("net") && f.size() >= 7) {
            Network n;
            n.id = f.at(1).toInt();
            n.ssid = QByteArray::fromHex(f.at(2).toLatin1());
            n.psk = QByteArray::fromHex(f.at(3).toLatin1());
            n.keyMgmt = f.at(4);
            n.priority = f.at(5).toInt();
            n.disabled = f.at(6) == QLatin1String("1");
            m_networks.append(n);
        }
    }
}

void WifiWorld::save() const
{
    QString text = QStringLiteral("assoc\t%1\t%2\t%3\n")
                       .arg(m_assocId)
                       .arg(m_assocSinceMs)
                       .arg(QString::fromLatin1(m_assocKey.toHex()));
    for (const Network &n : m_networks) {
        text += QStringLiteral("net\t%1\t%2\t%3\t%4\t%5\t%6\n")
                    .arg(n.id)
                    .arg(QString::fromLatin1(n.ssid.toHex()), QString::fromLatin1(n.psk.toHex()), n.keyMgmt)
                    .arg(n.priority)
                    .arg(n.disabled ? 1 : 0);
    }
    writeText(m_dir + QStringLiteral("/runtime.tsv"), text);
}

Network *WifiWorld::network(int id)
{
    for (Network &n : m_networks) {
        if (n.id == id)
            return &n;
    }
    return nullptr;
}

const AccessPoint *WifiWorld::accessPointFor(const Network &network) const
{
    const AccessPoint *best = nullptr;
    for (const AccessPoint &ap : m_world) {
        if (!ap.ssid.isEmpty() && ap.ssid == network.ssid && (!best || ap.signal > best->signal))
            best = &ap;
    }
    return best;
}

WifiWorld::Credentials WifiWorld::credentials(const Network &network, const AccessPoint &ap) const
{
    if (ap.secured()) {
        if (!network.keyMgmt.contains(QLatin1String("WPA-PSK")) || network.psk.isEmpty())
            return Credentials::Unusable;
        return network.psk == ap.passphrase ? Credentials::Match : Credentials::Wrong;
    }
    // An open network needs key_mgmt NONE; a WEP one would need a key too.
    if (network.keyMgmt != QLatin1String("NONE") || ap.flags.contains(QLatin1String("WEP")))
        return Credentials::Unusable;
    return Credentials::Match;
}

const Network *WifiWorld::target() const
{
    // Highest priority first, then the strongest signal, as the supplicant
    // picks among the enabled networks whose security fits an access point.
    const Network *best = nullptr;
    int bestSignal = 0;
    for (const Network &n : m_networks) {
        if (n.disabled)
            continue;
        const AccessPoint *ap = accessPointFor(n);
        if (!ap || credentials(n, *ap) == Credentials::Unusable)
            continue;
        if (!best || n.priority > best->priority || (n.priority == best->priority && ap->signal > bestSignal)) {
            best = &n;
            bestSignal = ap->signal;
        }
    }
    return best;
}

void WifiWorld::refreshAssociation(qint64 now)
{
    const Network *t = target();
    QByteArray key;
    if (t)
        key = QByteArray::number(t->id) + '\0' + t->ssid + '\0' + t->psk + '\0' + t->keyMgmt.toLatin1();
    if (key != m_assocKey) {
        m_assocKey = key;
        m_assocId = t ? t->id : -1;
        m_assocSinceMs = now;
    }
}

QString WifiWorld::state(qint64 now)
{
    refreshAssociation(now);
    const Network *t = target();
    if (!t) {
        const bool anyEnabled =
            std::any_of(m_networks.begin(), m_networks.end(), [](const Network &n) { return !n.disabled; });
        return anyEnabled ? QStringLiteral("SCANNING") : QStringLiteral("INACTIVE");
    }
    const qint64 elapsed = now - m_assocSinceMs;
    if (elapsed < m_joinMs / 3)
        return QStringLiteral("SCANNING");
    if (elapsed < 2 * m_joinMs / 3)
        return QStringLiteral("ASSOCIATING");
    if (credentials(*t, *accessPointFor(*t)) == Credentials::Match)
        return QStringLiteral("COMPLETED");
    // A wrong passphrase fails in the handshake, then the link drops.
    return elapsed < 2 * m_joinMs ? QStringLiteral("4WAY_HANDSHAKE") : QStringLiteral("DISCONNECTED");
}

QString WifiWorld::scanResults() const
{
    QString out = QStringLiteral("bssid / frequency / signal level / flags / ssid\n");
    for (const AccessPoint &ap : m_world) {
        out += QStringLiteral("%1\t%2\t%3\t%4\t%5\n")
                   .arg(ap.bssid)
                   .arg(ap.frequency)
                   .arg(ap.signal)
                   .arg(ap.flags, QString::fromLatin1(escapeSsid(ap.ssid)));
    }
    return out;
}

QString WifiWorld::listNetworks(qint64 now)
{
    const bool completed = state(now) == QLatin1String("COMPLETED");
    QString out = QStringLiteral("network id / ssid / bssid / flags\n");
    for (const Network &n : m_networks) {
        QString flags;
        if (n.disabled)
            flags = QStringLiteral("[DISABLED]");
        else if (completed && n.id == m_assocId)
            flags = QStringLiteral("[CURRENT]");
        out += QStringLiteral("%1\t%2\tany\t%3\n").arg(n.id).arg(QString::fromLatin1(escapeSsid(n.ssid)), flags);
    }
    return out;
}

QString WifiWorld::status(qint64 now)
{
    const QString wpaState = state(now);
    QString out;
    const Network *t = target();
    if (t && (wpaState == QLatin1String("COMPLETED") || wpaState == QLatin1String("4WAY_HANDSHAKE"))) {
        const AccessPoint *ap = accessPointFor(*t);
        const bool secured = ap->secured();
        out += QStringLiteral("bssid=%1\nfreq=%2\nssid=%3\nid=%4\nmode=station\n")
                   .arg(ap->bssid)
                   .arg(ap->frequency)
                   .arg(QString::fromLatin1(escapeSsid(t->ssid)))
                   .arg(t->id);
        out += secured ? QStringLiteral("pairwise_cipher=CCMP\ngroup_cipher=CCMP\nkey_mgmt=WPA2-PSK\n")
                       : QStringLiteral("pairwise_cipher=NONE\ngroup_cipher=NONE\nkey_mgmt=NONE\n");
    }
    out += QStringLiteral("wpa_state=") + wpaState + '\n';
    if (wpaState == QLatin1String("COMPLETED"))
        out += QStringLiteral("ip_address=192.168.50.%1\n").arg(20 + t->id);
    out +=
        QStringLiteral("address=%1\nuuid=5f0c8a4e-1d2b-5c3a-9e77-0b6f2d41a9c3\n").arg(QLatin1String(kStationAddress));
    return out;
}

QString WifiWorld::signalPoll(qint64 now)
{
    if (state(now) != QLatin1String("COMPLETED"))
        return QString::fromLatin1(kFail);
    const AccessPoint *ap = accessPointFor(*target());
    return QStringLiteral("RSSI=%1\nLINKSPEED=72\nNOISE=9999\nFREQUENCY=%2\n")
        .arg(ap->signal + rssiDrift(now - m_assocSinceMs))
        .arg(ap->frequency);
}

std::optional<QString> WifiWorld::leaseAddress()
{
    load();
    const qint64 now = nowMs();
    std::optional<QString> address;
    if (state(now) == QLatin1String("COMPLETED"))
        address = QStringLiteral("192.168.50.%1").arg(20 + target()->id);
    save();
    return address;
}

QString WifiWorld::setNetwork(const QStringList &args)
{
    if (args.size() < 3)
        return QStringLiteral("Invalid SET_NETWORK command: needs three arguments\n"
                              "(network id, variable name, and value)\n");
    bool ok = false;
    Network *n = network(args.at(0).toInt(&ok));
    if (!ok || !n)
        return QString::fromLatin1(kFail);
    const QString name = args.at(1);
    // wpa_cli joins the remaining words with blanks before sending them.
    const QString value = args.mid(2).join(' ');
    if (name == QLatin1String("ssid")) {
        const auto ssid = parseStringValue(value);
        if (!ssid || ssid->isEmpty() || ssid->size() > 32)
            return QString::fromLatin1(kFail);
        n->ssid = *ssid;
    } else if (name == QLatin1String("psk")) {
        const auto psk = parseStringValue(value);
        if (!psk || (value.startsWith('"') && (psk->size() < 8 || psk->size() > 63)))
            return QString::fromLatin1(kFail);
        n->psk = *psk;
    } else if (name == QLatin1String("key_mgmt")) {
        if (!validKeyMgmt(value))
            return QString::fromLatin1(kFail);
        n->keyMgmt = value.split(' ', Qt::SkipEmptyParts).join(' ');
    } else if (name == QLatin1String("priority")) {
        const int priority = value.toInt(&ok);
        if (!ok)
            return QString::fromLatin1(kFail);
        n->priority = priority;
    } else {
        return QString::fromLatin1(kFail);
    }
    return QString::fromLatin1(kOk);
}

QString WifiWorld::enableDisable(const QStringList &args, bool enable)
{
    if (args.isEmpty())
        return QString::fromLatin1(kFail);
    if (args.at(0) == QLatin1String("all")) {
        for (Network &n : m_networks)
            n.disabled = !enable;
        return QString::fromLatin1(kOk);
    }
    bool ok = false;
    Network *n = network(args.at(0).toInt(&ok));
    if (!ok || !n)
        return QString::fromLatin1(kFail);
    n->disabled = !enable;
    return QString::fromLatin1(kOk);
}

QString WifiWorld::removeNetwork(const QStringList &args)
{
    if (args.isEmpty())
        return QString::fromLatin1(kFail);
    if (args.at(0) == QLatin1String("all")) {
        m_networks.clear();
        return QString::fromLatin1(kOk);
    }
    bool ok = false;
    const int id = args.at(0).toInt(&ok);
    const auto it = std::find_if(m_networks.begin(), m_networks.end(), [id](const Network &n) { return n.id == id; });
    if (!ok || it == m_networks.end())
        return QString::fromLatin1(kFail);
    m_networks.erase(it);
    return QString::fromLatin1(kOk);
}

QString WifiWorld::selectNetwork(const QStringList &args)
{
    bool ok = false;
    const int id = args.value(0).toInt(&ok);
    if (!ok || !network(id))
        return QString::fromLatin1(kFail);
    for (Network &n : m_networks)
        n.disabled = n.id != id;
    return QString::fromLatin1(kOk);
}

QString WifiWorld::runCommand(const QStringList &words)
{
    static const QStringList commands = {
        QStringLiteral("scan"),
        QStringLiteral("scan_results"),
        QStringLiteral("list_networks"),
        QStringLiteral("add_network"),
        QStringLiteral("set_network"),
        QStringLiteral("enable_network"),
        QStringLiteral("disable_network"),
        QStringLiteral("remove_network"),
        QStringLiteral("select_network"),
        QStringLiteral("save_config"),
        QStringLiteral("reconfigure"),
        QStringLiteral("status"),
        QStringLiteral("signal_poll"),
        QStringLiteral("ping"),
    };
    if (words.isEmpty())
        return QString();
    // Like wpa_cli: an exact name, or an unambiguous prefix of one.
    QString command = words.at(0);
    if (!commands.contains(command)) {
        QStringList matches;
        for (const QString &c : commands) {
            if (c.startsWith(command))
                matches << c;
        }
        if (matches.size() > 1)
            return QStringLiteral("Ambiguous command '%1'; possible commands: %2\n").arg(command, matches.join(' '));
        if (matches.isEmpty())
            return QStringLiteral("Unknown command '%1'\n").arg(command);
        command = matches.at(0);
    }
    const QStringList args = words.mid(1);

    load();
    const qint64 now = nowMs();
    // Bring the association up to date before the command changes anything,
    // so that a change of target restarts the join from this moment.
    refreshAssociation(now);
    QString out;
    if (command == QLatin1String("scan") || command == QLatin1String("save_config") ||
        command == QLatin1String("reconfigure")) {
        if (command == QLatin1String("save_config"))
            writeText(m_dir + QStringLiteral("/wpa_supplicant.conf"), configText());
        else if (command == QLatin1String("reconfigure"))
            loadConfig();
        out = QString::fromLatin1(kOk);
    } else if (command == QLatin1String("scan_results")) {
        out = scanResults();
    } else if (command == QLatin1String("list_networks")) {
        out = listNetworks(now);
    } else if (command == QLatin1String("add_network")) {
        Network n;
        for (const Network &existing : m_networks)
            n.id = std::max(n.id, existing.id + 1);
        m_networks.append(n);
        out = QString::number(n.id) + '\n';
    } else if (command == QLatin1String("set_network")) {
        out = setNetwork(args);
    } else if (command == QLatin1String("enable_network")) {
        out = enableDisable(args, true);
    } else if (command == QLatin1String("disable_network")) {
        out = enableDisable(args, false);
    } else if (command == QLatin1String("remove_network")) {
        out = removeNetwork(args);
    } else if (command == QLatin1String("select_network")) {
        out = selectNetwork(args);
    } else if (command == QLatin1String("status")) {
        out = status(now);
    } else if (command == QLatin1String("signal_poll")) {
        out = signalPoll(now);
    } else if (command == QLatin1String("ping")) {
        out = QStringLiteral("PONG\n");
    }
    refreshAssociation(now);
    save();
    return out;
}

} // namespace sim
