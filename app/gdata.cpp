// SPDX-License-Identifier: GPL-2.0-or-later
// The one service object: typed settings, session values and every device and network operation.
#include "gdata.h"

#include "avilib.h"
#include "camcfg.h"
#include "cedarxutil.h"
#include "cmdutil.h"
#include "common.h"
#include "devicepower.h"
#include "osalqueue.h"
#include "platform.h"
#include "powertimers.h"
#include "provisioningserver.h"
#include "systemclock.h"
#include "v4l2device.h"
#include "versionstamp.h"

#include <QDebug>
#include <QStringList>

GData *g_pData = nullptr;

GData::GData(CmdUtil *cmdUtil, DeviceSet devices, QObject *parent)
    : QObject(parent)
    , m_pCmdUtil(cmdUtil)
    , m_devices(std::move(devices))
{
}

GData::~GData()
{
    // The device's own process never gets here (it is switched off); tests
    // and tools do, and must not leak a recording or queued frames.
    if (m_pAvi)
        AVIFileClose();
    if (m_pFrameQueue)
        H264Emptyqueue();
    if (m_pV4l2Device)
        V4l2DeviceClose();
    delete m_pCamCfg;
}

void GData::Init(QApplication *app)
{
    m_pApp = app;
    InitData();
    InitCommonAndConfig();
}

void GData::InitData()
{
    Q_ASSERT_X(m_devices.complete(), "GData::InitData", "start-up hands over every device");

    m_pFrameQueue = std::make_unique<OSAL_QUEUE>();
    // A writer that keeps up never comes near it.
    m_pFrameQueue->capacity = kMaxQueuedFrames;
    m_displayBuffer.assign(static_cast<size_t>(kCameraWidth) * kCameraHeight * 2, 0);

    m_bNetworkReady = 0;
    m_nWifiChanged = 0;
    m_nWifiRssi = 0;
    m_nBatteryLevel = 5;
    m_strName.clear();
    m_nSex = 1;
    m_dateBirthday = QDate(2020, 12, 31);
    m_strLastError.clear();
}

void GData::InitCommonAndConfig()
{
    m_pCommon = new common(this);
    m_pCommon->setVersion(versionstamp::builtVersion());

    delete m_pCamCfg;
    m_pCamCfg = new CamCfg;
    m_pCamCfg->setBaseDir(Platform::instance().applicationDir());
    m_pCamCfg->setRawText(m_pCamCfg->readCFG4File());
    if (m_pCamCfg->unreadable()) {
        // Factory settings in memory keep the pages working, but the file
        // is left for someone to rescue, and no child is judged by them.
        m_pCamCfg->resetDefaultCFG();
        m_pCamCfg->dogenCurrentCFG();
    } else if (m_pCamCfg->rawText().isEmpty()) {
        m_pCamCfg->resetDefaultCFG();
        m_pCamCfg->dogenCurrentCFG();
        m_pCamCfg->saveCFG2File();
    } else if (m_pCamCfg->parseCurrentCFG() == QLatin1String("1")) {
        m_pCamCfg->dogenCurrentCFG();
        m_pCamCfg->saveCFG2File();
    }
    InitConfigParameter();
}

void GData::InitConfigParameter()
{
    const CamCfg &cfg = *m_pCamCfg;
    m_nExposure = cfg.value(CamCfg::Exposure).toInt();
    m_nGain = cfg.value(CamCfg::Gain).toInt();
    m_nSetting3 = cfg.value(CamCfg::Setting3).toInt();
    m_nExposureSaved = m_nExposure;
    m_nGainSaved = m_nGain;
    m_nLedLoop = cfg.value(CamCfg::LedLoop).toInt();
    m_nSetting5 = cfg.value(CamCfg::Setting5).toInt();

    m_strTimeZone = cfg.value(CamCfg::TimeZone);

    m_nScreenOffMinutes = powertimers::minutesFromSetting(cfg.value(CamCfg::ScreenOffMinutes));
    m_nPowerOffMinutes = powertimers::minutesFromSetting(cfg.value(CamCfg::PowerOffMinutes));
    m_nReferralCriterion = cfg.value(CamCfg::ReferralCriterion).toInt();
    m_nRegion = cfg.value(CamCfg::Region).toInt();

    m_bAutoCapture = cfg.value(CamCfg::AutoCapture).toInt() != 0 ? 1 : 0;

    sensor_calibrate_data_t calibration;
    const bool fromFile = getSensorCalibrationData(calibration);
    qDebug("getSensorCalibrationData return : %s", fromFile ? "true" : "false");
    if (fromFile) {
        // The factory calibration wins over the settings; the settings copy
        // follows it in memory so the parameter page shows what is in force.
        m_nPitchOffset = calibration.pitch_offset;
        m_nDistanceOffset = calibration.distance_offset;
        m_pCamCfg->setValue(CamCfg::PitchOffset, QString::number(m_nPitchOffset));
        m_pCamCfg->setValue(CamCfg::DistanceOffset, QString::number(m_nDistanceOffset));
    } else {
        m_nPitchOffset = cfg.value(CamCfg::PitchOffset).toInt();
        m_nDistanceOffset = cfg.value(CamCfg::DistanceOffset).toInt();
    }
}

void GData::cfgFileDelete()
{
    // Passed as an argument rather than a command line, so an application
    // folder with a blank in its path still names the right file.
    QStringList arguments{m_pCamCfg->configFilePath()};
    m_pCmdUtil->sendCommand(QStringLiteral("rm"), arguments);
}

QString GData::sensorCalibrationFilePath() const
{
    return m_pCamCfg->baseDir() + QStringLiteral("/CAMCFG/sensor_calibration.txt");
}

bool GData::getSensorCalibrationData(sensor_calibrate_data_t &data)
{
    return sensorcalibration::read(sensorCalibrationFilePath(), data);
}

bool GData::setSensorCalibrationData(sensor_calibrate_data_t data)
{
    return sensorcalibration::write(sensorCalibrationFilePath(), data);
}

bool GData::backupSensorCalibrationData()
{
    sensor_calibrate_data_t data;
    data.distance_offset = m_nDistanceOffset;
    data.pitch_offset = m_nPitchOffset;
    return setSensorCalibrationData(data);
}

int GData::getBatteryPercent()
{
    return m_devices.power->batteryPercent();
}

bool GData::getUSBPresentState()
{
    return m_devices.power->externalPowerPresent();
}

void GData::screenOn()
{
    m_devices.power->setScreenOn(true);
}

void GData::screenOff()
{
    m_devices.power->setScreenOn(false);
}

bool GData::isScreenOn()
{
    return m_devices.power->isScreenOn();
}

void GData::FlashOn()
{
    m_devices.power->setIrLight(true);
}

void GData::FlashOff()
{
    m_devices.power->setIrLight(false);
}

int GData::getDOF()
{
    // The inertial sensor sits at a slightly different angle in every housing;
    // the calibration offset brings its reading to the lens's tilt.
    return m_devices.power->pitchDegrees() + m_nPitchOffset;
}

bool GData::sysfileWrite(const QString &path, const QByteArray &text)
{
    return m_devices.power->sysfileWrite(path, text);
}

bool GData::isNetworkReady() const
{
    return m_bNetworkReady != 0;
}

GData::BusyJob::BusyJob(GData &data)
    : m_data(data)
{
    ++m_data.m_nBusyJobs;
}

GData::BusyJob::~BusyJob()
{
    --m_data.m_nBusyJobs;
}

bool GData::isBusy() const
{
    const int mode = m_nCameraMode;
    return m_nBusyJobs > 0 || mode == 2 || mode == 3;
}
