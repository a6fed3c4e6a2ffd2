// SPDX-License-Identifier: GPL-2.0-or-later
// MainDialog: the referral settings page, where the operator picks the criterion the results are judged by.
#include "maindialog.h"

#include "camcfg.h"
#include "gdata.h"
#include "referral.h"
#include "ui_pagereferral.h"

namespace {

// Taken at once, as the other settings pages do: the next result is judged
// by it even if the device is switched off on this page.
void saveCriterion(int criterion)
{
    g_pData->m_nReferralCriterion = criterion;
    CamCfg &cfg = *g_pData->m_pCamCfg;
    cfg.setValue(CamCfg::ReferralCriterion, QString::number(criterion));
    cfg.dogenCurrentCFG();
    cfg.saveCFG2File();
}

} // namespace

void MainDialog::pageReferralInit()
{
    switch (g_pData->m_nReferralCriterion) {
    case referral::Matta:
        uiReferral->buttonMatta->setChecked(true);
        uiReferral->stackedWidgetReferral->setCurrentWidget(uiReferral->pageMatta);
        break;
    case referral::Arnold:
        uiReferral->buttonArnold->setChecked(true);
        uiReferral->stackedWidgetReferral->setCurrentWidget(uiReferral->pageArnold);
        break;
    default:
        // Any other value is judged by Arthur2, so that is what the page shows.
        uiReferral->buttonArthur2->setChecked(true);
        uiReferral->stackedWidgetReferral->setCurrentWidget(uiReferral->pageArthur2);
        break;
    }
}

void MainDialog::on_buttonMatta_clicked()
{
    saveCriterion(referral::Matta);
    uiReferral->stackedWidgetReferral->setCurrentWidget(uiReferral->pageMatta);
}

void MainDialog::on_buttonArthur2_clicked()
{
    saveCriterion(referral::Arthur2);
    uiReferral->stackedWidgetReferral->setCurrentWidget(uiReferral->pageArthur2);
}

void MainDialog::on_buttonArnold_clicked()
{
    saveCriterion(referral::Arnold);
    uiReferral->stackedWidgetReferral->setCurrentWidget(uiReferral->pageArnold);
}
