// SPDX-License-Identifier: GPL-2.0-or-later
// A scripted tester for headless runs: works the device window and the scene, and reports.
#include "scriptedoperator.h"

#include "camcfg.h"
#include "cloudprintserver.h"
#include "gdata.h"
#include "simulatedworld.h"
#include "updateserver.h"

#include <QAbstractButton>
#include <QAbstractItemModel>
#include <QAbstractItemView>
#include <QApplication>
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>
#include <QProcess>
#include <QRegularExpression>
#include <QStackedWidget>
#include <QStringList>
#include <QTableWidget>
#include <QWidget>

#include <cstdio>

namespace {

void setScene(int distanceMm, int pitch, int ambient)
{
    SimulatedWorld &world = SimulatedWorld::instance();
    world.childDistanceMm = distanceMm;
    world.pitchDegrees = pitch;
    world.ambientLight = ambient;
}

} // namespace

ScriptedOperator::ScriptedOperator(QWidget *device, const QString &screensDir, Boot boot, QObject *parent)
    : QObject(parent)
    , m_device(device)
    , m_screensDir(screensDir)
{
    const auto base = [this] {
        return m_device->findChild<QStackedWidget *>(QStringLiteral("stackedWidgetBase"));
    };
    const auto onResultPage = [base] {
        auto *menu = base()->findChild<QStackedWidget *>(QStringLiteral("stackedWidgetWithMenu"));
        return base()->currentIndex() == 1 && menu->currentWidget()->objectName() == QLatin1String("pageResult");
    };
    const auto onPage = [this](const char *name) {
        return [this, name] {
            auto *pages = m_device->findChild<QStackedWidget *>(QStringLiteral("stackedWidgetNoMenu"));
            return pages && pages->isVisible() && pages->currentWidget()->objectName() == QLatin1String(name);
        };
    };
    m_timer.setInterval(100);
    connect(&m_timer, &QTimer::timeout, this, &ScriptedOperator::tick);
    // Message boxes are answered by a timer of their own: a step that opened
    // one is still running inside the step timer, which does not fire again
    // until that step returns.
    m_answerTimer.setInterval(100);
    connect(&m_answerTimer, &QTimer::timeout, this, &ScriptedOperator::answerMessageBox);

    // The menu pages show once the device has found its Wi-Fi network.
    const auto menuShown = [base] {
        return base()->currentIndex() == 1;
    };
    if (boot == Boot::AfterUpdate) {
        m_steps.push_back({QStringLiteral("waits for the device to come up after the update"), menuShown,
                           [this] { say(QStringLiteral("the device restarted after the update")); }, 500, 30000});
        addVersionCheck(QStringLiteral("after the update"), QStringLiteral("40-machine-id-after-update"));
        m_steps.push_back({QStringLiteral("publishes a broken version"), [] { return true; },
                           [this] {
                               click("buttonMachineIDReturn");
                               if (m_updateServer)
                                   m_updateServer->setNewest(QStringLiteral("0.0.3"));
                               say(QStringLiteral("the update server now offers 0.0.3, a build that dies at start"));
                           },
                           300});
        addUpdate(QStringLiteral("installing-broken"), QStringLiteral("41-broken-update-offered"));
        addFinish();
        return;
    }
    if (boot == Boot::AfterBrokenUpdate) {
        m_steps.push_back({QStringLiteral("waits for the device to come up after the broken update"), menuShown,
                           [this] { say(QStringLiteral("the device came up again after the broken update")); }, 500,
                           30000});
        addVersionCheck(QStringLiteral("after the rollback"), QStringLiteral("50-machine-id-after-rollback"));
        addFinish();
        return;
    }

    const int soak = qEnvironmentVariableIntValue("ORVELLA_SIM_SOAK");
    if (soak > 0) {
        addSoak(soak);
        addFinish();
        return;
    }
    m_steps = {
        // The camera's warm-up recording runs for its first six seconds;
        // a screening started before it ends would be cut short by it.
        {QStringLiteral("waits for the Wi-Fi network, the network time and the camera's warm-up"),
         [base] { return base()->currentIndex() == 1 && g_pData->m_nCameraMode == 0 && g_pData->isNetworkReady(); },
         [this] {
             say(QStringLiteral("menu pages shown, network time known: ") + screenshot(QStringLiteral("01-details")));
             // As the nurse would on the e-mail page: reports on, to her address.
             CamCfg &cfg = *g_pData->m_pCamCfg;
             cfg.setValue(CamCfg::EmailReporting, QStringLiteral("1"));
             cfg.setValue(CamCfg::EmailAddress, QStringLiteral("nurse@school.example"));
             cfg.dogenCurrentCFG();
             cfg.saveCFG2File();
             say(QStringLiteral("switched e-mail reports on, to nurse@school.example"));
         },
         500},
    };
    addScreening(QStringLiteral("Sofia Marquez"), false, QStringLiteral("2019-03-02"), true);
    addScreening(QStringLiteral("Leo Park"), true, QStringLiteral("2016-07-19"), false);
    addPrinting();
    m_steps.push_back({QStringLiteral("asks for every attachment on the e-mail page"), [] { return true; },
                       [this] {
                           click("buttonSetup");
                           click("buttonEmailSetting");
                           for (const char *button : {"buttonEmailCsv", "buttonEmailPdf", "buttonEmailFhir"})
                               click(button);
                           say(QStringLiteral("switched on the CSV, PDF and FHIR attachments (setting: %1): ")
                                   .arg(g_pData->m_pCamCfg->value(CamCfg::ReportAttachments)) +
                               screenshot(QStringLiteral("09-email-attachments")));
                           click("buttonEmailReturn");
                           click("buttonSetupReturn");
                       },
                       500});
    m_steps.push_back({QStringLiteral("opens the history page"), [] { return true; },
                       [this] {
                           click("buttonHistory");
                           say(QStringLiteral("opened the history"));
                       },
                       500});
    m_steps.push_back({QStringLiteral("finds both children on the history page"), onPage("pageHistory"),
                       [this] {
                           say(QStringLiteral("history lists: %1: ").arg(historyRows().join(QStringLiteral("; "))) +
                               screenshot(QStringLiteral("10-history")));
                           tickHistoryRow(QStringLiteral("Sofia Marquez"));
                           m_answersBeforeExport = m_answers.size();
                           click("buttonHistoryExport");
                       },
                       1000});
    m_steps.push_back({QStringLiteral("exports Sofia's records"),
                       [this] { return m_answers.size() > m_answersBeforeExport; },
                       [this] {
                           say(QStringLiteral("exported Sofia Marquez's records by e-mail: ") + m_answers.last());
                           QStringList files{g_pData->m_strReportFile};
                           files << g_pData->m_strReportExtras;
                           for (const QString &file : files)
                               say(QStringLiteral("  attached: ") + file);
                           say(QStringLiteral("  copied to the USB drive: ") +
                               (g_pData->m_strUsbExportDir.isEmpty() ? g_pData->m_strUsbExportError
                                                                     : g_pData->m_strUsbExportDir));
                           click("buttonHistoryPhoto");
                       },
                       1000});
    m_steps.push_back({QStringLiteral("looks at Sofia's pupil photo"), onPage("pageUserDetail"),
                       [this] {
                           auto *caption = m_device->findChild<QLabel *>(QStringLiteral("labelUserDetailPhotoCaption"));
                           say(QStringLiteral("the detail page says \"%1\": ").arg(caption ? caption->text() : QString()) +
                               screenshot(QStringLiteral("12-pupil-photo")));
                           click("buttonUserDetailReturn");
                       },
                       800});
    m_steps.push_back({QStringLiteral("deletes Leo's records from the history page"), onPage("pageHistory"),
                       [this] {
                           tickHistoryRow(QStringLiteral("Sofia Marquez"));
                           tickHistoryRow(QStringLiteral("Leo Park"));
                           click("buttonHistoryDelete");
                       },
                       500});
    m_steps.push_back({QStringLiteral("deletes Leo's records"), [] { return true; },
                       [this] {
                           say(QStringLiteral("deleted Leo Park's records; the history now lists: %1: ")
                                   .arg(historyRows().join(QStringLiteral("; "))) +
                               screenshot(QStringLiteral("11-history-after-delete")));
                           const QStringList history =
                               g_pData->readTestResult().split(QLatin1Char('\n'), Qt::SkipEmptyParts);
                           say(QStringLiteral("history file: %1 line(s)").arg(history.size()));
                           for (const QString &line : history)
                               say(QStringLiteral("  ") + line);
                       },
                       300});
    // The whole interface changes language at once, pages already built included.
    const auto setupTitle = [this] {
        auto *title = m_device->findChild<QLabel *>(QStringLiteral("labelSetupTitle"));
        return title ? title->text() : QString();
    };
    m_steps.push_back({QStringLiteral("switches the language to Spanish"), [] { return true; },
                       [this] {
                           click("buttonSetup");
                           click("buttonLanguageSetting");
                           click("buttonSpanish");
                           say(QStringLiteral("chose Español on the language page"));
                       },
                       500});
    m_steps.push_back({QStringLiteral("goes back to the settings page"), onPage("pageLanguage"),
                       [this] { click("buttonLanguageReturn"); }, 300});
    m_steps.push_back({QStringLiteral("sees the settings page in Spanish"), onPage("pageSetup"),
                       [this, setupTitle] {
                           say(QStringLiteral("settings page title reads \"%1\": ").arg(setupTitle()) +
                               screenshot(QStringLiteral("20-settings-spanish")));
                           click("buttonLanguageSetting");
                           click("buttonEnglish");
                           click("buttonLanguageReturn");
                       },
                       500});
    m_steps.push_back({QStringLiteral("is back in English"), [] { return true; },
                       [this, setupTitle] {
                           say(QStringLiteral("switched back to English; the title reads \"%1\", the setting is %2")
                                   .arg(setupTitle(), g_pData->m_pCamCfg->value(CamCfg::Language)));
                       },
                       300});
    addProvisioning();
    addVersionCheck(QStringLiteral("before the update"), QStringLiteral("30-machine-id"));
    m_steps.push_back({QStringLiteral("goes back to the settings page"), [] { return true; },
                       [this] { click("buttonMachineIDReturn"); }, 300});
    addUpdate(QStringLiteral("installing-update"), QStringLiteral("31-update-offered"));
    addFinish();
    (void)onResultPage;
}

