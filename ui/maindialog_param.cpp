// SPDX-License-Identifier: GPL-2.0-or-later
// MainDialog: the calibration parameters page (camera settings and the sensors' offsets).
#include "maindialog.h"

#include "camcfg.h"
#include "gdata.h"
#include "numkeypaddlg.h"
#include "ui_pageparam.h"

#include <iterator>

namespace {

struct Param
{
    int position;
    int GData::*value;
    int minimum;
    int maximum;
    QLabel *Ui::PageParam::*label;
    QPushButton *Ui::PageParam::*button;
};

// The limits keep a mistyped value from leaving the device unable to screen:
// - exposure is counted in sensor lines, and a 1080-line frame at 30 frames a
//   second has 1125 of them; a longer exposure would drop the frame rate the
//   recording's timing relies on;
// - gain is the sensor's analogue multiplier, 1 to 16; above that the noise
//   hides the pupils' reflex;
// - setting 3 stands in for the camera page's sharpness figure until the first
//   preview, a mean squared difference of 8-bit pixels: at most 255 squared;
// - a recording holds 18 frames per LED loop and stops after 6 seconds, 90
//   frames at 15 a second: more than 5 loops would flash without being
//   recorded, and 0 records nothing at all;
// - setting 5 has no reader yet; like its neighbours it stays a small count;
// - the pitch offset corrects how the tilt sensor sits in the housing, a few
//   degrees; the aiming window is only 7 degrees either way, so more than 15
//   is a loose sensor, not something to calibrate away;
// - the distance offset, in millimetres, corrects the ranging sensor and its
//   cover glass, a few centimetres; the working range is 95 to 100 cm, so
//   more than 20 cm points at a blocked or damaged sensor.
const Param kParams[] = {
    {CamCfg::Exposure, &GData::m_nExposure, 1, 1125, &Ui::PageParam::labelParamExposure,
     &Ui::PageParam::buttonParamExposure},
    {CamCfg::Gain, &GData::m_nGain, 1, 16, &Ui::PageParam::labelParamGain, &Ui::PageParam::buttonParamGain},
    {CamCfg::Setting3, &GData::m_nSetting3, 0, 65025, &Ui::PageParam::labelParamSetting3,
     &Ui::PageParam::buttonParamSetting3},
    {CamCfg::LedLoop, &GData::m_nLedLoop, 1, 5, &Ui::PageParam::labelParamLedLoop, &Ui::PageParam::buttonParamLedLoop},
    {CamCfg::Setting5, &GData::m_nSetting5, 0, 100, &Ui::PageParam::labelParamSetting5,
     &Ui::PageParam::buttonParamSetting5},
    {CamCfg::PitchOffset, &GData::m_nPitchOffset, -15, 15, &Ui::PageParam::labelParamPitchOffset,
     &Ui::PageParam::buttonParamPitchOffset},
    {CamCfg::DistanceOffset, &GData::m_nDistanceOffset, -200, 200, &Ui::PageParam::labelParamDistanceOffset,
     &Ui::PageParam::buttonParamDistanceOffset},
};

} // namespace

void MainDialog::paramButtonsInit()
{
    for (int row = 0; row < int(std::size(kParams)); ++row)
        connect(uiParam.get()->*kParams[row].button, &QPushButton::clicked, this, [this, row] { editParam(row); });
}

void MainDialog::pageParamInit()
{
    for (const Param &param : kParams)
        (uiParam.get()->*param.button)->setText(QString::number(g_pData->*param.value));
}

void MainDialog::editParam(int row)
{
    const Param &param = kParams[row];
    const QString name = (uiParam.get()->*param.label)->text();
    QPushButton *field = uiParam.get()->*param.button;

    // The keypad covers the rows; the title says what is being typed.
    QLabel *title = uiParam->labelParamTitle;
    const QString pageTitle = title->text();
    title->setText(tr("%1: %2 to %3").arg(name).arg(param.minimum).arg(param.maximum));
    NumKeypadDlg keypad;
    keypad.setTarget(field);
    keypad.move(mapToGlobal(QPoint(0, 240)));
    keypad.exec();
    title->setText(pageTitle);

    const QString typed = field->text().trimmed();
    pageParamInit();
    bool number = false;
    const int value = typed.toInt(&number);
    if (typed.isEmpty() || (number && value == g_pData->*param.value))
        return;
    if (!number || value < param.minimum || value > param.maximum) {
        showMessage(tr("Value Out of Range"),
                    tr("%1 must be a whole number from %2 to %3.").arg(name).arg(param.minimum).arg(param.maximum),
                    QString(), tr("OK"), QString());
        return;
    }

    // Taken at once: the camera gets exposure and gain as the next preview
    // starts, the sensors' readings use the offsets from the next one on.
    g_pData->*param.value = value;
    if (param.position == CamCfg::Exposure)
        g_pData->m_nExposureSaved = value;
    if (param.position == CamCfg::Gain)
        g_pData->m_nGainSaved = value;
    storeSetting(param.position, QString::number(value));
    // The calibration file wins over the settings at start-up, so an offset
    // kept only in the settings would be undone by the next restart.
    if (param.position == CamCfg::PitchOffset || param.position == CamCfg::DistanceOffset)
        g_pData->backupSensorCalibrationData();
    pageParamInit();
}
