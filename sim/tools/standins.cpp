// SPDX-License-Identifier: GPL-2.0-or-later
// Stand-ins for the device's system programs, one binary called under each program's name.
//
// The simulator puts links named wpa_cli, udhcpc, rmmod, poweroff, reboot,
// bluetoothctl and rfcomm first on PATH. Their state lives under
// $ORVELLA_SIM_DIR, never on the host: poweroff and reboot end the simulated
// device (the pid in device.pid), reboot leaving reboot-requested for
// scripts/simulate to start it again, rfcomm binds the printer's port at the
// path of the deployment file's devices/printer_serial (else sys/rfcomm0),
// and every call is appended to commands.log so that tests can see what ran.
#include "bluetoothworld.h"
#include "wifiworld.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSettings>
#include <QThread>

#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace {

QString s_stateDir;

void appendLine(const QString &name, const QString &line)
{
    QFile file(s_stateDir + '/' + name);
    if (file.open(QIODevice::Append))
        file.write((line + '\n').toUtf8());
}

void print(const QString &text)
{
    const QByteArray bytes = text.toUtf8();
    std::fwrite(bytes.constData(), 1, static_cast<size_t>(bytes.size()), stdout);
}

// One command at a time across processes, as the supplicant's control socket
// serialises them.
class StateLock
{
public:
    StateLock()
    {
        const QByteArray path = QFile::encodeName(s_stateDir + QStringLiteral("/lock"));
        m_fd = ::open(path.constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0644);
        if (m_fd >= 0)
            ::flock(m_fd, LOCK_EX);
    }
    ~StateLock()
    {
        if (m_fd >= 0)
            ::close(m_fd);
    }
    StateLock(const StateLock &) = delete;
    StateLock &operator=(const StateLock &) = delete;

private:
    int m_fd = -1;
};

int wpaCli(const QStringList &args)
{
    QString interface;
    int i = 0;
    while (i < args.size() && args.at(i).startsWith('-')) {
        const QString option = args.at(i);
        if ((option == QLatin1String("-i") || option == QLatin1String("-p")) && i + 1 < args.size()) {
            if (option == QLatin1String("-i"))
                interface = args.at(i + 1);
            i += 2;
        } else if (option.startsWith(QLatin1String("-i"))) {
            interface = option.mid(2);
            ++i;
        } else {
            ++i;
        }
    }
    if (!interface.isEmpty() && interface != QLatin1String("wlan0")) {
        print(QStringLiteral("Failed to connect to non-global ctrl_ifname: %1  error: No such file or directory\n")
                  .arg(interface));
        return 255;
    }
    const QStringList words = args.mid(i);
    if (words.isEmpty()) {
        std::fprintf(stderr, "wpa_cli stand-in: interactive mode is not simulated\n");
        return 1;
    }
    StateLock lock;
    const QString out = sim::WifiWorld(s_stateDir + QStringLiteral("/wifi")).runCommand(words);
    print(out);
    return out.startsWith(QLatin1String("FAIL")) ? 255 : 0;
}

// The number after an option such as "-t 3", or the fallback.
int optionValue(const QStringList &args, const QString &option, int fallback)
{
    const int at = args.indexOf(option);
    bool ok = false;
    const int value = at >= 0 && at + 1 < args.size() ? args.at(at + 1).toInt(&ok) : 0;
    return ok && value >= 0 ? value : fallback;
}

