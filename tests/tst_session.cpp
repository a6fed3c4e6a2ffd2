// SPDX-License-Identifier: GPL-2.0-or-later
// A screening session on the camera page: aiming guidance, automatic and manual capture, and its end.
#include "analysisserver.h"
#include "avilib.h"
#include "camcfg.h"
#include "platform.h"
#include "simulatedcamera.h"
#include "simulatedworld.h"
#include "uitestsupport.h"

#include <QApplication>
#include <QDir>
#include <QProcess>
#include <QTcpSocket>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QStackedWidget>
#include <QTest>

#include <algorithm>
#include <QTimer>

#include <memory>

class TestSession : public QObject, private WindowFixture
{
    Q_OBJECT

private:
    QLabel *label(const char *name) const { return widget<QLabel>(name); }
    bool shown(const char *name) const { return label(name)->isVisibleTo(m_window.get()); }

    void aim(int distance, int pitch, int brightness)
    {
        m_data->m_nDistance = distance;
        m_data->m_nPitch = pitch;
        m_data->m_nPreviewBrightness = static_cast<unsigned int>(brightness);
    }

    int basePage() const { return widget<QStackedWidget>("stackedWidgetBase")->currentIndex(); }

    // The details filled in and the camera button pressed, as the operator does it.
    void pressCamera()
    {
        widget<QStackedWidget>("stackedWidgetBase")->setCurrentIndex(MainDialog::BasePageMenu);
        widget<QLineEdit>("editName")->setText(QStringLiteral("Amy"));
        widget<QLineEdit>("editDate")->setText(QStringLiteral("2019-03-02"));
        click("buttonCamera");
    }
    void openCameraPage()
    {
        pressCamera();
        QCOMPARE(basePage(), int(MainDialog::BasePageCamera));
        QCOMPARE(m_data->m_nCameraMode.load(), 1);
    }

    // A small but well-formed recording where the device keeps it.
    void writeRecording()
    {
        avi_t *file = AVI_open_output_file(QFile::encodeName(Platform::instance().recordingFile).constData());
        QVERIFY(file);
        AVI_set_video(file, 1920, 1080, 15.0, "H264");
        const char frame[] = "\x00\x00\x00\x01\x65 a frame";
        QCOMPARE(AVI_write_frame(file, frame, sizeof frame, 1), 0);
        QCOMPARE(AVI_close(file), 0);
    }

    // The analysis server of the simulator, on this test's own address.
    std::unique_ptr<AnalysisServer> startServer()
    {
        auto server = std::make_unique<AnalysisServer>();
        Platform::instance().analysisHostUs = QStringLiteral("127.0.0.47");
        if (!server->start(QStringLiteral("127.0.0.47")))
            return nullptr;
        return server;
    }

    QString history() const
    {
        return QString::fromUtf8(TestDevice::readFile(m_device->appDir() + QStringLiteral("/CAMCFG/result.txt")));
    }

private slots:
    void init()
    {
        setUp();
        SimulatedCamera::instance().resetFaults();
        SimulatedCamera::instance().setPaced(false);
        m_data->m_bNetworkReady = 1;
        openWindow();
    }

    void cleanup() { tearDown(); }

    // --- the session cannot start ---

    void sessionCannotStart_data()
    {
        QTest::addColumn<bool>("networkTime");
        QTest::addColumn<QString>("message");
        QTest::newRow("no network time") << false << "Error/Network is not ready!";
        QTest::newRow("no camera") << true << "Error/Camera Open Failed!";
    }

    void sessionCannotStart()
    {
        QFETCH(bool, networkTime);
        QFETCH(QString, message);
        m_data->m_bNetworkReady = networkTime;
        SimulatedCamera::instance().setPresent(!networkTime);
        QStringList messages;
        const ModalResponder answer = collectMessages(messages);
        pressCamera();
        QCOMPARE(messages, QStringList{message});
        QCOMPARE(m_data->m_nCameraMode.load(), 0);
        QCOMPARE(basePage(), int(MainDialog::BasePageMenu));
    }

    // --- aiming guidance ---

