// SPDX-License-Identifier: GPL-2.0-or-later
// Renders every page of the main window and every shared dialog in one language, for the docs.
//
// Usage: orvella-screenshots LOCALE OUTPUT_DIR   (LOCALE: en_US, zh_CN or es_ES)
// Runs on a throw-away simulated device; nothing outside a temporary folder is touched.
#include "application.h"
#include "btlistdlg.h"
#include "btprintermanager.h"
#include "camcfg.h"
#include "cmdutil.h"
#include "facerenderer.h"
#include "devicefactory.h"
#include "gdata.h"
#include "historysearch.h"
#include "keypaddlg.h"
#include "maindialog.h"
#include "msgdialog.h"
#include "numkeypaddlg.h"
#include "platform.h"
#include "pupilphoto.h"
#include "simulatedcamera.h"
#include "simulatedworld.h"
#include "timedlg.h"
#include "uploaddlg.h"
#include "wifipwddlg.h"
#include "zonedlg.h"

#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QStackedWidget>
#include <QTableView>
#include <QTableWidget>
#include <QTemporaryDir>
#include <QTextCodec>
#include <QTimer>

#include <cstdio>
#include <cstring>
#include <vector>

namespace {

QString s_outputDir;
int s_written = 0;

void save(QWidget *widget, const QString &name)
{
    const QString path = s_outputDir + '/' + name + QStringLiteral(".png");
    if (widget->grab().save(path))
        ++s_written;
    else
        std::fprintf(stderr, "cannot write %s\n", qPrintable(path));
}

template <class T> T *child(QWidget *parent, const char *name)
{
    T *found = parent->findChild<T *>(QLatin1String(name));
    if (!found)
        qFatal("no widget %s", name);
    return found;
}

void click(QWidget *parent, const char *name)
{
    child<QPushButton>(parent, name)->click();
}

void pages(MainDialog &window)
{
    auto *base = child<QStackedWidget>(&window, "stackedWidgetBase");
    auto *main = child<QStackedWidget>(&window, "stackedWidgetMain");
    auto *withMenu = child<QStackedWidget>(&window, "stackedWidgetWithMenu");
    auto *noMenu = child<QStackedWidget>(&window, "stackedWidgetNoMenu");

    base->setCurrentIndex(MainDialog::BasePageStart);
    save(&window, QStringLiteral("01-start"));
    base->setCurrentIndex(MainDialog::BasePageNoWifi);
    save(&window, QStringLiteral("02-no-wifi"));

    // A few ticks of the main page fill the clock and battery labels.
    base->setCurrentIndex(MainDialog::BasePageMenu);
    main->setCurrentIndex(0);
    for (int i = 0; i < 7; ++i)
        QMetaObject::invokeMethod(&window, "on_timer", Qt::DirectConnection);
    withMenu->setCurrentIndex(0);
    save(&window, QStringLiteral("03-details-empty"));
    child<QLineEdit>(&window, "editName")->setText(QStringLiteral("Sofia Marquez"));
    child<QLineEdit>(&window, "editName")->setStyleSheet(QStringLiteral("color:rgb(136, 138, 133); font-size: 28pt"));
    click(&window, "buttonFemale");
    save(&window, QStringLiteral("04-details-filled"));
    withMenu->setCurrentIndex(1);
    child<QLabel>(&window, "labelResultRefer")->hide();
    save(&window, QStringLiteral("05-result"));

    const char *const noMenuPages[] = {
        "pageSetup",     "pageHistory", "pageParam", "pageReferral", "pageUserDetail", "pageTimeZone", "pageSleepTime",
        "pageMachineID", "pageCountry", "pageWIFI",  "pageEmail",    "pageLanguage",   "pagePrinter"};
    // The history lists the children of the small history written at start,
    // one of them ticked; the detail page shows Sofia's two tests.
    click(&window, "buttonHistory");
    const QAbstractItemModel *children = child<QTableView>(&window, "tableViewSearchResult")->model();
    QMetaObject::invokeMethod(&window, "on_tableViewSearchResult_clicked", Qt::DirectConnection,
                              Q_ARG(QModelIndex, children->index(3, 1)));
    QMetaObject::invokeMethod(&window, "on_tableViewSearchResult_clicked", Qt::DirectConnection,
                              Q_ARG(QModelIndex, children->index(1, 0)));
    click(&window, "buttonEmailSetting");
    main->setCurrentIndex(1);
    // The Wi-Fi table shows what one refresh of the simulated radio found.
    QMetaObject::invokeMethod(&window, "device_thread_slot", Qt::DirectConnection,
                              Q_ARG(QString, g_pData->getWIFIInfo()));
    int number = 6;
    for (const char *name : noMenuPages) {
        // Opened through its row where it has one, so it shows the settings in force.
        const QString row = QStringLiteral("button%1Setting").arg(QLatin1String(name + 4));
        if (auto *button = window.findChild<QPushButton *>(row))
            button->click();
        noMenu->setCurrentWidget(child<QWidget>(&window, name));
        save(&window, QStringLiteral("%1-%2")
                          .arg(number++, 2, 10, QLatin1Char('0'))
                          .arg(QString::fromLatin1(name + 4).toLower()));
    }

    // The camera page as the operator sees it while aiming: a live frame of
    // the simulated camera, the child at the working distance, the device
    // tilted a little.
    main->setCurrentIndex(0);
    withMenu->setCurrentIndex(0);
    child<QLineEdit>(&window, "editName")->setText(QStringLiteral("Sofia Marquez"));
    child<QLineEdit>(&window, "editDate")->setText(QStringLiteral("2019-03-02"));
    SimulatedCamera::instance().setPaced(false);
    SimulatedWorld::instance().irLight = true;
    click(&window, "buttonCamera");
    if (g_pData->V4l2DevicePullFrame()) {
        g_pData->RAW2IMG();
        g_pData->V4l2DevicePushFrame();
    }
    QMetaObject::invokeMethod(&window, "camera_thread_slot", Qt::DirectConnection, Q_ARG(int, 0));
    g_pData->m_nDistance = 97;
    g_pData->m_nPitch = 3;
    g_pData->m_bTorchOn = 1;
    QMetaObject::invokeMethod(&window, "on_timer", Qt::DirectConnection);
    save(&window, QStringLiteral("%1-camera").arg(number++, 2, 10, QLatin1Char('0')));
    g_pData->m_nDistance = 130;
    g_pData->m_nPitch = -12;
    QMetaObject::invokeMethod(&window, "on_timer", Qt::DirectConnection);
    save(&window, QStringLiteral("%1-camera-aiming-badly").arg(number, 2, 10, QLatin1Char('0')));
    g_pData->m_nCameraMode = 0;
    g_pData->m_bTorchOn = 0;
    SimulatedWorld::instance().irLight = false;
}

void dialogs()
{
    struct Box
    {
        const char *file;
        const char *title, *message, *left, *middle, *right;
    };
    // The callers' own texts, translated in the callers' context; the
    // three-way box carries a network name, which is not translated.
    const Box boxes[] = {
        {"dialog-notice", "Date is not valid!", nullptr, "", "OK", ""},
        {"dialog-error", "Error", "User Name cannot be empry!", "", "OK", ""},
        {"dialog-question", "Power Off", nullptr, "Yes", "", "No"},
        {"dialog-three-way", "Connect to Network", nullptr, "Cancel", "Delete", "Connect"},
        {"dialog-factory-reset", "Factory Reset",
         "All settings return to their factory values and the device restarts. The test history is kept.", "Yes", "",
         "No"},
    };
    const auto tr = [](const char *text) {
        return QCoreApplication::translate("MainDialog", text);
    };
    for (const Box &box : boxes) {
        QString message = box.message ? tr(box.message) : QString();
        if (QLatin1String(box.file) == QLatin1String("dialog-three-way"))
            message = QStringLiteral("Clinic-Screening");
        MsgDialog dialog;
        dialog.Init(tr(box.title), message, tr(box.left), tr(box.middle), tr(box.right));
        save(&dialog, QLatin1String(box.file));
    }

    UploadDlg upload;
    child<QLabel>(&upload, "labelMsg")
        ->setText(QCoreApplication::translate("UploadDlg", "Data is processing, Please wait..."));
    for (int i = 0; i < 42; ++i)
        upload.timerProgress();
    save(&upload, QStringLiteral("dialog-progress"));

    QLineEdit target;
    KeypadDlg keypad;
    keypad.setTarget(&target);
    keypad.LineEditAppendString(QStringLiteral("Sofia"));
    save(&keypad, QStringLiteral("keypad-letters"));
    click(&keypad, "buttonShift");
    save(&keypad, QStringLiteral("keypad-capitals"));
    click(&keypad, "buttonMode");
    save(&keypad, QStringLiteral("keypad-symbols-1"));
    click(&keypad, "buttonShift");
    save(&keypad, QStringLiteral("keypad-symbols-2"));

    WifiPwdDlg password;
    child<QLineEdit>(&password, "editPassword")->setText(QStringLiteral("eyes2026"));
    save(&password, QStringLiteral("dialog-wifi-password"));

    QLineEdit date;
    NumKeypadDlg digits;
    digits.setTarget(&date);
    for (const int d : {2, 0, 1, 9})
        digits.on_number_input(d);
    save(&digits, QStringLiteral("keypad-digits"));

    // The choosers, shown so that they open on the choice in force.
    ZoneDlg zones;
    zones.Init(QStringLiteral("5.5"));
    zones.show();
    save(&zones, QStringLiteral("dialog-time-zone"));
    // The scan list halfway through a scan of the simulated radio: three
    // devices with their strengths, one just announced, the printer chosen.
    BtPrinterManager scanner;
    BtListDlg scan(&scanner);
    scan.show();
    QCoreApplication::processEvents();
    const auto device = [](const char *mac, const char *name, int rssi) {
        BtDevice found;
        found.mac = QLatin1String(mac);
        found.name = QString::fromUtf8(name);
        found.rssi = rssi;
        return found;
    };
    scan.showDevices(
        {device("66:12:A0:3C:58:01", "ORV-P58 Receipt Printer", -58), device("4C:87:5D:21:0A:9E", "Nurse's phone", -71),
         device("F0:5C:77:E2:19:44", "Classroom speaker", -83), device("00:1B:DC:45:7A:10", "Staff tablet", 0)});
    child<QTableWidget>(&scan, "tableWidgetBtList")->selectRow(0);
    save(&scan, QStringLiteral("dialog-bt-list"));
    TimeDlg durations;
    durations.Init(QCoreApplication::translate("PageSleepTime", "Power off after"), QStringLiteral("30 Minutes"));
    durations.show();
    save(&durations, QStringLiteral("dialog-timer"));
}

} // namespace

