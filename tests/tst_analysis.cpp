// SPDX-License-Identifier: GPL-2.0-or-later
// The analysis upload against the simulated regional servers and the decoding of their reply.
#include "analysisreply.h"
#include "analysisserver.h"
#include "avilib.h"
#include "common.h"
#include "gdata.h"
#include "platform.h"
#include "simulatedworld.h"
#include "testsupport.h"

#include <QFile>
#include <QTest>

namespace {

// One server per region (US, India, China, Philippines), each on an address
// of its own, so that a region sent to the wrong host shows.
const char *const kAddresses[4] = {"127.0.0.41", "127.0.0.42", "127.0.0.43", "127.0.0.44"};
const char *const kNobodyAddress = "127.0.0.49";
const char *const kExampleReply = "x,+1.25,-0.5,-0.75,0.00,62,90,180";
const QStringList kExampleShown{"+1.25", "-0.50", "-0.75", "-0.00", "62", "95", "5"};

// A recording as the device writes it, of frames that look like H.264 access units.
QByteArray writeAvi(const QString &path, const QList<int> &sizes)
{
    QFile::remove(path);
    avi_t *avi = AVI_open_output_file(QFile::encodeName(path).constData());
    if (!avi)
        return QByteArray();
    AVI_set_video(avi, 1920, 1080, 15.0, "H264");
    for (int i = 0; i < sizes.size(); ++i) {
        QByteArray bytes(sizes[i], '\0');
        for (int k = 0; k < bytes.size(); ++k)
            bytes[k] = char((k * 31 + i * 7) & 0xff);
        bytes.replace(0, 5, QByteArray("\x00\x00\x00\x01\x65", 5));
        AVI_write_frame(avi, bytes.constData(), size_t(bytes.size()), i == 0);
    }
    return AVI_close(avi) == 0 ? TestDevice::readFile(path) : QByteArray();
}

QStringList fields(const analysisreply::Refraction &v)
{
    return {v.osSphere, v.odSphere, v.osCylinder, v.odCylinder, v.pupilDistance, v.osAxis, v.odAxis};
}

const analysisreply::Refraction kKeep{"keep", "keep", "keep", "keep", "keep", "keep", "keep"};

} // namespace

class TestAnalysis : public QObject, private DeviceFixture
{
    Q_OBJECT

    QStringList result() const
    {
        return {m_data->m_strOSSphere,      m_data->m_strODSphere, m_data->m_strOSCylinder, m_data->m_strODCylinder,
                m_data->m_strPupilDistance, m_data->m_strOSAxis,   m_data->m_strODAxis};
    }

#define REQUIRE_SERVERS()                                                                                              \
    if (!m_serversUp)                                                                                                  \
    QSKIP("the servers cannot listen on 127.0.0.41-44:15000")

private slots:
    void initTestCase()
    {
        setUp(false);
        startDevice(false);
        m_data->m_pCommon = new common(m_data.get());
        // The upload names the device by its Wi-Fi address; a host without
        // any interface but loopback must not skip the upload's tests.
        common::setInterfaceSource([] {
            return QVector<macaddress::Interface>{
                {QStringLiteral("lo"), QStringLiteral("00:00:00:00:00:00"), true, true, true},
                {QStringLiteral("wlan0"), QStringLiteral("02:5e:10:00:00:41"), true, true, false}};
        });
        m_mac = m_data->m_pCommon->GetETNetMACAddress();
        QCOMPARE(m_mac, QStringLiteral("02:5E:10:00:00:41"));
        m_serversUp = true;
        for (int i = 0; i < 4; ++i)
            m_serversUp = m_servers[i].start(QLatin1String(kAddresses[i])) && m_serversUp;
        m_goodAvi = writeAvi(m_device->root() + QStringLiteral("/good.avi"), {1001, 2000, 37});
        QVERIFY(!m_goodAvi.isEmpty());
    }