    // One tick of guidance: which value label shows what, and whether the good-aim marks replace the level mark.
    void aimGuidance_data()
    {
        QTest::addColumn<int>("distance");
        QTest::addColumn<int>("pitch");
        QTest::addColumn<int>("brightness");
        QTest::addColumn<bool>("light");
        QTest::addColumn<QString>("valueLabel");
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("good");
        const auto row = [](const char *name, int d, int p, int b, bool light, const char *label, const char *text,
                            bool good) { QTest::newRow(name) << d << p << b << light << label << text << good; };
        row("no distance reading", 0, 0, 5, false, "labelDistanceValueRed", "---", false);
        row("94", 94, 0, 5, false, "labelDistanceValueRed", "94", false);
        row("95", 95, 0, 5, false, "labelDistanceValue", "95", true);
        row("100", 100, 0, 5, false, "labelDistanceValue", "100", true);
        row("101", 101, 0, 5, false, "labelDistanceValueRed", "101", false);
        row("250 shows 200", 250, 0, 5, false, "labelDistanceValueRed", "200", false);
        row("pitch -8", 97, -8, 5, false, "labelPitchValueRed", "-8°", false);
        row("pitch -7", 97, -7, 5, false, "labelPitchValue", "-7°", true);
        row("pitch 7", 97, 7, 5, false, "labelPitchValue", "7°", true);
        row("pitch 8", 97, 8, 5, false, "labelPitchValueRed", "8°", false);
        row("pitch 60, off the scale", 97, 60, 5, false, "labelPitchValueRed", "60°", false);
        row("brightness 19", 97, 0, 19, false, "labelBrightnessValue", "19", true);
        row("brightness 20", 97, 0, 20, false, "labelBrightnessValueRed", "20", false);
        row("brightness 20, light on", 97, 0, 20, true, "labelBrightnessValue", "20", true);
    }

    void aimGuidance()
    {
        QFETCH(int, distance);
        QFETCH(int, pitch);
        QFETCH(int, brightness);
        QFETCH(bool, light);
        QFETCH(QString, valueLabel);
        QFETCH(QString, text);
        QFETCH(bool, good);
        openCameraPage();
        aim(distance, pitch, brightness);
        m_data->m_bTorchOn = light;
        tick();
        const QByteArray name = valueLabel.toLatin1();
        QVERIFY(shown(name.constData()));
        QCOMPARE(label(name.constData())->text(), text);
        // The twin of the label is hidden: only one of the normal and red pair shows.
        const QByteArray twin = name.endsWith("Red") ? name.chopped(3) : name + "Red";
        QVERIFY(!shown(twin.constData()));
        QCOMPARE(shown("labelLineC1_2"), good);
        QCOMPARE(shown("labelLineRB1_2"), good);
        // With a good aim the level mark gives way to the good-aim marks; it moves 2.5 px a degree.
        QCOMPARE(shown("labelLineDOF"), !good && pitch <= 59);
        if (!good && pitch <= 59)
            QCOMPARE(label("labelLineDOF")->geometry(), QRect(400, 188 - (5 * pitch) / 2, 474, 4));
    }

    // --- capture ---

    void elevenSteadyTicksCaptureOnceAutoCaptureIsOn()
    {
        openCameraPage();
        QCOMPARE(widget<QPushButton>("buttonFocusAuto")->text(), QStringLiteral("AUTO OFF"));
        aim(97, 0, 5);
        for (int i = 0; i < 30; ++i)
            tick();
        QCOMPARE(m_data->m_nCameraMode.load(), 1);
        // The switch is a setting, saved at once.
        click("buttonFocusAuto");
        QCOMPARE(widget<QPushButton>("buttonFocusAuto")->text(), QStringLiteral("AUTO ON"));
        QVERIFY(TestDevice::readFile(m_device->configFile()).contains("|||1|"));

        for (int i = 0; i < 10; ++i)
            tick();
        // One bad tick: the count starts again.
        aim(101, 0, 5);
        tick();
        aim(97, 0, 5);
        for (int i = 0; i < 10; ++i)
            tick();
        QCOMPARE(m_data->m_nCameraMode.load(), 1);
        tick();
        QCOMPARE(m_data->m_nCameraMode.load(), 2);
        QVERIFY(!widget<QPushButton>("buttonPhoto")->isEnabled());
        QVERIFY(!widget<QPushButton>("buttonCameraReturn")->isEnabled());
        QVERIFY(shown("labelNameCameraClock"));
        QCOMPARE(label("labelNameCameraClock")->text(), QStringLiteral("3"));
        QVERIFY(QFile::exists(Platform::instance().recordingFile));
    }

