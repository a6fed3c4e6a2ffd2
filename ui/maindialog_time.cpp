// SPDX-License-Identifier: GPL-2.0-or-later
// MainDialog: network time, the time-zone page and the screen and power timers page.
#include "maindialog.h"

#include "camcfg.h"
#include "gdata.h"
#include "powertimers.h"
#include "timedlg.h"
#include "ui_pagesleeptime.h"
#include "ui_pagetimezone.h"
#include "zonedlg.h"

#include <QCoreApplication>
#include <QThreadPool>

namespace {

// The device cannot screen before it knows the time, so a failed exchange is
// tried again soon; a silent server holds one exchange for at most 6 s, and
// ticks that fall inside it are skipped rather than queued.
constexpr int kInternetTimePeriodMs = 5000;

QString timeoutText(const QString &setting)
{
    const int minutes = powertimers::minutesFromSetting(setting);
    if (const char *choice = powertimers::choiceForMinutes(minutes))
        return QCoreApplication::translate("TimeDlg", choice);
    return QCoreApplication::translate("MainDialog", "%1 Minutes").arg(minutes);
}

void saveSetting(int position, const QString &text)
{
    CamCfg &cfg = *g_pData->m_pCamCfg;
    cfg.setValue(position, text);
    cfg.dogenCurrentCFG();
    cfg.saveCFG2File();
}

} // namespace

void MainDialog::timeSettingsInit()
{
    pageTimeZoneInit();
    labelTimeoutSettingShow();

    m_pInternetTimePool = new QThreadPool(this);
    m_pInternetTimePool->setMaxThreadCount(1);
    m_internetTimeTimer.setObjectName(QStringLiteral("timerInternetTime"));
    connect(&m_internetTimeTimer, &QTimer::timeout, this, &MainDialog::timerInternetTime);
    m_internetTimeTimer.start(kInternetTimePeriodMs);
}

void MainDialog::timerInternetTime()
{
    // Set once per power-up (see GData::timerInternetTime); the simulated
    // world's own "time known" does not count, the exchange must have worked.
    if (g_pData->m_bNetworkReady) {
        m_internetTimeTimer.stop();
        return;
    }
    // The exchange blocks for up to 6 s; the touch screen must not.
    GData *service = g_pData;
    m_pInternetTimePool->tryStart([service] { service->timerInternetTime(); });
}

void MainDialog::pageTimeZoneInit()
{
    uiTimeZone->buttonTimeZone->setText(ZoneDlg::zoneLabel(g_pData->m_strTimeZone));
    labelTimeShow();
}

void MainDialog::labelTimeoutSettingShow()
{
    const CamCfg &cfg = *g_pData->m_pCamCfg;
    uiSleepTime->buttonClockScreen->setText(timeoutText(cfg.value(CamCfg::ScreenOffMinutes)));
    uiSleepTime->buttonClockShutdown->setText(timeoutText(cfg.value(CamCfg::PowerOffMinutes)));
}

void MainDialog::on_buttonTimeZone_clicked()
{
    ZoneDlg dialog;
    dialog.Init(g_pData->m_strTimeZone);
    dialog.exec();
    if (dialog.strZone.isEmpty())
        return;
    saveSetting(CamCfg::TimeZone, dialog.strZone);
    g_pData->m_strTimeZone = dialog.strZone;
    pageTimeZoneInit();
}

void MainDialog::on_buttonClockScreen_clicked()
{
    TimeDlg dialog;
    dialog.Init(uiSleepTime->labelClockScreen->text(), g_pData->m_pCamCfg->value(CamCfg::ScreenOffMinutes));
    dialog.exec();
    if (dialog.strTime.isEmpty())
        return;
    saveSetting(CamCfg::ScreenOffMinutes, dialog.strTime);
    g_pData->m_nScreenOffMinutes = powertimers::minutesFromSetting(dialog.strTime);
    labelTimeoutSettingShow();
}

void MainDialog::on_buttonClockShutdown_clicked()
{
    TimeDlg dialog;
    dialog.Init(uiSleepTime->labelClockShutdown->text(), g_pData->m_pCamCfg->value(CamCfg::PowerOffMinutes));
    dialog.exec();
    if (dialog.strTime.isEmpty())
        return;
    saveSetting(CamCfg::PowerOffMinutes, dialog.strTime);
    g_pData->m_nPowerOffMinutes = powertimers::minutesFromSetting(dialog.strTime);
    labelTimeoutSettingShow();
}
