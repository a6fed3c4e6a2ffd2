// SPDX-License-Identifier: GPL-2.0-or-later
// The one top-level window of the device: a 1024 x 600 stack of pages.
#pragma once

#include <QDialog>
#include <QTimer>

#include <memory>

class QModelIndex;
class QStandardItem;
class QStandardItemModel;
class QThreadPool;

class CameraThread;
class DeviceThread;
class HWThread;
class VideoThread;

namespace Ui {
class MainDialog;
class PageBoot;
class PageNoWifi;
class PageCamera;
class PageWithMenu;
class PageInfoInput;
class PageResult;
class PageNoMenu;
class PageSetup;
class PageHistory;
class PageParam;
class PageReferral;
class PageUserDetail;
class PageTimeZone;
class PageSleepTime;
class PageMachineID;
class PageCountry;
class PageWifi;
class PageEmail;
class PageLanguage;
class PagePrinter;
} // namespace Ui

// The implementation is split by page group: maindialog.cpp (construction,
// navigation, the periodic timer), maindialog_idle.cpp (screen-off, power-off,
// wake-up), maindialog_status.cpp (start page, clock, battery and Wi-Fi
// labels), maindialog_details.cpp (patient details), maindialog_settings.cpp
// (the settings page and factory reset), and one file per settings page.
class MainDialog : public QDialog
{
    Q_OBJECT

public:
    // Indexes of stackedWidgetBase.
    enum BasePage { BasePageStart = 0, BasePageMenu = 1, BasePageNoWifi = 2, BasePageCamera = 3 };

    // Without workers the pages run alone, for tests and tools that must not
    // open the camera or record.
    enum class Workers { Start, DoNotStart };

    explicit MainDialog(QWidget *parent = nullptr, Workers workers = Workers::Start);
    ~MainDialog() override;

public slots:
    // Reports of the worker threads (maindialog_camera.cpp, maindialog_wifi.cpp).
    void camera_thread_slot(int value);
    void video_thread_slot(int value);
    void device_thread_slot(QString text);

    // Pairs and binds the chosen Bluetooth printer with a visible wait, keeps
    // its address in settings position 15 when bound, and tells the operator
    // (maindialog_print.cpp). For the printer settings page.
    void bindBtPrinterRequest(const QString &mac, int channel);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    // A new language retranslates every page in place (see retranslatePages).
    void changeEvent(QEvent *event) override;

private slots:
    void on_timer();

    // Menu bar.
    void on_buttonSetup_clicked();
    void on_buttonHistory_clicked();
    void on_buttonCamera_clicked();
    void on_buttonReboot_clicked();

    // Patient details and result.
    void on_buttonMale_clicked();
    void on_buttonFemale_clicked();
    void on_buttonResultNext_clicked();
    // Receipts (maindialog_print.cpp): the current test, or the latest test
    // of each child ticked on the history page.
    void on_buttonResultPrint_clicked();
    void on_buttonHistoryPrint_clicked();
    void on_buttonHistoryPhoto_clicked();
    void on_buttonEmailCsv_clicked();
    void on_buttonEmailPdf_clicked();
    void on_buttonEmailFhir_clicked();
    void on_tableViewUserDetail_clicked(const QModelIndex &index);

    // Camera page (maindialog_camera.cpp).
    void on_buttonCameraReturn_clicked();
    void on_buttonPhoto_clicked();
    void on_buttonFlash_clicked();
    void on_buttonFocusAuto_clicked();
    void onSendVideoReportTimeout();

    // No-Wi-Fi page.
    void on_buttonNoWifiSettings_clicked();

    // Settings.
    void on_buttonWifiSetting_clicked();
    void on_buttonTimeZoneSetting_clicked();
    void on_buttonSleepTimeSetting_clicked();
    void on_buttonCountrySetting_clicked();
    void on_buttonReferralSetting_clicked();
    void on_buttonParamSetting_clicked();
    void on_buttonMachineIDSetting_clicked();
    void on_buttonUpdate_clicked();
    void on_buttonFactoryReset_clicked();
    void on_buttonMatta_clicked();
    void on_buttonArthur2_clicked();
    void on_buttonArnold_clicked();
    // Marks the criterion in force (maindialog_referral.cpp).
    void pageReferralInit();

    // Wi-Fi page (maindialog_wifi.cpp).
    void on_tableViewWireless_clicked(const QModelIndex &index);
    // Phone setup: opens or closes the provisioning servers.
    void on_buttonProvisioning_clicked();
    void provisioningStopped(int reason);
    void provisioningNetworkChanged(int verb, const QString &ssid, bool succeeded);

