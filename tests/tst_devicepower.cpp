// SPDX-License-Identifier: GPL-2.0-or-later
// Device power on the board (against a folder laid out like the kernel's) and in the simulator.
#include "linuxdevicepower.h"
#include "simulateddevicepower.h"
#include "simulatedworld.h"
#include "testsupport.h"

#include <QFile>
#include <QTest>

#include <memory>

class TestDevicePower : public QObject, private DeviceFixture
{
    Q_OBJECT

private:
    std::unique_ptr<LinuxDevicePower> m_power;

    QString node(const QString &name) const { return m_device->root() + QStringLiteral("/sys/") + name; }
    void write(const QString &name, const QByteArray &text)
    {
        m_device->writeFile(QStringLiteral("sys/") + name, text);
    }

private slots:
    void init()
    {
        setUp(false);
        m_power = std::make_unique<LinuxDevicePower>(LinuxDevicePower::Paths{
            node(QStringLiteral("power_supply/battery/capacity")), node(QStringLiteral("power_supply/usb/online")),
            node(QStringLiteral("backlight/lcd/bl_power")), node(QStringLiteral("irled")),
            node(QStringLiteral("iio/device0"))});
    }

    void cleanup()
    {
        m_power.reset();
        tearDown();
    }

    // --- missing and unreadable nodes ---

    void missingNodesReadAsNothing()
    {
        LogCapture log;
        QCOMPARE(m_power->batteryPercent(), 0);
        QVERIFY(!m_power->externalPowerPresent());
        QCOMPARE(m_power->pitchDegrees(), 0);
        m_power->setScreenOn(false);
        // A screen that could not be switched off is still on.
        QVERIFY(m_power->isScreenOn());
        QVERIFY(
            log.contains(QStringLiteral("sysfileWrite[%1]error").arg(node(QStringLiteral("backlight/lcd/bl_power")))));
        // Parameter files are never created by writing them.
        QVERIFY(!QFile::exists(node(QStringLiteral("backlight/lcd/bl_power"))));
    }

    void garbageReadsAsNothing()
    {
        write(QStringLiteral("power_supply/battery/capacity"), "full\n");
        write(QStringLiteral("power_supply/usb/online"), "\n");
        QCOMPARE(m_power->batteryPercent(), 0);
        QVERIFY(!m_power->externalPowerPresent());
        write(QStringLiteral("power_supply/battery/capacity"), "140\n");
        QCOMPARE(m_power->batteryPercent(), 100);
    }

    // --- the kernel's interfaces ---

    void batteryAndCharger()
    {
        write(QStringLiteral("power_supply/battery/capacity"), "57\n");
        write(QStringLiteral("power_supply/usb/online"), "1\n");
        QCOMPARE(m_power->batteryPercent(), 57);
        QVERIFY(m_power->externalPowerPresent());
        write(QStringLiteral("power_supply/usb/online"), "0\n");
        QVERIFY(!m_power->externalPowerPresent());
    }

    void screenAndLightWriteTheirNodes()
    {
        write(QStringLiteral("backlight/lcd/bl_power"), "0\n");
        write(QStringLiteral("irled"), "0");
        m_power->setScreenOn(false);
        QVERIFY(!m_power->isScreenOn());
        QCOMPARE(TestDevice::readFile(node(QStringLiteral("backlight/lcd/bl_power"))).left(1), QByteArray("4"));
        m_power->setScreenOn(true);
        QVERIFY(m_power->isScreenOn());
        QCOMPARE(TestDevice::readFile(node(QStringLiteral("backlight/lcd/bl_power"))).left(1), QByteArray("0"));
        m_power->setIrLight(true);
        QCOMPARE(TestDevice::readFile(node(QStringLiteral("irled"))), QByteArray("1"));
    }

    void pitchFromGravity_data()
    {
        QTest::addColumn<int>("x");
        QTest::addColumn<int>("z");
        QTest::addColumn<int>("degrees");
        QTest::newRow("level") << 0 << 1000 << 0;
        QTest::newRow("nose up 30") << 500 << 866 << 30;
        QTest::newRow("nose down 30") << -500 << 866 << -30;
        QTest::newRow("upright") << 1000 << 0 << 90;
        QTest::newRow("rounds to nearest") << 120 << 1000 << 7;
    }

    void pitchFromGravity()
    {
        QFETCH(int, x);
        QFETCH(int, z);
        QFETCH(int, degrees);
        write(QStringLiteral("iio/device0/in_accel_x_raw"), QByteArray::number(x) + '\n');
        write(QStringLiteral("iio/device0/in_accel_y_raw"), "0\n");
        write(QStringLiteral("iio/device0/in_accel_z_raw"), QByteArray::number(z) + '\n');
        QCOMPARE(m_power->pitchDegrees(), degrees);
    }

    // --- the simulator's ---

    void simulatedFlashFollowsTheDriverParameter()
    {
        SimulatedDevicePower power;
        const QString ledValue = node(QStringLiteral("led_val"));
        write(QStringLiteral("led_val"), "0");
        power.setFlashParameterPath(ledValue);
        QVERIFY(power.sysfileWrite(ledValue, "2"));
        QVERIFY(SimulatedWorld::instance().irFlashActive);
        QCOMPARE(TestDevice::readFile(ledValue), QByteArray("2"));
        // The end of a recording switches the LED off, flash included.
        power.setIrLight(false);
        QVERIFY(!SimulatedWorld::instance().irFlashActive);
        QVERIFY(!power.sysfileWrite(node(QStringLiteral("missing")), "1"));
        SimulatedWorld::instance().pitchDegrees = -6;
        QCOMPARE(power.pitchDegrees(), -6);
    }
};

QTEST_GUILESS_MAIN(TestDevicePower)
#include "tst_devicepower.moc"
