// SPDX-License-Identifier: GPL-2.0-or-later
// The ranging sensor: driver operations against the simulated chip, and GData's distance readings.
#include "gdata.h"
#include "linuxi2cbus.h"
#include "platform.h"
#include "simulatedrangingsensor.h"
#include "simulatedworld.h"
#include "testsupport.h"
#include "vl53l1x_api.h"
#include "vl53l1x_platform.h"

#include <QTest>
#include <QThread>

#include <memory>
#include <numeric>
#include <utility>

using namespace std::chrono_literals;

namespace {

const char kScriptWithDriver[] = "#!/bin/sh\ninsmod irled.ko\nmodprobe vl53l1\n./orvella &\n";
const char kScriptWithoutDriver[] = "#!/bin/sh\ninsmod irled.ko\n./orvella &\n";

} // namespace

class TestRangingSensor : public QObject, private DeviceFixture
{
    Q_OBJECT

private:
    // A chip of the test's own for the driver operations; GData always
    // reaches the simulator's one.
    std::unique_ptr<SimulatedRangingSensor> m_chip;
    QList<int> m_waits;
    int m_realSleepDivisor = 0; // 0: waits return at once

    static SimulatedRangingSensor &deviceChip() { return SimulatedRangingSensor::instance(); }

    static void prepare(SimulatedRangingSensor &chip)
    {
        chip.resetFaults();
        chip.setPaced(false);
        chip.setNoiseMm(0);
        chip.powerCycle(0ms);
        chip.clearWrites();
    }

    // The driver over the test's own chip, opened and, when asked, loaded
    // with its default configuration.
    void openOwnChip(bool initialise)
    {
        vl53l1platform::useBus(*m_chip, "/dev/i2c-%d");
        QCOMPARE(VL53L1X_UltraLite_Linux_I2C_Init(0, 0, 0x29), 0);
        if (!initialise)
            return;
        QCOMPARE(VL53L1X_SensorInit(0), 0);
        m_chip->clearWrites();
    }

    int rmmods() const { return int(m_device->commandsRun().count(QStringLiteral("rmmod vl53l1"))); }

private slots:
    void init()
    {
        setUp(false);
        m_device->writeFile(QStringLiteral("appstart.sh"), kScriptWithDriver);
        prepare(deviceChip());
        m_chip = std::make_unique<SimulatedRangingSensor>();
        prepare(*m_chip);
        m_waits.clear();
        m_realSleepDivisor = 0;
        GData::m_nSensorNotReadyCount = 0;
        vl53l1platform::setWait([this](int ms) {
            m_waits << ms;
            if (m_realSleepDivisor > 0)
                QThread::msleep(static_cast<unsigned long>(ms / m_realSleepDivisor));
        });
        startDevice(false);
    }

    void cleanup()
    {
        VL53L1X_UltraLite_Linux_I2C_Deinit();
        vl53l1platform::setWait({});
        m_chip.reset();
        deviceChip().resetFaults();
        tearDown();
        SimulatedWorld::instance().reset();
    }

    // --- GData ---

    // Absent, silent on a bus node that still exists, or present without
    // ever a measurement: each call goes through the whole initialisation
    // again within a bounded wait, and gives the bus back unless the chip
    // answers.
    void aSensorThatCannotStartIsInitialisedOnEveryCall_data()
    {
        QTest::addColumn<bool>("present");
        QTest::addColumn<bool>("silent");
        QTest::newRow("absent") << false << false;
        QTest::newRow("silent") << true << true;
        QTest::newRow("without data") << true << false;
    }

    void aSensorThatCannotStartIsInitialisedOnEveryCall()
    {
        QFETCH(bool, present);
        QFETCH(bool, silent);
        deviceChip().setPresent(present);
        deviceChip().setSilent(silent);
        deviceChip().setNeverReady(present);
        const int opensBefore = deviceChip().busOpens();
        for (int call = 1; call <= 2; ++call) {
            m_device->writeFile(QStringLiteral("appstart.sh"), kScriptWithDriver);
            m_waits.clear();
            QCOMPARE(m_data->getDistance(), 200);
            // At most a second for the boot and one for the calibration.
            QVERIFY2(std::accumulate(m_waits.cbegin(), m_waits.cend(), 0) <= 2000,
                     qPrintable(QString::number(m_waits.size())));
            // Both commands of the initialisation, every time.
            QCOMPARE(TestDevice::readFile(Platform::instance().startupScript), QByteArray(kScriptWithoutDriver));
            QCOMPARE(rmmods(), call);
        }
        QCOMPARE(deviceChip().busOpens(), opensBefore + (present ? 2 : 0));
        QCOMPARE(deviceChip().openDescriptors(), present && !silent ? 1 : 0);
        QCOMPARE(int(GData::m_nSensorNotReadyCount), 0);
        QVERIFY(!m_data->m_bSensorReady);
    }

