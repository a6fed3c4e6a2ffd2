// SPDX-License-Identifier: GPL-2.0-or-later
// The one service object: typed settings, session values and every device and network operation.
#pragma once

#include "deviceset.h"
#include "historyrecord.h"
#include "pupilphoto.h"
#include "sensorcalibration.h"

#include <QDate>
#include <QDateTime>
#include <QObject>
#include <QString>
#include <QStringList>

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

class BtPrinterManager;
class CamCfg;
class DevicePower;
class V4l2Device;
class VideoIo;
class cedarxutil;
struct OSAL_QUEUE;
struct avi_t;
class CmdUtil;
class ProvisioningServer;
class QApplication;
class common;
namespace firmwareupdate {
struct Description;
}

// A thin facade: each area keeps its logic in its own class or functions,
// GData holds the shared values and forwards to them.
class GData : public QObject
{
    Q_OBJECT

public:
    // The devices come from the program's start-up, which alone knows whether
    // they are the kernel's or the simulator's.
    GData(CmdUtil *cmdUtil, DeviceSet devices, QObject *parent = nullptr);
    ~GData() override;

    void Init(QApplication *app);
    void InitData();
    void InitCommonAndConfig();
    void InitConfigParameter();

    // Factory reset: the file goes, the values in memory stay until restart.
    void cfgFileDelete();
    // Withdraws an update prepared for the next boot.
    void versionDelete();
    // Tells the start-up script that this program came up: its main window
    // has been shown, so an update just installed need not be rolled back.
    void markBootGood();

    bool getSensorCalibrationData(sensor_calibrate_data_t &data);
    bool setSensorCalibrationData(sensor_calibrate_data_t data);
    bool backupSensorCalibrationData();

    QString sensorCalibrationFilePath() const;

    // Device power (battery, charger, screen, IR light).
    int getBatteryPercent();
    bool getUSBPresentState();
    void screenOn();
    void screenOff();
    bool isScreenOn();
    void FlashOn();
    void FlashOff();
    int getDOF();
    bool sysfileWrite(const QString &path, const QByteArray &text);

    // Looks for a new version now and then (see gdata_update.cpp); the
    // update button shows what it found.
    void timerVersionCheck();

    // Camera, encoder and recording; see gdata_media.cpp.
    int V4l2DeviceOpen();
    void V4l2DeviceClose();
    int V4l2DevicePullFrame();
    int V4l2DevicePushFrame();
    // Gives an open camera the exposure and gain in force; the parameter page
    // changes them while the camera stays open from start-up on.
    void applyCameraControls();
    int AVIFileOpen();
    void AVIFileWrite();
    int AVIFileClose();
    int RAW2H264();
    void H264Enqueue();
    int H264Dequeue();
    void H264Emptyqueue();
    int RAW2IMG();
    int RAW2YUV();
    int convert_raw_to_img_buffer_scale(const uint8_t *source, uint8_t *destination, int width, int height,
                                        int previewWidth, int previewHeight);
    int convert_raw_to_yuv_buffer_scale(const uint8_t *source, uint8_t *destination, unsigned int sourceWidth,
                                        unsigned int sourceHeight, unsigned int outputWidth, unsigned int outputHeight);
    int getCameraRetryCount() const;
    void setCameraRetryCount(int count);
    // The camera's kernel calls, as handed over at start-up.
    VideoIo &cameraIo();

    // Blocking HTTP GET into a byte buffer; see gdata_net.cpp.
    bool httpGetRequest(const QString &url, int timeoutSeconds, QByteArray &output);

    // Wi-Fi management; see gdata_wifi.cpp.
    QString getWIFIInfo();
    void getRSSI();
    bool addWIFI(const QString &ssid, const QString &psk);
    bool switchWIFI(const QString &ssid);
    bool deleteWIFI(const QString &ssid);
    QString SSIDDecode(const QString &text) const;
    QString Unicode2Txt(const QString &text) const;
    void analyseWIFIResult(const QString &text);
    void analyseWIFIAPList(const QString &text);
    void analyseWIFIStatus(const QString &text);
    // The versions the service menu of the password box offers; count read.
    int versionListGet();
    // The entries read by versionListGet, each a line of the list.
    QStringList m_strVersionList;

    // Wi-Fi provisioning (gdata_provisioning.cpp): the servers open on the
    // platform's provisioning address for five minutes with a new PIN.
    bool startProvisioning();
    void stopProvisioning();
    ProvisioningServer *provisioning();

