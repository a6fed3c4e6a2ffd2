// SPDX-License-Identifier: GPL-2.0-or-later
// CmdUtil against the simulator's wpa_cli, udhcpc and poweroff stand-ins.
#include "cmdutil.h"
#include "testsupport.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QElapsedTimer>
#include <QTest>

namespace {

const char kThreeSavedNetworks[] = "ctrl_interface=/var/run/wpa_supplicant\nupdate_config=1\n\n"
                                   "network={\n\tssid=\"Clinic-Screening\"\n\tpsk=\"eyes2026\"\n\tpriority=10\n}\n\n"
                                   "network={\n\tssid=\"School Nurse Office\"\n\tpsk=\"nurse-4412\"\n}\n\n"
                                   "network={\n\tssid=\"Guest\"\n\tkey_mgmt=NONE\n\tdisabled=1\n}\n";

// Only the wpa_cli calls, without the program name and interface option.
QStringList wpaCalls(const QStringList &commands)
{
    QStringList calls;
    for (const QString &line : commands) {
        if (line.startsWith(QLatin1String("wpa_cli -i wlan0 ")))
            calls << line.mid(17);
    }
    return calls;
}

} // namespace

class TestCommandRunner : public QObject, private DeviceFixture
{
    Q_OBJECT

private:
    void saveSupplicantConfig(const QByteArray &text)
    {
        m_device->writeFile(QStringLiteral("sim/wifi/wpa_supplicant.conf"), text);
    }

private slots:
    void init()
    {
        setUp(false);
        qputenv("ORVELLA_SIM_WIFI_JOIN_MS", "300");
    }

    void cleanup()
    {
        qunsetenv("ORVELLA_SIM_WIFI_JOIN_MS");
        tearDown();
    }

    // --- text the shell quoting cannot carry runs nothing ---

    void unquotableTextRunsNoCommand_data()
    {
        QTest::addColumn<QString>("value");
        QTest::newRow("quote injection") << QStringLiteral("'; touch PWNED; '");
        QTest::newRow("newline") << QStringLiteral("Clinic\ntouch PWNED");
        QTest::newRow("control character") << QStringLiteral("Clinic\x1b[2J");
        QTest::newRow("lone quote") << QStringLiteral("Nurse's office");
    }

    void unquotableTextRunsNoCommand()
    {
        QFETCH(QString, value);
        const QString cwd = QDir::currentPath();
        QDir::setCurrent(m_device->root());
        const QString ssid = m_cmd->wireless_setssid(0, value);
        const QString psk = m_cmd->wireless_setpsk(0, value);
        QDir::setCurrent(cwd);
        QCOMPARE(ssid, QString());
        QCOMPARE(psk, QString());
        QVERIFY(!QFile::exists(m_device->root() + QStringLiteral("/PWNED")));
        QVERIFY(!QFile::exists(cwd + QStringLiteral("/PWNED")));
        QCOMPARE(m_device->commandsRun(), QStringList());
    }

    void quotedValuesReachTheSupplicantUnchanged()
    {
        const int id = m_cmd->wireless_addnetwork().trimmed().toInt();
        const QString ssid = QString::fromUtf8("Cl\xc3\xadnica $HOME `id` \"A\"");
        QCOMPARE(m_cmd->wireless_setssid(id, ssid), QStringLiteral("OK\n"));
        QCOMPARE(m_cmd->wireless_setpsk(id, QStringLiteral("p@ss word $1")), QStringLiteral("OK\n"));
        // wpa_cli prints non-ASCII bytes and quotes escaped.
        QVERIFY2(m_cmd->wireless_listnetwork().contains(
                     QStringLiteral("\tCl\\xc3\\xadnica $HOME `id` \\\"A\\\"\tany\t[DISABLED]")),
                 qPrintable(m_cmd->wireless_listnetwork()));
    }

    // --- failure paths of the runners ---

