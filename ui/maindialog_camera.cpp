// SPDX-License-Identifier: GPL-2.0-or-later
// MainDialog: a screening session, from the camera button through aiming and capture to the result page.
#include "maindialog.h"

#include "camcfg.h"
#include "camerathread.h"
#include "devicethread.h"
#include "gdata.h"
#include "hwthread.h"
#include "msgdialog.h"
#include "systemclock.h"
#include "threadjoin.h"
#include "ui_maindialog.h"
#include "ui_pagecamera.h"
#include "ui_pageinfoinput.h"
#include "ui_pageresult.h"
#include "ui_pagewithmenu.h"
#include "uploaddlg.h"
#include "videothread.h"

#include <QApplication>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QIcon>
#include <QImage>
#include <QPixmap>
#include <QTimer>

namespace {

constexpr int kGoodAimTicks = 11;
// The start-up recording ends by itself after at most 6.5 s.
constexpr int kStartupRecordingWaitMs = 10000;

bool distanceGood(int d)
{
    return d >= 95 && d <= 100;
}

bool pitchGood(int p)
{
    return p >= -7 && p <= 7;
}

} // namespace

// --- worker threads --------------------------------------------------------

void MainDialog::cameraThreadInit()
{
    m_pCameraThread = std::make_unique<CameraThread>();
    connect(m_pCameraThread.get(), &CameraThread::camera_thread_signal, this, &MainDialog::camera_thread_slot,
            Qt::QueuedConnection);
    threadjoin::start(m_pCameraThread.get());
}

void MainDialog::videoThreadInit()
{
    // Raised before the thread runs, so that no session can slip in before
    // the thread has said it is warming up.
    g_pData->m_bStartupRecording = 1;
    m_pVideoThread = std::make_unique<VideoThread>();
    connect(m_pVideoThread.get(), &VideoThread::video_thread_signal, this, &MainDialog::video_thread_slot,
            Qt::QueuedConnection);
    threadjoin::start(m_pVideoThread.get());
}

void MainDialog::deviceThreadInit()
{
    m_pDeviceThread = std::make_unique<DeviceThread>();
    connect(m_pDeviceThread.get(), &DeviceThread::device_thread_signal, this, &MainDialog::device_thread_slot,
            Qt::QueuedConnection);
    threadjoin::start(m_pDeviceThread.get());
    m_pHWThread = std::make_unique<HWThread>();
    threadjoin::start(m_pHWThread.get());
}

void MainDialog::stopWorkers()
{
    // On the device the threads run until the power goes; a window closed in
    // the simulator or a test must let them finish their step first.
    const std::initializer_list<QThread *> threads{m_pCameraThread.get(), m_pVideoThread.get(), m_pDeviceThread.get(),
                                                   m_pHWThread.get()};
    for (QThread *thread : threads) {
        if (thread)
            thread->requestInterruption();
    }
    // A worker stuck in a call that never returns (a driver, a helper
    // program) must not hold the stop for ever; it is left running and
    // ends with the process.
    for (QThread *thread : threads) {
        if (thread && !threadjoin::wait(thread, kWorkerStopMs))
            qWarning("%s did not stop within %d ms; left to end with the process",
                     thread->metaObject()->className(), kWorkerStopMs);
    }
    if (m_pCameraThread && m_pCameraThread->isRunning())
        (void)m_pCameraThread.release();
    if (m_pVideoThread && m_pVideoThread->isRunning())
        (void)m_pVideoThread.release();
    if (m_pDeviceThread && m_pDeviceThread->isRunning())
        (void)m_pDeviceThread.release();
    if (m_pHWThread && m_pHWThread->isRunning())
        (void)m_pHWThread.release();
}

// --- starting a session ----------------------------------------------------

