// SPDX-License-Identifier: GPL-2.0-or-later
// MainDialog: the machine identity page (MAC address, version, region) and its QR code.
#include "maindialog.h"

#include "common.h"
#include "gdata.h"
#include "qrimage.h"
#include "ui_pagemachineid.h"

#include <QPixmap>

void MainDialog::pageMachineIDInit()
{
    const QString mac = g_pData->m_pCommon->GetETNetMACAddress();
    const QString version = g_pData->m_pCommon->version();
    uiMachineID->labelMachineMacValue->setText(mac.isEmpty() ? tr("Unknown") : mac);
    uiMachineID->labelMachineVersionValue->setText(version);
    uiMachineID->labelMachineRegionValue->setText(regionLabel());

    // Read by the service desk's phones, so the fields are named in English
    // whatever the screen's language, and the region is the server's name for it.
    const QString identity =
        QStringLiteral("MAC: %1\nVersion: %2\nRegion: %3").arg(mac, version, g_pData->getRegionString());
    QLabel *code = uiMachineID->labelMachineQr;
    code->setPixmap(QPixmap::fromImage(qrimage::render(identity, code->width())));
}
