// SPDX-License-Identifier: GPL-2.0-or-later
// MainDialog: screen-off and power-off after idle minutes, wake-up by touch or power key.
#include "maindialog.h"

#include "cmdutil.h"
#include "gdata.h"
#include "systemclock.h"
#include "ui_pageinfoinput.h"

#include <QEvent>
#include <QKeyEvent>

void MainDialog::timerShutdown()
{
    // Until the network time is known the wall clock may jump by years.
    if (!g_pData->isNetworkReady())
        return;
    const qint64 now = systemclock::nowSecs();
    // Idle time counts again from the end of a job: a recording, an upload,
    // a print or a mail lost to the power timer is a child to screen again.
    if (m_nLastActivity == 0 || g_pData->isBusy()) {
        m_nLastActivity = now;
        return;
    }
    const qint64 elapsed = now - m_nLastActivity;
    const int powerOffMinutes = g_pData->m_nPowerOffMinutes;
    if (powerOffMinutes != -1 && elapsed > 60LL * powerOffMinutes) {
        qDebug("shutdown %d %d %d", static_cast<int>(elapsed), static_cast<int>(m_nLastActivity), powerOffMinutes);
        g_pData->m_pCmdUtil->poweroff();
        return;
    }
    const int screenOffMinutes = g_pData->m_nScreenOffMinutes;
    if (screenOffMinutes != -1 && g_pData->isScreenOn() && elapsed > 60LL * screenOffMinutes) {
        qDebug("screenOff %d %d %d", static_cast<int>(elapsed), static_cast<int>(m_nLastActivity), screenOffMinutes);
        g_pData->screenOff();
    }
}

bool MainDialog::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::MouseButtonPress || !watched->isWidgetType())
        return QDialog::eventFilter(watched, event);

    if (g_pData->isNetworkReady())
        m_nLastActivity = systemclock::nowSecs();
    if (!g_pData->isScreenOn()) {
        // The touch that wakes the screen must not also press what is under it.
        g_pData->screenOn();
        return true;
    }
    if (watched == uiInfo->editName) {
        editNamePressed();
        return true;
    }
    if (watched == uiInfo->editDate) {
        editDatePressed();
        return true;
    }
    return QDialog::eventFilter(watched, event);
}

void MainDialog::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_PowerDown) {
        if (g_pData->isNetworkReady())
            m_nLastActivity = systemclock::nowSecs();
        if (!g_pData->isScreenOn())
            g_pData->screenOn();
        return;
    }
    // A dialog closes on Escape; this one is the whole device and must not.
    if (event->key() == Qt::Key_Escape)
        return;
    QDialog::keyPressEvent(event);
}

void MainDialog::on_buttonReboot_clicked()
{
    if (showMessage(tr("Power Off"), QString(), tr("Yes"), QString(), tr("No")) != 0)
        return;
    g_pData->FlashOff();
    g_pData->m_pCmdUtil->poweroff();
}
