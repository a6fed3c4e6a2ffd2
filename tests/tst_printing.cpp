// SPDX-License-Identifier: GPL-2.0-or-later
// Printing: the receipt's bytes on a pseudo-terminal, binding through the stand-ins, the cloud service's form.
#include "btprintermanager.h"
#include "camcfg.h"
#include "cloudprintserver.h"
#include "common.h"
#include "gdata.h"
#include "platform.h"
#include "testsupport.h"

#include <QCryptographicHash>
#include <QDateTime>
#include <QFile>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>

#include <fcntl.h>
#include <pty.h>
#include <unistd.h>

#include <memory>

namespace {

const char kCloudHost[] = "127.0.0.61:18061";
const char kPrinterMac[] = "66:12:A0:3C:58:01";
const QByteArray kReset("\x1b\x40\x1b\x74\x00\x1b\x61\x00\x1b\x45\x00", 11);

// What the printer must receive for the test set up in init(), the print
// time left as "%1".
const char kReceipt[] = "        Eye Test Result\n"
                        "Name: Amy Lee\n"
                        "Sex: Female\n"
                        "Birthday: 2019-03-02\n"
                        "ID: \n"
                        "Test Time: 2024-05-17 10:42\n"
                        "\n"
                        "REF.DATA\n"
                        "VD: 12.00\n"
                        "--------------------------------\n"
                        "<OD>\n"
                        "SPH        CYL       AXIS\n"
                        "+0.25       -0.00       5\n"
                        "--------------------------------\n"
                        "--------------------------------\n"
                        "<OS>\n"
                        "SPH        CYL       AXIS\n"
                        "-0.50       -0.75       85\n"
                        "--------------------------------\n"
                        "\n"
                        "PD: 62\n"
                        "Screening result: Pass\n"
                        "\n"
                        "Note: \n"
                        "\n"
                        "           %1\n"
                        "\n\n\n"
                        "\n"; // the line end every print adds

// A pseudo-terminal standing for the bound port; the test reads its far end.
struct Port
{
    int master = -1;
    int slave = -1;
    QString path;

    Port()
    {
        char name[256] = {};
        if (::openpty(&master, &slave, name, nullptr, nullptr) == 0) {
            path = QString::fromLocal8Bit(name);
            ::fcntl(master, F_SETFL, O_NONBLOCK);
        }
    }
    ~Port()
    {
        ::close(master);
        ::close(slave);
    }
    QByteArray drain() const
    {
        QByteArray bytes;
        char buffer[4096];
        for (ssize_t n; (n = ::read(master, buffer, sizeof buffer)) > 0;)
            bytes.append(buffer, static_cast<int>(n));
        return bytes;
    }
};

QString md5(const QString &text)
{
    return QString::fromLatin1(QCryptographicHash::hash(text.toUtf8(), QCryptographicHash::Md5).toHex());
}

} // namespace

class TestPrinting : public QObject
{
    Q_OBJECT

    void setConfig(CamCfg::Position position, const QString &value) { m_data->m_pCamCfg->setValue(position, value); }

private slots:
    void initTestCase()
    {
        m_device = std::make_unique<TestDevice>();
        m_data = std::make_unique<GData>(nullptr, makeSimulatedDevices());
        m_data->InitCommonAndConfig();
        m_data->m_fnPrinterSleep = [this](int ms) {
            m_sleeps << ms;
        };
        m_cloudUp = m_cloud.start(QLatin1String(kCloudHost));
        Platform::instance().cloudPrintHost = QLatin1String(kCloudHost);
    }

