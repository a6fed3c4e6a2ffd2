// SPDX-License-Identifier: GPL-2.0-or-later
// The simulated Bluetooth neighbourhood behind the bluetoothctl and rfcomm stand-ins.
#include "bluetoothworld.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QRandomGenerator>
#include <QThread>

#include <csignal>
#include <cstdio>
#include <poll.h>
#include <unistd.h>

namespace sim {

namespace {

// bluetoothctl's own colours: green NEW, yellow CHG, blue prompt.
const char kPrompt[] = "\x1b[0;94m[bluetooth]\x1b[0m# ";
const char kNew[] = "[\x1b[0;92mNEW\x1b[0m]";
const char kChange[] = "[\x1b[0;93mCHG\x1b[0m]";

// A refused or silent pairing answers after this long, like a radio would.
constexpr int kPairingAnswerMs = 300;
// A device that never answers holds the pair command this long at most.
constexpr int kSilentPairingMs = 30000;
// Events while scanning come this often.
constexpr int kScanEventMs = 250;

void out(const QString &text)
{
    const QByteArray bytes = text.toUtf8();
    std::fwrite(bytes.constData(), 1, static_cast<size_t>(bytes.size()), stdout);
    std::fflush(stdout);
}

// An event interrupts the prompt line: back to its start, clear it, print the
// event, print the prompt again, as readline does on a terminal.
void event(const QString &text)
{
    out(QStringLiteral("\r\x1b[K") + text + QLatin1Char('\n') + QLatin1String(kPrompt));
}

QString change(const QString &mac, const QString &what)
{
    return QStringLiteral("%1 Device %2 %3").arg(QLatin1String(kChange), mac, what);
}

QVector<BtNeighbour> parseWorld(const QString &text)
{
    QVector<BtNeighbour> neighbours;
    for (const QString &line : text.split(QLatin1Char('\n'), Qt::SkipEmptyParts)) {
        if (line.startsWith(QLatin1Char('#')))
            continue;
        const QStringList fields = line.split(QLatin1Char('\t'));
        if (fields.size() < 5)
            continue;
        BtNeighbour n;
        n.mac = fields.at(0).toUpper();
        n.name = fields.at(1);
        n.rssi = fields.at(2).toInt();
        const QString pairing = fields.at(3);
        n.pairing =
            pairing == QLatin1String("refuses")
                ? BtNeighbour::Pairing::Refuses
                : (pairing == QLatin1String("silent") ? BtNeighbour::Pairing::Silent : BtNeighbour::Pairing::Accepts);
        n.printer = fields.at(4) == QLatin1String("printer");
        neighbours << n;
    }
    return neighbours;
}

} // namespace

BluetoothWorld::BluetoothWorld(const QString &stateDir)
    : m_dir(stateDir)
{
    QDir().mkpath(m_dir);
    QFile world(m_dir + QStringLiteral("/world.tsv"));
    if (!world.exists() && world.open(QIODevice::WriteOnly))
        world.write(defaultWorldText().toUtf8());
    world.close();
    if (world.open(QIODevice::ReadOnly))
        m_neighbours = parseWorld(QString::fromUtf8(world.readAll()));
    QFile paired(m_dir + QStringLiteral("/paired.txt"));
    if (paired.open(QIODevice::ReadOnly))
        m_paired = QString::fromUtf8(paired.readAll()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

QString BluetoothWorld::defaultWorldText()
{
    return QStringLiteral("# MAC\tname\tRSSI\tpairing (accepts, refuses, silent)\tkind\n"
                          "66:12:A0:3C:58:01\tORV-P58 Receipt Printer\t-58\taccepts\tprinter\n"
                          "4C:87:5D:21:0A:9E\tNurse's phone\t-71\trefuses\tphone\n"
                          "F0:5C:77:E2:19:44\tClassroom speaker\t-83\taccepts\taudio\n"
                          "00:1B:DC:45:7A:10\tStaff tablet\t-90\tsilent\ttablet\n");
}

const BtNeighbour *BluetoothWorld::find(const QString &mac) const
{
    for (const BtNeighbour &n : m_neighbours) {
        if (n.mac.compare(mac, Qt::CaseInsensitive) == 0)
            return &n;
    }
    return nullptr;
}

bool BluetoothWorld::isPaired(const QString &mac) const
{
    return m_paired.contains(mac.toUpper());
}

void BluetoothWorld::setPaired(const QString &mac)
{
    if (isPaired(mac))
        return;
    m_paired << mac.toUpper();
    QFile paired(m_dir + QStringLiteral("/paired.txt"));
    if (paired.open(QIODevice::Append))
        paired.write((mac.toUpper() + QLatin1Char('\n')).toUtf8());
}

namespace {

class Bluetoothctl
{
public:
    explicit Bluetoothctl(const QString &stateDir)
        : m_world(stateDir)
    {
    }

    // False when the tool should end.
    bool command(const QString &line)
    {
        const QStringList words = line.split(QLatin1Char(' '), Qt::SkipEmptyParts);
        const QString verb = words.value(0);
        const QString mac = words.value(1).toUpper();
        if (verb.isEmpty()) {
            out(QLatin1String(kPrompt));
            return true;
        }
        if (verb == QLatin1String("exit") || verb == QLatin1String("quit"))
            return false;
        if (verb == QLatin1String("scan") && words.value(1) == QLatin1String("on")) {
            m_scanning = true;
            m_scanClock.start();
            m_nextEventMs = kScanEventMs;
            out(QStringLiteral("Discovery started\n"));
            event(change(BluetoothWorld::controllerMac(), QStringLiteral("Discovering: yes"))
                      .replace(QStringLiteral(" Device "), QStringLiteral(" Controller ")));
            return true;
        }
        if (verb == QLatin1String("scan") && words.value(1) == QLatin1String("off")) {
            m_scanning = false;
            out(QStringLiteral("Discovery stopped\n"));
            event(change(BluetoothWorld::controllerMac(), QStringLiteral("Discovering: no"))
                      .replace(QStringLiteral(" Device "), QStringLiteral(" Controller ")));
            return true;
        }
        if (verb == QLatin1String("agent")) {
            out(m_agent ? QStringLiteral("Agent is already registered\n") : QStringLiteral("Agent registered\n"));
            m_agent = true;
        } else if (verb == QLatin1String("default-agent")) {
            out(m_agent ? QStringLiteral("Default agent request successful\n")
                        : QStringLiteral("No agent is registered\n"));
        } else if (verb == QLatin1String("devices")) {
            for (const BtNeighbour &n : m_world.neighbours())
                out(QStringLiteral("Device %1 %2\n").arg(n.mac, n.name));
        } else if (verb == QLatin1String("pair")) {
            pair(mac);
        } else if (verb == QLatin1String("trust")) {
            if (m_world.find(mac)) {
                event(change(mac, QStringLiteral("Trusted: yes")));
                out(QStringLiteral("Changing %1 trust succeeded\n").arg(mac));
            } else {
                out(QStringLiteral("Device %1 not available\n").arg(mac));
            }
        } else {
            out(QStringLiteral("Invalid command in menu main: %1\n\nUse \"help\" for a list of available commands "
                               "in a menu.\n")
                    .arg(verb));
        }
        out(QLatin1String(kPrompt));
        return true;
    }

    // Discovery events: each device appears once, then strengths wander.
    void tick()
    {
        if (!m_scanning || m_scanClock.elapsed() < m_nextEventMs)
            return;
        m_nextEventMs += kScanEventMs;
        const QVector<BtNeighbour> &all = m_world.neighbours();
        if (all.isEmpty())
            return;
        if (m_announced < all.size()) {
            const BtNeighbour &n = all.at(m_announced++);
            event(QStringLiteral("%1 Device %2 %3").arg(QLatin1String(kNew), n.mac, n.name));
            return;
        }
        const BtNeighbour &n = all.at(QRandomGenerator::global()->bounded(all.size()));
        const int rssi = n.rssi + QRandomGenerator::global()->bounded(-4, 5);
        event(change(n.mac, QStringLiteral("RSSI: %1").arg(rssi)));
    }

private:
    void pair(const QString &mac)
    {
        const BtNeighbour *n = m_world.find(mac);
        if (!n) {
            out(QStringLiteral("Device %1 not available\n").arg(mac));
            return;
        }
        out(QStringLiteral("Attempting to pair with %1\n").arg(mac));
        if (m_world.isPaired(mac)) {
            out(QStringLiteral("Failed to pair: org.bluez.Error.AlreadyExists\n"));
            return;
        }
        switch (n->pairing) {
        case BtNeighbour::Pairing::Accepts:
            QThread::msleep(kPairingAnswerMs);
            event(change(mac, QStringLiteral("Connected: yes")));
            event(change(mac, QStringLiteral("Paired: yes")));
            out(QStringLiteral("Pairing successful\n"));
            m_world.setPaired(mac);
            break;
        case BtNeighbour::Pairing::Refuses:
            QThread::msleep(kPairingAnswerMs);
            event(change(mac, QStringLiteral("Connected: no")));
            out(QStringLiteral("Failed to pair: org.bluez.Error.AuthenticationFailed\n"));
            break;
        case BtNeighbour::Pairing::Silent:
            QThread::msleep(kSilentPairingMs);
            out(QStringLiteral("Failed to pair: org.bluez.Error.ConnectionAttemptFailed\n"));
            break;
        }
    }

    BluetoothWorld m_world;
    bool m_agent = false;
    bool m_scanning = false;
    QElapsedTimer m_scanClock;
    qint64 m_nextEventMs = 0;
    int m_announced = 0;
};

} // namespace

int runBluetoothctl(const QString &stateDir, int inputFd)
{
    Bluetoothctl tool(stateDir);
    out(QStringLiteral("Agent registered\n"));
    event(
        QStringLiteral("%1 Controller %2 Pairable: yes").arg(QLatin1String(kChange), BluetoothWorld::controllerMac()));
    QByteArray pending;
    for (;;) {
        pollfd input{inputFd, POLLIN, 0};
        const int ready = ::poll(&input, 1, 50);
        if (ready > 0) {
            char buffer[512];
            const ssize_t n = ::read(inputFd, buffer, sizeof buffer);
            if (n <= 0)
                return 0;
            pending.append(buffer, static_cast<int>(n));
        }
        for (int end = pending.indexOf('\n'); end >= 0; end = pending.indexOf('\n')) {
            const QString line = QString::fromUtf8(pending.left(end)).trimmed();
            pending.remove(0, end + 1);
            if (!tool.command(line))
                return 0;
        }
        tool.tick();
    }
}

int runRfcomm(const QString &stateDir, const QStringList &args, const QString &devicePath,
              const QString &printerProgram)
{
    const QString dir = stateDir + QStringLiteral("/printer");
    QDir().mkpath(dir);
    const QString pidFile = dir + QStringLiteral("/rfcomm0.pid");
    const QString boundFile = dir + QStringLiteral("/bound.txt");
    const QFileInfo node(devicePath);
    const bool bound = node.isSymLink();

    if (args.value(0) == QLatin1String("release") && args.size() == 2) {
        if (!bound) {
            std::fprintf(stderr, "Can't release device: No such device\n");
            return 1;
        }
        QFile pids(pidFile);
        if (pids.open(QIODevice::ReadOnly)) {
            const pid_t pid = static_cast<pid_t>(pids.readAll().trimmed().toInt());
            if (pid > 1)
                ::kill(pid, SIGTERM);
        }
        QFile::remove(pidFile);
        QFile::remove(boundFile);
        QFile::remove(devicePath);
        return 0;
    }
    if (args.value(0) == QLatin1String("bind") && args.size() >= 3) {
        if (bound) {
            std::fprintf(stderr, "Can't create device: Address already in use\n");
            return 1;
        }
        const QString mac = args.at(2).toUpper();
        const QString channel = args.value(3, QStringLiteral("1"));
        QDir().mkpath(node.absolutePath());
        QFile boundText(boundFile);
        if (boundText.open(QIODevice::WriteOnly))
            boundText.write(QStringLiteral("%1 channel %2\n").arg(mac, channel).toUtf8());
        const BluetoothWorld world(stateDir + QStringLiteral("/bluetooth"));
        const BtNeighbour *n = world.find(mac);
        if (!n || !n->printer || channel != QLatin1String("1")) {
            // The node exists but nothing answers behind it: opening it
            // fails, as a real port bound to a device without that service.
            QFile::link(dir + QStringLiteral("/no-serial-port-at-") + mac, devicePath);
            return 0;
        }
        // Its own channels: a helper that held rfcomm's pipes would keep the
        // device reading an answer that never ends.
        QProcess printer;
        printer.setProgram(printerProgram);
        printer.setArguments({devicePath, dir, mac, QString::number(static_cast<qint64>(::getppid()))});
        printer.setStandardInputFile(QProcess::nullDevice());
        printer.setStandardOutputFile(QProcess::nullDevice());
        printer.setStandardErrorFile(QProcess::nullDevice());
        qint64 pid = 0;
        if (!printer.startDetached(&pid)) {
            std::fprintf(stderr, "Can't create device: No such file or directory\n");
            return 1;
        }
        QFile pids(pidFile);
        if (pids.open(QIODevice::WriteOnly))
            pids.write(QByteArray::number(pid));
        QElapsedTimer waited;
        waited.start();
        while (!QFileInfo::exists(devicePath) && waited.elapsed() < 700)
            QThread::msleep(10);
        return QFileInfo::exists(devicePath) ? 0 : 1;
    }
    std::fprintf(stderr, "rfcomm stand-in: only \"release 0\" and \"bind 0 MAC [CHANNEL]\" are simulated\n");
    return 1;
}

} // namespace sim