void ScriptedOperator::addVersionCheck(const QString &what, const QString &screen)
{
    m_steps.push_back({QStringLiteral("opens the machine identity page"), [] { return true; },
                       [this] {
                           click("buttonSetup");
                           click("buttonMachineIDSetting");
                       },
                       500});
    m_steps.push_back({QStringLiteral("reads the version on the machine identity page"), [] { return true; },
                       [this, what, screen] {
                           auto *label = m_device->findChild<QLabel *>(QStringLiteral("labelMachineVersionValue"));
                           say(QStringLiteral("machine identity page %1 shows version %2: ")
                                   .arg(what, label ? label->text() : QStringLiteral("(no label)")) +
                               screenshot(screen));
                       },
                       300});
}

void ScriptedOperator::addUpdate(const QString &note, const QString &screen)
{
    // The device asks the server by itself once the network is up; the
    // update button is marked when it found a new version.
    m_steps.push_back({QStringLiteral("sees whether the update button is marked"), [] { return true; },
                       [this, screen] {
                           click("buttonSetup");
                           auto *button = m_device->findChild<QAbstractButton *>(QStringLiteral("buttonUpdate"));
                           const bool marked = button && !button->styleSheet().isEmpty();
                           say(QStringLiteral("settings page, the update button is %1: ")
                                   .arg(QLatin1String(marked ? "marked as new" : "plain")) +
                               screenshot(screen));
                       },
                       300});
    m_steps.push_back(
        {QStringLiteral("presses System Update"), [] { return true; },
         [this, note] {
             const int before = m_answers.size();
             // Noted before the press: a successful update
             // restarts the device inside it.
             QFile notes(m_notesFile);
             if (notes.open(QIODevice::Append))
                 notes.write((note + QLatin1Char('\n')).toUtf8());
             notes.close();
             say(QStringLiteral("pressed System Update"));
             click("buttonUpdate");
             say(QStringLiteral("the update answered: %1").arg(m_answers.mid(before).join(QStringLiteral(" | "))));
         },
         300});
}

