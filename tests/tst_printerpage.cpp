// SPDX-License-Identifier: GPL-2.0-or-later
// The printer page: the scan list, binding the chosen printer, the test print through the simulated printer.
#include "btlistdlg.h"
#include "btprintermanager.h"
#include "camcfg.h"
#include "uitestsupport.h"

#include <QDir>
#include <QLabel>
#include <QMap>
#include <QPushButton>
#include <QSignalSpy>
#include <QStackedWidget>
#include <QTableWidget>
#include <QTest>

namespace {

const char kPrinterMac[] = "66:12:A0:3C:58:01";

} // namespace

class TestPrinterPage : public QObject, private WindowFixture
{
    Q_OBJECT

private:
    // Everything the simulated printer has received since the test began.
    QByteArray printed() const
    {
        QByteArray all;
        const QDir receipts(m_device->simDir() + QStringLiteral("/printer/receipts"));
        for (const QString &name : receipts.entryList({QStringLiteral("receipt-*.bin")}, QDir::Files, QDir::Name))
            all += TestDevice::readFile(receipts.filePath(name));
        return all;
    }

private slots:
    void init()
    {
        setUp();
        // The three open attempts of an unbound printer without their 1.8 s of waiting.
        m_data->m_fnPrinterSleep = [](int) {
        };
        openWindow();
        base()->setCurrentIndex(MainDialog::BasePageMenu);
        click("buttonSetup");
        click("buttonPrinterSetting");
    }

    void cleanup() { tearDown(); }

    void scanListsEachDeviceOnceWithItsLatestStrength()
    {
        BtPrinterManager manager;
        QSignalSpy result(&manager, &BtPrinterManager::scanResultReady);
        BtListDlg list(&manager);
        auto *table = findWidget<QTableWidget>(&list, "tableWidgetBtList");
        auto *status = findWidget<QLabel>(&list, "labelBtListStatus");
        list.show();
        // The simulated radio announces its four devices a quarter second
        // apart, then reports wandering strengths: all of it while the scan runs.
        QTRY_COMPARE_WITH_TIMEOUT(table->rowCount(), 4, 5000);
        // A device heard again keeps its row and shows its new strength.
        QMap<QString, QString> firstStrength;
        const auto strengthChanged = [&] {
            for (int row = 0; row < table->rowCount(); ++row) {
                const QString mac = table->item(row, 1)->text();
                const QString rssi = table->item(row, 2)->text();
                if (rssi.isEmpty())
                    continue;
                if (!firstStrength.contains(mac))
                    firstStrength.insert(mac, rssi);
                else if (firstStrength.value(mac) != rssi)
                    return true;
            }
            return false;
        };
        QTRY_VERIFY_WITH_TIMEOUT(strengthChanged(), 8000);
        QVERIFY2(status->text().startsWith(QLatin1String("Scanning")), qPrintable(status->text()));
        QVERIFY(result.isEmpty());

        QTest::mouseClick(findWidget<QPushButton>(&list, "buttonBtListScan"), Qt::LeftButton);
        QCOMPARE(result.size(), 1);
        const auto found = result.first().first().value<QList<BtDevice>>();
        QCOMPARE(table->rowCount(), found.size());
        for (const BtDevice &device : found) {
            const QList<QTableWidgetItem *> rows = table->findItems(device.mac, Qt::MatchExactly);
            QCOMPARE(rows.size(), 1);
            const int row = rows.first()->row();
            QCOMPARE(table->item(row, 0)->text(), device.name);
            QCOMPARE(table->item(row, 2)->text(),
                     device.rssi == 0 ? QString() : QStringLiteral("%1 dBm").arg(device.rssi));
        }
        QCOMPARE(status->text(), QStringLiteral("Choose the printer"));
    }

    void testPrint_data()
    {
        QTest::addColumn<bool>("bind");
        QTest::addColumn<QString>("message");
        QTest::newRow("nothing bound") << false << "Message/Open printer failed";
        QTest::newRow("printer chosen from the scan") << true << "Message/Printed";
    }

    void testPrint()
    {
        QFETCH(bool, bind);
        QFETCH(QString, message);
        QStringList shown;
        ModalResponder responder([&](QWidget *dialog) {
            if (auto *list = qobject_cast<BtListDlg *>(dialog)) {
                auto *table = findWidget<QTableWidget>(list, "tableWidgetBtList");
                QTRY_VERIFY_WITH_TIMEOUT(!table->findItems(QLatin1String(kPrinterMac), Qt::MatchExactly).isEmpty(),
                                         1500);
                table->selectRow(table->findItems(QLatin1String(kPrinterMac), Qt::MatchExactly).first()->row());
                pressButton(list, "buttonBtListBind");
            } else if (QLatin1String(dialog->metaObject()->className()) == QLatin1String("MsgDialog") &&
                       dialog->findChild<QPushButton *>(QStringLiteral("buttonMiddle1"))->text() !=
                           QLatin1String("Waiting...")) {
                shown << messageText(dialog);
                pressButton(dialog, "buttonMiddle1");
            }
        });
        if (bind) {
            click("buttonPrinterScan");
            QCOMPARE(shown, QStringList{QStringLiteral("Message/Printer bound: %1").arg(kPrinterMac)});
            QCOMPARE(m_data->m_pCamCfg->value(CamCfg::BluetoothPrinter), QLatin1String(kPrinterMac));
            QCOMPARE(widget<QLabel>("labelBtPrinterValue")->text(), QLatin1String(kPrinterMac));
            shown.clear();
        }
        click("buttonPrinterTest");
        QCOMPARE(shown, QStringList{message});
        if (bind)
            QTRY_VERIFY_WITH_TIMEOUT(printed().contains("Bluetooth Test Page..."), 3000);
        else
            QVERIFY(printed().isEmpty());
    }

private:
    QStackedWidget *base() const { return widget<QStackedWidget>("stackedWidgetBase"); }
};

QTEST_MAIN(TestPrinterPage)
#include "tst_printerpage.moc"