    // Time zone and power timers (maindialog_time.cpp).
    void on_buttonTimeZone_clicked();
    void on_buttonClockScreen_clicked();
    void on_buttonClockShutdown_clicked();
    void timerInternetTime();

    // History and test-record pages (maindialog_history.cpp).
    void on_buttonSearch_clicked();
    void on_buttonSelectAll_clicked();
    void on_buttonHistoryDelete_clicked();
    void on_buttonHistoryExport_clicked();
    void on_tableViewSearchResult_clicked(const QModelIndex &index);

    // E-mail reporting page (maindialog_email.cpp).
    void on_buttonEmailSetting_clicked();
    void on_buttonEmailReturn_clicked();
    void on_buttonEmailReporting_clicked();
    void on_buttonEmailTest_clicked();

    // Language page (maindialog_language.cpp).
    void on_buttonLanguageSetting_clicked();
    void on_buttonLanguageReturn_clicked();
    void on_buttonEnglish_clicked();
    void on_buttonChinese_clicked();
    void on_buttonSpanish_clicked();

    // Region page (maindialog_country.cpp).
    void on_buttonRegionUs_clicked();
    void on_buttonRegionIndia_clicked();
    void on_buttonRegionChina_clicked();
    void on_buttonRegionPhilippines_clicked();

    // Printer page (maindialog_printer.cpp).
    void on_buttonPrinterSetting_clicked();
    void on_buttonPrinterReturn_clicked();
    void on_buttonPrinterBt_clicked();
    void on_buttonPrinterNetwork_clicked();
    void on_buttonPrinterScan_clicked();
    void on_buttonPrinterTest_clicked();

    // Back buttons.
    void on_buttonSetupReturn_clicked();
    void on_buttonHistoryReturn_clicked();
    void on_buttonUserDetailReturn_clicked();
    void on_buttonParamReturn_clicked();
    void on_buttonReferralReturn_clicked();
    void on_buttonTimeZoneReturn_clicked();
    void on_buttonSleepTimeReturn_clicked();
    void on_buttonMachineIDReturn_clicked();
    void on_buttonCountryReturn_clicked();
    void on_buttonWifiReturn_clicked();

private:
    void setupPages();
    // Texts of the forms again in the language now installed, then every
    // text the pages set themselves.
    void retranslatePages();
    // A settings change is written to the file at once.
    static void storeSetting(int position, const QString &text);

    // Settings pages, each filled from the settings in force when opened.
    // paramButtonsInit runs once from the constructor.
    void paramButtonsInit();
    void pageLanguageInit();
    void chooseLanguage(const QString &language);
    void pageCountryInit();
    void chooseRegion(int index);
    // The configured region as the region page names it.
    QString regionLabel() const;
    void pagePrinterInit();
    void editCloudPrinterIdPressed();
    void pageParamInit();
    void editParam(int row);
    void pageMachineIDInit();
    void showMenuPages();
    void showWithMenuPage(QWidget *page);
    void showNoMenuPage(QWidget *page);

    // Periodic work, in the order on_timer runs it.
    void timerPageStart();
    void timerShutdown();
    void timerPageCamera();
    void timerPageMain();
    void timerPageWifi();
    // Marks the update button while a new version is published; run by timerPageMain.
    void timerVersionCheck();

    void labelTimeShow();
    void labelBatteryShow();
    void labelWirelessShow();

    // Worker threads (maindialog_camera.cpp).
    void stopWorkers();
    void cameraThreadInit();
    void videoThreadInit();
    void deviceThreadInit();

    // Wi-Fi page (maindialog_wifi.cpp).
    void tableViewWIFIInit();
    void tableViewWIFIShow();
    // The PIN and the time left while provisioning is open.
    void labelProvisioningShow();

    // Time zone and power timers (maindialog_time.cpp); timeSettingsInit
    // runs once from the constructor.
    void timeSettingsInit();
    void pageTimeZoneInit();
    void labelTimeoutSettingShow();