void ScriptedOperator::addFinish()
{
    m_steps.push_back({QStringLiteral("finishes"), [] { return true; },
                       [this] {
                           say(QStringLiteral("message boxes answered: %1").arg(m_answers.join(QStringLiteral(" | "))));
                           std::fprintf(stderr, "operator: done\n");
                           QCoreApplication::exit(0);
                       },
                       0});
}

namespace {

// Resident memory in KiB, open descriptors and threads of this process.
QString processFigures()
{
    QFile status(QStringLiteral("/proc/self/status"));
    QString rss;
    QString threads;
    if (status.open(QIODevice::ReadOnly)) {
        for (const QByteArray &line : status.readAll().split('\n')) {
            if (line.startsWith("VmRSS:"))
                rss = QString::fromLatin1(line.mid(6).simplified().split(' ').value(0));
            else if (line.startsWith("Threads:"))
                threads = QString::fromLatin1(line.mid(8).simplified());
        }
    }
    const int descriptors = QDir(QStringLiteral("/proc/self/fd")).entryList(QDir::NoDotAndDotDot | QDir::AllEntries).size();
    return QStringLiteral("rss_kib=%1 fds=%2 threads=%3").arg(rss).arg(descriptors).arg(threads);
}

} // namespace

void ScriptedOperator::addSoak(int count)
{
    const auto base = [this] {
        return m_device->findChild<QStackedWidget *>(QStringLiteral("stackedWidgetBase"));
    };
    const auto onResultPage = [base] {
        auto *menu = base()->findChild<QStackedWidget *>(QStringLiteral("stackedWidgetWithMenu"));
        return base()->currentIndex() == 1 && menu->currentWidget()->objectName() == QLatin1String("pageResult");
    };
    m_steps.push_back(
        {QStringLiteral("waits for the Wi-Fi network, the network time and the camera's warm-up"),
         [base] { return base()->currentIndex() == 1 && g_pData->m_nCameraMode == 0 && g_pData->isNetworkReady(); },
         [this] {
             // A short flash sequence keeps 500 children within half an
             // hour; no mail, so that the mail server's pace is not measured.
             CamCfg &cfg = *g_pData->m_pCamCfg;
             cfg.setValue(CamCfg::LedLoop, QStringLiteral("1"));
             cfg.setValue(CamCfg::AutoCapture, QStringLiteral("1"));
             cfg.setValue(CamCfg::EmailReporting, QStringLiteral("0"));
             cfg.dogenCurrentCFG();
             cfg.saveCFG2File();
             g_pData->m_nLedLoop = 1;
             g_pData->m_bAutoCapture = 1;
             say(QStringLiteral("soak: 0 ") + processFigures());
         },
         500});
    for (int child = 1; child <= count; ++child) {
        m_steps.push_back({QStringLiteral("types child %1").arg(child), [] { return true; },
                           [this, child] {
                               if (child > 1)
                                   click("buttonResultNext");
                               m_device->findChild<QLineEdit *>(QStringLiteral("editName"))
                                   ->setText(QStringLiteral("Soak Child %1").arg(child));
                               m_device->findChild<QLineEdit *>(QStringLiteral("editDate"))
                                   ->setText(QStringLiteral("2018-05-04"));
                               click("buttonCamera");
                           },
                           0});
        m_steps.push_back({QStringLiteral("aims at child %1").arg(child),
                           [base] { return base()->currentIndex() == 3 && g_pData->m_nCameraMode == 1; },
                           [] { setScene(1080, 0, 5); }, 0});
        m_steps.push_back({QStringLiteral("waits for child %1's recording").arg(child),
                           [] { return g_pData->m_nCameraMode == 2; }, [] {}, 0, 15000});
        m_steps.push_back({QStringLiteral("waits for child %1's result").arg(child), onResultPage,
                           [this, child] {
                               say(QStringLiteral("soak: %1 ").arg(child) + processFigures() +
                                   QStringLiteral(" result=") + g_pData->m_strResult);
                           },
                           0, 30000});
    }
}

