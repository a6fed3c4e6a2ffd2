// SPDX-License-Identifier: GPL-2.0-or-later
// Wi-Fi management: reading wpa_cli's output, joining, switching and forgetting networks, the Wi-Fi page.
#include "uitestsupport.h"
#include "wifiparsers.h"
#include "wifipwddlg.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QLineEdit>
#include <QPushButton>
#include <QStandardItemModel>
#include <QTableView>
#include <QTest>
#include <QThread>
#include <QTimer>

#include <deque>
#include <tuple>

namespace {

bool showsIcon(const QIcon &icon, const char *resource)
{
    const QImage expected = QImage(QLatin1String(resource)).convertToFormat(QImage::Format_ARGB32);
    return !expected.isNull() && !icon.isNull() &&
           icon.pixmap(expected.size()).toImage().convertToFormat(QImage::Format_ARGB32) == expected;
}

const char kScanHeader[] = "bssid / frequency / signal level / flags / ssid\n";

} // namespace

class TestWifi : public QObject, private WindowFixture
{
    Q_OBJECT

private:
    QVector<int> m_sleeps;

    // Association checks 40 ms apart, against a supplicant that joins in 60 ms.
    void quickJoins()
    {
        qputenv("ORVELLA_SIM_WIFI_JOIN_MS", "60");
        m_data->m_fnWifiSleep = [this](int ms) {
            m_sleeps << ms;
            QThread::msleep(40);
        };
    }
    int commandsLike(const QString &text) const { return m_device->commandsRun().filter(text).size(); }
    QStringList savedInSupplicant() const { return wifiparsers::parseSavedNetworks(m_cmd->wireless_listnetwork()); }

    void setLists(const QStringList &ssids, const QStringList &signalLevels, const QStringList &flags,
                  const QStringList &saved, const QString &current)
    {
        std::lock_guard<std::mutex> lock(m_data->wifiMutex);
        m_data->wifiSsidList = ssids;
        m_data->wifiSignalList = signalLevels;
        m_data->wifiFlagsList = flags;
        m_data->wifiSavedList = saved;
        m_data->wifiCurrentSsid = current;
    }
    // The table as the polling thread's report leaves it, from the lists as
    // they are or, when asked, after a refresh from the supplicant.
    QStandardItemModel *showTable(bool refresh)
    {
        if (refresh)
            m_data->getWIFIInfo();
        if (!m_window) {
            openWindow();
            for (QTimer *timer : m_window->findChildren<QTimer *>())
                timer->stop();
        }
        QMetaObject::invokeMethod(m_window.get(), "device_thread_slot", Qt::DirectConnection,
                                  Q_ARG(QString, QStringLiteral("refresh")));
        return qobject_cast<QStandardItemModel *>(table()->model());
    }
    QTableView *table() const { return widget<QTableView>("tableViewWireless"); }
    QStandardItemModel *model() const { return qobject_cast<QStandardItemModel *>(table()->model()); }
    int rowOf(const QString &ssid) const
    {
        const QList<QStandardItem *> found = model()->findItems(ssid, Qt::MatchExactly, 1);
        return found.isEmpty() ? -1 : found.first()->row();
    }
    // The hidden columns: current, secured, saved.
    QString flagsOf(const QString &ssid) const
    {
        const int row = rowOf(ssid);
        return row < 0 ? QString()
                       : model()->item(row, 5)->text() + model()->item(row, 6)->text() + model()->item(row, 7)->text();
    }
    // Taps a row and answers the dialogs it opens, in order, with the given
    // buttons ("buttonMiddle1" once they run out); returns what each showed,
    // with its buttons. A password, when given, is typed into the password box.
    QStringList tap(const QString &ssid, std::deque<const char *> buttons, const QString &password = QString())
    {
        QStringList shown;
        ModalResponder responder([&](QWidget *dialog) {
            QStringList texts;
            for (QPushButton *button : dialog->findChildren<QPushButton *>()) {
                if (button->isVisibleTo(dialog) && !button->text().isEmpty())
                    texts << button->text();
            }
            shown << messageText(dialog) + QStringLiteral(" [") + texts.join(QLatin1Char(' ')) + QLatin1Char(']');
            if (auto *edit = dialog->findChild<QLineEdit *>(QStringLiteral("editPassword")))
                edit->setText(password);
            pressButton(dialog, buttons.empty() ? "buttonMiddle1" : buttons.front());
            if (!buttons.empty())
                buttons.pop_front();
        });
        const int row = rowOf(ssid);
        if (row < 0) {
            QTest::qFail(qPrintable(ssid + QStringLiteral(" is not in the table")), __FILE__, __LINE__);
            return shown;
        }
        const QModelIndex index = model()->index(row, 1);
        table()->scrollTo(index);
        QTest::mouseClick(table()->viewport(), Qt::LeftButton, {}, table()->visualRect(index).center());
        return shown;
    }

private slots:
    void init()
    {
        setUp();
        m_sleeps.clear();
        m_data->m_fnWifiSleep = [this](int ms) {
            m_sleeps << ms;
        };
    }

