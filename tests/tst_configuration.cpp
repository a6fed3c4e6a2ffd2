// SPDX-License-Identifier: GPL-2.0-or-later
// The settings file and the calibration file, from the file on disk to GData's typed values.
#include "camcfg.h"
#include "gdata.h"
#include "platform.h"
#include "testsupport.h"

#include <QDir>
#include <QFile>
#include <QTest>

#include <csignal>
#include <memory>

#include <sys/resource.h>

class TestConfiguration : public QObject, private DeviceFixture
{
    Q_OBJECT

private:
    std::unique_ptr<GData> startGData()
    {
        auto data = std::make_unique<GData>(m_cmd.get(), makeSimulatedDevices());
        data->Init(nullptr);
        return data;
    }

    void writeConfig(const QByteArray &text) { m_device->writeFile(QStringLiteral("app/CAMCFG/config.txt"), text); }
    void writeCalibration(const QByteArray &text)
    {
        m_device->writeFile(QStringLiteral("app/CAMCFG/sensor_calibration.txt"), text);
    }
    QByteArray configOnDisk() const { return TestDevice::readFile(m_device->configFile()); }

private slots:
    void init() { setUp(false); }
    void cleanup() { tearDown(); }

    // --- failure paths: missing, empty, short, long, malformed, unwritable ---

    // Whatever is missing takes its default, and the file is written back whole.
    void missingValuesTakeDefaultsWrittenBack_data()
    {
        QTest::addColumn<QByteArray>("file");
        QTest::newRow("missing") << QByteArray();
        QTest::newRow("short") << QByteArray("300|2");
    }

    void missingValuesTakeDefaultsWrittenBack()
    {
        QFETCH(QByteArray, file);
        Platform::instance().analysisDefaultServer = QStringLiteral("127.0.0.2:15000");
        if (!file.isNull())
            writeConfig(file);
        auto data = startGData();
        QStringList expected;
        for (int position = 1; position <= CamCfg::kPositions; ++position)
            expected << CamCfg::defaultValue(position);
        expected[CamCfg::AnalysisServer - 1] = QStringLiteral("127.0.0.2:15000");
        const QStringList given = file.isEmpty() ? QStringList() : QString::fromUtf8(file).split(QLatin1Char('|'));
        for (int i = 0; i < given.size(); ++i)
            expected[i] = given[i];
        QCOMPARE(configOnDisk(), expected.join(QLatin1Char('|')).toUtf8());
        QCOMPARE(data->m_nExposureSaved, expected[0].toInt());
    }

    // Every position reaches its own field; a longer line keeps its first 22
    // values and is not rewritten; text where a number belongs reads as 0, and
    // a power timer that is no number never fires rather than at once. A
    // calibration file of two numbers overrides the offsets, in memory only.
    void everyPositionReachesItsField_data()
    {
        QTest::addColumn<QByteArray>("line");
        QTest::addColumn<QByteArray>("calibration");
        QTest::addColumn<QByteArray>("fields"); // 1-5, 8-12, 17, 18, 19 as GData holds them
        const QByteArray distinct = "301|7|13|14|15|640*480|10.0.0.1:15000|8|3|10|1|2|Spanish|network|Printer|x|6|4|-6|"
                                    "1|nurse@example.org|extra1|extra2";
        const QByteArray read = "301|7|13|14|15|8|3|10|1|2|1|4|-6";
        QTest::newRow("distinct values, extra fields") << distinct << QByteArray() << read;
        QTest::newRow("no numbers") << QByteArray("bright|x1|a|b|c|1920*1080|h:15000|0|never|off|z|y|English|bt|||on|"
                                                  "p|q|0|a@b|html,pdf")
                                    << QByteArray() << QByteArray("0|0|0|0|0|0|-1|-1|0|0|0|0|0");
        QTest::newRow("calibration") << distinct << QByteArray("12,-3\n")
                                     << QByteArray("301|7|13|14|15|8|3|10|1|2|1|-3|12");
        QTest::newRow("calibration padded")
            << distinct << QByteArray("  -40,15 \n\n") << QByteArray("301|7|13|14|15|8|3|10|1|2|1|15|-40");
        QTest::newRow("calibration of one number") << distinct << QByteArray("12\n") << read;
        QTest::newRow("calibration of three") << distinct << QByteArray("1,2,3\n") << read;
    }