ScriptedOperator::~ScriptedOperator()
{
    if (m_provisionClient && m_provisionClient->state() != QProcess::NotRunning) {
        m_provisionClient->kill();
        m_provisionClient->waitForFinished(2000);
    }
}

void ScriptedOperator::addProvisioning()
{
    const auto label = [this](const char *name) {
        auto *widget = m_device->findChild<QLabel *>(QLatin1String(name));
        return widget ? widget->text() : QString();
    };
    const auto pinShown = [label] {
        return QRegularExpression(QStringLiteral("\\b(\\d{6})\\b")).match(label("labelProvisioning")).captured(1);
    };
    const QString ssid = QStringLiteral("School Nurse Office");
    m_steps.push_back({QStringLiteral("switches phone setup on"), [] { return true; },
                       [this] {
                           click("buttonSetup");
                           click("buttonWifiSetting");
                           click("buttonProvisioning");
                       },
                       300});
    m_steps.push_back(
        {QStringLiteral("reads the PIN off the Wi-Fi page"), [pinShown] { return !pinShown().isEmpty(); },
         [this, label, pinShown, ssid] {
             say(QStringLiteral("Wi-Fi page shows \"%1\": ").arg(label("labelProvisioning")) +
                 screenshot(QStringLiteral("25-provisioning-open")));
             m_provisionClient = std::make_unique<QProcess>();
             m_provisionClient->setProcessChannelMode(QProcess::MergedChannels);
             // The client finds the address and ports in the deployment file
             // named by ORVELLA_PLATFORM_FILE, like a tester's shell would.
             const QStringList arguments = {QStringLiteral(ORVELLA_PROVISION_CLIENT),
                                            QStringLiteral("--pin"),
                                            pinShown(),
                                            QStringLiteral("add"),
                                            ssid,
                                            QStringLiteral("nurse-4412")};
             say(QStringLiteral("runs scripts/provision --pin %1 add \"%2\" nurse-4412").arg(pinShown(), ssid));
             m_provisionClient->start(QStringLiteral("/usr/bin/python3"), arguments);
         },
         0});
    m_steps.push_back({QStringLiteral("waits for the provisioning client"),
                       [this] { return m_provisionClient->state() == QProcess::NotRunning; },
                       [this] {
                           const QString output = QString::fromUtf8(m_provisionClient->readAll()).trimmed();
                           say(QStringLiteral("client exit status %1, said: %2")
                                   .arg(m_provisionClient->exitCode())
                                   .arg(output.isEmpty() ? QStringLiteral("(nothing)") : output));
                       },
                       0, 40000});
    m_steps.push_back(
        {QStringLiteral("waits for the Wi-Fi page to show the new network connected"),
         [ssid] {
             std::lock_guard<std::mutex> lock(g_pData->wifiMutex);
             return g_pData->wifiCurrentSsid == ssid;
         },
         [this, label, ssid] {
             say(QStringLiteral("Wi-Fi page: \"%1\", connected to %2: ").arg(label("labelProvisioningActivity"), ssid) +
                 screenshot(QStringLiteral("26-provisioning-connected")));
             click("buttonProvisioning");
             say(QStringLiteral("switched phone setup off; the page shows \"%1\"").arg(label("labelProvisioning")));
         },
         300, 20000});
}

