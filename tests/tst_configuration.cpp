// SPDX-License-Identifier: GPL-2.0-or-later
// The settings file and the calibration file, from the file on disk to GData's typed values.
#include "camcfg.h"
#include "cmdutil.h"
#include "gdata.h"
#include "platform.h"
#include "testsupport.h"

#include <QDir>
#include <QFile>
#include <QTest>

#include <csignal>
#include <memory>

#include <sys/resource.h>

namespace {

const char kDefaultLine[] = "225|1|50|5|5|1920*1080|analysis.orvella.example:15000|0|-1|-1|0|0|English|bt|||0|0|0|0|"
                            "Please Input Email";

} // namespace

class TestConfiguration : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<TestDevice> m_device;
    std::unique_ptr<CmdUtil> m_cmdUtil;

    std::unique_ptr<GData> startGData()
    {
        auto data = std::make_unique<GData>(m_cmdUtil.get());
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
    void init()
    {
        m_device = std::make_unique<TestDevice>();
        m_cmdUtil = std::make_unique<CmdUtil>();
    }

    void cleanup()
    {
        m_cmdUtil.reset();
        m_device.reset();
    }

    // --- failure paths: missing, empty, short, long, malformed, unwritable ---

    void missingOrEmptyFileGivesDefaultsWrittenBack_data()
    {
        QTest::addColumn<bool>("createEmptyFile");
        QTest::newRow("missing") << false;
        QTest::newRow("empty") << true;
    }

    void missingOrEmptyFileGivesDefaultsWrittenBack()
    {
        QFETCH(bool, createEmptyFile);
        if (createEmptyFile)
            writeConfig(QByteArray());
        auto data = startGData();
        QCOMPARE(configOnDisk(), QByteArray(kDefaultLine));
        QCOMPARE(data->m_nExposure, 225);
        QCOMPARE(data->m_nLedLoop, 5);
        QCOMPARE(data->m_nScreenOffMinutes, -1);
        QCOMPARE(data->m_pCamCfg->value(CamCfg::Language), QStringLiteral("English"));
    }

    void shortFileTakesDefaultsAndIsRewrittenInFull()
    {
        writeConfig("300|2");
        auto data = startGData();
        QCOMPARE(data->m_nExposure, 300);
        QCOMPARE(data->m_nGain, 2);
        QCOMPARE(data->m_nExposureSaved, 300);
        QCOMPARE(data->m_nGainSaved, 2);
        QCOMPARE(data->m_nSetting3, 50);
        QCOMPARE(configOnDisk(), QByteArray("300|2") + QByteArray(kDefaultLine).mid(5));
    }

    void longFileKeepsFirst21AndIsNotRewritten()
    {
        const QByteArray text = "1|2|3|4|5|640*480|10.0.0.1:15000|8|9|10|1|2|Spanish|network|Printer|x|1|4|-6|1|"
                                "nurse@example.org|extra1|extra2|extra3|extra4";
        writeConfig(text);
        auto data = startGData();
        QCOMPARE(configOnDisk(), text);
        QCOMPARE(data->m_pCamCfg->value(21), QStringLiteral("nurse@example.org"));
        QCOMPARE(data->m_nPowerOffMinutes, 10);
        QCOMPARE(data->m_nReferralCriterion, 1);
        QCOMPARE(data->m_bAutoCapture, 1);
        QCOMPARE(data->m_nPitchOffset, 4);
        QCOMPARE(data->m_nDistanceOffset, -6);
        QCOMPARE(data->m_strTimeZone, QStringLiteral("8"));
    }

    void nonNumericIntegersBecomeZero()
    {
        writeConfig("bright|x1|50|5|5|1920*1080|h:15000|0|never|-1|0|0|English|bt|||on|0|0|0|a@b");
        auto data = startGData();
        QCOMPARE(data->m_nExposure, 0);
        QCOMPARE(data->m_nGain, 0);
        // A power timer that is no known choice never fires rather than at once.
        QCOMPARE(data->m_nScreenOffMinutes, -1);
        // "on" is not a number, so automatic capture stays off.
        QCOMPARE(data->m_bAutoCapture, 0);
    }

    void calibrationFileOverridesPositions18And19()
    {
        writeConfig("225|1|50|5|5|1920*1080|h:15000|0|-1|-1|0|0|English|bt|||0|7|8|0|a@b");
        writeCalibration("12,-3\n");
        LogCapture log;
        auto data = startGData();
        QVERIFY(log.contains(QStringLiteral("getSensorCalibrationData return : true")));
        QCOMPARE(data->m_nDistanceOffset, 12);
        QCOMPARE(data->m_nPitchOffset, -3);
        QCOMPARE(data->m_pCamCfg->value(CamCfg::DistanceOffset), QStringLiteral("12"));
        QCOMPARE(data->m_pCamCfg->value(CamCfg::PitchOffset), QStringLiteral("-3"));
        // Applied in memory only: the settings file keeps its own values.
        QVERIFY(configOnDisk().endsWith("|0|7|8|0|a@b"));
    }

    void malformedOrMissingCalibrationKeepsConfigValues_data()
    {
        QTest::addColumn<QByteArray>("calibration");
        QTest::addColumn<bool>("present");
        QTest::newRow("one number") << QByteArray("12\n") << true;
        QTest::newRow("three numbers") << QByteArray("1,2,3\n") << true;
        QTest::newRow("empty") << QByteArray() << true;
        QTest::newRow("missing") << QByteArray() << false;
    }

    void malformedOrMissingCalibrationKeepsConfigValues()
    {
        QFETCH(QByteArray, calibration);
        QFETCH(bool, present);
        writeConfig("225|1|50|5|5|1920*1080|h:15000|0|-1|-1|0|0|English|bt|||0|7|8|0|a@b");
        if (present)
            writeCalibration(calibration);
        LogCapture log;
        auto data = startGData();
        QVERIFY(log.contains(QStringLiteral("getSensorCalibrationData return : false")));
        QCOMPARE(data->m_nPitchOffset, 7);
        QCOMPARE(data->m_nDistanceOffset, 8);
        QCOMPARE(data->m_pCamCfg->value(CamCfg::PitchOffset), QStringLiteral("7"));
    }

    void calibrationReaderReportsWhatItSaw()
    {
        LogCapture log;
        sensor_calibrate_data_t out;
        out.distance_offset = 5;
        out.pitch_offset = 6;
        const QString missing = m_device->root() + QStringLiteral("/nowhere.txt");
        QVERIFY(!sensorcalibration::read(missing, out));
        QCOMPARE(out.distance_offset, 0);
        QCOMPARE(out.pitch_offset, 0);
        QVERIFY(log.contains(QStringLiteral("Unable to open calibration file for reading: \"%1\"").arg(missing)));

        writeCalibration("1,2,3");
        out.distance_offset = 5;
        QVERIFY(!sensorcalibration::read(m_device->calibrationFile(), out));
        QCOMPARE(out.distance_offset, 5);
        QVERIFY(log.contains(QStringLiteral("Invalid calibration file format: \"1,2,3\"")));

        writeCalibration("  -40,15 \n\n");
        QVERIFY(sensorcalibration::read(m_device->calibrationFile(), out));
        QCOMPARE(out.distance_offset, -40);
        QCOMPARE(out.pitch_offset, 15);
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
        LogCapture log;
        QCOMPARE(cfg.saveCFG2File(), QStringLiteral("0"));
        QCOMPARE(cfg.value(CamCfg::Language), QStringLiteral("Chinese"));
        QCOMPARE(cfg.readCFG4File(), QString());

        sensor_calibrate_data_t calibration;
        QVERIFY(!data->setSensorCalibrationData(calibration));
        QVERIFY(log.contains(QStringLiteral("Unable to open calibration file for writing:")));
    }

    void interruptedWriteLeavesOldFileIntact()
    {
        auto data = startGData();
        const QByteArray before = configOnDisk();
        // A file-size limit makes the write of the new text fail halfway,
        // as a full disk or a power cut would: the old settings must survive
        // whole and no partial file may be left beside them.
        struct rlimit oldLimit = {};
        QCOMPARE(::getrlimit(RLIMIT_FSIZE, &oldLimit), 0);
        const auto oldHandler = std::signal(SIGXFSZ, SIG_IGN);
        struct rlimit tiny = oldLimit;
        tiny.rlim_cur = 16;
        QCOMPARE(::setrlimit(RLIMIT_FSIZE, &tiny), 0);

        CamCfg &cfg = *data->m_pCamCfg;
        cfg.setValue(CamCfg::Exposure, QStringLiteral("999"));
        cfg.dogenCurrentCFG();
        const QString result = cfg.saveCFG2File();

        ::setrlimit(RLIMIT_FSIZE, &oldLimit);
        std::signal(SIGXFSZ, oldHandler);
        QCOMPARE(result, QStringLiteral("0"));
        QCOMPARE(configOnDisk(), before);
        QCOMPARE(QDir(cfg.configDir()).entryList(QDir::Files), QStringList{QStringLiteral("config.txt")});
    }

    // --- normal operation ---

    void settingChangeRoundTripsThroughTheFile()
    {
        {
            auto data = startGData();
            CamCfg &cfg = *data->m_pCamCfg;
            cfg.setValue(CamCfg::BluetoothPrinter, QStringLiteral("Receipt Printer 58"));
            cfg.setValue(CamCfg::EmailAddress, QString::fromUtf8("enfermer\xc3\xad"
                                                                 "a@escuela.example"));
            cfg.dogenCurrentCFG();
            QCOMPARE(cfg.saveCFG2File(), QStringLiteral("1"));
            // Nothing but the file itself is left in the folder.
            QCOMPARE(QDir(cfg.configDir()).entryList(QDir::Files), QStringList{QStringLiteral("config.txt")});
        }
        auto data = startGData();
        QCOMPARE(data->m_pCamCfg->value(CamCfg::BluetoothPrinter), QStringLiteral("Receipt Printer 58"));
        QCOMPARE(data->m_pCamCfg->value(CamCfg::EmailAddress), QString::fromUtf8("enfermer\xc3\xad"
                                                                                 "a@escuela.example"));
    }

    void barInsideAValueShiftsLaterPositions()
    {
        CamCfg cfg;
        cfg.resetDefaultCFG();
        cfg.setValue(CamCfg::BluetoothPrinter, QStringLiteral("a|b"));
        cfg.setRawText(cfg.dogenCurrentCFG());
        QCOMPARE(cfg.parseCurrentCFG(), QString());
        QCOMPARE(cfg.value(CamCfg::BluetoothPrinter), QStringLiteral("a"));
        QCOMPARE(cfg.value(CamCfg::Unused16), QStringLiteral("b"));
        QCOMPARE(cfg.value(CamCfg::EmailAddress), QStringLiteral("0"));
    }

    void defaultServerComesFromTheDeployment()
    {
        Platform::instance().analysisDefaultServer = QStringLiteral("127.0.0.2:15000");
        startGData();
        QVERIFY(configOnDisk().contains("|1920*1080|127.0.0.2:15000|0|"));
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
        QCOMPARE(restarted->m_nExposure, 225);
    }

    void versionDeleteWithdrawsAPreparedUpdate()
    {
        m_device->writeFile(QStringLiteral("app/orvella.new"), "firmware");
        auto data = startGData();
        data->versionDelete();
        QVERIFY(!QFile::exists(m_device->appDir() + QStringLiteral("/orvella.new")));
        // Nothing to remove is not an error either.
        data->versionDelete();
    }
};

QTEST_GUILESS_MAIN(TestConfiguration)
#include "tst_configuration.moc"
