// SPDX-License-Identifier: GPL-2.0-or-later
// The Bluetooth scan list: devices in range as the scan finds them, one chosen to be bound as the printer.
#pragma once

#include "btdevice.h"

#include <QDialog>
#include <QList>
#include <QString>
#include <QTimer>

#include <memory>

class BtPrinterManager;

namespace Ui {
class BtListDlg;
}

// Scans as soon as it is shown; exec() returns Accepted with the chosen
// device in strMac and strName, or Rejected when the operator cancels. The
// scan is over when the dialog closes, whichever way.
class BtListDlg : public QDialog
{
    Q_OBJECT

public:
    // Long enough for a printer just switched on to announce itself; the
    // operator may stop sooner, or bind as soon as the printer shows.
    static constexpr int kScanMs = 12000;

    explicit BtListDlg(BtPrinterManager *manager, QWidget *parent = nullptr);
    ~BtListDlg() override;

    QString strMac;
    QString strName;

public slots:
    // Adds the devices not listed yet and updates the others in place.
    void showDevices(const QList<BtDevice> &devices);

protected:
    void showEvent(QShowEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private slots:
    void on_buttonBtListScan_clicked();
    void on_buttonBtListBind_clicked();
    void on_buttonBtListCancel_clicked();
    void timerScanCountdown();

private:
    void startScan();
    void stopScan();
    void scanFinished(const QList<BtDevice> &devices);
    void scanFailed(const QString &message);
    void updateState();

    std::unique_ptr<Ui::BtListDlg> ui;
    BtPrinterManager *m_pManager;
    QTimer m_countdown;
    int m_nSecondsLeft = 0;
    bool m_bScanning = false;
    bool m_bStarted = false;
};