void MainDialog::on_buttonCamera_clicked()
{
    // Judging a child needs the clinic's referral criterion, which lives in
    // the settings file; factory settings would judge by the wrong one.
    if (g_pData->m_pCamCfg->unreadable()) {
        showMessage(tr("Error"),
                    tr("The settings file %1 cannot be read, so the referral criterion is unknown. Screening is off "
                       "until the device is serviced.")
                        .arg(g_pData->m_pCamCfg->configFilePath()),
                    QString(), tr("OK"), QString());
        return;
    }
    if (uiMenu->stackedWidgetWithMenu->currentIndex() == 0) {
        g_pData->m_strName = uiInfo->editName->text().trimmed();
        if (g_pData->m_strName.isEmpty()) {
            showMessage(tr("Error"), tr("User Name cannot be empry!"), QString(), tr("OK"), QString());
            return;
        }
        // The history keeps a record's fields apart with these two: a name
        // holding one would break its record and could not be deleted.
        if (g_pData->m_strName.contains(QLatin1Char(',')) || g_pData->m_strName.contains(QLatin1Char('|'))) {
            showMessage(tr("Error"), tr("A name cannot contain \",\" or \"|\"."), QString(), tr("OK"), QString());
            return;
        }
        if (!g_pData->isNetworkReady()) {
            showMessage(tr("Error"), tr("Network is not ready!"), QString(), tr("OK"), QString());
            return;
        }
        g_pData->m_dateBirthday = QDate::fromString(uiInfo->editDate->text(), QStringLiteral("yyyy-MM-dd"));
        if (!g_pData->m_dateBirthday.isValid()) {
            showMessage(tr("Error"), tr("Date is not valid!"), QString(), tr("OK"), QString());
            return;
        }
    }
    if (!waitForStartupRecording())
        return;
    if (!g_pData->V4l2DeviceOpen()) {
        g_pData->V4l2DeviceClose();
        showMessage(tr("Error"), tr("Camera Open Failed!"), QString(), tr("OK"), QString());
        return;
    }
    ui->stackedWidgetBase->setCurrentIndex(BasePageCamera);
    pageCameraInit();
}

bool MainDialog::waitForStartupRecording()
{
    if (!g_pData->m_bStartupRecording)
        return true;
    // The first recording after power-up takes the camera for about six
    // seconds; a session started under it would lose its aiming state to it.
    MsgDialog waiting;
    waiting.Init(tr("Message"), tr("The camera is getting ready, please wait..."), QString(), tr("Waiting..."),
                 QString());
    waiting.show();
    QElapsedTimer waited;
    waited.start();
    while (g_pData->m_bStartupRecording && waited.elapsed() < kStartupRecordingWaitMs)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 50);
    waiting.close();
    if (!g_pData->m_bStartupRecording)
        return true;
    showMessage(tr("Error"), tr("The camera is not ready yet, please try again."), QString(), tr("OK"), QString());
    return false;
}

void MainDialog::pageCameraInit()
{
    uiCamera->labelNameValue->setText(g_pData->m_strName);
    // Until the first preview, the settings stand in for the live figures.
    uiCamera->labelBrightnessValue->setText(QString::number(g_pData->m_nExposure));
    uiCamera->labelSharpnessValue->setText(QString::number(g_pData->m_nSetting3));

    for (QLabel *mark : {uiCamera->labelLineC1, uiCamera->labelLineC2, uiCamera->labelLineDOF})
        mark->show();
    uiCamera->labelNameCameraClock->hide();
    setGoodAimMarks(false);

    uiCamera->buttonFocusAuto->setText(g_pData->m_bAutoCapture ? tr("AUTO ON") : tr("AUTO OFF"));
    m_nStableAim = 0;
    // While the capture thread idles: the parameter page may have changed them.
    g_pData->applyCameraControls();
    g_pData->m_nCameraMode = 1;
    g_pData->m_bPreviewEnabled = 1;
}

void MainDialog::setGoodAimMarks(bool good)
{
    const std::initializer_list<QLabel *> plain{uiCamera->labelLineC1,  uiCamera->labelLineC2,  uiCamera->labelLineLT1,
                                                uiCamera->labelLineLT2, uiCamera->labelLineRT1, uiCamera->labelLineRT2,
                                                uiCamera->labelLineLB1, uiCamera->labelLineLB2, uiCamera->labelLineRB1,
                                                uiCamera->labelLineRB2};
    const std::initializer_list<QLabel *> twins{
        uiCamera->labelLineC1_2,  uiCamera->labelLineC2_2,  uiCamera->labelLineLT1_2, uiCamera->labelLineLT2_2,
        uiCamera->labelLineRT1_2, uiCamera->labelLineRT2_2, uiCamera->labelLineLB1_2, uiCamera->labelLineLB2_2,
        uiCamera->labelLineRB1_2, uiCamera->labelLineRB2_2};
    for (QLabel *mark : plain)
        mark->setVisible(!good);
    for (QLabel *mark : twins)
        mark->setVisible(good);
}

