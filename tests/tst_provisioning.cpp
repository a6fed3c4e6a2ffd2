// SPDX-License-Identifier: GPL-2.0-or-later
// Wi-Fi provisioning: the request parser, and the servers driven by real TCP clients against the wpa_cli stand-in.
#include "provisioningprotocol.h"
#include "provisioningserver.h"
#include "testsupport.h"

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTcpSocket>
#include <QTest>

#include <memory>

using provisioningprotocol::Error;

Q_DECLARE_METATYPE(provisioningprotocol::Error)

namespace {

const QHostAddress kAddress(QStringLiteral("127.0.0.61"));
constexpr int kReplyMs = 25000;

// A client as a phone would be one: a socket that waits for whole replies.
class Client
{
public:
    bool connectTo(quint16 port)
    {
        m_socket.connectToHost(kAddress, port);
        return QTest::qWaitFor([this] { return m_socket.state() == QAbstractSocket::ConnectedState; }, 5000);
    }
    void send(const QByteArray &bytes) { m_socket.write(bytes); }
    // Sends the bytes and returns every line up to the final "OK" or "E" one.
    QByteArray request(const QByteArray &bytes)
    {
        send(bytes);
        return reply();
    }
    QByteArray reply()
    {
        QByteArray all;
        // A reply that never comes shows as a shorter text in the comparison.
        (void)QTest::qWaitFor(
            [&] {
                while (m_socket.canReadLine()) {
                    const QByteArray line = m_socket.readLine();
                    all += line;
                    if (line.startsWith("OK") || line.startsWith("E "))
                        return true;
                }
                return m_socket.state() == QAbstractSocket::UnconnectedState && !m_socket.bytesAvailable();
            },
            kReplyMs);
        return all;
    }
    bool closedByServer()
    {
        return QTest::qWaitFor([this] { return m_socket.state() == QAbstractSocket::UnconnectedState; }, 5000);
    }

private:
    QTcpSocket m_socket;
};

} // namespace

class TestProvisioning : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<TestDevice> m_device;
    std::unique_ptr<ProvisioningServer> m_server;

    ProvisioningSettings settings() const
    {
        ProvisioningSettings s;
        s.interfaceName = QStringLiteral("lo");
        s.address = kAddress;
        return s;
    }
    void open(const ProvisioningSettings &s)
    {
        QString error;
        QVERIFY2(m_server->start(s, &error), qPrintable(error));
    }
    quint16 commandPort() const { return m_server->port(ProvisioningServer::CommandPort); }
    quint16 statusPort() const { return m_server->port(ProvisioningServer::StatusPort); }
    QByteArray pinLine() const { return "P " + m_server->pin() + '\n'; }
    QByteArray wrongPinLine() const
    {
        QByteArray pin = m_server->pin();
        pin[0] = pin.at(0) == '9' ? '0' : static_cast<char>(pin.at(0) + 1);
        return "P " + pin + '\n';
    }
    QStringList wpaCommands() const { return m_device->commandsRun().filter(QStringLiteral("wpa_cli")); }
    void signIn(Client &client, quint16 port) const
    {
        QVERIFY(client.connectTo(port));
        QCOMPARE(client.request(pinLine()), QByteArray("OK\n"));
    }