    void manualCaptureChecksPitchAndLightOnly()
    {
        openCameraPage();
        QStringList messages;
        const ModalResponder answer = collectMessages(messages);
        aim(150, 9, 5);
        click("buttonPhoto");
        aim(150, 0, 30);
        click("buttonPhoto");
        QCOMPARE(messages, (QStringList{QStringLiteral("Please move the cross sign to the center"),
                                        QStringLiteral("Please lower the ambient brightness to below 20")}));
        QCOMPARE(m_data->m_nCameraMode.load(), 1);
        // The distance is the operator's call; the aiming light goes out for the flash.
        aim(150, 0, 5);
        click("buttonFlash");
        QVERIFY(SimulatedWorld::instance().irLight);
        click("buttonPhoto");
        QCOMPARE(m_data->m_nCameraMode.load(), 2);
        QVERIFY(!m_data->m_bTorchOn);
        QVERIFY(!SimulatedWorld::instance().irLight);
    }

    void recordingThatCannotOpenIsTriedOncePerSteadyAim()
    {
        Platform::instance().recordingFile = m_device->root() + QStringLiteral("/missing/pupil_video.avi");
        openCameraPage();
        QStringList messages;
        const ModalResponder answer = collectMessages(messages);
        aim(97, 0, 5);
        click("buttonPhoto");
        QCOMPARE(messages, QStringList{QStringLiteral("Error/Vedio File Open Failed!")});
        m_data->m_bAutoCapture = 1;
        for (int i = 0; i < 2 * 11; ++i)
            tick();
        QCOMPARE(messages.size(), 3);
        QCOMPARE(m_data->m_nCameraMode.load(), 1);
        QVERIFY(widget<QPushButton>("buttonPhoto")->isEnabled());
    }

    void noCaptureUnderAMessageBox()
    {
        openCameraPage();
        m_data->m_bAutoCapture = 1;
        aim(97, 9, 5);
        // The box's own event loop keeps the window's timer running.
        ModalResponder answer([this](QWidget *box) {
            aim(97, 0, 5);
            for (int i = 0; i < 2 * 11; ++i)
                tick();
            pressButton(box, "buttonMiddle1");
        });
        click("buttonPhoto");
        QCOMPARE(answer.count(), 1);
        QCOMPARE(m_data->m_nCameraMode.load(), 1);
    }

    void cameraButtonAwayFromTheDetailsSkipsTheirChecks()
    {
        m_data->m_bNetworkReady = 0;
        widget<QStackedWidget>("stackedWidgetBase")->setCurrentIndex(MainDialog::BasePageMenu);
        widget<QStackedWidget>("stackedWidgetWithMenu")->setCurrentWidget(widget<QWidget>("pageResult"));
        click("buttonCamera");
        QCOMPARE(basePage(), int(MainDialog::BasePageCamera));
        QCOMPARE(m_data->m_nCameraMode.load(), 1);
    }

    void aimingLightNeedsADarkRoom()
    {
        openCameraPage();
        QStringList messages;
        const ModalResponder answer = collectMessages(messages);
        aim(97, 0, 40);
        click("buttonFlash");
        QVERIFY(!m_data->m_bTorchOn);
        aim(97, 0, 10);
        click("buttonFlash");
        QVERIFY(m_data->m_bTorchOn);
        QVERIFY(SimulatedWorld::instance().irLight);
        QCOMPARE(messages, QStringList{QStringLiteral("Please lower the ambient brightness to below 20")});
        // Leaving the page puts the light out and stops aiming.
        click("buttonCameraReturn");
        QVERIFY(!SimulatedWorld::instance().irLight);
        QCOMPARE(m_data->m_nCameraMode.load(), 0);
    }

    // --- the end of a recording ---

    // The words for each fault are tst_analysis's; here the page shows them and gives the controls back.
    void failedAnalysisReturnsToAiming_data()
    {
        QTest::addColumn<int>("fault");
        QTest::addColumn<QString>("message");
        using Fault = AnalysisServer::Fault;
        QTest::newRow("no answer") << int(Fault::NoAnswer) << "No response from the analysis server.";
        QTest::newRow("short reply") << int(Fault::ShortReply) << "The analysis server's answer could not be read.";
        QTest::newRow("recording not written")
            << -1 << "The recording could not be written: the storage may be full. Please record again.";
    }

