// SPDX-License-Identifier: GPL-2.0-or-later
// MainDialog: the Wi-Fi page and the polling thread's Wi-Fi reports.
#include "maindialog.h"

#include "gdata.h"
#include "provisioningprotocol.h"
#include "provisioningserver.h"
#include "ui_pagewifi.h"
#include "versiondlg.h"
#include "wifipwddlg.h"

#include <QApplication>
#include <QBrush>
#include <QColor>
#include <QHeaderView>
#include <QIcon>
#include <QPainter>
#include <QScrollBar>
#include <QScroller>
#include <QStandardItemModel>
#include <QStyledItemDelegate>

namespace {

// The table's columns; 5 to 7 are hidden and carry "0" or "1" for the tap.
enum WifiColumn {
    ColumnStatus,
    ColumnSsid,
    ColumnMode,
    ColumnSignal,
    ColumnInformation,
    ColumnStatusNumber,
    ColumnModeNumber,
    ColumnInformationNumber,
    ColumnCount
};

// Typed as a Wi-Fi password, it opens the version switch of the service
// staff instead of joining the network.
const char kServiceCode[] = "qbtz4719";

const QColor kAccent(50, 227, 233);

QString signalIcon(int level)
{
    if (level >= -50)
        return QStringLiteral(":/pic/wifi_sig3.jpg");
    if (level >= -60)
        return QStringLiteral(":/pic/wifi_sig2.jpg");
    if (level >= -70)
        return QStringLiteral(":/pic/wifi_sig1.jpg");
    return QStringLiteral(":/pic/wifi_sig0.jpg");
}

// The standard delegate puts an icon at the left edge, where a text would
// follow it; the icon columns have no text, so their icons sit in the middle.
class CentredIconDelegate : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override
    {
        QStyleOptionViewItem cell(option);
        initStyleOption(&cell, index);
        const QIcon icon = cell.icon;
        // The cell itself (background, the line under the row) as usual.
        cell.features &= ~QStyleOptionViewItem::HasDecoration;
        cell.icon = QIcon();
        QStyle *style = cell.widget ? cell.widget->style() : QApplication::style();
        style->drawControl(QStyle::CE_ItemViewItem, &cell, painter, cell.widget);
        if (icon.isNull())
            return;
        const QSize size = icon.actualSize(cell.decorationSize);
        icon.paint(painter, QStyle::alignedRect(cell.direction, Qt::AlignCenter, size, cell.rect));
    }
};

QStandardItem *iconItem(bool shown, const QString &icon)
{
    auto *item = new QStandardItem;
    if (shown)
        item->setIcon(QIcon(icon));
    return item;
}

QStandardItem *flagItem(bool set)
{
    return new QStandardItem(set ? QStringLiteral("1") : QStringLiteral("0"));
}

} // namespace

void MainDialog::tableViewWIFIInit()
{
    m_pWifiModel = new QStandardItemModel(0, ColumnCount, this);
    m_pWifiModel->setHorizontalHeaderLabels({QStringLiteral("status"), QStringLiteral("ssid"), QStringLiteral("mode"),
                                             QStringLiteral("signal"), QStringLiteral("information"),
                                             QStringLiteral("statusnumber"), QStringLiteral("modenumber"),
                                             QStringLiteral("informationnumber")});

    QTableView *table = uiWifi->tableViewWireless;
    table->setModel(m_pWifiModel);
    auto *icons = new CentredIconDelegate(table);
    for (const int column : {ColumnStatus, ColumnMode, ColumnSignal, ColumnInformation})
        table->setItemDelegateForColumn(column, icons);

    table->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    table->verticalHeader()->setDefaultSectionSize(72);
    QHeaderView *columns = table->horizontalHeader();
    columns->setSectionResizeMode(QHeaderView::Fixed);
    table->setColumnWidth(ColumnStatus, 80);
    table->setColumnWidth(ColumnSsid, 425);
    table->setColumnWidth(ColumnMode, 120);
    table->setColumnWidth(ColumnSignal, 120);
    // The saved mark takes what is left, whether or not the scroll bar shows.
    columns->setStretchLastSection(true);
    for (const int column : {ColumnStatusNumber, ColumnModeNumber, ColumnInformationNumber})
        table->setColumnHidden(column, true);

    // A finger drags the list; a tap without a drag still reaches the row.
    QScroller::grabGesture(table->viewport(), QScroller::LeftMouseButtonGesture);

    // Lit while provisioning is open.
    uiWifi->buttonProvisioning->setCheckable(true);
}

void MainDialog::tableViewWIFIShow()
{
    QStringList ssids;
    QStringList signalLevels;
    QStringList flags;
    QStringList saved;
    QString current;
    {
        std::lock_guard<std::mutex> lock(g_pData->wifiMutex);
        ssids = g_pData->wifiSsidList;
        signalLevels = g_pData->wifiSignalList;
        flags = g_pData->wifiFlagsList;
        saved = g_pData->wifiSavedList;
        current = g_pData->wifiCurrentSsid;
    }

    // A refresh arrives every few seconds; the list must not jump back to
    // the top under the operator's finger.
    QScrollBar *scrollBar = uiWifi->tableViewWireless->verticalScrollBar();
    const int scrolled = scrollBar->value();
    m_pWifiModel->setRowCount(0);
    for (int row = 0; row < ssids.size(); ++row) {
        const QString &ssid = ssids.at(row);
        const bool isCurrent = ssid == current;
        // "WPA" covers "WPA2" too; a WEP-only network counts as open.
        const bool secured = flags.value(row).contains(QLatin1String("WPA"));
        const bool isSaved = saved.contains(ssid);

        auto *name = new QStandardItem(ssid);
        if (isCurrent)
            name->setForeground(QBrush(kAccent));
        QList<QStandardItem *> items = {
            iconItem(isCurrent, QStringLiteral(":/pic/wifi_select.jpg")),
            name,
            iconItem(secured, QStringLiteral(":/pic/wifi_lock.jpg")),
            iconItem(true, signalIcon(signalLevels.value(row).toInt())),
            iconItem(isSaved, QStringLiteral(":/pic/wifi_saved.jpg")),
            flagItem(isCurrent),
            flagItem(secured),
            flagItem(isSaved),
        };
        for (QStandardItem *item : items)
            item->setEditable(false);
        m_pWifiModel->appendRow(items);
    }
    scrollBar->setValue(scrolled);
}