    void init()
    {
        GData &d = *m_data;
        d.m_strName = QStringLiteral("Amy Lee");
        d.m_nSex = 0;
        d.m_dateBirthday = QDate(2019, 3, 2);
        d.m_strTestTime = QStringLiteral("2024-05-17 10:42");
        d.m_strODSphere = QStringLiteral("+0.25");
        d.m_strODCylinder = QStringLiteral("-0.00");
        d.m_strODAxis = QStringLiteral("5");
        d.m_strOSSphere = QStringLiteral("-0.50");
        d.m_strOSCylinder = QStringLiteral("-0.75");
        d.m_strOSAxis = QStringLiteral("85");
        d.m_strPupilDistance = QStringLiteral("62");
        d.m_strResult = QStringLiteral("Pass");
        d.m_nPrintTimeoutSeconds = 30;
        setConfig(CamCfg::PrinterKind, QStringLiteral("bt"));
        setConfig(CamCfg::PrinterDeviceId, CloudPrintServer::registeredDeviceId());
        Platform::instance().printerSerialDevice = m_device->simDir() + QStringLiteral("/sys/rfcomm0");
        m_cloud.setFault(CloudPrintServer::Fault::None);
        m_sleeps.clear();
    }

    // --- the Bluetooth printer's stream ---

    void noPrinterBoundFailsAfterThreeAttempts()
    {
        LogCapture log;
        QCOMPARE(m_data->bluetoothPrintResult(), QStringLiteral("Open printer failed"));
        QCOMPARE(m_sleeps, QList<int>({300, 600, 900}));
        const QString path = Platform::instance().printerSerialDevice;
        for (int attempt = 1; attempt <= 3; ++attempt)
            QVERIFY(
                log.contains(QStringLiteral("open transport failed: %1@9600 (attempt %2/3)").arg(path).arg(attempt)));
    }

    void receiptStreamIsByteExact()
    {
        Port port;
        QVERIFY(!port.path.isEmpty());
        Platform::instance().printerSerialDevice = port.path;
        const QDateTime before = m_data->getLocalTime();
        QCOMPARE(m_data->bluetoothPrintResult(), QStringLiteral("OK"));
        const QByteArray stream = port.drain();
        QVERIFY(m_sleeps.isEmpty());

        QVERIFY2(stream.startsWith(kReset), stream.left(16).toHex().constData());
        const QString text = QString::fromUtf8(stream.mid(kReset.size()));
        const QRegularExpressionMatch printed =
            QRegularExpression(QStringLiteral("\n {11}(\\d{4}-\\d\\d-\\d\\d \\d\\d:\\d\\d:\\d\\d)\n")).match(text);
        QVERIFY(printed.hasMatch());
        QCOMPARE(text, QString::fromLatin1(kReceipt).arg(printed.captured(1)));
        // The print time, not the test time.
        const QDateTime time = QDateTime::fromString(printed.captured(1), QStringLiteral("yyyy-MM-dd hh:mm:ss"));
        QVERIFY(qAbs(time.secsTo(before)) <= 2);
    }

    void emptyTextSendsOnlyTheReset()
    {
        Port port;
        Platform::instance().printerSerialDevice = port.path;
        QCOMPARE(m_data->bluetoothPrintString(QString()), QStringLiteral("OK"));
        QCOMPARE(port.drain(), kReset);
    }

