// SPDX-License-Identifier: GPL-2.0-or-later
// The Bluetooth scan list: devices in range as the scan finds them, one chosen to be bound as the printer.
#include "btlistdlg.h"

#include "btprintermanager.h"
#include "msgdialog.h"
#include "ui_btlistdlg.h"

#include <QHeaderView>
#include <QScroller>
#include <QShowEvent>
#include <QTableWidgetItem>

namespace {

enum Column { ColumnName, ColumnMac, ColumnRssi };

constexpr int kRowHeight = 72;
constexpr int kMacWidth = 330;
constexpr int kRssiWidth = 190;

QTableWidgetItem *cell(QTableWidget *table, int row, int column)
{
    QTableWidgetItem *item = table->item(row, column);
    if (!item) {
        item = new QTableWidgetItem;
        table->setItem(row, column, item);
    }
    return item;
}

} // namespace

BtListDlg::BtListDlg(BtPrinterManager *manager, QWidget *parent)
    : QDialog(parent, Qt::FramelessWindowHint | Qt::Dialog)
    , ui(std::make_unique<Ui::BtListDlg>())
    , m_pManager(manager)
{
    ui->setupUi(this);
    setModal(true);

    QTableWidget *table = ui->tableWidgetBtList;
    table->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    table->verticalHeader()->setDefaultSectionSize(kRowHeight);
    QHeaderView *columns = table->horizontalHeader();
    columns->setSectionResizeMode(QHeaderView::Fixed);
    columns->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    columns->setSectionResizeMode(ColumnName, QHeaderView::Stretch);
    table->setColumnWidth(ColumnMac, kMacWidth);
    table->setColumnWidth(ColumnRssi, kRssiWidth);
    QScroller::grabGesture(table->viewport(), QScroller::LeftMouseButtonGesture);
    connect(table, &QTableWidget::itemSelectionChanged, this, &BtListDlg::updateState);

    // The manager serves the whole device: only the scan this dialog started
    // is its business.
    connect(m_pManager, &BtPrinterManager::scanUpdated, this, [this](const QList<BtDevice> &devices) {
        if (m_bScanning)
            showDevices(devices);
    });
    connect(m_pManager, &BtPrinterManager::scanResultReady, this, [this](const QList<BtDevice> &devices) {
        if (m_bScanning)
            scanFinished(devices);
    });
    connect(m_pManager, &BtPrinterManager::errorOccurred, this, [this](const QString &message) {
        if (m_bScanning)
            scanFailed(message);
    });

    m_countdown.setInterval(1000);
    connect(&m_countdown, &QTimer::timeout, this, &BtListDlg::timerScanCountdown);
    updateState();
}

BtListDlg::~BtListDlg()
{
    // A bluetoothctl left scanning would hold the radio for the next scan or bind.
    m_pManager->disconnect(this);
    if (m_bScanning)
        m_pManager->finishScan();
}

void BtListDlg::showDevices(const QList<BtDevice> &devices)
{
    QTableWidget *table = ui->tableWidgetBtList;
    for (const BtDevice &device : devices) {
        int row = 0;
        while (row < table->rowCount() && cell(table, row, ColumnMac)->text() != device.mac)
            ++row;
        // Rows keep the order in which the devices showed up, so that a row
        // does not move away from under the operator's finger.
        if (row == table->rowCount())
            table->insertRow(row);
        cell(table, row, ColumnName)->setText(device.name);
        cell(table, row, ColumnMac)->setText(device.mac);
        cell(table, row, ColumnRssi)->setText(device.rssi == 0 ? QString() : tr("%1 dBm").arg(device.rssi));
    }
    updateState();
}

void BtListDlg::showEvent(QShowEvent *event)
{
    if (!event->spontaneous() && !testAttribute(Qt::WA_Moved))
        MsgDialog::centreOnDeviceScreen(this);
    QDialog::showEvent(event);
    // After the first paint: starting bluetoothctl may take a moment, and the
    // operator should see the list open at once.
    if (!m_bStarted) {
        m_bStarted = true;
        QTimer::singleShot(0, this, &BtListDlg::startScan);
    }
}

void BtListDlg::resizeEvent(QResizeEvent *event)
{
    MsgDialog::roundWindowCorners(this);
    QDialog::resizeEvent(event);
}

void BtListDlg::startScan()
{
    if (m_bScanning)
        return;
    if (m_pManager->isScanning())
        m_pManager->finishScan();
    ui->tableWidgetBtList->setRowCount(0);
    m_bScanning = true;
    m_nSecondsLeft = kScanMs / 1000;
    m_countdown.start();
    updateState();
    m_pManager->startScan(kScanMs);
}

void BtListDlg::stopScan()
{
    if (m_bScanning)
        m_pManager->finishScan();
}

void BtListDlg::scanFinished(const QList<BtDevice> &devices)
{
    m_bScanning = false;
    m_countdown.stop();
    showDevices(devices);
}

void BtListDlg::scanFailed(const QString &message)
{
    m_bScanning = false;
    m_countdown.stop();
    updateState();
    MsgDialog box;
    box.Init(tr("Scan failed"), message, QString(), tr("OK"), QString());
    box.exec();
}

void BtListDlg::timerScanCountdown()
{
    if (m_nSecondsLeft > 0)
        --m_nSecondsLeft;
    updateState();
}

void BtListDlg::updateState()
{
    const int found = ui->tableWidgetBtList->rowCount();
    QString status;
    if (m_bScanning)
        status = tr("Scanning... %1 s").arg(m_nSecondsLeft);
    else if (!m_bStarted)
        status = QString();
    else if (found == 0)
        status = tr("No device found");
    else
        status = tr("Choose the printer");
    ui->labelBtListStatus->setText(status);
    ui->buttonBtListScan->setText(m_bScanning ? tr("Stop") : tr("Scan Again"));
    ui->buttonBtListScan->setEnabled(m_bStarted);
    ui->buttonBtListBind->setEnabled(!ui->tableWidgetBtList->selectedItems().isEmpty());
}

void BtListDlg::on_buttonBtListScan_clicked()
{
    if (m_bScanning)
        stopScan();
    else
        startScan();
}

void BtListDlg::on_buttonBtListBind_clicked()
{
    const QList<QTableWidgetItem *> selected = ui->tableWidgetBtList->selectedItems();
    if (selected.isEmpty())
        return;
    const int row = selected.first()->row();
    strMac = ui->tableWidgetBtList->item(row, ColumnMac)->text();
    strName = ui->tableWidgetBtList->item(row, ColumnName)->text();
    // Pairing cannot start while the scan still holds bluetoothctl.
    stopScan();
    accept();
}

void BtListDlg::on_buttonBtListCancel_clicked()
{
    stopScan();
    reject();
}