    void unknownKeyManagementSendsNothing()
    {
        QCOMPARE(m_cmd->wireless_setkeymgmt(0, QStringLiteral("WPA")), QString());
        QCOMPARE(m_device->commandsRun(), QStringList());
        QCOMPARE(m_cmd->wireless_setkeymgmt(0, QStringLiteral("NONE")), QStringLiteral("OK\n"));
        // Sent with the underscore as written; the supplicant refuses it.
        QCOMPARE(m_cmd->wireless_setkeymgmt(0, QStringLiteral("WPA_PSK")), QStringLiteral("FAIL\n"));
        QCOMPARE(wpaCalls(m_device->commandsRun()),
                 (QStringList{"set_network 0 key_mgmt NONE", "set_network 0 key_mgmt WPA_PSK"}));
    }

    void missingProgramGivesEmptyOutputAndLongOutputIsCut()
    {
        QCOMPARE(m_cmd->sendCommand(QStringLiteral("no-such-program-here --flag")), QString());
        QCOMPARE(m_cmd->sendCommand2("no-such-program-here 2>/dev/null"), QString());
        QCOMPARE(m_cmd->sendCommand2("printf '%0300d' 7").size(), 128);
    }

    // A program that stops answering (a supplicant stuck on its socket) is
    // killed at the limit, whichever runner started it.
    void aHangingProgramIsStoppedInTime()
    {
        m_cmd->setCommandLimitMs(500);
        QElapsedTimer elapsed;
        elapsed.start();
        QCOMPARE(m_cmd->sendCommand(QStringLiteral("sleep 30")), QString());
        QCOMPARE(m_cmd->sendCommand2("echo started; sleep 30"), QString::fromLatin1("started\n"));
        QVERIFY2(elapsed.elapsed() < 5000, qPrintable(QString::number(elapsed.elapsed())));
    }

    // --- selecting a network by priority ---

    // The chosen network is raised, the others lowered, and the configuration saved.
    void selectNetworkRaisesOneAndLowersTheOthers_data()
    {
        QTest::addColumn<QByteArray>("config");
        QTest::addColumn<int>("id");
        QTest::addColumn<QString>("calls");
        QTest::newRow("three saved") << QByteArray(kThreeSavedNetworks) << 1
                                     << "list_network,set_network 0 priority 1,set_network 1 priority 10,"
                                        "set_network 2 priority 1,enable_network all,save_config";
        QTest::newRow("nothing saved") << QByteArray("ctrl_interface=/var/run/wpa_supplicant\nupdate_config=1\n") << 0
                                       << "list_network,save_config";
    }

    void selectNetworkRaisesOneAndLowersTheOthers()
    {
        QFETCH(QByteArray, config);
        QFETCH(int, id);
        QFETCH(QString, calls);
        saveSupplicantConfig(config);
        m_device->clearCommandLog();
        QCOMPARE(m_cmd->wireless_selectnetwork(id), QStringLiteral("OK\n"));
        QCOMPARE(wpaCalls(m_device->commandsRun()), calls.split(QLatin1Char(',')));
        if (id != 1)
            return;
        // The saved configuration prefers the chosen network, all enabled.
        const QByteArray saved = TestDevice::readFile(m_device->simDir() + QStringLiteral("/wifi/wpa_supplicant.conf"));
        QVERIFY(saved.contains("ssid=\"School Nurse Office\"\n\tpsk=\"nurse-4412\"\n\tpriority=10\n"));
        QVERIFY(!saved.contains("disabled=1"));
    }

    // --- power ---

    void poweroffEndsTheSimulatedDeviceOnly()
    {
        QProcess device;
        device.start(QStringLiteral("sleep"), {QStringLiteral("30")});
        QVERIFY(device.waitForStarted());
        m_device->writeFile(QStringLiteral("sim/device.pid"), QByteArray::number(device.processId()));
        m_cmd->poweroff();
        QVERIFY(device.waitForFinished(5000));
        QCOMPARE(device.exitStatus(), QProcess::CrashExit);
        QCOMPARE(m_device->events().size(), 1);
        QVERIFY(m_device->events().at(0).endsWith(QLatin1String(" poweroff")));
        m_cmd->reboot();
        QVERIFY(m_device->events().at(1).endsWith(QLatin1String(" reboot")));
    }
};

QTEST_GUILESS_MAIN(TestCommandRunner)
#include "tst_commandrunner.moc"