    void failedAnalysisReturnsToAiming()
    {
        QFETCH(int, fault);
        QFETCH(QString, message);
        auto server = startServer();
        if (!server)
            QSKIP("cannot listen on 127.0.0.47:15000");
        server->setFault(static_cast<AnalysisServer::Fault>(std::max(fault, 0)));
        server->setSilenceMs(2500);
        m_data->m_nUploadTimeoutSeconds = 1;
        openCameraPage();
        aim(97, 0, 5);
        click("buttonPhoto");
        writeRecording();
        m_data->m_bRecordingBroken = fault < 0 ? 1 : 0;
        QStringList messages;
        ModalResponder answer([&messages](QWidget *dialog) {
            // The progress dialog closes by itself; the error box is answered.
            if (QLatin1String(dialog->metaObject()->className()) == QLatin1String("MsgDialog")) {
                messages << messageText(dialog);
                pressButton(dialog, "buttonMiddle1");
            }
        });
        QMetaObject::invokeMethod(m_window.get(), "video_thread_slot", Qt::DirectConnection, Q_ARG(int, 0));
        QCOMPARE(messages, QStringList{QStringLiteral("Error/") + message});
        QCOMPARE(server->requestCount(), fault < 0 ? 0 : 1);
        QCOMPARE(m_data->m_nCameraMode.load(), 1);
        QCOMPARE(basePage(), int(MainDialog::BasePageCamera));
        for (const char *button : {"buttonFocusAuto", "buttonFlash", "buttonPhoto", "buttonCameraReturn"})
            QVERIFY2(widget<QPushButton>(button)->isEnabled(), button);
        QCOMPARE(history(), QString());
    }

    void reportMailAtTheEndOfASession_data()
    {
        QTest::addColumn<QString>("reporting");
        QTest::addColumn<QString>("address");
        QTest::addColumn<bool>("serverUp");
        QTest::addColumn<QString>("message");
        QTest::newRow("reporting off") << "0" << "nurse@school.example" << true << QString();
        QTest::newRow("factory address") << "1" << QString() << true
                                         << "Message/No report was sent: set the e-mail address on the E-mail Reports page.";
        QTest::newRow("server down") << "1" << "nurse@school.example" << false
                                     << "Message/Data processing failed: ";
        QTest::newRow("delivered") << "1" << "nurse@school.example" << true
                                   << "Message/The pupil image has been sent to your email.";
    }

    void reportMailAtTheEndOfASession()
    {
        QFETCH(QString, reporting);
        QFETCH(QString, address);
        QFETCH(bool, serverUp);
        QFETCH(QString, message);
        CamCfg &cfg = *m_data->m_pCamCfg;
        cfg.setValue(CamCfg::EmailReporting, reporting);
        cfg.setValue(CamCfg::EmailAddress, address.isEmpty() ? CamCfg::defaultValue(CamCfg::EmailAddress) : address);
        Platform &platform = Platform::instance();
        platform.mailServer = QStringLiteral("127.0.0.48");
        platform.mailPort = 2525;
        platform.mailSecurity = QStringLiteral("none");
        QProcess server;
        if (serverUp) {
            server.start(QStringLiteral("/usr/bin/python3"), {"-m", "aiosmtpd", "-n", "-l", "127.0.0.48:2525", "-c",
                                                              "aiosmtpd.handlers.Sink"});
            QTcpSocket probe;
            QTRY_VERIFY_WITH_TIMEOUT((probe.connectToHost(platform.mailServer, 2525), probe.waitForConnected(100)),
                                     10000);
        }
        writeRecording();
        QStringList messages;
        // The "please wait" box may be caught while the mail goes out on a busy machine; only outcomes count.
        ModalResponder answer([&messages](QWidget *box) {
            if (!messageText(box).contains(QLatin1String("please wait")))
                messages << messageText(box);
            pressButton(box, "buttonMiddle1");
        });
        QMetaObject::invokeMethod(m_window.get(), "onSendVideoReportTimeout", Qt::DirectConnection);
        server.kill();
        server.waitForFinished();
        QCOMPARE(messages.size(), message.isEmpty() ? 0 : 1);
        if (!message.isEmpty())
            QVERIFY2(messages.at(0).startsWith(message), qPrintable(messages.at(0)));
    }

