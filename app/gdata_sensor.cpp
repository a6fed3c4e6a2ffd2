// SPDX-License-Identifier: GPL-2.0-or-later
// GData: the ranging sensor that measures the distance to the child.
#include "gdata.h"

#include "cmdutil.h"
#include "platform.h"
#include "vl53l1x_api.h"
#include "vl53l1x_platform.h"

#include <QDebug>
#include <QStringList>

uint8_t GData::m_nSensorNotReadyCount = 0;

namespace {

constexpr int kSensorBus = 0;
constexpr unsigned char kSensorAddress = 0x29;
constexpr int kNoReading = 200;
constexpr int kDataPolls = 4;
constexpr int kDataPollWaitMs = 50;
constexpr int kBootPollWaitMs = 200;
constexpr int kBootPolls = 5;
constexpr uint8_t kMissesBeforeRelease = 21;

// The sensor sits this far behind the reference the working range is
// measured from; a range the chip could not measure counts as 2 m.
constexpr int kSensorSetbackMm = 125;
constexpr int kUnmeasuredMm = 2000;
constexpr int kRoundingMm = 5;

// The kernel's own driver for the chip would hold its address; it goes now
// and, by its line leaving the start-up script, at every later boot too.
void removeKernelDriver(CmdUtil *cmdUtil)
{
    if (!cmdUtil)
        return;
    const QString script = Platform::instance().startupScript;
    // No script named: nothing loads the driver at boot.
    if (!script.isEmpty()) {
        // The path is an argument of its own: no shell sees it.
        QStringList arguments{QStringLiteral("-i"), QStringLiteral("/modprobe vl53l1/d"), script};
        cmdUtil->sendCommand(QStringLiteral("sed"), arguments);
    }
    cmdUtil->sendCommand(QStringLiteral("rmmod vl53l1"));
}

} // namespace

int GData::initRangingSensor(int bus, unsigned char address)
{
    removeKernelDriver(m_pCmdUtil);
    vl53l1platform::useBus(*m_devices.rangingSensorBus, Platform::instance().i2cDevicePattern.toStdString());
    if (VL53L1X_UltraLite_Linux_I2C_Init(m_nSensorHandle, bus, address) != 0)
        return -1;

    uint16_t modelId = 0;
    VL53L1_RdWord(m_nSensorHandle, vl53l1x::kModelIdRegister, &modelId);
    qDebug("VL53L1X: %X\n", modelId);

    // The chip boots within milliseconds of power-up. One that has not
    // answered within a second has stopped answering on a bus node that still
    // exists (a failed read counts as not booted): waiting longer would hold
    // the sensor thread, and the pitch readings with it, for good.
    uint8_t booted = 0;
    for (int poll = 0; poll < kBootPolls && !booted; ++poll) {
        VL53L1X_BootState(m_nSensorHandle, &booted);
        VL53L1_WaitMs(m_nSensorHandle, kBootPollWaitMs);
    }
    if (!booted) {
        qDebug("VL53L1X did not boot");
        VL53L1X_UltraLite_Linux_I2C_Deinit();
        return -1;
    }
    qDebug("Chip booted");

    int status = VL53L1X_SensorInit(m_nSensorHandle);
    status += VL53L1X_SetDistanceMode(m_nSensorHandle, vl53l1x::kShortDistanceMode);
    status += VL53L1X_SetTimingBudgetInMs(m_nSensorHandle, 100);
    status += VL53L1X_SetInterMeasurementInMs(m_nSensorHandle, 100);
    status += VL53L1X_StartRanging(m_nSensorHandle);
    return status;
}

int GData::getDistance()
{
    if (!m_bSensorReady) {
        const int result = initRangingSensor(kSensorBus, kSensorAddress);
        qDebug("RangingSensor init ret: %d\n", result);
        if (result != 0)
            return kNoReading;
        m_bSensorReady = 1;
    }

    uint8_t ready = 0;
    for (int poll = 0; poll < kDataPolls; ++poll) {
        VL53L1X_CheckForDataReady(m_nSensorHandle, &ready);
        if (ready)
            break;
        VL53L1_WaitMs(m_nSensorHandle, kDataPollWaitMs);
    }
    if (!ready) {
        ++m_nSensorNotReadyCount;
        qDebug("VL53L1X data not ready: %d\r\n", m_nSensorNotReadyCount);
        if (m_nSensorNotReadyCount < kMissesBeforeRelease)
            return kNoReading;
        // The count stays: after the next initialisation a single miss
        // releases the bus again, until a reading succeeds.
        VL53L1X_UltraLite_Linux_I2C_Deinit();
        m_bSensorReady = 0;
        qDebug("Reinit I2C...\r");
        return kNoReading;
    }
    m_nSensorNotReadyCount = 0;

    VL53L1X_Result result;
    VL53L1X_GetResult(m_nSensorHandle, &result);
    qDebug("Status = %2d, dist = %5d, Ambient = %02d, Signal = %02d, #ofSpads = %5d\n", result.Status, result.Distance,
           result.Ambient, result.SigPerSPAD, result.NumSPADs);
    const int millimetres =
        (result.Status == 0 ? result.Distance - kSensorSetbackMm : kUnmeasuredMm - kSensorSetbackMm) +
        m_nDistanceOffset + kRoundingMm;
    const int centimetres = millimetres / 10;
    qDebug("result: %d\n", centimetres);
    VL53L1X_ClearInterrupt(m_nSensorHandle);
    return centimetres;
}