// --- aiming ----------------------------------------------------------------

void MainDialog::timerPageCamera()
{
    if (ui->stackedWidgetBase->currentIndex() != BasePageCamera || g_pData->m_nCameraMode != 1)
        return;
    // A message box or a progress dialog runs its own event loop, and this
    // timer with it: nothing may start a recording under the operator's answer.
    if (QApplication::activeModalWidget()) {
        m_nStableAim = 0;
        return;
    }

    int d = g_pData->m_nDistance;
    const bool distanceOk = distanceGood(d);
    if (d < 1) {
        uiCamera->labelDistanceValueRed->setText(QStringLiteral("---"));
        uiCamera->labelDistanceValueRed->show();
        uiCamera->labelDistanceRed->show();
        uiCamera->labelDistanceValue->hide();
        uiCamera->labelDistance->hide();
    } else {
        d = std::min(d, 200);
        QLabel *value = distanceOk ? uiCamera->labelDistanceValue : uiCamera->labelDistanceValueRed;
        value->setText(QString::number(d));
        uiCamera->labelDistanceValue->setVisible(distanceOk);
        uiCamera->labelDistance->setVisible(distanceOk);
        uiCamera->labelDistanceValueRed->setVisible(!distanceOk);
        uiCamera->labelDistanceRed->setVisible(!distanceOk);
    }

    const int b = static_cast<int>(g_pData->m_nPreviewBrightness);
    const bool brightnessOk = b < 20 || g_pData->m_bTorchOn;
    (brightnessOk ? uiCamera->labelBrightnessValue : uiCamera->labelBrightnessValueRed)->setText(QString::number(b));
    uiCamera->labelBrightnessValue->setVisible(brightnessOk);
    uiCamera->labelBrightness->setVisible(brightnessOk);
    uiCamera->labelBrightnessValueRed->setVisible(!brightnessOk);
    uiCamera->labelBrightnessRed->setVisible(!brightnessOk);

    uiCamera->labelSharpnessValue->setText(QString::number(g_pData->m_nPreviewContrast));

    const int p = g_pData->m_nPitch;
    const bool pitchOk = pitchGood(p);
    (pitchOk ? uiCamera->labelPitchValue : uiCamera->labelPitchValueRed)
        ->setText(QString::number(p) + QStringLiteral("°"));
    uiCamera->labelPitchValue->setVisible(pitchOk);
    uiCamera->labelPitch->setVisible(pitchOk);
    uiCamera->labelPitchValueRed->setVisible(!pitchOk);
    uiCamera->labelPitchRed->setVisible(!pitchOk);

    // The level mark moves 2.5 pixels per degree of pitch.
    if (p >= -59 && p <= 59) {
        const int top = 188 - (5 * p) / 2;
        const int bottom = 192 - (5 * p) / 2;
        uiCamera->labelLineDOF->setGeometry(400, top, 474, bottom - top);
        uiCamera->labelLineDOF->show();
    } else {
        uiCamera->labelLineDOF->hide();
    }

    const bool aimGood = pitchOk && distanceOk && brightnessOk;
    setGoodAimMarks(aimGood);
    uiCamera->labelLineDOF->setVisible(!aimGood && p >= -59 && p <= 59);

    if (g_pData->m_bAutoCapture)
        autoStartCamera();
}

void MainDialog::autoStartCamera()
{
    const int d = g_pData->m_nDistance;
    const int p = g_pData->m_nPitch;
    const int b = static_cast<int>(g_pData->m_nPreviewBrightness);
    if (g_pData->m_nCameraMode == 1 && pitchGood(p) && distanceGood(d) && (b <= 19 || g_pData->m_bTorchOn)) {
        // Eleven good ticks in a row, 2.2 s of steady aim, take the picture;
        // once, whether it starts or not, so that a failure is not retried every tick.
        if (++m_nStableAim == kGoodAimTicks) {
            m_nStableAim = 0;
            beginTakePhoto();
        }
        return;
    }
    m_nStableAim = 0;
}