    void everyPositionReachesItsField()
    {
        QFETCH(QByteArray, line);
        QFETCH(QByteArray, calibration);
        QFETCH(QByteArray, fields);
        writeConfig(line);
        if (!calibration.isNull())
            writeCalibration(calibration);
        auto data = startGData();
        const GData &d = *data;
        const QList<int> numbers{d.m_nExposure,          d.m_nGain,
                                 d.m_nSetting3,          d.m_nLedLoop,
                                 d.m_nSetting5,          d.m_strTimeZone.toInt(),
                                 d.m_nScreenOffMinutes,  d.m_nPowerOffMinutes,
                                 d.m_nReferralCriterion, d.m_nRegion,
                                 d.m_bAutoCapture,       d.m_nPitchOffset,
                                 d.m_nDistanceOffset};
        QStringList read;
        for (int number : numbers)
            read << QString::number(number);
        QCOMPARE(read.join(QLatin1Char('|')).toUtf8(), fields);
        QCOMPARE(d.m_nExposureSaved, d.m_nExposure);
        QCOMPARE(d.m_nGainSaved, d.m_nGain);
        QCOMPARE(d.m_pCamCfg->value(CamCfg::PitchOffset).toInt(), d.m_nPitchOffset);
        QCOMPARE(d.m_pCamCfg->value(CamCfg::DistanceOffset).toInt(), d.m_nDistanceOffset);
        QCOMPARE(d.m_pCamCfg->value(CamCfg::EmailAddress), QString::fromUtf8(line).section(QLatin1Char('|'), 20, 20));
        QCOMPARE(configOnDisk(), line);
    }

    void saveIntoUnwritableFolderFailsButKeepsValues()
    {
        auto data = startGData();
        // Root ignores permission bits, so make the folder impossible instead:
        // a plain file where CAMCFG/ should be.
        QVERIFY(QDir(m_device->appDir() + QStringLiteral("/CAMCFG")).removeRecursively());
        m_device->writeFile(QStringLiteral("app/CAMCFG"), "not a folder");

        CamCfg &cfg = *data->m_pCamCfg;
        cfg.setValue(CamCfg::Language, QStringLiteral("Chinese"));
        cfg.dogenCurrentCFG();
        QCOMPARE(cfg.saveCFG2File(), QStringLiteral("0"));
        QCOMPARE(cfg.value(CamCfg::Language), QStringLiteral("Chinese"));
        QCOMPARE(cfg.readCFG4File(), QString());

        QVERIFY(!data->setSensorCalibrationData(sensor_calibrate_data_t()));
    }

    // The deployment file shipped for the board uses only keys the program
    // knows; a misspelt key or a port that is no number is reported.
    void deploymentFileKeysAreKnown_data()
    {
        QTest::addColumn<QByteArray>("ini");
        QTest::addColumn<QString>("reported");
        QFile shipped(QStringLiteral(ORVELLA_SOURCE_DIR "/deploy/platform.ini"));
        QVERIFY(shipped.open(QIODevice::ReadOnly));
        QTest::newRow("shipped for the board") << shipped.readAll() << QString();
        QTest::newRow("misspelt key") << QByteArray("[servers]\nmial=smtp.example\nmail_port=587\n")
                                      << QStringLiteral("servers/mial");
        QTest::newRow("port no number") << QByteArray("[servers]\nmail_port=smtp\n") << QStringLiteral("servers/mail_port");
    }

    void deploymentFileKeysAreKnown()
    {
        QFETCH(QByteArray, ini);
        QFETCH(QString, reported);
        m_device->writeFile(QStringLiteral("platform.ini"), ini);
        Platform platform;
        QString error;
        const bool clean = platform.load(m_device->root() + QStringLiteral("/platform.ini"), &error);
        QCOMPARE(clean, reported.isEmpty());
        QVERIFY2(error.contains(reported), qPrintable(error));
    }