    // The ranging sensor; see gdata_sensor.cpp.
    int initRangingSensor(int bus, unsigned char address);
    int getDistance();

    // Network time and the power timers; see gdata_time.cpp.
    void updateTimeFromeWeb();
    void timerInternetTime();

    // Wall-clock timing (idle timers, the clock label) waits for this.
    bool isNetworkReady() const;

    // A job the device must not power off or blank its screen under: an
    // upload, a print, a mail, an update. Held for as long as it runs.
    class BusyJob
    {
    public:
        explicit BusyJob(GData &data);
        ~BusyJob();
        BusyJob(const BusyJob &) = delete;
        BusyJob &operator=(const BusyJob &) = delete;

    private:
        GData &m_data;
    };
    // True while a job runs or the camera records.
    bool isBusy() const;

    // The device clock plus the configured zone offset.
    QDateTime getLocalTime() const;

    // The analysis upload and its reply; see gdata_analysis.cpp.
    bool uploadAVIFile();
    void betterData();
    QString toOpticFloat(const QString &text) const;
    // The configured region's name ("us", "india", "china", "philippines");
    // the same table picks the analysis server.
    QString getRegionString() const;
    // The server analyses the video before it answers; tests shorten the wait.
    int m_nUploadTimeoutSeconds = 92;

    // Readers of a named item of a parsed server reply. Each returns false and
    // leaves the value alone when the item is missing (printing the reply, for
    // the log) or of another kind. getJsonString gives the item's JSON text,
    // getJsonStringValue the text of a string item, getJsonIntValue a number.
    static bool getJsonString(const struct cJSON *object, const char *name, const QString &reply, QString &value);
    static bool getJsonStringValue(const struct cJSON *object, const char *name, const QString &reply, QString &value);
    static bool getJsonIntValue(const struct cJSON *object, const char *name, const QString &reply, int &value);

    // Referral criteria; see gdata_referral.cpp.
    int getMonthofAge() const;
    int calculateMatta() const;
    int calculateArnold() const;
    int calculateArthur2() const;
    int calculateReferral() const;

    // The history file; see gdata_history.cpp.
    void saveTestResult();
    QString readTestResult();
    // Refused (false) when the last read found a history it could not read:
    // the text given would then stand for records nobody has seen.
    bool saveDeleteResult(const QString &text);
    // Set by readTestResult when the history exists but cannot be read.
    bool m_bHistoryUnreadable = false;

    // The firmware update; see gdata_update.cpp. versionCheck gives 1 for a
    // new version (its description stored), 0 for none, below 0 when the
    // server could not be asked.
    int versionCheck();
    int versionCheck(const QString &file);
    bool versionDownlod();
    bool versionSave(QByteArray &data);
    bool versionMD5Check();
    bool versionCopy();
    // Where the update server keeps a file of the configured region.
    QString versionFileUrl(const QString &file) const;
    // The description of the version to download.
    QString m_strNewVerFile;
    qint32 m_nNewVerSize = 0;
    QString m_strNewVerMD5;
    // Set by timerVersionCheck when the server publishes a version other
    // than the running one; the main window marks the update button.
    std::atomic<int> m_nNewVersionPublished{0};
    // The pause between two background checks, and its wait for an answer.
    int m_nVersionCheckPeriodSeconds = 4 * 3600;
    int m_nVersionCheckTimeoutSeconds = 15;

    // Printing; see gdata_print.cpp. Each returns a status text: "OK", a
    // message for the operator, or empty when no known printer kind is set.
    // The printer kind (settings position 14) chooses "bt" or "network".
    QString printTestpage();
    QString printResult();
    QString bluetoothPrintString(const QString &text);
    QString bluetoothPrintResult();
    QString bluetoothPrintTestpage();
    // "OK" when the cloud service took the ticket, else "Error".
    QString httpPrintString(const QString &text);
    QString httpPrintResult();
    QString httpPrintTestpage();
    // Scans and binds the Bluetooth printer; made on first use, owned here.
    BtPrinterManager *btPrinterManager();
    // The current test as a record; the receipts and the history use it.
    historyrecord::Test currentTest() const;
    // A record the next printResult prints instead of the current test (the
    // history page's choice); printResult clears it.
    std::optional<historyrecord::Test> m_printRecord;
    // The pauses between attempts to open the printer; empty means
    // QThread::msleep. Tests put in one that only counts.
    std::function<void(int ms)> m_fnPrinterSleep;
    int m_nPrintTimeoutSeconds = 30;