    void init()
    {
        Platform &platform = Platform::instance();
        platform.analysisHostUs = QLatin1String(kAddresses[0]);
        platform.analysisHostIndia = QLatin1String(kAddresses[1]);
        platform.analysisHostChina = QLatin1String(kAddresses[2]);
        platform.analysisHostPhilippines = QLatin1String(kAddresses[3]);
        platform.analysisPort = AnalysisServer::kDefaultPort;
        m_device->writeFile(QStringLiteral("pupil_video.avi"), m_goodAvi);
        // Long enough for any answer here, short enough that a hang shows soon.
        m_data->m_nUploadTimeoutSeconds = 10;
        m_data->m_nRegion = 0;
        m_data->m_nWifiChanged = 0;
        SimulatedWorld::instance().reset();
        for (AnalysisServer &server : m_servers) {
            server.setFault(AnalysisServer::Fault::None);
            server.setScriptedAnswer(QString());
        }
    }

    void cleanupTestCase()
    {
        common::setInterfaceSource(macaddress::systemInterfaces);
        for (AnalysisServer &server : m_servers)
            server.stop();
        tearDown();
    }

    // --- the reply, without a network ---

    // An empty `decoded` means refused, with the values left as they were.
    void replyDecoding_data()
    {
        QTest::addColumn<QString>("reply");
        QTest::addColumn<QStringList>("decoded");
        QTest::addColumn<QStringList>("shown");
        QTest::newRow("eight fields") << QString::fromLatin1(kExampleReply)
                                      << QStringList{"+1.25", "-0.5", "-0.75", "0.00", "62", "90", "180"}
                                      << kExampleShown;
        QTest::newRow("seven fields: no pupil distance")
            << QStringLiteral("x,+1.25,-0.5,-0.75,0.00,90,180")
            << QStringList{"+1.25", "-0.5", "-0.75", "0.00", "0", "90", "180"}
            << QStringList{"+1.25", "-0.50", "-0.75", "-0.00", "0", "95", "5"};
        // Each eye's axis follows its own cylinder: the left one's axis over
        // 180 stays, the right one's is still corrected.
        QTest::newRow("spaces, a line end and extra fields")
            << QStringLiteral("ok, 2 ,-3.333 , -1.004,1,58.5,185,101,extra,\n")
            << QStringList{"2", "-3.333", "-1.004", "1", "58.5", "185", "101"}
            << QStringList{"+2.00", "-3.33", "-1.00", "+1.00", "58.5", "185", "96"};
        // The pupil distance goes into the history file as it is.
        QTest::newRow("pupil distance no number")
            << QStringLiteral("x,1,-1,-2,-2,62|mm\r,90,100") << QStringList{"1", "-1", "-2", "-2", "0", "90", "100"}
            << QStringList{"+1.00", "-1.00", "-2.00", "-2.00", "0", "95", "95"};
        // Pages and texts that are no result, however many commas they hold.
        const char *const refused[][2] = {
            {"six fields", "x,+1.25,-0.5,-0.75,0.00,62"},
            {"portal page", "<html><body><h1>Welcome, guest</h1><p>Accept, then sign in, with your room, name, "
                            "and number, to use the Wi-Fi.</p></body></html>"},
            {"proxy 502", "502 Bad Gateway: no answer from 10.0.0.5,15000,upstream,closed,retry,later,sorry\n"},
            {"inf sphere", "x,inf,1,1,1,62,90,90"},
            {"nan axis", "x,1,1,1,1,62,90,nan"},
            {"empty axis", "x,1,1,1,1,,90"},
            {"empty cylinder", "x,1,1,,1,62,90,90"},
            {"letters in a cylinder", "x,1,1,1,-0.5 dpt,62,90,90"},
            {"unit after an axis", "x,1,1,1,1,62,90deg,90"}};
        for (const auto &row : refused)
            QTest::newRow(row[0]) << QString::fromLatin1(row[1]) << QStringList() << QStringList();
    }