    void cleanup()
    {
        tearDown();
        qunsetenv("ORVELLA_SIM_WIFI_JOIN_MS");
    }

    // --- reading wpa_cli's output ---

    void scanResultsGiveOneRowPerNameStrongestFirst()
    {
        // The weaker access point is printed first and gives the row its
        // signal and flags; "-10" would sort before "-9" as text. Hidden
        // names, blanks and lines of four or six fields give no row.
        const QString text = QString::fromLatin1(kScanHeader) +
                             "3c:7a:8a:10:20:02\t5180\t-66\t[WPA2-PSK-CCMP][ESS]\tClinic-Screening\n"
                             "3c:7a:8a:10:20:01\t2437\t-42\t[WPA-PSK-TKIP][ESS]\tClinic-Screening\n"
                             "12:34:56:78:9a:bc\t2457\t-79\t[WPA2-PSK-CCMP][ESS]\t\n"
                             "12:34:56:78:9a:bd\t2457\t-40\t[WPA2-PSK-CCMP][ESS]\t  \n"
                             "12:34:56:78:9a:be\t2457\t-41\t[ESS]\n"
                             "12:34:56:78:9a:bf\t2457\t-42\t[ESS]\tOne\tToo many\n"
                             "00:00:00:00:00:01\t2412\t-10\t[WEP][ESS]\tTen\n"
                             "00:00:00:00:00:03\t2412\t -9 \t[ESS]\t\\xe7\\x9c\\xbc\n\n";
        const wifiparsers::AccessPointList found = wifiparsers::parseScanResults(text);
        QCOMPARE(found.ssids, QStringList({QStringLiteral("\u773c"), "Ten", "Clinic-Screening"}));
        QCOMPARE(found.signalLevels, QStringList({"-9", "-10", "-66"}));
        QCOMPARE(found.flags, QStringList({"[ESS]", "[WEP][ESS]", "[WPA2-PSK-CCMP][ESS]"}));
        // The first line is a header, whatever it holds.
        QVERIFY(wifiparsers::parseScanResults(QStringLiteral("a\tb\tc\td\te\n")).ssids.isEmpty());
    }

    void theLastSavedEntryOfANameCounts()
    {
        // The last entry of a name counts; a line of two fields is no entry,
        // nor is anything without the header line.
        const QString list =
            QStringLiteral("network id / ssid / bssid / flags\n0\tClinic-Screening\tany\t[CURRENT]\n"
                           "1\t\\xe7\\x9c\\xbc\tany\t[DISABLED]\n2\tGuest\n3\tClinic-Screening\tany\t\n");
        QCOMPARE(wifiparsers::findSavedNetwork(list, QStringLiteral("Clinic-Screening")), 3);
        QCOMPARE(wifiparsers::findSavedNetwork(list, QStringLiteral("\u773c")), 1);
        QCOMPARE(wifiparsers::findSavedNetwork(list, QStringLiteral("Guest")), -1);
        QCOMPARE(wifiparsers::findSavedNetwork(QStringLiteral("0\tGuest\tany\t"), QStringLiteral("Guest")), -1);
        QVERIFY(wifiparsers::parseSavedNetworks(QStringLiteral("0\tGuest\tany\t\n")).isEmpty());
    }

    // --- refreshing against the simulated supplicant ---

    void aRefreshWithoutOutputLeavesTheListsAsTheyWere()
    {
        setLists({"Kept"}, {"-50"}, {"[ESS]"}, {"Kept"}, QStringLiteral("Kept"));
        qputenv("PATH", QFile::encodeName(m_device->root()));
        QVERIFY(m_data->getWIFIInfo().isEmpty());
        QCOMPARE(m_data->wifiSsidList, QStringList({"Kept"}));
        QCOMPARE(m_data->wifiCurrentSsid, QStringLiteral("Kept"));
    }