int main(int argc, char *argv[])
{
    Application app(argc, argv);
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));
    if (argc != 3) {
        std::fprintf(stderr, "usage: %s LOCALE OUTPUT_DIR\n", argv[0]);
        return 2;
    }
    const QString locale = QString::fromLocal8Bit(argv[1]);
    s_outputDir = QString::fromLocal8Bit(argv[2]);
    QDir().mkpath(s_outputDir);

    QTemporaryDir device;
    Platform::instance().appDir = device.path() + QStringLiteral("/app");
    qputenv("ORVELLA_SIM_DIR", QFile::encodeName(device.path() + QStringLiteral("/sim")));
    qputenv("PATH", QByteArray(ORVELLA_SIM_BIN_DIR) + ":/usr/bin:/bin");
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});

    QFont font(QStringLiteral("WenQuanYi Micro Hei"));
    font.setPixelSize(28);
    QApplication::setFont(font);
    app.switchLanguage(locale);

    QDir().mkpath(device.path() + QStringLiteral("/app/CAMCFG"));
    QFile history(device.path() + QStringLiteral("/app/CAMCFG/result.txt"));
    if (history.open(QIODevice::WriteOnly)) {
        history.write("Sofia Marquez,Female,2019-03-02|2024-05-17 10:42,-0.50,-0.75,85,+0.25,-0.00,5,62,Pass\n"
                      "Liam Chen,Male,2018-11-30|2024-05-17 10:50,+1.75,-1.25,90,+1.50,-0.50,180,58,Refer\n"
                      "Amara Okafor,Female,2020-01-15|2024-05-17 11:02,+0.25,-0.25,10,+0.50,-0.25,170,55,Pass\n"
                      "Noah Williams,Male,2017-07-08|2024-05-17 11:15,-1.50,-0.50,5,-1.25,-0.75,175,60,Refer\n"
                      "Sofia Marquez,Female,2019-03-02|2024-11-04 09:30,-0.25,-0.50,80,+0.00,-0.25,10,62,Pass\n"
                      "Yuki Tanaka,Female,2019-09-21|2024-11-04 09:41,+0.50,-0.25,95,+0.75,-0.25,90,57,Pass\n");
        history.close();
    }

    g_pCmdUtil = new CmdUtil;
    g_pData = new GData(g_pCmdUtil, makeSimulatedDevices());
    g_pData->Init(&app);
    // The language page marks the language the pictures are taken in.
    for (const char *language : {"English", "Chinese", "Spanish"}) {
        if (Application::localeForLanguage(QLatin1String(language)) == locale)
            g_pData->m_pCamCfg->setValue(CamCfg::Language, QLatin1String(language));
    }
    // Sofia's latest test has the photo a well-aimed flash frame gives.
    FaceRenderer renderer(GData::kCameraWidth, GData::kCameraHeight);
    FaceScene flash;
    flash.flashFrame = true;
    QImage frame(GData::kCameraWidth, GData::kCameraHeight, QImage::Format_Grayscale8);
    std::vector<uint8_t> luma(static_cast<size_t>(GData::kCameraWidth) * GData::kCameraHeight);
    renderer.expose(flash, 1, luma.data());
    for (int y = 0; y < frame.height(); ++y)
        std::memcpy(frame.scanLine(y), luma.data() + static_cast<size_t>(y) * frame.width(), frame.width());
    QDir().mkpath(g_pData->photoDir());
    const QString latest =
        QStringLiteral("Sofia Marquez,Female,2019-03-02|2024-11-04 09:30,-0.25,-0.50,80,+0.00,-0.25,10,62,Pass");
    QFile photo(g_pData->photoPath(historysearch::childKey(latest), historysearch::testValues(latest)));
    if (photo.open(QIODevice::WriteOnly))
        photo.write(pupilphoto::encodeJpeg(pupilphoto::cropToEyes(frame)));
    photo.close();
    g_pData->m_nWifiRssi = -48;
    // As after the first network time, so the clock shows.
    g_pData->m_bNetworkReady = 1;
    SimulatedWorld::instance().batteryPercent = 82;

    {
        MainDialog window(nullptr, MainDialog::Workers::DoNotStart);
        window.findChild<QTimer *>(QStringLiteral("timerMain"))->stop();
        window.show();
        pages(window);
    }
    dialogs();
    std::printf("%d screenshots in %s\n", s_written, qPrintable(s_outputDir));
    return 0;
}