    void twentyMissesKeepTheBusTheTwentyFirstReleasesItAndTheCountWraps()
    {
        QCOMPARE(m_data->getDistance(), 96);
        deviceChip().setNeverReady(true);
        deviceChip().clearWrites();
        const int opens = deviceChip().busOpens();
        for (int miss = 1; miss <= 20; ++miss) {
            m_waits.clear();
            QCOMPARE(m_data->getDistance(), 200);
            QCOMPARE(m_waits, QList<int>({50, 50, 50, 50}));
        }
        QCOMPARE(int(GData::m_nSensorNotReadyCount), 20);
        QCOMPARE(deviceChip().busOpens(), opens);
        QCOMPARE(deviceChip().openDescriptors(), 1);
        QVERIFY(deviceChip().writes().empty());

        QCOMPARE(m_data->getDistance(), 200);
        QCOMPARE(deviceChip().openDescriptors(), 0);
        QVERIFY(!m_data->m_bSensorReady);

        // The next call starts over, and its reading ends the run of misses.
        deviceChip().setNeverReady(false);
        QCOMPARE(m_data->getDistance(), 96);
        QCOMPARE(rmmods(), 2);
        deviceChip().setNeverReady(true);
        QCOMPARE(m_data->getDistance(), 200);
        QCOMPARE(int(GData::m_nSensorNotReadyCount), 1);
        // The count wraps after 255 and a wrapped count releases nothing.
        GData::m_nSensorNotReadyCount = 255;
        QCOMPARE(m_data->getDistance(), 200);
        QCOMPARE(int(GData::m_nSensorNotReadyCount), 0);
        QCOMPARE(deviceChip().openDescriptors(), 1);
        QVERIFY(m_data->m_bSensorReady);
    }

    void readingsAreCorrectedAndTruncated_data()
    {
        QTest::addColumn<int>("rawStatus");
        QTest::addColumn<int>("childMm");
        QTest::addColumn<int>("offset");
        QTest::addColumn<int>("expected");
        // (distance - 125 + offset + 5) / 10, truncated; a bad range counts as 2000 mm.
        QTest::newRow("working range") << -1 << 1080 << 0 << 96;
        QTest::newRow("offset") << -1 << 1080 << 30 << 99;
        QTest::newRow("toward zero, not down") << -1 << 1080 << -965 << 0;
        QTest::newRow("large negative offset") << -1 << 1080 << -2000 << -104;
        QTest::newRow("signal failure") << 4 << 1080 << 0 << 188;
        QTest::newRow("sigma failure, offset") << 6 << 1080 << 37 << 191;
        // The chip cannot see this far in short distance mode.
        QTest::newRow("beyond short-mode reach") << -1 << 1500 << 0 << 188;
    }

    void readingsAreCorrectedAndTruncated()
    {
        QFETCH(int, rawStatus);
        QFETCH(int, childMm);
        QFETCH(int, offset);
        QFETCH(int, expected);
        deviceChip().setRawRangeStatus(rawStatus);
        SimulatedWorld::instance().childDistanceMm = childMm;
        m_data->m_nDistanceOffset = offset;
        QCOMPARE(m_data->getDistance(), expected);
    }

    void firstCallInitialisesThenDataReturnsAtOnce()
    {
        QCOMPARE(m_data->getDistance(), 96);
        QCOMPARE(rmmods(), 1);
        // Short mode, a 100 ms budget, and a 100 ms period in oscillator
        // ticks: 37 a millisecond times 100 times 1.075, truncated.
        QByteArray written;
        for (const uint16_t index : {0x004B, 0x005E, 0x005F, 0x006C, 0x006D, 0x006E, 0x006F})
            written += char(deviceChip().registerValue(index));
        QCOMPARE(written.toHex(), QByteArray("1402e100000f89"));
        QVERIFY(deviceChip().ranging());

        m_waits.clear();
        const int opens = deviceChip().busOpens();
        QCOMPARE(m_data->getDistance(), 96);
        QVERIFY(m_waits.isEmpty());
        QCOMPARE(deviceChip().busOpens(), opens);
        QCOMPARE(rmmods(), 1);
        // Each reading re-arms the chip for the next one.
        SimulatedWorld::instance().childDistanceMm = 1180;
        QCOMPARE(m_data->getDistance(), 106);
    }