    void aRefreshReadsTheRadioAndAsksForAnAddressOncePerAssociation()
    {
        const QString text = m_data->getWIFIInfo();
        QVERIFY(text.startsWith(QLatin1String(kScanHeader)) && text.endsWith(QLatin1String("[CURRENT]\n")));
        QCOMPARE(m_data->wifiSsidList, QStringList({"Clinic-Screening", "School Nurse Office", "Guest",
                                                    QStringLiteral("\u773c\u79d1\u7b5b\u67e5"),
                                                    QStringLiteral("Cl\u00ednica Ni\u00f1os"), "OldRouter"}));
        QCOMPARE(m_data->wifiSignalList.first(), QStringLiteral("-42"));
        QCOMPARE(m_data->wifiSavedList, QStringList({"Clinic-Screening"}));
        QCOMPARE(m_data->wifiCurrentSsid, QStringLiteral("Clinic-Screening"));
        m_data->getWIFIInfo();
        QCOMPARE(commandsLike(QStringLiteral("udhcpc -i wlan0 -q")), 1);
        m_data->getRSSI();
        QVERIFY2(m_data->m_nWifiRssi >= -44 && m_data->m_nWifiRssi <= -40,
                 qPrintable(QString::number(m_data->m_nWifiRssi)));

        // Forgetting the network ends the link: no name, no address asked, no signal.
        QVERIFY(m_data->deleteWIFI(QStringLiteral("Clinic-Screening")));
        m_data->getWIFIInfo();
        QCOMPARE(m_data->wifiCurrentSsid, QString());
        QVERIFY(m_data->wifiSavedList.isEmpty());
        QCOMPARE(commandsLike(QStringLiteral("udhcpc")), 1);
        m_data->getRSSI();
        QCOMPARE(int(m_data->m_nWifiRssi), 0);
    }

    // busybox's udhcpc -q alone retries for ever when no DHCP server
    // answers; the refresh must get its thread back and keep reading the
    // signal.
    void aSilentDhcpServerCostsABoundedWait()
    {
        QVERIFY(QDir().mkpath(m_device->simDir() + QStringLiteral("/wifi")));
        QFile silent(m_device->simDir() + QStringLiteral("/wifi/dhcp-silent"));
        QVERIFY(silent.open(QIODevice::WriteOnly));
        silent.close();
        QElapsedTimer timer;
        timer.start();
        m_data->getWIFIInfo();
        QVERIFY2(timer.elapsed() < 20000, qPrintable(QString::number(timer.elapsed())));
        QCOMPARE(m_data->wifiCurrentSsid, QStringLiteral("Clinic-Screening"));
        QCOMPARE(commandsLike(QStringLiteral("udhcpc -i wlan0 -q")), 1);
        m_data->getRSSI();
        QVERIFY(m_data->m_nWifiRssi < 0);
    }

    // --- joining, switching, forgetting ---

    void failedLookupsAndSetupsRunNothingMore()
    {
        m_device->clearCommandLog();
        QVERIFY(!m_data->addWIFI(QStringLiteral("Clinic-Screening"), QStringLiteral("eyes2026")));
        QVERIFY(!m_data->switchWIFI(QStringLiteral("Guest")));
        QVERIFY(!m_data->deleteWIFI(QStringLiteral("Guest")));
        const QString list = QStringLiteral("wpa_cli -i wlan0 list_network");
        QCOMPARE(m_device->commandsRun(), QStringList({list, list, list}));
        QCOMPARE(int(m_data->m_nWifiChanged), 0);

        // A single quote cannot travel to the shell; the supplicant refuses
        // a passphrase of seven characters. Neither entry is selected or saved.
        QVERIFY(!m_data->addWIFI(QStringLiteral("Nurse's Office"), QStringLiteral("password1")));
        QVERIFY(!m_data->addWIFI(QStringLiteral("School Nurse Office"), QStringLiteral("short12")));
        QCOMPARE(commandsLike(QStringLiteral("add_network")), 2);
        QCOMPARE(commandsLike(QStringLiteral("priority")) + commandsLike(QStringLiteral("save_config")), 0);
        QVERIFY(m_sleeps.isEmpty());
    }

    void aWrongPasswordIsFoundOutOnlyInTime_data()
    {
        // The simulated supplicant spends the first two thirds of its join
        // time scanning and associating, fails the handshake until twice
        // that time, and then drops the link. Each first check lands well
        // inside one of the two signs of a refused password; a join of ten
        // minutes is still scanning after fifteen checks a second apart.
        QTest::addColumn<QByteArray>("joinMs");
        QTest::addColumn<int>("checkAfterMs");
        QTest::addColumn<bool>("rejected");
        QTest::newRow("seen in the handshake") << QByteArray("600") << 500 << true;
        QTest::newRow("seen after the link dropped") << QByteArray("60") << 250 << true;
        QTest::newRow("still under way after fifteen checks") << QByteArray("600000") << 0 << false;
    }

