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
        auto data = std::make_unique<GData>(m_cmdUtil.get(), makeSimulatedDevices());
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

    // Whatever is missing takes its default, and the file is written back whole.
    void missingValuesTakeDefaultsWrittenBack_data()
    {
        QTest::addColumn<QByteArray>("file");
        QTest::addColumn<QByteArray>("rewritten");
        QTest::addColumn<int>("exposure");
        QTest::addColumn<int>("gain");
        QTest::newRow("missing") << QByteArray() << QByteArray(kDefaultLine) << 225 << 1;
        QTest::newRow("empty") << QByteArray("") << QByteArray(kDefaultLine) << 225 << 1;
        QTest::newRow("short") << QByteArray("300|2") << "300|2" + QByteArray(kDefaultLine).mid(5) << 300 << 2;
    }

    void missingValuesTakeDefaultsWrittenBack()
    {
        QFETCH(QByteArray, file);
        QFETCH(QByteArray, rewritten);
        QFETCH(int, exposure);
        QFETCH(int, gain);
        if (!file.isNull())
            writeConfig(file);
        auto data = startGData();
        QCOMPARE(configOnDisk(), rewritten);
        QCOMPARE(data->m_nExposure, exposure);
        QCOMPARE(data->m_nGain, gain);
        QCOMPARE(data->m_nExposureSaved, exposure);
        QCOMPARE(data->m_nGainSaved, gain);
        QCOMPARE(data->m_nLedLoop, 5);
        QCOMPARE(data->m_nScreenOffMinutes, -1);
        QCOMPARE(data->m_pCamCfg->value(CamCfg::Language), QStringLiteral("English"));
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

    // The calibration file overrides the offsets in memory only; anything but
    // two numbers leaves those of the settings file.
    void calibrationFileOverridesTheOffsets_data()
    {
        QTest::addColumn<QByteArray>("calibration");
        QTest::addColumn<int>("distance");
        QTest::addColumn<int>("pitch");
        QTest::newRow("pair") << QByteArray("12,-3\n") << 12 << -3;
        QTest::newRow("padded") << QByteArray("  -40,15 \n\n") << -40 << 15;
        QTest::newRow("one number") << QByteArray("12\n") << 8 << 7;
        QTest::newRow("three numbers") << QByteArray("1,2,3\n") << 8 << 7;
        QTest::newRow("empty") << QByteArray("") << 8 << 7;
        QTest::newRow("missing") << QByteArray() << 8 << 7;
    }

    void calibrationFileOverridesTheOffsets()
    {
        QFETCH(QByteArray, calibration);
        QFETCH(int, distance);
        QFETCH(int, pitch);
        writeConfig("225|1|50|5|5|1920*1080|h:15000|0|-1|-1|0|0|English|bt|||0|7|8|0|a@b");
        if (!calibration.isNull())
            writeCalibration(calibration);
        auto data = startGData();
        QCOMPARE(data->m_nDistanceOffset, distance);
        QCOMPARE(data->m_nPitchOffset, pitch);
        QCOMPARE(data->m_pCamCfg->value(CamCfg::DistanceOffset), QString::number(distance));
        QCOMPARE(data->m_pCamCfg->value(CamCfg::PitchOffset), QString::number(pitch));
        QVERIFY(configOnDisk().endsWith("|0|7|8|0|a@b"));
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
