// SPDX-License-Identifier: GPL-2.0-or-later
// The one top-level window of the device: construction, page navigation, the periodic timer.
#include "maindialog.h"

#include "camerathread.h"
#include "common.h"
#include "devicethread.h"
#include "gdata.h"
#include "hwthread.h"
#include "msgdialog.h"
#include "platform.h"
#include "ui_maindialog.h"
#include "ui_pageboot.h"
#include "ui_pagecamera.h"
#include "ui_pagecountry.h"
#include "ui_pageemail.h"
#include "ui_pagehistory.h"
#include "ui_pageinfoinput.h"
#include "ui_pagelanguage.h"
#include "ui_pagemachineid.h"
#include "ui_pagenomenu.h"
#include "ui_pagenowifi.h"
#include "ui_pageparam.h"
#include "ui_pageprinter.h"
#include "ui_pagereferral.h"
#include "ui_pageresult.h"
#include "ui_pagesetup.h"
#include "ui_pagesleeptime.h"
#include "ui_pagetimezone.h"
#include "ui_pageuserdetail.h"
#include "ui_pagewifi.h"
#include "ui_pagewithmenu.h"
#include "videothread.h"

#include <QApplication>
#include <QFile>

namespace {

QString loadStyleSheet()
{
    QFile file(QStringLiteral(":/style/orvella.qss"));
    if (!file.open(QIODevice::ReadOnly))
        return QString();
    return QString::fromUtf8(file.readAll());
}

} // namespace

MainDialog::MainDialog(QWidget *parent, Workers workers)
    : QDialog(parent)
    , ui(std::make_unique<Ui::MainDialog>())
    , uiBoot(std::make_unique<Ui::PageBoot>())
    , uiNoWifi(std::make_unique<Ui::PageNoWifi>())
    , uiCamera(std::make_unique<Ui::PageCamera>())
    , uiMenu(std::make_unique<Ui::PageWithMenu>())
    , uiInfo(std::make_unique<Ui::PageInfoInput>())
    , uiResult(std::make_unique<Ui::PageResult>())
    , uiNoMenu(std::make_unique<Ui::PageNoMenu>())
    , uiSetup(std::make_unique<Ui::PageSetup>())
    , uiHistory(std::make_unique<Ui::PageHistory>())
    , uiParam(std::make_unique<Ui::PageParam>())
    , uiReferral(std::make_unique<Ui::PageReferral>())
    , uiUserDetail(std::make_unique<Ui::PageUserDetail>())
    , uiTimeZone(std::make_unique<Ui::PageTimeZone>())
    , uiSleepTime(std::make_unique<Ui::PageSleepTime>())
    , uiMachineID(std::make_unique<Ui::PageMachineID>())
    , uiCountry(std::make_unique<Ui::PageCountry>())
    , uiWifi(std::make_unique<Ui::PageWifi>())
    , uiEmail(std::make_unique<Ui::PageEmail>())
    , uiLanguage(std::make_unique<Ui::PageLanguage>())
    , uiPrinter(std::make_unique<Ui::PagePrinter>())
    , m_timer(this)
    , m_internetTimeTimer(this)
{
    Q_INIT_RESOURCE(style);
    setupPages();
    setStyleSheet(loadStyleSheet());

    uiBoot->labelBootVersion->setText(QStringLiteral("v") + g_pData->m_pCommon->version());
    pageMainInfoInputInit();
    tableViewWIFIInit();
    timeSettingsInit();
    paramButtonsInit();
    ui->stackedWidgetBase->setCurrentIndex(BasePageStart);

    // Touches anywhere count as activity and wake a dark screen.
    qApp->installEventFilter(this);

    m_timer.setObjectName(QStringLiteral("timerMain"));
    connect(&m_timer, &QTimer::timeout, this, &MainDialog::on_timer);
    m_timer.start(200);

    if (workers == Workers::Start) {
        cameraThreadInit();
        videoThreadInit();
        deviceThreadInit();
    }
}

MainDialog::~MainDialog()
{
    stopWorkers();
}

void MainDialog::setupPages()
{
    // The forms are set up on a plain surface first; the slots of this
    // dialog are connected once, at the end, when every page exists.
    setObjectName(QStringLiteral("MainDialog"));
    setWindowTitle(QStringLiteral("Orvella"));
    setFixedSize(1024, 600);
    auto *surface = new QWidget(this);
    ui->setupUi(surface);
    uiBoot->setupUi(ui->pageBoot);
    uiNoWifi->setupUi(ui->pageNoWifi);
    uiCamera->setupUi(ui->pageCamera);
    uiMenu->setupUi(ui->pageWithMenu);
    uiInfo->setupUi(uiMenu->pageInfoInput);
    uiResult->setupUi(uiMenu->pageResult);
    uiNoMenu->setupUi(ui->pageNoMenu);
    uiSetup->setupUi(uiNoMenu->pageSetup);
    uiHistory->setupUi(uiNoMenu->pageHistory);
    uiParam->setupUi(uiNoMenu->pageParam);
    uiReferral->setupUi(uiNoMenu->pageReferral);
    uiUserDetail->setupUi(uiNoMenu->pageUserDetail);
    uiTimeZone->setupUi(uiNoMenu->pageTimeZone);
    uiSleepTime->setupUi(uiNoMenu->pageSleepTime);
    uiMachineID->setupUi(uiNoMenu->pageMachineID);
    uiCountry->setupUi(uiNoMenu->pageCountry);
    uiWifi->setupUi(uiNoMenu->pageWIFI);
    uiEmail->setupUi(uiNoMenu->pageEmail);
    uiLanguage->setupUi(uiNoMenu->pageLanguage);
    uiPrinter->setupUi(uiNoMenu->pagePrinter);
    QMetaObject::connectSlotsByName(this);
}