    void aWrongPasswordIsFoundOutOnlyInTime()
    {
        QFETCH(QByteArray, joinMs);
        QFETCH(int, checkAfterMs);
        QFETCH(bool, rejected);
        qputenv("ORVELLA_SIM_WIFI_JOIN_MS", joinMs);
        m_data->m_fnWifiSleep = [this, checkAfterMs](int ms) {
            m_sleeps << ms;
            QThread::msleep(static_cast<unsigned long>(checkAfterMs));
        };
        QCOMPARE(m_data->addWIFI(QStringLiteral("School Nurse Office"), QStringLiteral("not-the-password")), !rejected);
        QCOMPARE(m_data->wifiJoinRejected, rejected);
        QCOMPARE(m_sleeps, rejected ? QVector<int>{m_sleeps.value(0)} : QVector<int>(15, 1000));
        QCOMPARE(commandsLike(QStringLiteral("wpa_cli -i wlan0 status")), m_sleeps.size());
        // A refused entry is removed and never saved; one still joining is kept.
        const QStringList commands = m_device->commandsRun();
        const int removed = commands.indexOf(QStringLiteral("wpa_cli -i wlan0 remove_network 1"));
        QCOMPARE(removed > 0, rejected);
        QCOMPARE(commands.mid(removed).contains(QStringLiteral("wpa_cli -i wlan0 save_config")), !rejected);
        QCOMPARE(savedInSupplicant().contains(QStringLiteral("School Nurse Office")), !rejected);
        QCOMPARE(savedInSupplicant().first(), QStringLiteral("Clinic-Screening"));
        QCOMPARE(int(m_data->m_nWifiChanged), 1);
    }

    // --- the Wi-Fi page ---

    void theTableShowsCurrentSecuredAndSavedNetworks()
    {
        setLists({"Current", "Open", "Wep", "Saved"}, {"-50", "-51", "-70", "-71"},
                 {"[WPA2-PSK-CCMP][ESS]", "[ESS]", "[WEP][ESS]", "[WPA-PSK-TKIP][ESS]"}, {"Saved", "Elsewhere"},
                 QStringLiteral("Current"));
        QStandardItemModel *rows = showTable(false);
        QCOMPARE(rows->rowCount(), 4);
        QCOMPARE(QStringList({flagsOf("Current"), flagsOf("Open"), flagsOf("Wep"), flagsOf("Saved")}),
                 QStringList({"110", "000", "000", "011"}));

        // Row, column and the icon there ("" for none); the signal bars change at -50, -60 and -70 dBm.
        const std::tuple<int, int, QByteArray> icons[] = {
            {0, 0, "wifi_select"}, {1, 0, ""},         {0, 2, "wifi_lock"}, {2, 2, ""},
            {3, 4, "wifi_saved"},  {0, 4, ""},         {0, 3, "wifi_sig3"}, {1, 3, "wifi_sig2"},
            {2, 3, "wifi_sig1"},   {3, 3, "wifi_sig0"}};
        for (const auto &[row, column, icon] : icons) {
            const QIcon shown = rows->item(row, column)->icon();
            QVERIFY2(icon.isEmpty() ? shown.isNull() : showsIcon(shown, (":/pic/" + icon + ".jpg").constData()),
                     icon.constData());
        }
        setLists({"Open"}, {"-60"}, {"[ESS]"}, {}, QString());
        QVERIFY(showsIcon(showTable(false)->item(0, 3)->icon(), ":/pic/wifi_sig2.jpg"));

        // The next refresh replaced the rows rather than adding to them.
        QCOMPARE(rows->rowCount(), 1);
    }

