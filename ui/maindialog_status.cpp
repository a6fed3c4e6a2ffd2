// SPDX-License-Identifier: GPL-2.0-or-later
// MainDialog: the start and no-Wi-Fi pages' timers, and the clock, battery and Wi-Fi labels.
#include "maindialog.h"

#include "batterylevel.h"
#include "cmdutil.h"
#include "gdata.h"
#include "ui_maindialog.h"
#include "ui_pagesetup.h"
#include "ui_pagetimezone.h"
#include "ui_pagewithmenu.h"

#include <QIcon>
#include <QPixmap>

void MainDialog::timerPageStart()
{
    if (ui->stackedWidgetBase->currentIndex() != BasePageStart)
        return;
    if (g_pData->m_pCmdUtil->wireless_is_connected()) {
        showMenuPages();
    } else if (m_nTimesStart > 10) {
        ui->stackedWidgetBase->setCurrentIndex(BasePageNoWifi);
        g_pData->m_nWifiChanged = 1;
    }
    qDebug("times = %d", m_nTimesStart);
    ++m_nTimesStart;
}

void MainDialog::timerPageMain()
{
    if (ui->stackedWidgetBase->currentIndex() != BasePageMenu)
        return;
    if (m_nTimesMain > 5) {
        m_nTimesMain = 0;
        labelWirelessShow();
        labelTimeShow();
        labelBatteryShow();
        timerVersionCheck();
    } else {
        ++m_nTimesMain;
    }
}

void MainDialog::timerPageWifi()
{
    // The countdown runs wherever the page is; it is only seen on the Wi-Fi page.
    labelProvisioningShow();
    if (ui->stackedWidgetBase->currentIndex() != BasePageNoWifi)
        return;
    if (m_nTimesWifi > 25) {
        m_nTimesWifi = 0;
        g_pData->m_nWifiChanged = 1;
    } else {
        ++m_nTimesWifi;
    }
}

void MainDialog::labelTimeShow()
{
    if (!g_pData->isNetworkReady())
        return;
    const QString text = g_pData->getLocalTime().toString(QStringLiteral("yyyy-MM-dd hh:mm"));
    uiMenu->labelTime->setText(text);
    uiTimeZone->labelTimeZoneTimeValue->setText(text);
}

void MainDialog::labelBatteryShow()
{
    static const char *const icons[] = {
        ":/png/history/battery0@2x.png", ":/png/history/battery2@2x.png", ":/png/history/battery4@2x.png",
        ":/png/history/battery6@2x.png", ":/png/history/battery8@2x.png", ":/png/history/battery@2x.png",
    };
    const int percent = g_pData->getBatteryPercent();
    const bool external = g_pData->getUSBPresentState();
    const batterylevel::Step step = batterylevel::next(g_pData->m_nBatteryLevel, m_bLowBatteryArmed, percent, external);
    g_pData->m_nBatteryLevel = step.level;
    uiMenu->labelBattery->setPixmap(QPixmap(QString::fromLatin1(icons[step.level])));
    if (step.warn)
        showMessage(tr("Low Battery"), tr("20% battery remaining"), QString(), tr("OK"), QString());
}

void MainDialog::labelWirelessShow()
{
    const int rssi = g_pData->m_nWifiRssi;
    if (rssi == 0) {
        uiMenu->labelWireless->setPixmap(QPixmap());
        return;
    }
    const char *icon = ":/png/history/wifi4@2x.png";
    if (rssi >= -50)
        icon = ":/png/history/wifi@2x.png";
    else if (rssi >= -60)
        icon = ":/png/history/wifi2@2x.png";
    else if (rssi >= -70)
        icon = ":/png/history/wifi3@2x.png";
    uiMenu->labelWireless->setPixmap(QPixmap(QString::fromLatin1(icon)));
}

void MainDialog::timerVersionCheck()
{
    // The polling thread asks the server (GData::timerVersionCheck); this
    // only shows what it found, and restores the plain button should the
    // server withdraw the version.
    const bool published = g_pData->m_nNewVersionPublished != 0;
    if (published == m_bUpdateMarked)
        return;
    m_bUpdateMarked = published;
    uiSetup->buttonUpdate->setIcon(
        QIcon(published ? QStringLiteral(":/pic/update_new.jpg") : QStringLiteral(":/png/setup/update@2x.png")));
    uiSetup->buttonUpdate->setStyleSheet(published ? QStringLiteral("color: rgb(50, 227, 233); font-size: 24pt;")
                                                   : QString());
}