    void bootIsAwaitedAndAPacedSensorDeliversWithinTheFourPolls()
    {
        deviceChip().powerCycle(30ms);
        m_realSleepDivisor = 20;
        QCOMPARE(m_data->getDistance(), 96);
        QVERIFY(m_waits.count(200) >= 2);
        deviceChip().setPaced(true);
        m_realSleepDivisor = 1;
        QCOMPARE(m_data->getDistance(), 96);
        m_waits.clear();
        QCOMPARE(m_data->getDistance(), 96);
        QVERIFY(m_waits.size() < 4);
    }

    // --- the platform layer ---

    void missingOrWrongLinuxBusFails()
    {
        static LinuxI2cBus kernel;
        vl53l1platform::useBus(kernel, (m_device->root() + QStringLiteral("/i2c-%d")).toStdString());
        QCOMPARE(VL53L1X_UltraLite_Linux_I2C_Init(0, 3, 0x29), -1);
        // A node that is not an I2C adapter refuses the slave address.
        m_device->writeFile(QStringLiteral("i2c-4"), "");
        QCOMPARE(VL53L1X_UltraLite_Linux_I2C_Init(0, 4, 0x29), -1);
        QVERIFY(!vl53l1platform::busOpen());
    }

    // --- the driver operations against the register model ---

    void sensorInitCalibratesOnceAndStopsInLongMode()
    {
        openOwnChip(false);
        QCOMPARE(VL53L1X_SensorInit(0), 0);
        QCOMPARE(m_chip->measurements(), 1);
        QVERIFY(!m_chip->ranging());
        uint16_t mode = 0, budget = 0;
        QCOMPARE(VL53L1X_GetDistanceMode(0, &mode), 0);
        QCOMPARE(mode, vl53l1x::kLongDistanceMode);
        QCOMPARE(VL53L1X_GetTimingBudgetInMs(0, &budget), 0);
        QCOMPARE(budget, uint16_t(100));
        // A calibration measurement that never comes is awaited for a bounded time.
        m_waits.clear();
        m_chip->setNeverReady(true);
        QCOMPARE(VL53L1X_SensorInit(0), 1);
        QVERIFY(!m_waits.isEmpty() && m_waits.size() <= 1000);
    }

    void refusedValuesWriteNothing()
    {
        openOwnChip(true);
        QCOMPARE(VL53L1X_SetDistanceMode(0, 3), 1);
        QCOMPARE(VL53L1X_SetTimingBudgetInMs(0, 15), 1); // long mode has no 15 ms
        QCOMPARE(VL53L1X_SetTimingBudgetInMs(0, 42), 1);
        m_chip->setRegisterValue(0x004B, 0x33);
        QCOMPARE(VL53L1X_SetTimingBudgetInMs(0, 100), 1);
        m_chip->setRegisterValue(0x005E, 0x12);
        QCOMPARE(VL53L1X_SetDistanceMode(0, vl53l1x::kShortDistanceMode), 1);
        QVERIFY(m_chip->writes().empty());
    }

    void resultIsDecodedHighByteFirst()
    {
        openOwnChip(true);
        const int block[17] = {0, 0, 3, 0x2A, 0x80, 0, 0, 0x01, 0x02, 0, 0, 0, 0, 0x04, 0xD2, 0x00, 0x80};
        for (int i = 1; i < 17; ++i)
            m_chip->setRegisterValue(static_cast<uint16_t>(0x0089 + i), static_cast<uint8_t>(block[i]));
        // The device's raw range status, bits 4:0, as the driver reports it.
        for (const auto &[raw, status] : {std::pair<int, int>{0x49, 0}, {4, 2}, {25, 255}}) {
            m_chip->setRegisterValue(0x0089, static_cast<uint8_t>(raw));
            VL53L1X_Result result;
            QCOMPARE(VL53L1X_GetResult(0, &result), 0);
            QCOMPARE(int(result.Status), status);
            QCOMPARE(int(result.Distance), 1234);
            QCOMPARE(int(result.Ambient), 0x0102 * 8);
            QCOMPARE(int(result.SigPerSPAD), 0x0080 * 8);
            QCOMPARE(int(result.NumSPADs), 0x2A);
        }
    }
};

QTEST_GUILESS_MAIN(TestRangingSensor)
#include "tst_rangingsensor.moc"