    // A settings file that is there but cannot be read is left alone and
    // marked, never replaced by factory settings that would then judge
    // children by criterion 0.
    void unreadableFileIsKeptAndMarked()
    {
        QVERIFY(QDir().mkpath(m_device->appDir() + QStringLiteral("/CAMCFG/config.txt")));
        auto data = startGData();
        QVERIFY(data->m_pCamCfg->unreadable());
        QVERIFY(QFileInfo(data->m_pCamCfg->configFilePath()).isDir());
        QVERIFY(QDir().rmdir(data->m_pCamCfg->configFilePath()));
        writeConfig("225|1|50|5|5|1920*1080|h:15000|0|-1|-1|2|0|English");
        data = startGData();
        QVERIFY(!data->m_pCamCfg->unreadable());
        QCOMPARE(data->m_nReferralCriterion, 2);
    }

    // A save replaces the file whole, UTF-8 included, and leaves nothing
    // beside it; one that fails halfway (a file-size limit standing in for a
    // full disk or a power cut) leaves the old settings whole.
    void saveIsWholeOrNothing()
    {
        const QString email = QString::fromUtf8("enfermer\xc3\xad"
                                                "a@escuela.example");
        {
            auto data = startGData();
            data->m_pCamCfg->setValue(CamCfg::EmailAddress, email);
            data->m_pCamCfg->dogenCurrentCFG();
            QCOMPARE(data->m_pCamCfg->saveCFG2File(), QStringLiteral("1"));
        }
        auto data = startGData();
        CamCfg &cfg = *data->m_pCamCfg;
        QCOMPARE(cfg.value(CamCfg::EmailAddress), email);
        const QByteArray before = configOnDisk();
        struct rlimit oldLimit = {};
        QCOMPARE(::getrlimit(RLIMIT_FSIZE, &oldLimit), 0);
        const auto oldHandler = std::signal(SIGXFSZ, SIG_IGN);
        struct rlimit tiny = oldLimit;
        tiny.rlim_cur = 16;
        QCOMPARE(::setrlimit(RLIMIT_FSIZE, &tiny), 0);
        cfg.setValue(CamCfg::Exposure, QStringLiteral("999"));
        cfg.dogenCurrentCFG();
        const QString result = cfg.saveCFG2File();
        ::setrlimit(RLIMIT_FSIZE, &oldLimit);
        std::signal(SIGXFSZ, oldHandler);
        QCOMPARE(result, QStringLiteral("0"));
        QCOMPARE(configOnDisk(), before);
        QCOMPARE(QDir(cfg.configDir()).entryList(QDir::Files), QStringList{QStringLiteral("config.txt")});
    }

    void backupWritesTheOffsetsInForce()
    {
        auto data = startGData();
        data->m_nDistanceOffset = -7;
        data->m_nPitchOffset = 2;
        QVERIFY(data->backupSensorCalibrationData());
        QCOMPARE(TestDevice::readFile(m_device->calibrationFile()), QByteArray("-7,2\n"));
        sensor_calibrate_data_t back;
        QVERIFY(data->getSensorCalibrationData(back));
        QCOMPARE(back.distance_offset, -7);
        QCOMPARE(back.pitch_offset, 2);
    }

    void factoryResetRemovesFileButKeepsRunningValues()
    {
        writeConfig("300|2");
        auto data = startGData();
        data->cfgFileDelete();
        QVERIFY(!QFile::exists(m_device->configFile()));
        QCOMPARE(data->m_nExposure, 300);
        QCOMPARE(data->m_pCamCfg->value(CamCfg::Exposure), QStringLiteral("300"));
        auto restarted = startGData();
        QCOMPARE(restarted->m_nExposure, CamCfg::defaultValue(CamCfg::Exposure).toInt());
    }

    // Only the prepared update goes: not the program beside it, and with no
    // update prepared nothing at all.
    void versionDeleteWithdrawsAPreparedUpdate()
    {
        m_device->writeFile(QStringLiteral("app/orvella"), "program");
        m_device->writeFile(QStringLiteral("app/orvella.new"), "firmware");
        auto data = startGData();
        const auto listing = [this] {
            return QDir(m_device->appDir()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot);
        };
        QStringList left = listing();
        QVERIFY(left.removeOne(QStringLiteral("orvella.new")) && left.contains(QStringLiteral("orvella")));
        data->versionDelete();
        QCOMPARE(listing(), left);
        data->versionDelete();
        QCOMPARE(listing(), left);
    }
};

QTEST_GUILESS_MAIN(TestConfiguration)
#include "tst_configuration.moc"