void ScriptedOperator::start()
{
    QDir().mkpath(m_screensDir);
    m_timer.start();
    m_answerTimer.start();
}

void ScriptedOperator::addScreening(const QString &name, bool male, const QString &birthday, bool first)
{
    const auto base = [this] {
        return m_device->findChild<QStackedWidget *>(QStringLiteral("stackedWidgetBase"));
    };
    const auto onResultPage = [base] {
        auto *menu = base()->findChild<QStackedWidget *>(QStringLiteral("stackedWidgetWithMenu"));
        return base()->currentIndex() == 1 && menu->currentWidget()->objectName() == QLatin1String("pageResult");
    };
    const QString tag = first ? QStringLiteral("0") : QStringLiteral("1");
    m_steps.push_back({QStringLiteral("types the child's name and birthday"), [] { return true; },
                       [this, name, male, birthday, first] {
                           if (!first)
                               click("buttonResultNext");
                           m_device->findChild<QLineEdit *>(QStringLiteral("editName"))->setText(name);
                           m_device->findChild<QLineEdit *>(QStringLiteral("editDate"))->setText(birthday);
                           click(male ? "buttonMale" : "buttonFemale");
                           say(QStringLiteral("typed %1, %2, %3")
                                   .arg(name, male ? QStringLiteral("male") : QStringLiteral("female"), birthday));
                           if (!first) {
                               // This child is short-sighted in the left eye.
                               SimulatedWorld::Refraction refraction;
                               refraction.osSphere = -2.75;
                               SimulatedWorld::instance().setRefraction(refraction);
                           }
                           click("buttonCamera");
                           say(QStringLiteral("pressed the camera button"));
                       },
                       0});
    m_steps.push_back(
        {QStringLiteral("waits for the camera page"),
         [base] { return base()->currentIndex() == 3 && g_pData->m_nCameraMode == 1; },
         [this, tag] {
             setScene(1350, 9, 45);
             say(QStringLiteral("camera page, aiming; the child stands too far, the device tilts, the room "
                                "is bright"));
         },
         1500});
    m_steps.push_back({QStringLiteral("reads the first measurements"), [] { return true; },
                       [this, tag] {
                           say(QStringLiteral("device measured ") + measured() + QStringLiteral(": ") +
                               screenshot(tag + QStringLiteral("2-aiming-badly")));
                           setScene(1080, 0, 5);
                           if (!g_pData->m_bAutoCapture)
                               click("buttonFocusAuto");
                           say(QStringLiteral("aims well (1080 mm, level, dim room) with automatic capture on"));
                           m_captureStarted.start();
                       },
                       0});
    m_steps.push_back({QStringLiteral("waits for the recording to start"), [] { return g_pData->m_nCameraMode == 2; },
                       [this, tag] {
                           say(QStringLiteral("recording started after %1 ms of steady aim; device measured %2: ")
                                   .arg(m_captureStarted.elapsed())
                                   .arg(measured()) +
                               screenshot(tag + QStringLiteral("3-recording")));
                           m_captureStarted.start();
                       },
                       0, 15000});
    m_steps.push_back(
        {QStringLiteral("waits for the analysis and the result page"), onResultPage,
         [this, tag] {
             const QString verdict =
                 g_pData->m_strResult.isEmpty() ? QStringLiteral("(no verdict)") : g_pData->m_strResult;
             say(QStringLiteral("result page after %1 ms (recording, upload and analysis): %2; OD %3 %4 x "
                                "%5, OS %6 %7 x %8, PD %9: ")
                     .arg(m_captureStarted.elapsed())
                     .arg(verdict, g_pData->m_strODSphere, g_pData->m_strODCylinder, g_pData->m_strODAxis,
                          g_pData->m_strOSSphere, g_pData->m_strOSCylinder, g_pData->m_strOSAxis,
                          g_pData->m_strPupilDistance) +
                 screenshot(tag + QStringLiteral("4-result")));
             const QStringList history = g_pData->readTestResult().split(QLatin1Char('\n'), Qt::SkipEmptyParts);
             say(QStringLiteral("saved history line: ") +
                 (history.isEmpty() ? QStringLiteral("(none)") : history.last()));
         },
         0, 30000});
    // The video report goes out half a second after the result; its box
    // is answered like any other.
    const int answersBefore = first ? 1 : 2;
    m_steps.push_back({QStringLiteral("waits for the video report to be mailed"),
                       [this, answersBefore] { return m_answers.size() >= answersBefore; },
                       [this] { say(QStringLiteral("video report: ") + m_answers.last()); }, 300, 90000});
}

