// SPDX-License-Identifier: GPL-2.0-or-later
// MainDialog: the settings page, its sub-pages, the firmware update and the factory reset.
#include "maindialog.h"

#include "camcfg.h"
#include "cmdutil.h"
#include "gdata.h"
#include "ui_maindialog.h"
#include "ui_pagenomenu.h"
#include "ui_pagereferral.h"
#include "uploaddlg.h"

void MainDialog::storeSetting(int position, const QString &text)
{
    CamCfg &cfg = *g_pData->m_pCamCfg;
    cfg.setValue(position, text);
    cfg.dogenCurrentCFG();
    cfg.saveCFG2File();
}

void MainDialog::on_buttonWifiSetting_clicked()
{
    // The polling thread refreshes the table as soon as it can.
    g_pData->m_nWifiChanged = 1;
    showNoMenuPage(uiNoMenu->pageWIFI);
}

void MainDialog::on_buttonTimeZoneSetting_clicked()
{
    showNoMenuPage(uiNoMenu->pageTimeZone);
}

void MainDialog::on_buttonSleepTimeSetting_clicked()
{
    showNoMenuPage(uiNoMenu->pageSleepTime);
}

void MainDialog::on_buttonCountrySetting_clicked()
{
    pageCountryInit();
    showNoMenuPage(uiNoMenu->pageCountry);
}

void MainDialog::on_buttonReferralSetting_clicked()
{
    pageReferralInit();
    showNoMenuPage(uiNoMenu->pageReferral);
}

void MainDialog::on_buttonParamSetting_clicked()
{
    pageParamInit();
    showNoMenuPage(uiNoMenu->pageParam);
}

void MainDialog::on_buttonMachineIDSetting_clicked()
{
    pageMachineIDInit();
    showNoMenuPage(uiNoMenu->pageMachineID);
}

void MainDialog::on_buttonUpdate_clicked()
{
    UploadDlg check;
    check.mode = 6;
    check.exec();
    qDebug("VERSION CHECK result: %d", check.nResult);
    if (check.nResult < 0) {
        showMessage(tr("Version Check Failed!"), QString(), QString(), tr("OK"), QString());
        return;
    }
    if (check.nResult == 0) {
        showMessage(tr("No New Version!"), QString(), QString(), tr("OK"), QString());
        return;
    }
    if (showMessage(tr("System Update"), QString(), tr("Yes"), QString(), tr("No")) != 0)
        return;
    UploadDlg download;
    download.mode = 1;
    download.exec();
    if (!download.bResult) {
        showMessage(tr("System Update Failed!"), QString(), QString(), tr("OK"), QString());
        return;
    }
    // The new program is in place for the next boot; reboot only once the
    // operator has seen that it worked.
    showMessage(tr("System Update Success!"), QString(), QString(), tr("OK"), QString());
    g_pData->m_pCmdUtil->reboot();
}

void MainDialog::on_buttonFactoryReset_clicked()
{
    if (showMessage(tr("Factory Reset"),
                    tr("All settings return to their factory values and the device restarts. "
                       "The test history is kept."),
                    tr("Yes"), QString(), tr("No")) != 0)
        return;
    // Only the settings file goes; the defaults take effect as the device
    // starts again. The history and the sensors' factory calibration stay.
    g_pData->cfgFileDelete();
    showMessage(tr("The device restarts now."), QString(), QString(), tr("OK"), QString());
    g_pData->m_pCmdUtil->reboot();
}

void MainDialog::on_buttonSetupReturn_clicked()
{
    showMenuPages();
}

void MainDialog::on_buttonHistoryReturn_clicked()
{
    showMenuPages();
}

void MainDialog::on_buttonUserDetailReturn_clicked()
{
    showNoMenuPage(uiNoMenu->pageHistory);
}

void MainDialog::on_buttonParamReturn_clicked()
{
    showNoMenuPage(uiNoMenu->pageSetup);
}

void MainDialog::on_buttonReferralReturn_clicked()
{
    showNoMenuPage(uiNoMenu->pageSetup);
}

void MainDialog::on_buttonTimeZoneReturn_clicked()
{
    showNoMenuPage(uiNoMenu->pageSetup);
}

void MainDialog::on_buttonSleepTimeReturn_clicked()
{
    showNoMenuPage(uiNoMenu->pageSetup);
}

void MainDialog::on_buttonMachineIDReturn_clicked()
{
    showNoMenuPage(uiNoMenu->pageSetup);
}

void MainDialog::on_buttonCountryReturn_clicked()
{
    showNoMenuPage(uiNoMenu->pageSetup);
}

void MainDialog::on_buttonWifiReturn_clicked()
{
    // Provisioning stays open only while its PIN is on the screen.
    g_pData->stopProvisioning();
    // Back through the start page: it goes on to the menu once a network is
    // joined and to the no-Wi-Fi page otherwise.
    if (g_pData->m_pCmdUtil->wireless_is_connected())
        showNoMenuPage(uiNoMenu->pageSetup);
    else
        ui->stackedWidgetBase->setCurrentIndex(BasePageStart);
}