    // History page (maindialog_history.cpp) and e-mail reporting page
    // (maindialog_email.cpp). pageSearchInit opens the history page with an
    // empty search and every child listed; tableViewSearchResultInit empties
    // the list before each search.
    void pageSearchInit();
    void pageEmailInit();
    void tableViewSearchResultInit();
    void pageUserDetailInit();
    void showUserDetail(int row);
    // Switches one of the history export's attachments on or off (maindialog_email.cpp).
    void toggleReportAttachment(int which);
    // Shows the photo of the detail table's row (maindialog_history.cpp).
    void showUserDetailPhoto(int row);
    void editSearchPressed();
    void editEmailAddressPressed();
    void showEmailSettings();
    // Name, sex and birthday of each ticked row, joined by ",".
    QStringList selectedHistoryKeys() const;
    // A press on the field runs `pressed` instead of reaching the field: the
    // device has no keyboard, so a field is typed into through a keypad dialog.
    void watchPresses(QWidget *field, void (MainDialog::*pressed)());
    static QStandardItem *newAlignCenterQStandardItem(const QString &text);

    QStandardItemModel *m_pSearchResultModel = nullptr;
    QStandardItemModel *m_pUserDetailModel = nullptr;
    // The child the user detail page shows, as its history key.
    QString m_strUserDetailKey;
    // "1" for a ticked row, else "0": one per row of the list, in its order.
    QStringList m_strFlags;
    bool m_bSelectAll = false;

    void pageMainInfoInputInit();
    void pageCameraInit();
    // False when the start-up recording did not end in time (the operator was told).
    bool waitForStartupRecording();
    void autoStartCamera();
    void beginTakePhoto();
    void setGoodAimMarks(bool good);
    void pageResultShow();
    // Prints behind the progress dialog and shows the status; true when
    // printed. `mode` is UploadDlg's: 5 the result, 4 the test page.
    bool printWithStatus(int mode = 5);
    void editNamePressed();
    void editDatePressed();
    void showDateParts();
    // The prompts of the details page's empty fields, in the language in force.
    void retranslateDetailPrompts();

    // One message box with the given texts; returns the button pressed.
    static int showMessage(const QString &title, const QString &message, const QString &left, const QString &middle,
                           const QString &right);

    std::unique_ptr<Ui::MainDialog> ui;
    std::unique_ptr<Ui::PageBoot> uiBoot;
    std::unique_ptr<Ui::PageNoWifi> uiNoWifi;
    std::unique_ptr<Ui::PageCamera> uiCamera;
    std::unique_ptr<Ui::PageWithMenu> uiMenu;
    std::unique_ptr<Ui::PageInfoInput> uiInfo;
    std::unique_ptr<Ui::PageResult> uiResult;
    std::unique_ptr<Ui::PageNoMenu> uiNoMenu;
    std::unique_ptr<Ui::PageSetup> uiSetup;
    std::unique_ptr<Ui::PageHistory> uiHistory;
    std::unique_ptr<Ui::PageParam> uiParam;
    std::unique_ptr<Ui::PageReferral> uiReferral;
    std::unique_ptr<Ui::PageUserDetail> uiUserDetail;
    std::unique_ptr<Ui::PageTimeZone> uiTimeZone;
    std::unique_ptr<Ui::PageSleepTime> uiSleepTime;
    std::unique_ptr<Ui::PageMachineID> uiMachineID;
    std::unique_ptr<Ui::PageCountry> uiCountry;
    std::unique_ptr<Ui::PageWifi> uiWifi;
    std::unique_ptr<Ui::PageEmail> uiEmail;
    std::unique_ptr<Ui::PageLanguage> uiLanguage;
    std::unique_ptr<Ui::PagePrinter> uiPrinter;

    QTimer m_timer;

    // Seconds since the epoch of the last touch; 0 until the first idle check.
    qint64 m_nLastActivity = 0;

    // Tick counters of the page timers; the start page's is never reset.
    int m_nTimesStart = 0;
    int m_nTimesMain = 0;
    int m_nTimesWifi = 0;

    bool m_bLowBatteryArmed = true;
    bool m_bUpdateMarked = false;

    // Consecutive timer ticks with a good aim (maindialog_camera.cpp).
    int m_nStableAim = 0;

    // Worker threads (maindialog_camera.cpp); stopped and joined on destruction.
    // How long a stop waits for each worker to finish its step.
    static constexpr int kWorkerStopMs = 5000;
    std::unique_ptr<CameraThread> m_pCameraThread;
    std::unique_ptr<VideoThread> m_pVideoThread;
    std::unique_ptr<DeviceThread> m_pDeviceThread;
    std::unique_ptr<HWThread> m_pHWThread;

    // Wi-Fi page (maindialog_wifi.cpp).
    QStandardItemModel *m_pWifiModel = nullptr;

    // Time zone and power timers (maindialog_time.cpp). The pool (a child,
    // one thread) runs the exchange; deleting it waits for that to end.
    QTimer m_internetTimeTimer;
    QThreadPool *m_pInternetTimePool = nullptr;
};