void ScriptedOperator::addPrinting()
{
    const auto onPage = [this](const char *name) {
        return [this, name] {
            auto *pages = m_device->findChild<QStackedWidget *>(QStringLiteral("stackedWidgetNoMenu"));
            return pages && pages->isVisible() && pages->currentWidget()->objectName() == QLatin1String(name);
        };
    };
    const auto onResultPage = [this] {
        auto *base = m_device->findChild<QStackedWidget *>(QStringLiteral("stackedWidgetBase"));
        auto *menu = base->findChild<QStackedWidget *>(QStringLiteral("stackedWidgetWithMenu"));
        return base->currentIndex() == 1 && menu->isVisible() &&
               menu->currentWidget()->objectName() == QLatin1String("pageResult");
    };
    const auto boundPrinter = [this] {
        auto *label = m_device->findChild<QLabel *>(QStringLiteral("labelBtPrinterValue"));
        return label ? label->text() : QString();
    };
    m_steps.push_back({QStringLiteral("opens the printer settings"), [] { return true; },
                       [this] {
                           click("buttonSetup");
                           click("buttonPrinterSetting");
                           // A kept device may still be set to the cloud printer from an earlier run.
                           click("buttonPrinterBt");
                       },
                       300});
    // The scan list and the boxes of the bind are answered by answerModal
    // while the Scan button's dialog runs.
    m_steps.push_back(
        {QStringLiteral("scans and binds the printer on the printer page"), onPage("pagePrinter"),
         [this, boundPrinter] {
             say(QStringLiteral("printer page shows the Bluetooth printer \"%1\"; pressed Scan").arg(boundPrinter()));
             click("buttonPrinterScan");
             say(QStringLiteral("the page now shows the Bluetooth printer \"%1\" (%2): ")
                     .arg(boundPrinter(), m_answers.value(m_answers.size() - 1)) +
                 screenshot(QStringLiteral("06-printer-bound")));
         },
         // The printer keeps a job until its line has been quiet a moment.
         1000});
    m_steps.push_back({QStringLiteral("prints a test page"), [] { return true; },
                       [this] {
                           m_receiptsBefore = receiptPictures();
                           click("buttonPrinterTest");
                           say(QStringLiteral("pressed Test Print: ") + m_answers.value(m_answers.size() - 1));
                       },
                       0});
    m_steps.push_back({QStringLiteral("sees the test page come out of the printer"),
                       [this] { return receiptPictures().size() > m_receiptsBefore.size(); },
                       [this] {
                           say(QStringLiteral("test page picture: ") + receiptPictures().constLast());
                           click("buttonPrinterReturn");
                           click("buttonSetupReturn");
                       },
                       1000, 5000});
    m_steps.push_back({QStringLiteral("prints the result on the Bluetooth printer"), onResultPage,
                       [this] {
                           m_receiptsBefore = receiptPictures();
                           click("buttonResultPrint");
                           say(QStringLiteral("pressed Print: ") + m_answers.value(m_answers.size() - 1));
                       },
                       0});
    m_steps.push_back({QStringLiteral("sees the receipt come out of the printer"),
                       [this] { return receiptPictures().size() > m_receiptsBefore.size(); },
                       [this] {
                           say(QStringLiteral("receipt picture: ") + receiptPictures().constLast());
                           say(QStringLiteral("latest receipt also at: ") + m_printerDir +
                               QStringLiteral("/last-receipt.png"));
                           click("buttonSetup");
                           click("buttonPrinterSetting");
                       },
                       300, 5000});
    m_steps.push_back({QStringLiteral("switches to the cloud printer on the printer page"), onPage("pagePrinter"),
                       [this] {
                           click("buttonPrinterNetwork");
                           m_typing = CloudPrintServer::registeredDeviceId();
                           auto *edit = m_device->findChild<QLineEdit *>(QStringLiteral("editCloudPrinterId"));
                           QMouseEvent press(QEvent::MouseButtonPress, QPointF(10, 10), Qt::LeftButton, Qt::LeftButton,
                                             Qt::NoModifier);
                           QApplication::sendEvent(edit, &press);
                           say(QStringLiteral("chose Cloud and typed the device ID; the settings hold %1, \"%2\"")
                                   .arg(g_pData->m_pCamCfg->value(CamCfg::PrinterKind),
                                        g_pData->m_pCamCfg->value(CamCfg::PrinterDeviceId)));
                           click("buttonPrinterReturn");
                           click("buttonSetupReturn");
                       },
                       300});
    m_steps.push_back({QStringLiteral("prints the result through the cloud printer"), onResultPage,
                       [this] {
                           click("buttonResultPrint");
                           say(QStringLiteral("pressed Print: ") + m_answers.value(m_answers.size() - 1));
                           if (m_cloudPrintServer) {
                               const CloudPrintServer::Request last = m_cloudPrintServer->lastRequest();
                               say(QStringLiteral("cloud service answered [%1] %2").arg(last.status).arg(last.answer));
                               say(QStringLiteral("cloud ticket: ") +
                                   m_cloudPrintServer->lastAcceptedPieces().join(QStringLiteral(" | ")));
                           }
                       },
                       300});
}