void MainDialog::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::LanguageChange)
        retranslatePages();
    QDialog::changeEvent(event);
}

void MainDialog::retranslatePages()
{
    ui->retranslateUi(ui->stackedWidgetBase->parentWidget());
    uiBoot->retranslateUi(ui->pageBoot);
    uiNoWifi->retranslateUi(ui->pageNoWifi);
    uiCamera->retranslateUi(ui->pageCamera);
    uiMenu->retranslateUi(ui->pageWithMenu);
    uiInfo->retranslateUi(uiMenu->pageInfoInput);
    uiResult->retranslateUi(uiMenu->pageResult);
    uiNoMenu->retranslateUi(ui->pageNoMenu);
    uiSetup->retranslateUi(uiNoMenu->pageSetup);
    uiHistory->retranslateUi(uiNoMenu->pageHistory);
    uiParam->retranslateUi(uiNoMenu->pageParam);
    uiReferral->retranslateUi(uiNoMenu->pageReferral);
    uiUserDetail->retranslateUi(uiNoMenu->pageUserDetail);
    uiTimeZone->retranslateUi(uiNoMenu->pageTimeZone);
    uiSleepTime->retranslateUi(uiNoMenu->pageSleepTime);
    uiMachineID->retranslateUi(uiNoMenu->pageMachineID);
    uiCountry->retranslateUi(uiNoMenu->pageCountry);
    uiWifi->retranslateUi(uiNoMenu->pageWIFI);
    uiEmail->retranslateUi(uiNoMenu->pageEmail);
    uiLanguage->retranslateUi(uiNoMenu->pageLanguage);
    uiPrinter->retranslateUi(uiNoMenu->pagePrinter);

    // What the pages wrote over the forms' texts. The history lists and the
    // test-record page build their texts anew each time they open.
    uiBoot->labelBootVersion->setText(QStringLiteral("v") + g_pData->m_pCommon->version());
    uiCamera->buttonFocusAuto->setText(g_pData->m_bAutoCapture ? tr("AUTO ON") : tr("AUTO OFF"));
    retranslateDetailPrompts();
    pageTimeZoneInit();
    labelTimeoutSettingShow();
    showEmailSettings();
    pageLanguageInit();
    pageCountryInit();
    pagePrinterInit();
    pageParamInit();
    pageMachineIDInit();
}

void MainDialog::showMenuPages()
{
    ui->stackedWidgetBase->setCurrentIndex(BasePageMenu);
    ui->stackedWidgetMain->setCurrentIndex(0);
}

void MainDialog::showWithMenuPage(QWidget *page)
{
    showMenuPages();
    uiMenu->stackedWidgetWithMenu->setCurrentWidget(page);
}

void MainDialog::showNoMenuPage(QWidget *page)
{
    ui->stackedWidgetBase->setCurrentIndex(BasePageMenu);
    ui->stackedWidgetMain->setCurrentIndex(1);
    uiNoMenu->stackedWidgetNoMenu->setCurrentWidget(page);
}

int MainDialog::showMessage(const QString &title, const QString &message, const QString &left, const QString &middle,
                            const QString &right)
{
    MsgDialog dialog;
    dialog.Init(title, message, left, middle, right);
    dialog.exec();
    return dialog.result;
}

void MainDialog::on_timer()
{
    timerPageStart();
    timerShutdown();
    timerPageCamera();
    timerPageMain();
    timerPageWifi();
}

void MainDialog::on_buttonSetup_clicked()
{
    showNoMenuPage(uiNoMenu->pageSetup);
}

void MainDialog::on_buttonHistory_clicked()
{
    pageSearchInit();
    showNoMenuPage(uiNoMenu->pageHistory);
}

void MainDialog::on_buttonResultNext_clicked()
{
    pageMainInfoInputInit();
    showWithMenuPage(uiMenu->pageInfoInput);
}

void MainDialog::on_buttonNoWifiSettings_clicked()
{
    g_pData->m_nWifiChanged = 1;
    showNoMenuPage(uiNoMenu->pageWIFI);
}