    // The report mailer; see gdata_mail.cpp. Each returns an empty text when
    // the message was handed to the mail server, else what went wrong.
    QString smtpSendReport();
    QString smtpSendVideoReport();
    // A short message without attachment, for checking the settings.
    QString smtpSendTestMail();

    QApplication *m_pApp = nullptr;
    common *m_pCommon = nullptr;
    CamCfg *m_pCamCfg = nullptr;
    CmdUtil *m_pCmdUtil = nullptr;

    // Typed copies of the settings (CamCfg positions in brackets).
    int m_nExposure = 0; // [1] V4L2 exposure on camera open
    int m_nGain = 0;     // [2] V4L2 gain on camera open
    int m_nExposureSaved = 0;
    int m_nGainSaved = 0;
    int m_nSetting3 = 0;          // [3]
    int m_nLedLoop = 0;           // [4] frames per LED cycle; a recording is at most 18 of them
    int m_nSetting5 = 0;          // [5]
    QString m_strTimeZone;        // [8]
    int m_nScreenOffMinutes = -1; // [9] -1 = never
    int m_nPowerOffMinutes = -1;  // [10] -1 = never
    int m_nReferralCriterion = 0; // [11]
    int m_nRegion = 0;            // [12]
    int m_bAutoCapture = 0;       // [17]
    int m_nPitchOffset = 0;       // calibration file, else [18]
    int m_nDistanceOffset = 0;    // calibration file, else [19]

    // The hardware behind the operations above.
    DeviceSet m_devices;

    // Words shared with the worker threads.
    std::atomic<char> m_bNetworkReady{0}; // set once the network time is known
    std::atomic<int> m_nWifiChanged{0};   // asks the polling thread for fresh Wi-Fi information
    std::atomic<int> m_nWifiRssi{0};      // dBm of the current link, 0 = unknown
    std::atomic<int> m_nBusyJobs{0};

    // Camera, encoder and recording, shared with the worker threads.
    static constexpr int kCameraWidth = 1920;
    static constexpr int kCameraHeight = 1080;
    static constexpr int kEncoderWidth = 1920;
    static constexpr int kEncoderHeight = 1080;
    static constexpr int kPreviewWidth = 880;
    static constexpr int kPreviewHeight = 330;

    // One encoded frame on its way from the capture thread to the writer.
    struct EncodedFrameRecord
    {
        int keyFrame;
        unsigned int size;
        unsigned char *data;
    };

    // Six seconds of recorded frames at 15 a second, twice over.
    static constexpr std::size_t kMaxQueuedFrames = 2 * 6 * 15;

    std::atomic<int> m_nCameraMode{0}; // 0 idle, 1 preview, 2 recording, 3 recording finished
    // Set while the recording thread makes its first recording after start-up
    // (it warms up the camera, the encoder and the flash); a session waits for it.
    std::atomic<int> m_bStartupRecording{0};
    std::atomic<int> m_bPreviewEnabled{0};
    std::atomic<char> m_bTorchOn{0};
    std::atomic<char> m_bCameraOpen{0};
    // Guards m_pV4l2Device, which the GUI and recording threads replace
    // while the capture thread pulls frames from it.
    std::mutex m_cameraMutex;
    std::unique_ptr<V4l2Device> m_pV4l2Device;
    std::unique_ptr<cedarxutil> m_pCedarx;
    void *m_pFrame = nullptr;
    unsigned int m_nFramePhysical = 0;
    unsigned int m_nFrameWord = 0;
    unsigned int m_nFrameLength = 0;
    const unsigned char *m_pEncoded = nullptr;
    unsigned int m_nEncodedSize = 0;
    int m_nKeyFrame = 0;
    std::unique_ptr<OSAL_QUEUE> m_pFrameQueue;
    EncodedFrameRecord *m_pDequeued = nullptr;
    avi_t *m_pAvi = nullptr;
    std::atomic<qint64> m_nRecordStartTime{0};
    std::atomic<int> m_nRecordFrameCount{0};
    // Set when a frame, the index or the header of the recording could not
    // be written (a full disk): such a file is never uploaded.
    std::atomic<int> m_bRecordingBroken{0};
    // Camera width by twice its height: the preview, then the whole luminance plane.
    std::vector<uint8_t> m_displayBuffer;
    std::atomic<unsigned int> m_nPreviewBrightness{0};
    std::atomic<unsigned int> m_nPreviewContrast{0};