    void replyDecoding()
    {
        QFETCH(QString, reply);
        QFETCH(QStringList, decoded);
        QFETCH(QStringList, shown);
        analysisreply::Refraction values = kKeep;
        QCOMPARE(analysisreply::decode(reply, values), !decoded.isEmpty());
        QCOMPARE(fields(values), decoded.isEmpty() ? fields(kKeep) : decoded);
        if (decoded.isEmpty())
            return;
        analysisreply::normalise(values);
        QCOMPARE(fields(values), shown);
    }

    void dioptresShowASignAndTwoDecimals_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("shown");
        const char *const rows[][2] = {{"0.004", "-0.00"},
                                       {"abc", "-0.00"},
                                       {"inf", "-0.00"},
                                       {"3", "+3.00"},
                                       {"-2.3449", "-2.34"},
                                       // The device's arithmetic rather than decimal rounding: 0.015 and
                                       // 2.675 are stored a hair below the half, yet times 100 plus 0.5
                                       // they reach the next hundredth.
                                       {"0.015", "+0.02"},
                                       {"-2.675", "-2.68"}};
        for (const auto &row : rows)
            QTest::newRow(row[0]) << QString::fromLatin1(row[0]) << QString::fromLatin1(row[1]);
        // Too large to take a hundredfold: shown as it is, never as "inf".
        QTest::newRow("-1e307") << QStringLiteral("-1e307") << QLatin1Char('-') + QString::number(1e307, 'f', 2);
    }

    void dioptresShowASignAndTwoDecimals()
    {
        QFETCH(QString, text);
        QFETCH(QString, shown);
        QCOMPARE(analysisreply::toOpticFloat(text), shown);
    }

    void axisFollowsTheCylinder_data()
    {
        QTest::addColumn<QString>("cylinder");
        QTest::addColumn<QString>("axis");
        QTest::addColumn<QString>("shown");
        const char *const rows[][3] = {// Cylinders up to 0.25 give 5, up to 0.5 give 10, both bounds included.
                                       {"+0.25", "90", "5"},
                                       {"-0.26", "90", "10"},
                                       {"-0.50", "170", "10"},
                                       // Beyond, up to 90 gains 5 and from 91 loses 5, after rounding.
                                       {"-0.51", "90", "95"},
                                       {"-1.00", "91", "86"},
                                       {"-1.00", "180", "175"},
                                       {"-1.00", "90.5", "86"},
                                       // Over 180 after rounding, the axis is shown exactly as received.
                                       {"-1.00", "181", "181"},
                                       {"-1.00", "180.5", "180.5"},
                                       // Negative halves round up; single precision makes 90.49999999 a half.
                                       {"-1.00", "-2.5", "3"},
                                       {"-1.00", "-2.6", "2"},
                                       {"-1.00", "90.49999999", "86"}};
        for (const auto &row : rows)
            QTest::addRow("%s at %s", row[0], row[1])
                << QString::fromLatin1(row[0]) << QString::fromLatin1(row[1]) << QString::fromLatin1(row[2]);
    }

    void axisFollowsTheCylinder()
    {
        QFETCH(QString, cylinder);
        QFETCH(QString, axis);
        QFETCH(QString, shown);
        QCOMPARE(analysisreply::correctAxis(cylinder, axis), shown);
    }

    // --- the upload ---

    // No answer and an answer that is no result both keep the values as they
    // were (the screen's messages for each kind of server fault are tested
    // with the session).
    void uploadFailures_data()
    {
        QTest::addColumn<int>("fault");
        QTest::addColumn<QString>("host");
        QTest::addColumn<bool>("noResponse");
        QTest::newRow("server unreachable")
            << int(AnalysisServer::Fault::None) << QString::fromLatin1(kNobodyAddress) << true;
        QTest::newRow("fields that are no numbers")
            << int(AnalysisServer::Fault::GarbageNumbers) << QString::fromLatin1(kAddresses[0]) << false;
    }

    void uploadFailures()
    {
        QFETCH(int, fault);
        QFETCH(QString, host);
        QFETCH(bool, noResponse);
        REQUIRE_SERVERS();
        AnalysisServer &us = m_servers[0];
        Platform::instance().analysisHostUs = host;
        us.setFault(AnalysisServer::Fault(fault));
        m_data->m_strOSSphere = m_data->m_strODSphere = m_data->m_strOSCylinder = m_data->m_strODCylinder =
            m_data->m_strPupilDistance = m_data->m_strOSAxis = m_data->m_strODAxis = QStringLiteral("keep");
        m_data->m_strLastError = QStringLiteral("stale");

        QVERIFY(!m_data->uploadAVIFile());
        QCOMPARE(result(), fields(kKeep));
        QCOMPARE(m_data->m_nWifiChanged.load(), 1);
        QCOMPARE(m_data->m_bNoResponse, noResponse);
        QCOMPARE(m_data->m_strLastError, noResponse ? GData::tr("No response from the analysis server.")
                                                    : GData::tr("The analysis server's answer could not be read."));
        // The server's answer, whatever it is, stays for the result page.
        if (noResponse)
            QCOMPARE(m_data->m_strPhotoResult, QStringLiteral("No Response"));
        else
            QVERIFY(!m_data->m_strPhotoResult.isEmpty() && us.lastUpload().answer.endsWith(m_data->m_strPhotoResult));
    }

    void uploadGoesToTheRegionsServer_data()
    {
        QTest::addColumn<int>("region");
        QTest::addColumn<int>("server");
        QTest::addColumn<QString>("path");
        // The name the update server files the region under comes from the same table.
        QTest::addColumn<QString>("name");
        QTest::newRow("0 US") << 0 << 0 << "/production/"
                              << "us";
        QTest::newRow("1 India") << 1 << 1 << "/production/"
                                 << "india";
        QTest::newRow("2 China") << 2 << 2 << "/upload_pupil_images/"
                                 << "china";
        QTest::newRow("3 Philippines") << 3 << 3 << "/production/"
                                       << "philippines";
        QTest::newRow("7 US") << 7 << 0 << "/production/"
                              << "us";
        QTest::newRow("-1 US") << -1 << 0 << "/production/"
                               << "us";
    }

    void uploadGoesToTheRegionsServer()
    {
        QFETCH(int, region);
        QFETCH(int, server);
        QFETCH(QString, path);
        QFETCH(QString, name);
        REQUIRE_SERVERS();
        int before[4];
        for (int i = 0; i < 4; ++i)
            before[i] = m_servers[i].requestCount();
        m_data->m_nRegion = region;
        QCOMPARE(m_data->getRegionString(), name);
        QVERIFY(m_data->uploadAVIFile());
        for (int i = 0; i < 4; ++i)
            QCOMPARE(m_servers[i].requestCount(), before[i] + (i == server ? 1 : 0));
        const AnalysisServer::Upload seen = m_servers[server].lastUpload();
        QCOMPARE(seen.path, path + m_mac);
        QCOMPARE(seen.mac, m_mac);
        // The patient's details stay on the device; the whole recording arrives.
        QCOMPARE(seen.studentInfo, QStringLiteral("0__0__0__0"));
        QCOMPARE(seen.frames, 3);
    }

    // A reply that arrives in slow chunks is awaited whole, not decoded from its first part.
    void aReplyInSlowChunksIsReadWhole()
    {
        REQUIRE_SERVERS();
        m_servers[0].setScriptedAnswer(QString::fromLatin1(kExampleReply));
        m_servers[0].setFault(AnalysisServer::Fault::SlowChunks);
        m_servers[0].setChunkPauseMs(40);
        QVERIFY(m_data->uploadAVIFile());
        QCOMPARE(m_data->m_strPhotoResult, QString::fromLatin1(kExampleReply));
        QCOMPARE(result(), kExampleShown);
    }

private:
    AnalysisServer m_servers[4]; // US, India, China, Philippines
    bool m_serversUp = false;
    QString m_mac;
    QByteArray m_goodAvi;
};

QTEST_GUILESS_MAIN(TestAnalysis)
#include "tst_analysis.moc"