private slots:
    void init()
    {
        m_device = std::make_unique<TestDevice>();
        // The simulated supplicant associates in 60 ms instead of 1.5 s.
        qputenv("ORVELLA_SIM_WIFI_JOIN_MS", "60");
        QDir::setCurrent(m_device->root());
        m_server = std::make_unique<ProvisioningServer>();
    }
    void cleanup()
    {
        m_server.reset();
        m_device.reset();
    }

    void parserRefuses_data()
    {
        QTest::addColumn<QByteArray>("line");
        QTest::addColumn<Error>("error");
        QTest::newRow("NUL") << QByteArray("T\0", 2) << Error::BadCharacter;
        QTest::newRow("escape character") << QByteArray("A a\x1b[2J password1") << Error::BadCharacter;
        QTest::newRow("8-bit byte") << QByteArray("A caf\xc3\xa9") << Error::BadCharacter;
        QTest::newRow("over-long") << QByteArray("A ") + QByteArray(400, 'a') << Error::TooLong;
        QTest::newRow("empty") << QByteArray() << Error::UnknownVerb;
        QTest::newRow("lower case") << QByteArray("t") << Error::UnknownVerb;
        QTest::newRow("word verb") << QByteArray("SCAN") << Error::UnknownVerb;
        QTest::newRow("doubled blank") << QByteArray("A  Guest") << Error::BadArguments;
        QTest::newRow("trailing blank") << QByteArray("T ") << Error::BadArguments;
        QTest::newRow("add, no ssid") << QByteArray("A") << Error::BadArguments;
        QTest::newRow("add, three fields") << QByteArray("A a password1 x") << Error::BadArguments;
        QTest::newRow("forget, passphrase") << QByteArray("F a password1") << Error::BadArguments;
        QTest::newRow("cut escape") << QByteArray("A abc%4") << Error::BadEncoding;
        QTest::newRow("non-hex escape") << QByteArray("A abc%zz") << Error::BadEncoding;
        QTest::newRow("not UTF-8") << QByteArray("A %C3%28") << Error::BadEncoding;
        QTest::newRow("UTF-8 surrogate") << QByteArray("A %ED%A0%80") << Error::BadEncoding;
        QTest::newRow("ssid of 33 bytes") << QByteArray("A ") + QByteArray(33, 'a') << Error::BadSsid;
        QTest::newRow("ssid with newline") << QByteArray("A a%0Atouch%20pwned") << Error::BadSsid;
        QTest::newRow("ssid with NUL") << QByteArray("A a%00b") << Error::BadSsid;
        QTest::newRow("ssid with single quote") << QByteArray("A a'b") << Error::BadSsid;
        QTest::newRow("ssid with C1 control") << QByteArray("A a%C2%85") << Error::BadSsid;
        QTest::newRow("passphrase of 7") << QByteArray("A a 1234567") << Error::BadPassphrase;
        QTest::newRow("passphrase of 64") << QByteArray("A a ") + QByteArray(64, 'p') << Error::BadPassphrase;
        QTest::newRow("passphrase, single quote") << QByteArray("A a pass'word") << Error::BadPassphrase;
        QTest::newRow("passphrase, newline") << QByteArray("A a pass%0Aword") << Error::BadPassphrase;
        QTest::newRow("passphrase, non-ASCII") << QByteArray("A a pass%C3%A9word") << Error::BadPassphrase;
        QTest::newRow("PIN of 5") << QByteArray("P 12345") << Error::BadPin;
        QTest::newRow("PIN with letter") << QByteArray("P 12345a") << Error::BadPin;
    }
    void parserRefuses()
    {
        QFETCH(QByteArray, line);
        QFETCH(Error, error);
        QCOMPARE(provisioningprotocol::parseCommand(line).error, error);
    }

    void parserDecodesFields_data()
    {
        QTest::addColumn<QByteArray>("line");
        QTest::addColumn<QString>("ssid");
        QTest::addColumn<QString>("passphrase");
        QTest::newRow("blank in name") << QByteArray("A School%20Nurse%20Office nurse-4412\r")
                                       << QStringLiteral("School Nurse Office") << QStringLiteral("nurse-4412");
        QTest::newRow("shell text kept as text")
            << QByteArray("A a\"$(touch%20pwned)`id` p%20ss$(x)") << QStringLiteral("a\"$(touch pwned)`id`")
            << QStringLiteral("p ss$(x)");
        QTest::newRow("UTF-8, lower-case hex")
            << QByteArray("C %e7%9c%bc%e7%a7%91") << QStringLiteral("眼科") << QString();
        QTest::newRow("literal percent") << QByteArray("F 100%25") << QStringLiteral("100%") << QString();
    }
    void parserDecodesFields()
    {
        QFETCH(QByteArray, line);
        QFETCH(QString, ssid);
        QFETCH(QString, passphrase);
        const provisioningprotocol::Parsed parsed = provisioningprotocol::parseCommand(line);
        QCOMPARE(parsed.error, Error::None);
        QCOMPARE(parsed.command.ssid, ssid);
        QCOMPARE(parsed.command.passphrase, passphrase);
        QCOMPARE(
            provisioningprotocol::parseCommand(line.left(2) + provisioningprotocol::encodeField(ssid)).command.ssid,
            ssid);
    }

    void listensOnlyOnTheInterfaceAddress_data()
    {
        QTest::addColumn<QString>("interface");
        QTest::addColumn<QString>("address");
        QTest::addColumn<bool>("allowed");
        const auto row = [](const char *name, const char *interface, const char *address, bool allowed) {
            QTest::newRow(name) << interface << address << allowed;
        };
        row("every IPv4 address", "lo", "0.0.0.0", false);
        row("every IPv6 address", "lo", "::", false);
        row("broadcast", "lo", "255.255.255.255", false);
        row("multicast", "lo", "224.0.0.1", false);
        row("loopback, other interface", "nosuch0", "127.0.0.61", false);
        row("not a loopback address on lo", "lo", "192.0.2.1", false);
        row("loopback on lo", "lo", "127.0.0.61", true);
    }
    void listensOnlyOnTheInterfaceAddress()
    {
        QFETCH(QString, interface);
        QFETCH(QString, address);
        QFETCH(bool, allowed);
        ProvisioningSettings s = settings();
        s.interfaceName = interface;
        s.address = QHostAddress(address);
        QCOMPARE(m_server->start(s), allowed);
        QCOMPARE(m_server->isRunning(), allowed);
    }

    // A command before the PIN, or a line that is not the protocol at all,
    // ends the connection without running anything; the server stays open.
    void aLineItCannotServeClosesTheConnection_data()
    {
        QTest::addColumn<bool>("commandPort");
        QTest::addColumn<bool>("afterPin");
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QByteArray>("reply");
        const auto row = [](const char *name, bool commandPort, bool afterPin, const QByteArray &bytes,
                            const char *reply) {
            QTest::newRow(name) << commandPort << afterPin << bytes << QByteArray(reply);
        };
        row("status before PIN", false, false, "T\n", "E pin-required\n");
        row("add before PIN", true, false, "A Guest\n", "E pin-required\n");
        row("over-long, no line feed", false, false, QByteArray(400, 'T'), "E too-long\n");
        row("over-long after PIN", false, true, QByteArray(400, 'T') + '\n', "E too-long\n");
        row("NUL before PIN", false, false, QByteArray("P 1\0\n", 5), "E bad-character\n");
        row("NUL after PIN", false, true, QByteArray("T\0\n", 3), "E bad-character\n");
    }
    void aLineItCannotServeClosesTheConnection()
    {
        QFETCH(bool, commandPort);
        QFETCH(bool, afterPin);
        QFETCH(QByteArray, bytes);
        QFETCH(QByteArray, reply);
        open(settings());
        const quint16 port = commandPort ? this->commandPort() : statusPort();
        Client client;
        if (afterPin)
            signIn(client, port);
        else
            QVERIFY(client.connectTo(port));
        QCOMPARE(client.request(bytes), reply);
        QVERIFY(client.closedByServer());
        QVERIFY(wpaCommands().isEmpty());
        QVERIFY(m_server->isRunning());
    }

    void wrongPinsCloseTheServer()
    {
        ProvisioningSettings s = settings();
        s.maxPinFailures = 3;
        open(s);
        QSignalSpy stopped(m_server.get(), &ProvisioningServer::stopped);
        const quint16 port = statusPort();
        for (int guess = 1; guess < 3; ++guess) {
            Client client;
            QVERIFY(client.connectTo(port));
            QCOMPARE(client.request(wrongPinLine()), QByteArray("E wrong-pin\n"));
            QVERIFY(client.closedByServer());
            QVERIFY(m_server->isRunning());
        }
        // A PIN of the wrong form is a guess too.
        Client last;
        QVERIFY(last.connectTo(port));
        QCOMPARE(last.request("P 12\n"), QByteArray("E locked\n"));
        QVERIFY(last.closedByServer());
        QCOMPARE(stopped.size(), 1);
        QCOMPARE(stopped.at(0).at(0).toInt(), int(ProvisioningServer::StopTooManyPins));
        QVERIFY(m_server->pin().isEmpty());
        QTcpSocket late;
        late.connectToHost(kAddress, port);
        QVERIFY(!late.waitForConnected(2000));
        QVERIFY(wpaCommands().isEmpty());
    }

    void happyPath()
    {
        open(settings());
        QSignalSpy changed(m_server.get(), &ProvisioningServer::networkChanged);
        Client status;
        signIn(status, statusPort());
        const QByteArray scan = status.request("S\n");
        QVERIFY2(scan.contains("D -55 wpa School%20Nurse%20Office\n"), scan.constData());
        QVERIFY2(scan.contains("D -61 open Guest\n"), scan.constData());
        QVERIFY2(scan.endsWith("OK 6\n"), scan.constData());
        QCOMPARE(status.request("A Guest\n"), QByteArray("E wrong-port\n"));

        Client command;
        signIn(command, commandPort());
        // A turned-down passphrase leaves no entry behind, so the right one is added afresh.
        QCOMPARE(command.request("A School%20Nurse%20Office wrong-4412\n"), QByteArray("E rejected\n"));
        QCOMPARE(command.request("A School%20Nurse%20Office nurse-4412\n"), QByteArray("OK COMPLETED\n"));
        QCOMPARE(command.request("A School%20Nurse%20Office nurse-4412\n"), QByteArray("E exists\n"));
        QCOMPARE(command.request("T\n"), QByteArray("D COMPLETED School%20Nurse%20Office\nOK\n"));
        QCOMPARE(status.request("L\n"), QByteArray("D Clinic-Screening\nD School%20Nurse%20Office\nOK 2\n"));
        QCOMPARE(command.request("C Clinic-Screening\n"), QByteArray("OK\n"));
        QCOMPARE(command.request("F School%20Nurse%20Office\n"), QByteArray("OK\n"));
        QCOMPARE(command.request("F School%20Nurse%20Office\n"), QByteArray("E not-saved\n"));
        QCOMPARE(command.request("Q\n"), QByteArray("OK bye\n"));
        QVERIFY(command.closedByServer());

        QCOMPARE(changed.size(), 6);
        const QString name = QStringLiteral("School Nurse Office");
        const int add = int(provisioningprotocol::Verb::Add);
        QCOMPARE(changed.at(0), QVariantList({add, name, false}));
        QCOMPARE(changed.at(1), QVariantList({add, name, true}));
        QCOMPARE(changed.at(2).at(2).toBool(), false);
        QCOMPARE(changed.at(5).at(2).toBool(), false);
        // The supplicant's file keeps what was added, without the forgotten network.
        const QByteArray conf = TestDevice::readFile(m_device->simDir() + QStringLiteral("/wifi/wpa_supplicant.conf"));
        QVERIFY(conf.contains("Clinic-Screening"));
        QVERIFY(!conf.contains("School Nurse Office"));
    }

    // Shell text reaches wpa_cli as the name it is; a name the quoting
    // cannot carry is refused before anything runs.
    void hostileSsidRunsNoCommand_data()
    {
        QTest::addColumn<QByteArray>("field");
        QTest::addColumn<QByteArray>("reply");
        QTest::addColumn<QString>("logged");
        QTest::newRow("quotes, $(), backticks, semicolon")
            << QByteArray("a\"$(touch%20pwned)`touch%20pwned`;") << QByteArray()
            << QStringLiteral("ssid \"a\"$(touch pwned)`touch pwned`;\"");
        QTest::newRow("single quotes") << QByteArray("a'$(touch%20pwned)'") << QByteArray("E bad-ssid\n") << QString();
    }
    void hostileSsidRunsNoCommand()
    {
        QFETCH(QByteArray, field);
        QFETCH(QByteArray, reply);
        QFETCH(QString, logged);
        open(settings());
        Client command;
        signIn(command, commandPort());
        if (logged.isEmpty()) {
            QCOMPARE(command.request("A " + field + " password1\n"), reply);
            QVERIFY(wpaCommands().isEmpty());
        } else {
            // Not in range, so the join waits; what matters is what wpa_cli got.
            command.send("A " + field + " password1\n");
            QVERIFY(QTest::qWaitFor([&] { return !wpaCommands().filter(QStringLiteral("status")).isEmpty(); }, 10000));
            const QStringList setSsid = wpaCommands().filter(QStringLiteral(" ssid "));
            QCOMPARE(setSsid.size(), 1);
            QVERIFY2(setSsid.first().endsWith(logged), qPrintable(setSsid.first()));
        }
        QVERIFY(!QFile::exists(m_device->root() + QStringLiteral("/pwned")));
    }

    void silentClientIsClosed()
    {
        ProvisioningSettings s = settings();
        s.idleMs = 300;
        open(s);
        Client silent;
        QVERIFY(silent.connectTo(commandPort()));
        QCOMPARE(silent.reply(), QByteArray("E idle\n"));
        QVERIFY(silent.closedByServer());
        Client next;
        signIn(next, commandPort());
    }

    void oneClientAtATime()
    {
        open(settings());
        Client first;
        signIn(first, statusPort());
        Client second;
        QVERIFY(second.connectTo(statusPort()));
        QCOMPARE(second.reply(), QByteArray("E busy\n"));
        QVERIFY(second.closedByServer());
        const QByteArray status = first.request("T\n");
        QVERIFY2(status.startsWith("D ") && status.endsWith("\nOK\n"), status.constData());
    }

    void closedAfterItsTime()
    {
        ProvisioningSettings s = settings();
        s.windowMs = 600;
        open(s);
        QSignalSpy stopped(m_server.get(), &ProvisioningServer::stopped);
        const quint16 port = commandPort();
        Client client;
        signIn(client, port);
        QCOMPARE(client.reply(), QByteArray("E closed\n"));
        QVERIFY(client.closedByServer());
        QCOMPARE(stopped.size(), 1);
        QCOMPARE(stopped.at(0).at(0).toInt(), int(ProvisioningServer::StopTimeUp));
        QTcpSocket late;
        late.connectToHost(kAddress, port);
        QVERIFY(!late.waitForConnected(2000));
    }
};

QTEST_GUILESS_MAIN(TestProvisioning)
#include "tst_provisioning.moc"
