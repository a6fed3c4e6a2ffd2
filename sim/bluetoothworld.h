// SPDX-License-Identifier: GPL-2.0-or-later
// The simulated Bluetooth neighbourhood behind the bluetoothctl and rfcomm stand-ins.
#pragma once

#include <QString>
#include <QStringList>
#include <QVector>

namespace sim {

// One device in radio range.
struct BtNeighbour
{
    enum class Pairing {
        Accepts, // "Pairing successful"
        Refuses, // authentication fails
        Silent,  // never answers: the pair command hangs
    };

    QString mac;
    QString name;
    int rssi = -60;
    Pairing pairing = Pairing::Accepts;
    // Has a serial port with a receipt printer behind it.
    bool printer = false;
};

// State in files under one folder, so that each run of a stand-in (one
// process per command) sees what the earlier ones did:
//   world.tsv   the devices in range (created with a default set)
//   paired.txt  addresses paired so far, one per line
class BluetoothWorld
{
public:
    explicit BluetoothWorld(const QString &stateDir);

    const QVector<BtNeighbour> &neighbours() const { return m_neighbours; }
    const BtNeighbour *find(const QString &mac) const;

    bool isPaired(const QString &mac) const;
    void setPaired(const QString &mac);

    static QString defaultWorldText();
    static QString controllerMac() { return QStringLiteral("C0:FF:EE:12:34:56"); }

private:
    QString m_dir;
    QVector<BtNeighbour> m_neighbours;
    QStringList m_paired;
};

// The interactive tool on a terminal: prompt and colour sequences, events
// while scanning. Reads commands from `inputFd`, answers on standard output,
// returns the exit code.
int runBluetoothctl(const QString &stateDir, int inputFd);

// "release 0" and "bind 0 MAC CHANNEL". A bound printer is a pseudo-terminal
// behind `devicePath`, served by the receipt-printer model `printerProgram`.
int runRfcomm(const QString &stateDir, const QStringList &args, const QString &devicePath,
              const QString &printerProgram);

} // namespace sim