void MainDialog::on_tableViewWireless_clicked(const QModelIndex &index)
{
    // Read before any dialog opens: a refresh may rebuild the rows meanwhile.
    const int row = index.row();
    const QString secured = index.sibling(row, ColumnModeNumber).data().toString();
    const QString saved = index.sibling(row, ColumnInformationNumber).data().toString();
    const QString ssid = index.sibling(row, ColumnSsid).data().toString();
    qDebug("ontableViewWirelessClicked %d %s %s %s", row, qPrintable(secured), qPrintable(saved), qPrintable(ssid));

    if (saved != QLatin1String("0")) {
        const int choice = showMessage(tr("Connect to Network"), ssid, tr("Cancel"), tr("Delete"), tr("Connect"));
        if (choice == 2) {
            if (!g_pData->switchWIFI(ssid))
                showMessage(tr("Connect Failed!"), QString(), QString(), tr("OK"), QString());
        } else if (choice == 1) {
            if (!g_pData->deleteWIFI(ssid))
                showMessage(tr("Delete Failed!"), QString(), QString(), tr("OK"), QString());
        }
        return;
    }

    if (secured == QLatin1String("0")) {
        if (showMessage(tr("Connect to the unsafe network?"), ssid, tr("Cancel"), QString(), tr("Connect")) != 2)
            return;
        if (!g_pData->addWIFI(ssid, QString()))
            showMessage(tr("Connect Failed!"), QString(), QString(), tr("OK"), QString());
        return;
    }

    WifiPwdDlg dialog;
    dialog.exec();
    if (!dialog.bConnect)
        return;
    if (dialog.strPassword == QLatin1String(kServiceCode)) {
        if (g_pData->versionListGet() <= 0) {
            showMessage(tr("Version List File Download Failed!"), QString(), QString(), tr("OK"), QString());
            return;
        }
        versiondlg versions;
        versions.Init(g_pData->m_strVersionList);
        versions.exec();
        return;
    }
    if (!g_pData->addWIFI(ssid, dialog.strPassword))
        showMessage(tr("Wrong Password!"), QString(), QString(), tr("OK"), QString());
}

void MainDialog::device_thread_slot(QString)
{
    // The text is the refresh's raw output; GData holds what it meant.
    tableViewWIFIShow();
}

void MainDialog::on_buttonProvisioning_clicked()
{
    ProvisioningServer *server = g_pData->provisioning();
    if (server->isRunning()) {
        g_pData->stopProvisioning();
        labelProvisioningShow();
        return;
    }
    connect(server, &ProvisioningServer::stopped, this, &MainDialog::provisioningStopped, Qt::UniqueConnection);
    connect(server, &ProvisioningServer::networkChanged, this, &MainDialog::provisioningNetworkChanged,
            Qt::UniqueConnection);
    uiWifi->labelProvisioningActivity->clear();
    if (!g_pData->startProvisioning())
        showMessage(tr("Phone setup could not start!"), QString(), QString(), tr("OK"), QString());
    labelProvisioningShow();
}

void MainDialog::labelProvisioningShow()
{
    ProvisioningServer *server = g_pData->m_pProvisioning.get();
    const bool open = server && server->isRunning();
    uiWifi->buttonProvisioning->setChecked(open);
    uiWifi->buttonProvisioning->setText(open ? tr("Stop setup") : tr("Phone setup"));
    if (!open) {
        uiWifi->labelProvisioning->clear();
        return;
    }
    const int seconds = server->secondsLeft();
    const QString left = QStringLiteral("%1:%2").arg(seconds / 60).arg(seconds % 60, 2, 10, QLatin1Char('0'));
    uiWifi->labelProvisioning->setText(tr("PIN %1, %2 left").arg(QString::fromLatin1(server->pin()), left));
}

void MainDialog::provisioningStopped(int reason)
{
    if (reason == ProvisioningServer::StopTooManyPins)
        uiWifi->labelProvisioningActivity->setText(tr("Phone setup closed: too many wrong PINs"));
    else if (reason == ProvisioningServer::StopTimeUp)
        uiWifi->labelProvisioningActivity->setText(tr("Phone setup closed: time is up"));
    labelProvisioningShow();
}

void MainDialog::provisioningNetworkChanged(int verb, const QString &ssid, bool succeeded)
{
    using provisioningprotocol::Verb;
    QString text;
    switch (static_cast<Verb>(verb)) {
    case Verb::Add:
        text = succeeded ? tr("Network %1 added by provisioning") : tr("Provisioning could not add network %1");
        break;
    case Verb::Connect:
        text = succeeded ? tr("Network %1 chosen by provisioning") : tr("Provisioning could not choose network %1");
        break;
    case Verb::Forget:
        text = succeeded ? tr("Network %1 forgotten by provisioning") : tr("Provisioning could not forget network %1");
        break;
    default: return;
    }
    uiWifi->labelProvisioningActivity->setText(text.arg(ssid));
    // The table shows the change at the polling thread's next refresh.
    g_pData->m_nWifiChanged = 1;
}