void MainDialog::on_buttonPhoto_clicked()
{
    // The operator's own judgement replaces the distance check here.
    const int p = g_pData->m_nPitch;
    if (!pitchGood(p)) {
        showMessage(tr("Please move the cross sign to the center"), QString(), QString(), tr("OK"), QString());
        return;
    }
    if (static_cast<int>(g_pData->m_nPreviewBrightness) > 19 && !g_pData->m_bTorchOn) {
        showMessage(tr("Please lower the ambient brightness to below 20"), QString(), QString(), tr("OK"), QString());
        return;
    }
    beginTakePhoto();
}

void MainDialog::beginTakePhoto()
{
    if (g_pData->m_bTorchOn) {
        g_pData->m_bTorchOn = 0;
        uiCamera->buttonFlash->setIcon(QIcon(QStringLiteral(":/png/flashon_off@2x.png")));
        g_pData->FlashOff();
    }
    if (!g_pData->AVIFileOpen()) {
        showMessage(tr("Error"), tr("Vedio File Open Failed!"), QString(), tr("OK"), QString());
        return;
    }
    m_nStableAim = 0;
    for (QWidget *button : std::initializer_list<QWidget *>{uiCamera->buttonFocusAuto, uiCamera->buttonFlash,
                                                            uiCamera->buttonPhoto, uiCamera->buttonCameraReturn})
        button->setEnabled(false);
    g_pData->H264Emptyqueue();
    // The photo of this test comes from this recording only.
    g_pData->m_pupilPhoto.reset();
    uiCamera->labelNameCameraClock->setText(QStringLiteral("3"));
    uiCamera->labelNameCameraClock->show();
    g_pData->m_nCameraMode = 2;
}

void MainDialog::on_buttonFlash_clicked()
{
    if (!g_pData->m_bTorchOn) {
        if (static_cast<int>(g_pData->m_nPreviewBrightness) > 19) {
            showMessage(tr("Please lower the ambient brightness to below 20"), QString(), QString(), tr("OK"),
                        QString());
            return;
        }
        g_pData->m_bTorchOn = 1;
        g_pData->FlashOn();
        uiCamera->buttonFlash->setIcon(QIcon(QStringLiteral(":/png/flashon@2x.png")));
    } else {
        g_pData->m_bTorchOn = 0;
        g_pData->FlashOff();
        uiCamera->buttonFlash->setIcon(QIcon(QStringLiteral(":/png/flashon_off@2x.png")));
    }
}

void MainDialog::on_buttonFocusAuto_clicked()
{
    g_pData->m_bAutoCapture = g_pData->m_bAutoCapture ? 0 : 1;
    uiCamera->buttonFocusAuto->setText(g_pData->m_bAutoCapture ? tr("AUTO ON") : tr("AUTO OFF"));
    CamCfg &cfg = *g_pData->m_pCamCfg;
    cfg.setValue(CamCfg::AutoCapture, g_pData->m_bAutoCapture ? QStringLiteral("1") : QStringLiteral("0"));
    cfg.dogenCurrentCFG();
    cfg.saveCFG2File();
}

void MainDialog::on_buttonCameraReturn_clicked()
{
    if (g_pData->m_bTorchOn) {
        g_pData->m_bTorchOn = 0;
        uiCamera->buttonFlash->setIcon(QIcon(QStringLiteral(":/png/flashon_off@2x.png")));
        g_pData->FlashOff();
    }
    // The camera stays open: the next child is aimed at without waiting for it.
    g_pData->m_nCameraMode = 0;
    ui->stackedWidgetBase->setCurrentIndex(BasePageMenu);
}

// --- reports of the threads -------------------------------------------------

void MainDialog::camera_thread_slot(int)
{
    g_pData->m_bPreviewEnabled = 0;
    const uchar *preview = g_pData->m_displayBuffer.data();
    QImage image(preview, GData::kPreviewWidth, GData::kPreviewHeight, GData::kPreviewWidth, QImage::Format_Indexed8);
    static const QVector<QRgb> greys = [] {
        QVector<QRgb> table(256);
        for (int i = 0; i < 256; ++i)
            table[i] = qRgb(i, i, i);
        return table;
    }();
    image.setColorTable(greys);
    uiCamera->labelPhoto->setPixmap(QPixmap::fromImage(image));
    g_pData->m_bPreviewEnabled = 1;

    if (g_pData->m_nCameraMode == 2) {
        const qint64 elapsed = systemclock::nowSecs() - g_pData->m_nRecordStartTime;
        if (elapsed <= 0)
            uiCamera->labelNameCameraClock->setText(QStringLiteral("3"));
        else if (elapsed == 1)
            uiCamera->labelNameCameraClock->setText(QStringLiteral("2"));
        else if (elapsed == 2)
            uiCamera->labelNameCameraClock->setText(QStringLiteral("1"));
    }
}