// As busybox's: -t discovers -T seconds apart; without a lease, -n fails and
// otherwise it rests -A seconds and tries again, for ever (-q only quits
// once it has a lease). A DHCP server that does not answer is the
// "dhcp-silent" file in the Wi-Fi state folder.
int udhcpc(const QStringList &args)
{
    const bool failWithoutLease = args.contains(QStringLiteral("-n"));
    const int tries = optionValue(args, QStringLiteral("-t"), 3);
    const int pauseSeconds = optionValue(args, QStringLiteral("-T"), 3);
    const int restSeconds = optionValue(args, QStringLiteral("-A"), 20);
    const QString wifiDir = s_stateDir + QStringLiteral("/wifi");
    print(QStringLiteral("udhcpc: started, v1.36.1\n"));
    for (;;) {
        for (int attempt = 0; attempt < qMax(tries, 1); ++attempt) {
            print(QStringLiteral("udhcpc: broadcasting discover\n"));
            std::optional<QString> address;
            if (!QFile::exists(wifiDir + QStringLiteral("/dhcp-silent"))) {
                StateLock lock;
                address = sim::WifiWorld(wifiDir).leaseAddress();
            }
            if (address) {
                print(QStringLiteral("udhcpc: broadcasting select for %1, server 192.168.50.1\n"
                                     "udhcpc: lease of %1 obtained from 192.168.50.1, lease time 86400\n")
                          .arg(*address));
                return 0;
            }
            QThread::sleep(static_cast<unsigned long>(pauseSeconds));
        }
        if (failWithoutLease) {
            print(QStringLiteral("udhcpc: no lease, failing\n"));
            return 1;
        }
        QThread::sleep(static_cast<unsigned long>(restSeconds));
    }
}

QString printerDevicePath()
{
    const QString deployment = qEnvironmentVariable("ORVELLA_PLATFORM_FILE");
    if (!deployment.isEmpty()) {
        const QString path =
            QSettings(deployment, QSettings::IniFormat).value(QStringLiteral("devices/printer_serial")).toString();
        if (!path.isEmpty())
            return path;
    }
    return s_stateDir + QStringLiteral("/sys/rfcomm0");
}

int endDevice(const QString &how)
{
    appendLine(QStringLiteral("events.log"),
               QStringLiteral("%1 %2").arg(QDateTime::currentDateTime().toString(Qt::ISODate), how));
    QFile pidFile(s_stateDir + QStringLiteral("/device.pid"));
    if (pidFile.open(QIODevice::ReadOnly)) {
        bool ok = false;
        const pid_t pid = static_cast<pid_t>(pidFile.readAll().trimmed().toInt(&ok));
        if (ok && pid > 1)
            ::kill(pid, SIGTERM);
    }
    return 0;
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    const QString name = QFileInfo(QString::fromLocal8Bit(argv[0])).fileName();
    QStringList args;
    for (int i = 1; i < argc; ++i)
        args << QString::fromLocal8Bit(argv[i]);

    s_stateDir = qEnvironmentVariable("ORVELLA_SIM_DIR");
    if (s_stateDir.isEmpty()) {
        // Without its own folder a stand-in must not guess one on the host.
        std::fprintf(stderr, "%s (simulator stand-in): ORVELLA_SIM_DIR is not set\n", qPrintable(name));
        return 127;
    }
    QDir().mkpath(s_stateDir);
    appendLine(QStringLiteral("commands.log"), (QStringList(name) + args).join(' '));

    if (name == QLatin1String("wpa_cli"))
        return wpaCli(args);
    if (name == QLatin1String("udhcpc"))
        return udhcpc(args);
    if (name == QLatin1String("reboot")) {
        // scripts/simulate boots the device again when it finds this.
        QFile request(s_stateDir + QStringLiteral("/reboot-requested"));
        if (request.open(QIODevice::WriteOnly))
            request.close();
        return endDevice(name);
    }
    if (name == QLatin1String("poweroff"))
        return endDevice(name);
    if (name == QLatin1String("bluetoothctl"))
        return sim::runBluetoothctl(s_stateDir + QStringLiteral("/bluetooth"), STDIN_FILENO);
    if (name == QLatin1String("rfcomm"))
        return sim::runRfcomm(s_stateDir, args, printerDevicePath(),
                              QCoreApplication::applicationDirPath() + QStringLiteral("/orvella-receiptprinter"));
    if (name == QLatin1String("rmmod")) {
        appendLine(QStringLiteral("events.log"), (QStringList(name) + args).join(' '));
        return 0;
    }
    std::fprintf(stderr, "%s: not a simulated program\n", qPrintable(name));
    return 127;
}
