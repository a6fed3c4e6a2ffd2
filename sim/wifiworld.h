// SPDX-License-Identifier: GPL-2.0-or-later
// The simulated radio world behind the wpa_cli stand-in: access points, saved networks, association.
#pragma once

#include <QString>
#include <QStringList>
#include <QVector>

#include <optional>

namespace sim {

// One access point in range, as a scan would report it.
struct AccessPoint
{
    QString bssid;
    int frequency = 2437;
    int signal = -50;
    QString flags;   // "[WPA2-PSK-CCMP][ESS]", "[ESS]", ...
    QByteArray ssid; // raw bytes; empty for a hidden network
    QByteArray passphrase;

    bool secured() const { return flags.contains(QLatin1String("WPA")); }
};

// One network block of the supplicant, saved or not.
struct Network
{
    int id = 0;
    QByteArray ssid;
    QByteArray psk;
    QString keyMgmt = QStringLiteral("WPA-PSK WPA-EAP");
    int priority = 0;
    bool disabled = true;
};

// The state lives in files under one folder, so that every run of the
// stand-in (one process per command) sees what the previous ones did:
//   world.tsv            access points in range (created with a default set)
//   wpa_supplicant.conf  what save_config wrote, read again by reconfigure
//   runtime.tsv          the supplicant's in-memory networks and association
class WifiWorld
{
public:
    explicit WifiWorld(const QString &stateDir);

    // Loads the state, runs one wpa_cli command (the words after the
    // options), saves the state and returns what wpa_cli prints.
    QString runCommand(const QStringList &words);

    // udhcpc's view: an address when associated, nothing otherwise.
    std::optional<QString> leaseAddress();

    static QByteArray escapeSsid(const QByteArray &ssid);
    static QString defaultWorldText();
    static QString defaultConfigText();

private:
    enum class Credentials { Match, Wrong, Unusable };

    void load();
    void save() const;
    void loadConfig();
    QString configText() const;
    void loadWorld();

    Network *network(int id);
    const AccessPoint *accessPointFor(const Network &network) const;
    Credentials credentials(const Network &network, const AccessPoint &ap) const;
    const Network *target() const;
    QString state(qint64 nowMs);
    void refreshAssociation(qint64 nowMs);

    QString setNetwork(const QStringList &args);
    QString enableDisable(const QStringList &args, bool enable);
    QString removeNetwork(const QStringList &args);
    QString selectNetwork(const QStringList &args);
    QString scanResults() const;
    QString listNetworks(qint64 nowMs);
    QString status(qint64 nowMs);
    QString signalPoll(qint64 nowMs);

    QString m_dir;
    QVector<AccessPoint> m_world;
    QVector<Network> m_networks;
    int m_assocId = -1;
    QByteArray m_assocKey;
    qint64 m_assocSinceMs = 0;
    int m_joinMs = 1500;
};

} // namespace sim