void MainDialog::video_thread_slot(int)
{
    for (QLabel *mark :
         {uiCamera->labelLineC1, uiCamera->labelLineC2, uiCamera->labelLineC1_2, uiCamera->labelLineC2_2})
        mark->show();
    uiCamera->labelNameCameraClock->hide();

    // A recording torn by a full disk would be analysed as it is, and a
    // server may well answer for what is left of it.
    const bool broken = g_pData->m_bRecordingBroken != 0;
    UploadDlg upload;
    if (!broken) {
        upload.mode = 0;
        upload.exec();
    }

    for (QWidget *button : std::initializer_list<QWidget *>{uiCamera->buttonFocusAuto, uiCamera->buttonFlash,
                                                            uiCamera->buttonPhoto, uiCamera->buttonCameraReturn})
        button->setEnabled(true);
    if (broken) {
        showMessage(tr("Error"), tr("The recording could not be written: the storage may be full. Please record again."),
                    QString(), tr("OK"), QString());
        g_pData->m_nCameraMode = 1;
    } else if (upload.bResult) {
        g_pData->m_nCameraMode = 0;
        pageResultShow();
        QTimer::singleShot(500, this, &MainDialog::onSendVideoReportTimeout);
    } else {
        showMessage(tr("Error"), g_pData->m_strLastError, QString(), tr("OK"), QString());
        g_pData->m_nCameraMode = 1;
    }
}

// --- the result ------------------------------------------------------------

void MainDialog::pageResultShow()
{
    ui->stackedWidgetBase->setCurrentIndex(BasePageMenu);
    ui->stackedWidgetMain->setCurrentIndex(0);
    uiMenu->stackedWidgetWithMenu->setCurrentWidget(uiMenu->pageResult);

    GData &test = *g_pData;
    uiResult->labelResultNameValue->setText(test.m_strName);
    uiResult->labelResultODSph->setText(test.m_strODSphere);
    uiResult->labelResultODCyl->setText(test.m_strODCylinder);
    uiResult->labelResultODAxis->setText(test.m_strODAxis);
    uiResult->labelResultOSSph->setText(test.m_strOSSphere);
    uiResult->labelResultOSCyl->setText(test.m_strOSCylinder);
    uiResult->labelResultOSAxis->setText(test.m_strOSAxis);
    uiResult->labelResultPD->setText(test.m_strPupilDistance);

    const int verdict = test.calculateReferral();
    uiResult->labelResultPass->setVisible(verdict > 0);
    uiResult->labelResultRefer->setVisible(verdict < 0);
    // The record keeps the English words; the page shows them translated.
    test.m_strResult = verdict > 0 ? QStringLiteral("Pass") : (verdict < 0 ? QStringLiteral("Refer") : QString());
    test.saveTestResult();
}

void MainDialog::onSendVideoReportTimeout()
{
    const CamCfg &cfg = *g_pData->m_pCamCfg;
    if (cfg.value(CamCfg::EmailReporting) == QLatin1String("0"))
        return;
    // The factory text in the address means no address was given; reporting
    // was asked for, so the operator hears why nothing went out.
    const QString address = cfg.value(CamCfg::EmailAddress);
    if (address.isEmpty() || address == CamCfg::defaultValue(CamCfg::EmailAddress)) {
        showMessage(tr("Message"), tr("No report was sent: set the e-mail address on the E-mail Reports page."),
                    QString(), tr("OK"), QString());
        return;
    }
    MsgDialog waiting;
    waiting.Init(tr("Message"), tr("Data is processing,please wait..."), QString(), tr("Waiting..."), QString());
    waiting.show();
    QCoreApplication::processEvents();
    const QString failure = g_pData->smtpSendVideoReport();
    waiting.close();
    QElapsedTimer drained;
    drained.start();
    while (drained.elapsed() < 200)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 50);
    if (failure.isEmpty())
        showMessage(tr("Message"), tr("The pupil image has been sent to your email."), QString(), tr("OK"), QString());
    else
        showMessage(tr("Message"), tr("Data processing failed: %1").arg(failure), QString(), tr("OK"), QString());
}