    // Aiming values measured by the hardware polling thread.
    std::atomic<int> m_nDistance{0}; // centimetres, 95 to 100 is the working range
    std::atomic<int> m_nPitch{0};    // whole degrees

    // Ranging sensor (gdata_sensor.cpp), used by the hardware polling thread only.
    int m_bSensorReady = 0;
    uint16_t m_nSensorHandle = 0;
    // Consecutive readings without data, for the whole process; wraps from 255 to 0.
    static uint8_t m_nSensorNotReadyCount;

    // Wi-Fi state (gdata_wifi.cpp): replaced wholesale on each refresh.
    // The polling thread replaces the four lists and wifiCurrentSsid while
    // the GUI reads them: both sides hold wifiMutex for that.
    mutable std::mutex wifiMutex;
    QStringList wifiSsidList;
    QStringList wifiSignalList;
    QStringList wifiFlagsList;
    QStringList wifiSavedList;
    QString wifiCurrentSsid;
    QString wifiLastBssid;
    QString wifiLastSsid;
    bool wifiJoinRejected = false;
    // The one-second pause between association checks of addWIFI; empty
    // means QThread::msleep. Tests put in a shorter one.
    std::function<void(int ms)> m_fnWifiSleep;
    // Created at the first opening; its worker threads live until GData goes.
    std::unique_ptr<ProvisioningServer> m_pProvisioning;

    // Battery icon level, 0 (empty) to 5 (full).
    int m_nBatteryLevel = 5;

    // The current patient.
    QString m_strName;
    char m_nSex = 1; // 1 = male, 0 = female
    QDate m_dateBirthday;

    // Message of the last failed long operation.
    QString m_strLastError;

    // The current test's result (gdata_analysis.cpp fills it from the reply;
    // the left eye, OS, comes before the right eye, OD, as in the reply).
    QString m_strPhotoResult;
    QString m_strOSSphere;
    QString m_strODSphere;
    QString m_strOSCylinder;
    QString m_strODCylinder;
    QString m_strPupilDistance;
    QString m_strOSAxis;
    QString m_strODAxis;
    bool m_bNoResponse = false;
    // "Pass", "Refer" or empty, set by the result page.
    QString m_strResult;
    // "yyyy-MM-dd hh:mm" of the current test, set when it is saved.
    QString m_strTestTime;

    // The history export waiting for the mailer: the file that holds it.
    QString m_strReportFile;

    // Clinic records; see gdata_records.cpp.
    // The capture thread offers it the recording's flash frames; saving a
    // test keeps the best as the test's photo.
    PupilPhotoPicker m_pupilPhoto;
    // The folder of the tests' pupil photos, beside the history.
    QString photoDir() const;
    // The photo of a child's test, `test` being the record's values as
    // historysearch::testValues gives them (whether the photo exists or not).
    QString photoPath(const QString &key, const QStringList &test) const;
    // Keeps the best frame of the last recording as the photo of the test
    // this history line records; nothing when the recording gave no frame.
    void savePupilPhoto(const QString &line);
    // Removes the photos of the lines that deleting these keys removes from the history.
    void deletePhotos(const QString &history, const QStringList &keys);
    // Writes the history export of these children: the HTML table, and the
    // CSV, parent letters and health-record bundle the settings ask for,
    // into the folder beside the recording; copies them to a USB drive when
    // one is in. False when the HTML cannot be written (nothing to send).
    bool prepareHistoryExport(const QStringList &keys);
    // The files of the export after the HTML, for the report mail.
    QStringList m_strReportExtras;
    // Where prepareHistoryExport copied the export; empty when no drive
    // was in, or the copy failed (m_strUsbExportError says why).
    QString m_strUsbExportDir;
    QString m_strUsbExportError;

private:
    // Fetches and reads a description; the result as versionCheck gives it.
    int fetchVersionDescription(const QString &file, bool compareVersion, int timeoutSeconds,
                                firmwareupdate::Description &description);
    // Fetches a description and makes its file, size and MD5 the next download.
    int adoptVersionDescription(const QString &file, bool compareVersion);

    BtPrinterManager *m_pBtPrinterManager = nullptr;
    // Monotonic milliseconds of the last background check; 0 before the first.
    qint64 m_nLastVersionCheckMs = 0;
};

extern GData *g_pData;
