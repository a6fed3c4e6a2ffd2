// SPDX-License-Identifier: GPL-2.0-or-later
// The main window: page navigation, idle screen-off and power-off, wake-up, battery label, patient details.
#include "application.h"
#include "batterylevel.h"
#include "camcfg.h"
#include "common.h"
#include "simulatedworld.h"
#include "uitestsupport.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QProcess>
#include <QPushButton>
#include <QStackedWidget>
#include <QTemporaryDir>
#include <QTest>

#include <optional>

class TestMainWindow : public QObject, private WindowFixture
{
    Q_OBJECT

private:
    QStackedWidget *base() const { return widget<QStackedWidget>("stackedWidgetBase"); }
    QWidget *noMenuPage() const { return widget<QStackedWidget>("stackedWidgetNoMenu")->currentWidget(); }
    void pressKey(int key)
    {
        // QTest's key helpers know no power key, so the event is built by hand.
        QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier);
        QApplication::sendEvent(m_window.get(), &press);
    }
    bool poweredOff() const { return lastEventIs(" poweroff"); }
    bool rebooted() const { return lastEventIs(" reboot"); }
    bool lastEventIs(const char *end) const
    {
        const QStringList events = m_device->events();
        return !events.isEmpty() && events.last().endsWith(QLatin1String(end));
    }

    void openSetup()
    {
        openOnMenuPages();
        click("buttonSetup");
    }

    // Opens the parameter row's keypad, types `typed` and closes it; returns the message boxes shown.
    QStringList typeParam(const char *row, const QString &typed)
    {
        QStringList messages;
        ModalResponder responder([&](QWidget *dialog) {
            if (QLatin1String(dialog->metaObject()->className()) == QLatin1String("NumKeypadDlg")) {
                widget<QPushButton>(row)->setText(typed);
                dialog->close();
            } else {
                messages << messageText(dialog);
                pressButton(dialog, "buttonMiddle1");
            }
        });
        click(row);
        return messages;
    }

    void openOnMenuPages()
    {
        base()->setCurrentIndex(MainDialog::BasePageMenu);
        widget<QStackedWidget>("stackedWidgetMain")->setCurrentIndex(0);
    }

