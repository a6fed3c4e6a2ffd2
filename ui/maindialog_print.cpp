// SPDX-License-Identifier: GPL-2.0-or-later
// MainDialog: printing a receipt from the result and history pages, and binding the Bluetooth printer.
#include "maindialog.h"

#include "btprintermanager.h"
#include "camcfg.h"
#include "gdata.h"
#include "historysearch.h"
#include "msgdialog.h"
#include "uploaddlg.h"

#include <QEventLoop>
#include <QTimer>

namespace {

// Longer than pairing, release, bind and the blank line's print together,
// each of which has its own limit; this only guards against a lost signal.
constexpr int kBindGuardMs = 20000;

} // namespace

bool MainDialog::printWithStatus(int mode)
{
    UploadDlg printing;
    printing.mode = mode;
    printing.exec();
    const QString status = printing.strResult;
    QString shown = status;
    if (status == QLatin1String("OK"))
        shown = tr("Printed");
    else if (status == QLatin1String("Error"))
        shown = tr("Error");
    else if (status.isEmpty())
        shown = tr("No printer is set");
    showMessage(tr("Message"), shown, QString(), tr("OK"), QString());
    return status == QLatin1String("OK");
}

void MainDialog::on_buttonResultPrint_clicked()
{
    g_pData->m_printRecord.reset();
    printWithStatus();
}

void MainDialog::on_buttonHistoryPrint_clicked()
{
    const QStringList keys = selectedHistoryKeys();
    if (keys.isEmpty()) {
        showMessage(tr("No Record Selected"), QString(), QString(), tr("OK"), QString());
        return;
    }
    const QString history = g_pData->readTestResult();
    for (const QString &key : keys) {
        const QStringList child = historysearch::keyFields(key);
        const QVector<QStringList> tests = historysearch::testsOf(history, child.at(0), child.at(1), child.at(2));
        if (tests.isEmpty())
            continue;
        const QStringList &latest = tests.last();
        historyrecord::Test test;
        test.name = child.at(0);
        test.male = child.at(1) != QLatin1String("Female");
        test.birthday = QDate::fromString(child.at(2), QStringLiteral("yyyy-MM-dd"));
        test.testTime = latest.at(0);
        test.odSphere = latest.at(1);
        test.odCylinder = latest.at(2);
        test.odAxis = latest.at(3);
        test.osSphere = latest.at(4);
        test.osCylinder = latest.at(5);
        test.osAxis = latest.at(6);
        test.pupilDistance = latest.at(7);
        test.result = latest.at(8);
        g_pData->m_printRecord = test;
        if (!printWithStatus())
            break;
    }
    g_pData->m_printRecord.reset();
}

void MainDialog::bindBtPrinterRequest(const QString &mac, int channel)
{
    BtPrinterManager *manager = g_pData->btPrinterManager();
    MsgDialog waiting;
    waiting.Init(tr("Message"), tr("Data is processing,please wait..."), QString(), tr("Waiting..."), QString());
    waiting.show();

    QEventLoop loop;
    bool bound = false;
    QString message;
    const QMetaObject::Connection finished = connect(manager, &BtPrinterManager::bindFinished, &loop,
                                                     [&](bool ok, const QString &, int, const QString &text) {
                                                         bound = ok;
                                                         message = text;
                                                         loop.quit();
                                                     });
    // Started from inside the loop: a refused address finishes at once.
    QTimer::singleShot(0, manager, [manager, mac, channel] { manager->bindDevice(mac, channel); });
    QTimer::singleShot(kBindGuardMs, &loop, &QEventLoop::quit);
    loop.exec();
    disconnect(finished);
    waiting.close();

    if (bound) {
        CamCfg &cfg = *g_pData->m_pCamCfg;
        cfg.setValue(CamCfg::BluetoothPrinter, mac.trimmed());
        cfg.dogenCurrentCFG();
        cfg.saveCFG2File();
        message = tr("Printer bound: %1").arg(mac.trimmed());
    } else if (message.isEmpty()) {
        message = tr("Error");
    }
    showMessage(tr("Message"), message, QString(), tr("OK"), QString());
}