void ScriptedOperator::chooseFromScanList(QWidget *list)
{
    auto *table = list->findChild<QTableWidget *>(QStringLiteral("tableWidgetBtList"));
    if (!table)
        return;
    if (!m_listShown.isValid())
        m_listShown.start();
    int printerRow = -1;
    QStringList rows;
    for (int row = 0; row < table->rowCount(); ++row) {
        const auto text = [table, row](int column) {
            return table->item(row, column) ? table->item(row, column)->text() : QString();
        };
        rows << QStringLiteral("%1 (%2, %3)").arg(text(0), text(1), text(2));
        // Chosen once its strength is known: the scan has heard it twice.
        if (text(0).contains(QLatin1String("Printer")) && !text(2).isEmpty())
            printerRow = row;
    }
    auto *status = list->findChild<QLabel *>(QStringLiteral("labelBtListStatus"));
    if (printerRow >= 0) {
        const QString path = m_screensDir + QStringLiteral("/05-scan-list.png");
        say(QStringLiteral("scan list (%1) shows: %2: %3")
                .arg(status ? status->text() : QString(), rows.join(QStringLiteral("; ")),
                     list->grab().save(path) ? path : QStringLiteral("(screenshot failed)")));
        table->selectRow(printerRow);
        m_listShown.invalidate();
        click(list, "buttonBtListBind");
    } else if (m_listShown.elapsed() > 20000) {
        say(QStringLiteral("no printer in the scan list: ") + rows.join(QStringLiteral("; ")));
        m_listShown.invalidate();
        click(list, "buttonBtListCancel");
    }
}

void ScriptedOperator::typeOnKeypad(QWidget *keypad)
{
    // Key by key, as a finger would: a character not on the keys shown is
    // looked for on the next table of keys.
    const QStringList named = {QStringLiteral("buttonShift"), QStringLiteral("buttonMode"),
                               QStringLiteral("buttonDel"),   QStringLiteral("buttonEnter"),
                               QStringLiteral("buttonSpace"), QStringLiteral("buttonCloseKeypad")};
    const QList<QAbstractButton *> keys = keypad->findChildren<QAbstractButton *>();
    const auto press = [&](const QChar c) {
        for (QAbstractButton *key : keys) {
            if (!named.contains(key->objectName()) && key->text() == QString(c)) {
                key->click();
                return true;
            }
        }
        return false;
    };
    // Whatever an earlier run left in the field goes first; 64 is its limit.
    for (int i = 0; i < 64; ++i)
        click(keypad, "buttonDel");
    for (const QChar c : qAsConst(m_typing)) {
        for (int turn = 0; turn < 8 && !press(c); ++turn)
            click(keypad, turn % 2 == 0 ? "buttonShift" : "buttonMode");
    }
    m_typing.clear();
    click(keypad, "buttonCloseKeypad");
}

QStringList ScriptedOperator::receiptPictures() const
{
    QStringList pictures;
    const QDir receipts(m_printerDir + QStringLiteral("/receipts"));
    for (const QString &name : receipts.entryList({QStringLiteral("receipt-*.png")}, QDir::Files, QDir::Name))
        pictures << receipts.filePath(name);
    return pictures;
}

