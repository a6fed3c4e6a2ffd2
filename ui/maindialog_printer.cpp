// SPDX-License-Identifier: GPL-2.0-or-later
// MainDialog: the printer page (printer type, the bound Bluetooth printer, the cloud printer's device ID).
#include "maindialog.h"

#include "btlistdlg.h"
#include "camcfg.h"
#include "gdata.h"
#include "keypaddlg.h"
#include "ui_pagenomenu.h"
#include "ui_pageprinter.h"

namespace {

const QString kBluetooth = QStringLiteral("bt");
const QString kCloud = QStringLiteral("network");
// The serial-port channel of the receipt printers the device is sold with.
constexpr int kPrinterChannel = 1;

} // namespace

void MainDialog::pagePrinterInit()
{
    watchPresses(uiPrinter->editCloudPrinterId, &MainDialog::editCloudPrinterIdPressed);
    const CamCfg &cfg = *g_pData->m_pCamCfg;
    // Anything but the cloud printer prints over Bluetooth.
    (cfg.value(CamCfg::PrinterKind) == kCloud ? uiPrinter->buttonPrinterNetwork : uiPrinter->buttonPrinterBt)
        ->setChecked(true);
    const QString bound = cfg.value(CamCfg::BluetoothPrinter);
    uiPrinter->labelBtPrinterValue->setText(bound.isEmpty() ? tr("None") : bound);
    uiPrinter->editCloudPrinterId->setText(cfg.value(CamCfg::PrinterDeviceId));
    uiPrinter->editCloudPrinterId->setCursorPosition(0);
}

void MainDialog::on_buttonPrinterSetting_clicked()
{
    pagePrinterInit();
    showNoMenuPage(uiNoMenu->pagePrinter);
}

void MainDialog::on_buttonPrinterReturn_clicked()
{
    showNoMenuPage(uiNoMenu->pageSetup);
}

void MainDialog::on_buttonPrinterBt_clicked()
{
    storeSetting(CamCfg::PrinterKind, kBluetooth);
}

void MainDialog::on_buttonPrinterNetwork_clicked()
{
    storeSetting(CamCfg::PrinterKind, kCloud);
}

void MainDialog::on_buttonPrinterScan_clicked()
{
    BtListDlg list(g_pData->btPrinterManager());
    if (list.exec() != QDialog::Accepted || list.strMac.isEmpty())
        return;
    bindBtPrinterRequest(list.strMac, kPrinterChannel);
    pagePrinterInit();
}

void MainDialog::on_buttonPrinterTest_clicked()
{
    printWithStatus(4);
}

void MainDialog::editCloudPrinterIdPressed()
{
    KeypadDlg keypad;
    keypad.setTarget(uiPrinter->editCloudPrinterId);
    keypad.move(mapToGlobal(QPoint(0, 350)));
    keypad.exec();

    // A stray space from the keypad's wide space bar is no part of an ID.
    const QString typed = uiPrinter->editCloudPrinterId->text().trimmed();
    // The settings file separates its values with "|": one inside a value
    // would shift every later setting.
    if (typed.contains(QLatin1Char('|'))) {
        pagePrinterInit();
        showMessage(tr("Invalid Device ID"), tr("A device ID cannot contain \"|\"."), QString(), tr("OK"), QString());
        return;
    }
    if (typed != g_pData->m_pCamCfg->value(CamCfg::PrinterDeviceId))
        storeSetting(CamCfg::PrinterDeviceId, typed);
    pagePrinterInit();
}