private slots:
    void init()
    {
        qputenv("ORVELLA_SIM_WIFI_JOIN_MS", "150");
        freezeClock();
        setUp();
        // As after the first network time: the tests that need otherwise say so.
        m_data->m_bNetworkReady = 1;
        openWindow();
    }

    void cleanup()
    {
        tearDown();
        qunsetenv("ORVELLA_SIM_WIFI_JOIN_MS");
    }

    // --- idle handling ---

    void nothingIsTimedBeforeTheNetworkTimeThenPowerOffWins()
    {
        m_data->m_bNetworkReady = 0;
        m_data->m_nScreenOffMinutes = 1;
        m_data->m_nPowerOffMinutes = 1;
        openOnMenuPages();
        tick();
        advance(3600);
        tick();
        QVERIFY(m_data->isScreenOn());
        QVERIFY(!poweredOff());
        // Once the time is known, idle time counts from the next tick only;
        // with both timers equal the device powers off without dimming first.
        m_data->m_bNetworkReady = 1;
        tick();
        advance(60);
        tick();
        QVERIFY(!poweredOff());
        advance(1);
        tick();
        QVERIFY(poweredOff());
        QVERIFY(m_data->isScreenOn());
    }

    void aRunningJobHoldsOffTheIdleTimers_data()
    {
        QTest::addColumn<bool>("recording");
        QTest::newRow("recording") << true;
        QTest::newRow("upload, print or mail") << false;
    }

    void aRunningJobHoldsOffTheIdleTimers()
    {
        QFETCH(bool, recording);
        m_data->m_nScreenOffMinutes = 1;
        m_data->m_nPowerOffMinutes = 2;
        tick();
        {
            std::optional<GData::BusyJob> job;
            if (recording)
                m_data->m_nCameraMode = 2;
            else
                job.emplace(*m_data);
            advance(3 * 60);
            tick();
            QVERIFY(m_data->isScreenOn());
            QVERIFY(!poweredOff());
            m_data->m_nCameraMode = 0;
        }
        // Idle time counts again from the job's end.
        advance(59);
        tick();
        QVERIFY(m_data->isScreenOn());
        advance(2);
        tick();
        QVERIFY(!m_data->isScreenOn());
        QVERIFY(!poweredOff());
    }

    void neverSettingsNeverDimOrPowerOff()
    {
        m_data->m_nScreenOffMinutes = m_data->m_nPowerOffMinutes = -1;
        tick();
        advance(48 * 3600);
        tick();
        QVERIFY(m_data->isScreenOn());
        QVERIFY(m_device->events().isEmpty());
    }

    void screenGoesDarkThenATouchOnlyWakesIt()
    {
        m_data->m_nScreenOffMinutes = 1;
        openOnMenuPages();
        tick();
        advance(61);
        tick();
        QVERIFY(!m_data->isScreenOn());
        QVERIFY(!poweredOff());

        // The finger lands on "female": the screen wakes, the sex stays male.
        click("buttonFemale");
        QVERIFY(m_data->isScreenOn());
        QCOMPARE(int(m_data->m_nSex), 1);
        click("buttonFemale");
        QCOMPARE(int(m_data->m_nSex), 0);
    }

    void touchesAndThePowerKeyPostponeTheTimers()
    {
        m_data->m_nPowerOffMinutes = 1;
        openOnMenuPages();
        tick();
        advance(50);
        click("buttonMale");
        advance(50);
        tick();
        QVERIFY(!poweredOff());
        advance(50);
        pressKey(Qt::Key_PowerDown);
        advance(50);
        tick();
        QVERIFY(!poweredOff());
        advance(11);
        tick();
        QVERIFY(poweredOff());

        m_data->screenOff();
        pressKey(Qt::Key_PowerDown);
        QVERIFY(m_data->isScreenOn());
        // Escape must not close the device's only window.
        pressKey(Qt::Key_Escape);
        QVERIFY(m_window->isVisible());
    }

    void powerOffButtonAsksFirst()
    {
        openOnMenuPages();
        {
            ModalResponder no([](QWidget *box) {
                QCOMPARE(messageText(box), QStringLiteral("Power Off"));
                pressButton(box, "buttonRight1");
            });
            click("buttonReboot");
            QCOMPARE(no.count(), 1);
        }
        QVERIFY(!poweredOff());
        SimulatedWorld::instance().irLight = true;
        ModalResponder yes([](QWidget *box) { pressButton(box, "buttonLeft1"); });
        click("buttonReboot");
        QVERIFY(poweredOff());
        QVERIFY(!SimulatedWorld::instance().irLight);
    }

    // --- settings pages ---

    void aLanguageSwitchRetranslatesThePagesAlreadyBuilt()
    {
        openSetup();
        click("buttonLanguageSetting");
        click("buttonSpanish");
        QCoreApplication::sendPostedEvents(nullptr, QEvent::LanguageChange);
        QCOMPARE(m_data->m_pCamCfg->value(CamCfg::Language), QStringLiteral("Spanish"));
        QCOMPARE(widget<QLabel>("labelSetupTitle")->text(), QStringLiteral("Ajustes"));
        // A prompt the page set itself follows too, so it still reads as a prompt.
        QCOMPARE(widget<QLineEdit>("editName")->text(), QStringLiteral("Escriba el nombre"));
        click("buttonEnglish");
        QCoreApplication::sendPostedEvents(nullptr, QEvent::LanguageChange);
        QCOMPARE(widget<QLabel>("labelSetupTitle")->text(), QStringLiteral("Settings"));
        QCOMPARE(widget<QLineEdit>("editName")->text(), QStringLiteral("Please enter your name"));
    }

    void printerChoiceIsSavedAtOnce()
    {
        openSetup();
        click("buttonPrinterSetting");
        click("buttonPrinterNetwork");
        QVERIFY(widget<QPushButton>("buttonPrinterNetwork")->isChecked());
        startDevice();
        QCOMPARE(m_data->m_pCamCfg->value(CamCfg::PrinterKind), QStringLiteral("network"));
    }

    void factoryResetKeepsTheHistoryAndRebootsOnlyAfterYes()
    {
        m_device->writeFile(QStringLiteral("app/CAMCFG/result.txt"), "Amy,Female,2019-03-02|2024-05-17 10:42\n");
        openSetup();
        {
            ModalResponder no([](QWidget *box) { pressButton(box, "buttonRight1"); });
            click("buttonFactoryReset");
        }
        QVERIFY(QFile::exists(m_device->configFile()));
        QVERIFY(!rebooted());

        QStringList shown;
        ModalResponder yes([&](QWidget *box) {
            shown << messageText(box);
            if (shown.size() == 1) {
                pressButton(box, "buttonLeft1");
                return;
            }
            // The operator is told before the device goes.
            QVERIFY(!QFile::exists(m_device->configFile()));
            QVERIFY(!rebooted());
            pressButton(box, "buttonMiddle1");
        });
        click("buttonFactoryReset");
        QCOMPARE(shown.size(), 2);
        QVERIFY(rebooted());
        QVERIFY(QFile::exists(m_device->appDir() + QStringLiteral("/CAMCFG/result.txt")));
    }

    void regionIsSavedAndItsMachineIdCodeScansBackToTheDetails()
    {
        openSetup();
        click("buttonCountrySetting");
        click("buttonRegionIndia");
        click("buttonCountryReturn");
        click("buttonMachineIDSetting");
        QCOMPARE(widget<QLabel>("labelMachineRegionValue")->text(), QStringLiteral("India"));
        QTemporaryDir dir;
        const QString png = dir.filePath(QStringLiteral("code.png"));
        QVERIFY(widget<QLabel>("labelMachineQr")->pixmap(Qt::ReturnByValue).save(png));
        QProcess zbar;
        zbar.start(QStringLiteral("zbarimg"), {QStringLiteral("--quiet"), QStringLiteral("--raw"), png});
        QVERIFY(zbar.waitForFinished(20000));
        const QString mac = m_data->m_pCommon->GetETNetMACAddress();
        QVERIFY(!mac.isEmpty());
        QCOMPARE(QString::fromUtf8(zbar.readAllStandardOutput()).trimmed(),
                 QStringLiteral("MAC: %1\nVersion: 0.0.1\nRegion: india").arg(mac));
        // The region picks the analysis server, so it is saved at once.
        startDevice();
        QCOMPARE(m_data->m_pCamCfg->value(CamCfg::Region), QStringLiteral("1"));
    }

    void aParameterOutOfRangeIsRefusedAndNothingSaved_data()
    {
        QTest::addColumn<QString>("row");
        QTest::addColumn<QString>("typed");
        const auto row = [](const char *name, const char *button, const char *typed) {
            QTest::newRow(name) << button << typed;
        };
        row("exposure beyond a frame", "buttonParamExposure", "1126");
        row("no gain", "buttonParamGain", "0");
        row("LED loops beyond the recording", "buttonParamLedLoop", "6");
        row("pitch offset", "buttonParamPitchOffset", "-16");
        row("distance offset", "buttonParamDistanceOffset", "201");
        row("not a whole number", "buttonParamDistanceOffset", "1.5");
    }

    void aParameterOutOfRangeIsRefusedAndNothingSaved()
    {
        QFETCH(QString, row);
        QFETCH(QString, typed);
        const QByteArray button = row.toLatin1();
        openSetup();
        click("buttonParamSetting");
        const QString shown = widget<QPushButton>(button.constData())->text();
        const QByteArray before = TestDevice::readFile(m_device->configFile());
        const QStringList messages = typeParam(button.constData(), typed);
        QCOMPARE(messages.size(), 1);
        QVERIFY2(messages.first().startsWith(QLatin1String("Value Out of Range/")), qPrintable(messages.first()));
        QCOMPARE(widget<QPushButton>(button.constData())->text(), shown);
        QCOMPARE(TestDevice::readFile(m_device->configFile()), before);
        QVERIFY(!QFile::exists(m_device->calibrationFile()));
    }

    void aSavedOffsetReachesTheCalibrationFileAndTheReadings()
    {
        SimulatedWorld::instance().childDistanceMm = 1085;
        SimulatedWorld::instance().pitchDegrees = 0;
        openSetup();
        click("buttonParamSetting");
        QVERIFY(typeParam("buttonParamDistanceOffset", QStringLiteral("30")).isEmpty());
        QVERIFY(typeParam("buttonParamPitchOffset", QStringLiteral("-3")).isEmpty());
        QCOMPARE(TestDevice::readFile(m_device->calibrationFile()), QByteArray("30,-3\n"));
        // (1085 - 125 + 30 + 5) / 10 instead of 96 without the offset.
        QCOMPARE(m_data->getDistance(), 99);
        QCOMPARE(m_data->getDOF(), -3);
    }

    // --- start page ---

    void startPageWaitsForWifiThenGivesUp()
    {
        m_device->writeFile(QStringLiteral("sim/wifi/wpa_supplicant.conf"), "update_config=1\n");
        for (int i = 0; i < 11; ++i)
            tick();
        QCOMPARE(base()->currentIndex(), int(MainDialog::BasePageStart));
        QCOMPARE(m_data->m_nWifiChanged.load(), 0);
        tick();
        QCOMPARE(base()->currentIndex(), int(MainDialog::BasePageNoWifi));
        QCOMPARE(m_data->m_nWifiChanged.load(), 1);

        // The no-Wi-Fi page then asks for fresh information every 27th
        // tick; its count began with the tick that showed it.
        m_data->m_nWifiChanged = 0;
        for (int round = 0; round < 2; ++round) {
            for (int i = 0; i < (round == 0 ? 25 : 26); ++i)
                tick();
            QCOMPARE(m_data->m_nWifiChanged.load(), 0);
            tick();
            QCOMPARE(m_data->m_nWifiChanged.load(), 1);
            m_data->m_nWifiChanged = 0;
        }
    }

    // --- navigation ---

    void everyPageIsReachableAndLeadsBack_data()
    {
        QTest::addColumn<QString>("row");
        QTest::addColumn<QString>("page");
        QTest::addColumn<QString>("back");
        for (const char *name :
             {"Wifi", "TimeZone", "SleepTime", "Country", "Referral", "Param", "MachineID", "Language", "Printer"}) {
            const QString page = QString::fromLatin1(name);
            QTest::newRow(name) << "button" + page + "Setting"
                                << "page" + (page == "Wifi" ? "WIFI" : page) << "button" + page + "Return";
        }
    }

    void everyPageIsReachableAndLeadsBack()
    {
        QFETCH(QString, row);
        QFETCH(QString, page);
        QFETCH(QString, back);
        // The simulated supplicant joins its saved network after the join
        // time; the start page then gives way to the details page.
        QTest::qWait(300);
        tick();
        QCOMPARE(base()->currentIndex(), int(MainDialog::BasePageMenu));
        QCOMPARE(widget<QStackedWidget>("stackedWidgetWithMenu")->currentWidget()->objectName(),
                 QStringLiteral("pageInfoInput"));
        openOnMenuPages();
        click("buttonSetup");
        QCOMPARE(noMenuPage()->objectName(), QStringLiteral("pageSetup"));
        click(row.toLatin1().constData());
        QCOMPARE(base()->currentIndex(), int(MainDialog::BasePageMenu));
        QCOMPARE(noMenuPage()->objectName(), page);
        click(back.toLatin1().constData());
        QCOMPARE(noMenuPage()->objectName(), QStringLiteral("pageSetup"));
        click("buttonSetupReturn");
        QCOMPARE(widget<QStackedWidget>("stackedWidgetMain")->currentIndex(), 0);
    }

    void historyPageLeadsBack()
    {
        openOnMenuPages();
        click("buttonHistory");
        QCOMPARE(noMenuPage()->objectName(), QStringLiteral("pageHistory"));
        click("buttonHistoryReturn");
        QCOMPARE(widget<QStackedWidget>("stackedWidgetMain")->currentIndex(), 0);
    }

    void noWifiPageLeadsToTheWifiSettings()
    {
        base()->setCurrentIndex(MainDialog::BasePageNoWifi);
        m_device->writeFile(QStringLiteral("sim/wifi/wpa_supplicant.conf"), "update_config=1\n");
        m_cmd->sendCommand(QStringLiteral("wpa_cli -i wlan0 reconfigure"));
        click("buttonNoWifiSettings");
        QCOMPARE(noMenuPage()->objectName(), QStringLiteral("pageWIFI"));
        // Still not joined: back goes through the start page.
        click("buttonWifiReturn");
        QCOMPARE(base()->currentIndex(), int(MainDialog::BasePageStart));
    }

    // --- battery label ---

    void onBatteryTheLevelFollowsThePercentageAndWarnsOnceUntilRecharged()
    {
        // Between 20 % and 30 % the warning stays as it was.
        const struct
        {
            int percent, level;
            bool warn;
        } steps[] = {{100, 5, false}, {99, 4, false}, {80, 4, false}, {79, 3, false}, {60, 3, false}, {59, 2, false},
                     {40, 2, false},  {39, 1, false}, {20, 1, false}, {19, 0, true},  {18, 0, false}, {25, 1, false},
                     {19, 0, false},  {30, 1, false}, {19, 0, false}, {31, 1, false}, {19, 0, true},  {0, 0, false}};
        bool armed = true;
        for (const auto &step : steps) {
            const batterylevel::Step next = batterylevel::next(3, armed, step.percent, false);
            QVERIFY2(next.level == step.level && next.warn == step.warn, qPrintable(QString::number(step.percent)));
        }
    }

    void chargingClimbsFromItsFloor_data()
    {
        QTest::addColumn<int>("percent");
        QTest::addColumn<QList<int>>("levels");
        QTest::newRow("full") << 100 << QList<int>{5, 5, 5};
        QTest::newRow("85%") << 85 << QList<int>{4, 5, 4, 5};
        QTest::newRow("65%") << 65 << QList<int>{3, 4, 5, 3};
        QTest::newRow("45%") << 45 << QList<int>{2, 3, 4, 5, 2};
        QTest::newRow("25%") << 25 << QList<int>{1, 2, 3, 4, 5, 1};
        QTest::newRow("10%, no floor") << 10 << QList<int>{0, 1, 2, 3, 4, 5, 0};
    }

    void chargingClimbsFromItsFloor()
    {
        QFETCH(int, percent);
        QFETCH(QList<int>, levels);
        bool armed = true;
        int level = 5;
        for (const int expected : levels) {
            const batterylevel::Step step = batterylevel::next(level, armed, percent, true);
            QCOMPARE(step.level, expected);
            QVERIFY(!step.warn);
            level = step.level;
        }
    }

    void batteryLabelShowsTheLowBatteryBoxOnce()
    {
        openOnMenuPages();
        SimulatedWorld::instance().batteryPercent = 19;
        QStringList shown;
        const ModalResponder responder = collectMessages(shown);
        for (int i = 0; i < 7 * 3; ++i)
            tick();
        QCOMPARE(shown, QStringList{QStringLiteral("Low Battery/20% battery remaining")});
        QCOMPARE(m_data->m_nBatteryLevel, 0);
        QVERIFY(!widget<QLabel>("labelBattery")->pixmap(Qt::ReturnByValue).isNull());
    }

    // --- patient details ---

    void secondPressOnTheNameKeepsIt()
    {
        openOnMenuPages();
        auto *name = widget<QLineEdit>("editName");
        const QPoint keypadPlace = m_window->mapToGlobal(QPoint(0, 350));
        // What the keypad finds in the field each time it opens; only the first press types.
        QStringList found;
        ModalResponder keypad([name, keypadPlace, &found](QWidget *dialog) {
            QCOMPARE(dialog->metaObject()->className(), "KeypadDlg");
            QCOMPARE(dialog->pos(), keypadPlace);
            found << name->text();
            if (found.size() == 1)
                name->setText(QStringLiteral("Sam"));
            dialog->close();
        });
        QTest::mouseClick(name, Qt::LeftButton);
        QTest::mouseClick(name, Qt::LeftButton);
        QCOMPARE(found, (QStringList{QString(), QStringLiteral("Sam")}));
        QCOMPARE(name->text(), QStringLiteral("Sam"));
    }

    void impossibleBirthdayIsRefused_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<bool>("valid");
        QTest::newRow("30 February") << "2021-02-30" << false;
        QTest::newRow("good") << "2019-03-02" << true;
    }

    void impossibleBirthdayIsRefused()
    {
        QFETCH(QString, typed);
        QFETCH(bool, valid);
        openOnMenuPages();
        auto *date = widget<QLineEdit>("editDate");
        QStringList messages;
        ModalResponder responder([&](QWidget *dialog) {
            if (QLatin1String(dialog->metaObject()->className()) == QLatin1String("NumKeypadDlg")) {
                QCOMPARE(dialog->pos(), m_window->mapToGlobal(QPoint(0, 240)));
                date->setText(typed);
                dialog->close();
            } else {
                messages << messageText(dialog);
                pressButton(dialog, "buttonMiddle1");
            }
        });
        QTest::mouseClick(date, Qt::LeftButton);
        if (valid) {
            QVERIFY(messages.isEmpty());
            QCOMPARE(m_data->m_dateBirthday, QDate(2019, 3, 2));
            QCOMPARE(widget<QLineEdit>("editYear")->text(), QStringLiteral("2019"));
            QCOMPARE(widget<QLineEdit>("editDay")->text(), QStringLiteral("2"));
        } else {
            QCOMPARE(messages, QStringList{QStringLiteral("Error/Date is not valid!")});
            QVERIFY(!m_data->m_dateBirthday.isValid());
        }
    }

    void screeningNeedsANameAndABirthday()
    {
        // A new patient starts male, with prompts in the fields.
        QCOMPARE(int(m_data->m_nSex), 1);
        QCOMPARE(m_data->m_dateBirthday, QDate(2020, 12, 31));
        QCOMPARE(widget<QLineEdit>("editName")->text(), QStringLiteral("Please enter your name"));
        QCOMPARE(widget<QLineEdit>("editDate")->text(), QStringLiteral("Year-Month-Date"));
        openOnMenuPages();
        QStringList messages;
        const ModalResponder responder = collectMessages(messages);
        widget<QLineEdit>("editName")->setText(QStringLiteral("   "));
        click("buttonCamera");
        // Both separators of the history's fields are on the keypad.
        for (const char *name : {"Lee, Amy", "Amy|Lee"}) {
            widget<QLineEdit>("editName")->setText(QLatin1String(name));
            click("buttonCamera");
        }
        widget<QLineEdit>("editName")->setText(QStringLiteral("Amy"));
        widget<QLineEdit>("editDate")->setText(QStringLiteral("2021-02-30"));
        click("buttonCamera");
        const QString separators = QStringLiteral("Error/A name cannot contain \",\" or \"|\".");
        QCOMPARE(messages, (QStringList{QStringLiteral("Error/User Name cannot be empry!"), separators, separators,
                                        QStringLiteral("Error/Date is not valid!")}));
        QCOMPARE(base()->currentIndex(), int(MainDialog::BasePageMenu));

        widget<QLineEdit>("editDate")->setText(QStringLiteral("2019-03-02"));
        click("buttonCamera");
        QCOMPARE(base()->currentIndex(), int(MainDialog::BasePageCamera));
        QCOMPARE(m_data->m_strName, QStringLiteral("Amy"));
        QCOMPARE(widget<QLabel>("labelNameValue")->text(), QStringLiteral("Amy"));
        click("buttonCameraReturn");
        QCOMPARE(base()->currentIndex(), int(MainDialog::BasePageMenu));
        // The next patient starts male again.
        click("buttonFemale");
        click("buttonResultNext");
        QCOMPARE(int(m_data->m_nSex), 1);
    }
};

// The language page switches the translation through the program's own
// application object, so the tests run under one too.
int main(int argc, char *argv[])
{
    Application app(argc, argv);
    app.setAttribute(Qt::AA_Use96Dpi, true);
    TestMainWindow test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_mainwindow.moc"