void ScriptedOperator::answerMessageBox()
{
    QWidget *modal = QApplication::activeModalWidget();
    if (!modal || modal == m_answered)
        return;
    const QLatin1String kind(modal->metaObject()->className());
    if (kind == QLatin1String("BtListDlg")) {
        chooseFromScanList(modal);
        return;
    }
    if (kind == QLatin1String("KeypadDlg") && !m_typing.isEmpty()) {
        typeOnKeypad(modal);
        return;
    }
    if (kind != QLatin1String("MsgDialog"))
        return;
    auto *middle = modal->findChild<QAbstractButton *>(QStringLiteral("buttonMiddle1"));
    // The wait of a bind closes by itself when the bind ends.
    if (middle && middle->isVisibleTo(modal) && middle->text() == QLatin1String("Waiting..."))
        return;
    m_answered = modal;
    connect(modal, &QObject::destroyed, this, [this] { m_answered = nullptr; });
    QStringList texts;
    for (const char *name : {"labelTitle", "labelMsg", "labelTitleMsg"}) {
        auto *label = modal->findChild<QLabel *>(QLatin1String(name));
        if (label && label->isVisibleTo(modal))
            texts << label->text();
    }
    m_answers << texts.join(QLatin1Char('/'));
    // A question is answered with its left button (Yes); a notice with its one button.
    auto *left = modal->findChild<QAbstractButton *>(QStringLiteral("buttonLeft1"));
    QAbstractButton *answer = left && left->isVisibleTo(modal) ? left : middle;
    if (answer)
        QTimer::singleShot(200, answer, &QAbstractButton::click);
}

QStringList ScriptedOperator::historyRows() const
{
    QStringList rows;
    auto *table = m_device->findChild<QAbstractItemView *>(QStringLiteral("tableViewSearchResult"));
    if (!table || !table->model())
        return rows;
    const QAbstractItemModel *model = table->model();
    for (int row = 0; row < model->rowCount(); ++row)
        rows << QStringLiteral("%1, %2, %3")
                    .arg(model->index(row, 1).data().toString(), model->index(row, 2).data().toString(),
                         model->index(row, 3).data().toString());
    return rows;
}

void ScriptedOperator::tickHistoryRow(const QString &name) const
{
    auto *table = m_device->findChild<QAbstractItemView *>(QStringLiteral("tableViewSearchResult"));
    if (!table || !table->model())
        return;
    const QAbstractItemModel *model = table->model();
    for (int row = 0; row < model->rowCount(); ++row) {
        if (model->index(row, 1).data().toString() == name)
            QMetaObject::invokeMethod(m_device, "on_tableViewSearchResult_clicked", Qt::DirectConnection,
                                      Q_ARG(QModelIndex, model->index(row, 0)));
    }
}

void ScriptedOperator::tick()
{
    if (m_acting)
        return;
    if (m_pauseMs > 0) {
        m_pauseMs -= m_timer.interval();
        return;
    }
    if (m_next >= m_steps.size()) {
        m_timer.stop();
        return;
    }
    Step &step = m_steps[m_next];
    if (!step.ready()) {
        m_waitedMs += m_timer.interval();
        if (m_waitedMs > step.limitMs) {
            say(QStringLiteral("gave up: the device never let the operator %1").arg(step.what));
            m_timer.stop();
            QCoreApplication::exit(2);
        }
        return;
    }
    m_acting = true;
    step.act();
    m_acting = false;
    m_pauseMs = step.pauseMs;
    m_waitedMs = 0;
    ++m_next;
}

void ScriptedOperator::say(const QString &text) const
{
    // Straight to the log, past the message handler: these lines are the
    // run's report, not the device's.
    std::fprintf(stderr, "operator: %s\n", qPrintable(text));
}

QString ScriptedOperator::screenshot(const QString &name) const
{
    const QString path = m_screensDir + QLatin1Char('/') + name + QStringLiteral(".png");
    return m_device->grab().save(path) ? path : QStringLiteral("(screenshot failed)");
}

QString ScriptedOperator::measured() const
{
    const SimulatedWorld &world = SimulatedWorld::instance();
    return QStringLiteral("distance %1 cm, pitch %2°, brightness %3, sharpness %4 (aiming light %5, flash %6)")
        .arg(g_pData->m_nDistance.load())
        .arg(g_pData->m_nPitch.load())
        .arg(g_pData->m_nPreviewBrightness.load())
        .arg(g_pData->m_nPreviewContrast.load())
        .arg(QLatin1String(world.irLight ? "on" : "off"), QLatin1String(world.irFlashActive ? "pulsing" : "off"));
}

bool ScriptedOperator::click(const char *button) const
{
    return click(m_device, button);
}

bool ScriptedOperator::click(QWidget *parent, const char *button)
{
    auto *target = parent->findChild<QAbstractButton *>(QLatin1String(button));
    if (!target)
        return false;
    target->click();
    return true;
}