    void wholeScreeningSavesOneRecord_data()
    {
        QTest::addColumn<bool>("startUpFileOpens");
        QTest::newRow("camera pressed during the start-up recording") << true;
        QTest::newRow("start-up recording could not open its file") << false;
    }

    void wholeScreeningSavesOneRecord()
    {
        QFETCH(bool, startUpFileOpens);
        auto server = startServer();
        if (!server)
            QSKIP("cannot listen on 127.0.0.47:15000");
        SimulatedWorld::instance().setRefraction({-2.5, -0.75, -1.25, 0.25, 61, 44, 120});
        // The real threads this time, with the camera at its own pace.
        m_window.reset();
        SimulatedCamera::instance().setPaced(true);
        Platform &platform = Platform::instance();
        if (!startUpFileOpens)
            platform.recordingFile = m_device->root() + QStringLiteral("/later/pupil_video.avi");
        openWindow(MainDialog::Workers::Start);
        if (startUpFileOpens) {
            // The session waits for the warm-up recording instead of being overwritten by its end.
            QTRY_VERIFY_WITH_TIMEOUT(m_data->m_nCameraMode == 2, 5000);
        } else {
            // The recording thread outlives the failure and serves the session.
            QTRY_VERIFY_WITH_TIMEOUT(!m_data->m_bStartupRecording, 5000);
            QDir().mkpath(m_device->root() + QStringLiteral("/later"));
        }

        m_data->m_bAutoCapture = 1;
        click("buttonFemale");
        openCameraPage();
        SimulatedWorld::instance().childDistanceMm = 1080;
        SimulatedWorld::instance().pitchDegrees = 0;
        SimulatedWorld::instance().ambientLight = 5;
        QTimer ticks;
        connect(&ticks, &QTimer::timeout, this, [this] { tick(); });
        ticks.start(200);
        QTRY_VERIFY_WITH_TIMEOUT(m_data->m_nCameraMode == 2, 10000);
        QTRY_VERIFY_WITH_TIMEOUT(widget<QStackedWidget>("stackedWidgetWithMenu")->currentWidget()->objectName() ==
                                     QLatin1String("pageResult"),
                                 30000);
        ticks.stop();
        QCOMPARE(server->requestCount(), 1);

        // Arnold (the factory choice), 7 years: the -2.50 sphere refers.
        QVERIFY(shown("labelResultRefer"));
        QVERIFY(!shown("labelResultPass"));
        const QStringList lines = history().split(QLatin1Char('\n'), Qt::SkipEmptyParts);
        QCOMPARE(lines.size(), 1);
        const QStringList fields = lines.at(0).split(QLatin1Char(','));
        QCOMPARE(fields.size(), 11);
        QCOMPARE(fields.at(0), QStringLiteral("Amy"));
        QCOMPARE(fields.at(1), QStringLiteral("Female"));
        QVERIFY(fields.at(2).startsWith(QLatin1String("2019-03-02|")));
        QCOMPARE(fields.mid(3), (QStringList{"-0.75", "+0.25", "5", "-2.50", "-1.25", "49", "61", "Refer"}));
        QCOMPARE(label("labelResultODSph")->text(), QStringLiteral("-0.75"));
        QCOMPARE(label("labelResultOSAxis")->text(), QStringLiteral("49"));
    }

    void countdownFollowsTheRecording()
    {
        openCameraPage();
        aim(97, 0, 5);
        click("buttonPhoto");
        freezeClock();
        m_data->m_nRecordStartTime = m_nowMs / 1000;
        for (const char *count : {"3", "2", "1", "1"}) {
            QMetaObject::invokeMethod(m_window.get(), "camera_thread_slot", Qt::DirectConnection, Q_ARG(int, 0));
            QCOMPARE(label("labelNameCameraClock")->text(), QLatin1String(count));
            advance(1);
        }
        QVERIFY(!label("labelPhoto")->pixmap(Qt::ReturnByValue).isNull());
    }
};

QTEST_MAIN(TestSession)
#include "tst_session.moc"