    // "bt" prints through the printer page's own test print, unbound and bound.
    void printerKindChoosesThePrinter_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<QString>("status");
        QTest::addColumn<int>("cloudRequests");
        QTest::newRow("network") << "network"
                                 << "OK" << 1;
        QTest::newRow("unknown kind") << "usb"
                                      << "" << 0;
    }

    void printerKindChoosesThePrinter()
    {
        QFETCH(QString, kind);
        QFETCH(QString, status);
        QFETCH(int, cloudRequests);
        if (kind == QLatin1String("network") && !m_cloudUp)
            QSKIP("the cloud service cannot listen");
        setConfig(CamCfg::PrinterKind, kind);
        const int before = m_cloud.requestCount();
        QCOMPARE(m_data->printTestpage(), status);
        QCOMPARE(m_cloud.requestCount() - before, cloudRequests);
    }

    // --- scanning and binding ---

    void scanLines_data()
    {
        QTest::addColumn<QString>("output");
        QTest::addColumn<QStringList>("devices");
        QTest::newRow("colour codes") << "\r\x1b[K[\x1b[0;92mNEW\x1b[0m] Device 66:12:A0:3C:58:01 ORV-P58\n"
                                         "\x1b[0;94m[bluetooth]\x1b[0m# "
                                      << QStringList{"66:12:A0:3C:58:01|ORV-P58|0"};
        QTest::newRow("seen twice, strength updated")
            << "[NEW] Device 66:12:A0:3C:58:01 Printer\n[CHG] Device 66:12:A0:3C:58:01 RSSI: -61\n"
               "[NEW] Device 66:12:A0:3C:58:01 Printer 2\n[CHG] Device 66:12:A0:3C:58:01 RSSI: -57\n"
            << QStringList{"66:12:A0:3C:58:01|Printer 2|-57"};
        QTest::newRow("listed, controller ignored")
            << "[CHG] Controller C0:FF:EE:12:34:56 Discovering: yes\nDevice 4C:87:5D:21:0A:9E Nurse's phone\n"
            << QStringList{"4C:87:5D:21:0A:9E|Nurse's phone|0"};
    }

    void scanLines()
    {
        QFETCH(QString, output);
        QFETCH(QStringList, devices);
        QMap<QString, BtDevice> found;
        BtPrinterManager::parseScanText(BtPrinterManager::stripColours(output), found);
        QStringList seen;
        for (const BtDevice &device : found)
            seen << QStringLiteral("%1|%2|%3").arg(device.mac, device.name).arg(device.rssi);
        QCOMPARE(seen, devices);
    }

    void badMacRefusedBeforeAnyProcess_data()
    {
        QTest::addColumn<QString>("mac");
        QTest::newRow("16 characters") << "66:12:A0:3C:58:0";
        QTest::newRow("18 characters") << "66:12:A0:3C:58:011";
        QTest::newRow("a line break inside") << "66:12:A0\nexit 0:1";
    }

    void badMacRefusedBeforeAnyProcess()
    {
        QFETCH(QString, mac);
        m_device->clearCommandLog();
        BtPrinterManager manager;
        QSignalSpy finished(&manager, &BtPrinterManager::bindFinished);
        manager.bindDevice(mac, 1);
        QCOMPARE(finished.size(), 1);
        QCOMPARE(finished.first().at(0).toBool(), false);
        QCOMPARE(finished.first().at(3).toString(), QStringLiteral("无效的 MAC 地址"));
        QVERIFY(m_device->commandsRun().isEmpty());
    }

    // Rows run in order: the printer is paired by the first one.
    void bind_data()
    {
        QTest::addColumn<QString>("mac");
        QTest::addColumn<bool>("ok");
        QTest::addColumn<QString>("message");
        QTest::newRow("printer") << kPrinterMac << true << "OK";
        QTest::newRow("printer, already paired") << kPrinterMac << true << "OK";
        QTest::newRow("refuses to pair") << "4C:87:5D:21:0A:9E" << false << "配对失败或超时";
        QTest::newRow("pairing never ends") << "00:1B:DC:45:7A:10" << false << "配对失败或超时";
    }

    void bind()
    {
        QFETCH(QString, mac);
        QFETCH(bool, ok);
        QFETCH(QString, message);
        m_device->clearCommandLog();
        BtPrinterManager manager;
        manager.setPrintString([this](const QString &text) { return m_data->bluetoothPrintString(text); });
        QSignalSpy finished(&manager, &BtPrinterManager::bindFinished);
        manager.bindDevice(mac, 0);
        QVERIFY(finished.wait(8000));
        QTest::qWait(300);
        QCOMPARE(finished.size(), 1);
        QCOMPARE(finished.first().at(0).toBool(), ok);
        QCOMPARE(finished.first().at(2).toInt(), 1);
        QCOMPARE(finished.first().at(3).toString(), message);
        const QStringList commands = m_device->commandsRun();
        QCOMPARE(commands.contains(QStringLiteral("rfcomm bind 0 %1 1").arg(mac)), ok);
        if (!ok)
            return;
        QCOMPARE(commands.mid(commands.size() - 2),
                 QStringList({QStringLiteral("rfcomm release 0"), QStringLiteral("rfcomm bind 0 %1 1").arg(mac)}));
        // The blank line of the bind went through the bound port to the printer.
        QTRY_VERIFY_WITH_TIMEOUT(
            TestDevice::readFile(m_device->simDir() + QStringLiteral("/printer/receipts/receipt-001.bin")) ==
                kReset + " \n",
            3000);
    }

    // --- the cloud printer ---

    void cloudFormInOrderAndSigned()
    {
        if (!m_cloudUp)
            QSKIP("the cloud service cannot listen");
        m_data->m_strName = QStringLiteral("Tom & Jerry");
        QCOMPARE(m_data->httpPrintResult(), QStringLiteral("OK"));
        const CloudPrintServer::Request seen = m_cloud.lastRequest();
        const QString reqTime = seen.fields.value(QStringLiteral("reqTime"));
        const QString expectedBody =
            QStringLiteral("charset=1&reqTime=%1&memberCode=3f0c8e21a9d74b56b0e1c7fa25d98e40&deviceID=ORV-CP-0001"
                           "&token=&securityCode=%2&msgDetail=Name: Tom & Jerry<gpCut/>Sex: Female<gpCut/>")
                .arg(reqTime, md5(QStringLiteral("3f0c8e21a9d74b56b0e1c7fa25d98e40ORV-CP-0001") + reqTime +
                                  QStringLiteral("KQBN4RX7")));
        QVERIFY2(QString::fromUtf8(seen.body).startsWith(expectedBody), seen.body.left(300).constData());
        QVERIFY(seen.body.endsWith("<gpCut/><gpCut/><gpCut/><gpCut/><gpCut/><gpCut/>&msgNo=&reprint=0&mode=2"));
        // Unescaped, the "&" cuts the ticket in two at the service.
        QCOMPARE(seen.fields.value(QStringLiteral("msgDetail")), QStringLiteral("Name: Tom "));
        QCOMPARE(seen.keys.size(), 11);
    }

    // Whatever the service answers other than its "code":0 is a failed print.
    void serviceRefusalsAreErrors_data()
    {
        QTest::addColumn<int>("fault");
        QTest::addColumn<QString>("deviceId");
        const int none = int(CloudPrintServer::Fault::None);
        QTest::newRow("refused: unknown device") << none << "ORV-CP-9999";
        QTest::newRow("HTTP 500") << int(CloudPrintServer::Fault::ServerError) << "ORV-CP-0001";
        QTest::newRow("garbage") << int(CloudPrintServer::Fault::Garbage) << "ORV-CP-0001";
        QTest::newRow("no answer") << int(CloudPrintServer::Fault::NoAnswer) << "ORV-CP-0001";
    }

    void serviceRefusalsAreErrors()
    {
        QFETCH(int, fault);
        QFETCH(QString, deviceId);
        if (!m_cloudUp)
            QSKIP("the cloud service cannot listen");
        m_cloud.setFault(static_cast<CloudPrintServer::Fault>(fault));
        m_cloud.setSilenceMs(3000);
        m_data->m_nPrintTimeoutSeconds = 1;
        setConfig(CamCfg::PrinterDeviceId, deviceId);
        QCOMPARE(m_data->httpPrintTestpage(), QStringLiteral("Error"));
    }

private:
    std::unique_ptr<TestDevice> m_device;
    std::unique_ptr<GData> m_data;
    CloudPrintServer m_cloud;
    bool m_cloudUp = false;
    QList<int> m_sleeps;
};

QTEST_GUILESS_MAIN(TestPrinting)
#include "tst_printing.moc"