    void tapsThatFailTellWhy()
    {
        // The table is older than the supplicant: "Ghost" was forgotten
        // meanwhile, and "Guest" was saved but is not yet shown as saved.
        quickJoins();
        QVERIFY(m_data->addWIFI(QStringLiteral("Guest"), QString()));
        setLists({"Ghost", "Guest", "School Nurse Office"}, {"-40", "-61", "-55"},
                 {"[WPA2-PSK-CCMP][ESS]", "[ESS]", "[WPA2-PSK-CCMP][ESS]"}, {"Ghost"}, QString());
        showTable(false);

        QCOMPARE(tap(QStringLiteral("Ghost"), {"buttonRight"}),
                 QStringList({"Connect to Network/Ghost [Cancel Delete Connect]", "Connect Failed! [OK]"}));
        QCOMPARE(tap(QStringLiteral("Ghost"), {"buttonMiddle"}).value(1), QStringLiteral("Delete Failed! [OK]"));
        QCOMPARE(tap(QStringLiteral("Guest"), {"buttonRight1"}),
                 QStringList({"Connect to the unsafe network?/Guest [Cancel Connect]", "Connect Failed! [OK]"}));
        QCOMPARE(tap(QStringLiteral("School Nurse Office"), {"buttonConnect"}, QStringLiteral("not-the-password")),
                 QStringList({"Enter Password [Cancel Connect]", "Wrong Password! [OK]"}));
        // The service code asks for the version list, which no server answers here.
        QCOMPARE(tap(QStringLiteral("School Nurse Office"), {"buttonConnect"}, QStringLiteral("qbtz4719")).value(1),
                 QStringLiteral("Version List File Download Failed! [OK]"));
        // A cancelled password box hands back nothing to join with.
        QCOMPARE(tap(QStringLiteral("School Nurse Office"), {"buttonCancel"}, QStringLiteral("nurse-4412")).size(), 1);
        QCOMPARE(savedInSupplicant(), QStringList({"Clinic-Screening", "Guest"}));
    }

    void tapsJoinSwitchAndForget()
    {
        quickJoins();
        showTable(true);
        QCOMPARE(tap(QStringLiteral("Guest"), {"buttonRight1"}).size(), 1);
        QVERIFY(m_device->commandsRun().contains(QStringLiteral("wpa_cli -i wlan0 set_network 1 key_mgmt NONE")));
        showTable(true);
        QCOMPARE(flagsOf(QStringLiteral("Guest")), QStringLiteral("101"));

        QCOMPARE(tap(QStringLiteral("School Nurse Office"), {"buttonConnect"}, QStringLiteral("nurse-4412")).size(), 1);
        QVERIFY(m_sleeps.size() < 15);
        showTable(true);
        QCOMPARE(flagsOf(QStringLiteral("School Nurse Office")), QStringLiteral("111"));
        QCOMPARE(flagsOf(QStringLiteral("Guest")), QStringLiteral("001"));
        QCOMPARE(commandsLike(QStringLiteral("udhcpc")), 3);

        // Back to the clinic network, and the open one forgotten: both saved at once.
        QCOMPARE(tap(QStringLiteral("Clinic-Screening"), {"buttonRight"}).size(), 1);
        QCOMPARE(tap(QStringLiteral("Guest"), {"buttonMiddle"}).size(), 1);
        const QByteArray config =
            TestDevice::readFile(m_device->simDir() + QStringLiteral("/wifi/wpa_supplicant.conf"));
        QVERIFY(config.contains("ssid=\"School Nurse Office\"") && !config.contains("ssid=\"Guest\""));
        QTRY_COMPARE_WITH_TIMEOUT((m_data->getWIFIInfo(), m_data->wifiCurrentSsid), QStringLiteral("Clinic-Screening"),
                                  2000);
    }

    void thePasswordBoxTypesOnAKeyboardThatLeavesItsFieldInSight()
    {
        WifiPwdDlg dialog;
        auto *edit = dialog.findChild<QLineEdit *>(QStringLiteral("editPassword"));
        int keypadTop = -1;
        int fieldBottom = 0;
        ModalResponder responder([&](QWidget *modal) {
            if (modal == &dialog) {
                // Later, from outside this answer: the keyboard's own modal
                // loop needs the responder's timer free to answer it.
                QTimer::singleShot(0, &dialog, [&] {
                    QTest::mouseClick(edit, Qt::LeftButton);
                    pressButton(&dialog, "buttonConnect");
                });
                return;
            }
            keypadTop = modal->y();
            fieldBottom = edit->mapToGlobal(QPoint(0, edit->height())).y();
            pressButton(modal, "buttonA");
            pressButton(modal, "buttonB");
            pressButton(modal, "buttonCloseKeypad");
        });
        dialog.exec();
        QVERIFY2(keypadTop > fieldBottom, qPrintable(QStringLiteral("%1 %2").arg(keypadTop).arg(fieldBottom)));
        QCOMPARE(dialog.strPassword, QStringLiteral("ab"));
    }
};

QTEST_MAIN(TestWifi)
#include "tst_wifi.moc"
