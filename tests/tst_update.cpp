// SPDX-License-Identifier: GPL-2.0-or-later
// Firmware update: the server's description, the download's checks, the update button and the version switch.
#include "common.h"
#include "msgdialog.h"
#include "platform.h"
#include "uitestsupport.h"
#include "updateserver.h"
#include "versiondlg.h"
#include "versionstamp.h"

#include <QAbstractButton>
#include <QCryptographicHash>
#include <QFile>
#include <QTest>

class UpdateTest : public QObject, public WindowFixture
{
    Q_OBJECT

    std::unique_ptr<UpdateServer> m_server;
    QByteArray m_firmware;

    QString appFile(const char *name) const { return m_device->appDir() + QLatin1String(name); }
    bool rebooted() const
    {
        const QStringList events = m_device->events();
        return std::any_of(events.begin(), events.end(), [](const QString &e) { return e.endsWith(" reboot"); });
    }
    // Answers every message box: questions with their left button (Yes),
    // notices with their one button. Records the texts and whether the
    // device had rebooted when each was shown.
    ModalResponder answerAll(QStringList &shown)
    {
        return ModalResponder([this, &shown](QWidget *modal) {
            if (!qobject_cast<MsgDialog *>(modal))
                return; // the progress dialog closes itself
            shown << messageText(modal) + (rebooted() ? QStringLiteral(" (after reboot)") : QString());
            auto *left = modal->findChild<QAbstractButton *>(QStringLiteral("buttonLeft1"));
            pressButton(modal, left->isVisibleTo(modal) ? "buttonLeft1" : "buttonMiddle1");
        });
    }

private slots:
    void init()
    {
        setUp();
        m_firmware = QByteArray("\x7f"
                                "ELF the next release ")
                         .repeated(4000);
        Platform::instance().updateBaseUrl = QStringLiteral("http://127.0.0.47:8017/");
        m_server = std::make_unique<UpdateServer>();
        m_server->setSilenceMs(3000);
        m_server->publish(QStringLiteral("0.0.2"), [this] { return m_firmware; });
        m_server->publish(m_data->m_pCommon->version(), [] { return QByteArray("the running one"); });
        QVERIFY(m_server->start(Platform::instance().updateBaseUrl));
    }

    void cleanup()
    {
        m_server.reset();
        tearDown();
    }

    void checkReadsTheDescription_data()
    {
        QTest::addColumn<int>("fault");
        QTest::addColumn<bool>("sameVersion");
        QTest::addColumn<int>("result");
        QTest::addColumn<QString>("logged");
        QTest::newRow("server down") << -1 << false << -1 << QString();
        QTest::newRow("three fields") << int(UpdateServer::Fault::ThreeFields) << false << 0
                                      << QStringLiteral("strList.size() = 3");
        QTest::newRow("five fields") << int(UpdateServer::Fault::FiveFields) << false << 0
                                     << QStringLiteral("strList.size() = 5");
        QTest::newRow("the running version")
            << int(UpdateServer::Fault::None) << true << 0 << QStringLiteral("versionCheck = ");
        QTest::newRow("a new version") << int(UpdateServer::Fault::None) << false << 1
                                       << QStringLiteral("m_strNewVerMD5: [");
    }

    void checkReadsTheDescription()
    {
        QFETCH(int, fault);
        QFETCH(bool, sameVersion);
        QFETCH(int, result);
        QFETCH(QString, logged);
        if (fault < 0)
            m_server->stop();
        else
            m_server->setFault(UpdateServer::Fault(fault));
        if (sameVersion)
            m_server->setNewest(m_data->m_pCommon->version());

        LogCapture log;
        QCOMPARE(m_data->versionCheck(), result);
        QVERIFY(log.contains(logged));
        QVERIFY(log.contains(QStringLiteral("/v2_q200/us/version.txt")));
        if (result > 0) {
            QCOMPARE(m_data->m_strNewVerFile, QStringLiteral("orvella-0.0.2.bin"));
            QCOMPARE(m_data->m_nNewVerSize, m_firmware.size());
            QCOMPARE(m_data->m_strNewVerMD5,
                     QString::fromLatin1(QCryptographicHash::hash(m_firmware, QCryptographicHash::Md5).toHex()));
        }
    }

    void downloadChecksSizeAndDigest_data()
    {
        QTest::addColumn<int>("fault");
        QTest::addColumn<QString>("logged");
        QTest::addColumn<bool>("tmpKept");
        QTest::newRow("one byte short") << int(UpdateServer::Fault::WrongSize)
                                        << QStringLiteral("versionDownlod len error %1 %2") << false;
        QTest::newRow("digest differs") << int(UpdateServer::Fault::WrongMd5)
                                        << QStringLiteral("versionMD5Check failed") << true;
        QTest::newRow("sound") << int(UpdateServer::Fault::None) << QString() << false;
    }

    void downloadChecksSizeAndDigest()
    {
        QFETCH(int, fault);
        QFETCH(QString, logged);
        QFETCH(bool, tmpKept);
        m_server->setFault(UpdateServer::Fault(fault));
        QCOMPARE(m_data->versionCheck(), 1);

        LogCapture log;
        const bool sound = fault == int(UpdateServer::Fault::None);
        QCOMPARE(m_data->versionDownlod(), sound);
        if (!logged.isEmpty())
            QVERIFY(log.contains(logged.arg(m_firmware.size()).arg(m_firmware.size() - 1)));
        QCOMPARE(QFile::exists(appFile("/orvella.tmp")), tmpKept);
        QCOMPARE(TestDevice::readFile(appFile("/orvella.new")), sound ? m_firmware : QByteArray());
    }

    void updateRebootsOnlyOnceSuccessIsAcknowledged_data()
    {
        QTest::addColumn<int>("fault");
        QTest::addColumn<QStringList>("messages");
        QTest::newRow("server down") << -1 << QStringList{"Version Check Failed!"};
        QTest::newRow("download fails") << int(UpdateServer::Fault::WrongMd5)
                                        << QStringList{"System Update", "System Update Failed!"};
        QTest::newRow("installed") << int(UpdateServer::Fault::None)
                                   << QStringList{"System Update", "System Update Success!"};
    }

    void updateRebootsOnlyOnceSuccessIsAcknowledged()
    {
        QFETCH(int, fault);
        QFETCH(QStringList, messages);
        if (fault < 0)
            m_server->stop();
        else
            m_server->setFault(UpdateServer::Fault(fault));
        openWindow();
        QStringList shown;
        {
            const ModalResponder responder = answerAll(shown);
            click("buttonUpdate");
        }
        QCOMPARE(shown, messages);
        QCOMPARE(rebooted(), messages.last() == QLatin1String("System Update Success!"));
    }

    void versionSwitchResetsTheSettings_data()
    {
        QTest::addColumn<int>("fault");
        QTest::addColumn<QString>("outcome");
        QTest::newRow("digest differs") << int(UpdateServer::Fault::WrongMd5)
                                        << QStringLiteral("System Switch Failed!");
        QTest::newRow("switched") << int(UpdateServer::Fault::None) << QStringLiteral("System Switch Success!");
    }

    void versionSwitchResetsTheSettings()
    {
        QFETCH(int, fault);
        QFETCH(QString, outcome);
        m_server->setFault(UpdateServer::Fault(fault));
        QCOMPARE(m_data->versionListGet(), 2);
        QVERIFY(m_data->m_strVersionList.first().startsWith(QStringLiteral("0.0.2\tversion_0.0.2.txt")));

        versiondlg dialog;
        dialog.Init(m_data->m_strVersionList);
        QStringList shown;
        {
            const ModalResponder responder = answerAll(shown);
            dialog.versionSwitch(QStringLiteral("0.0.2"), QStringLiteral("version_0.0.2.txt"));
        }
        QCOMPARE(shown, QStringList({QStringLiteral("Switch to 0.0.2"), outcome}));
        const bool switched = outcome == QLatin1String("System Switch Success!");
        QCOMPARE(QFile::exists(m_device->configFile()), !switched);
        QCOMPARE(rebooted(), switched);
    }

    void timerMarksTheButtonWhileANewVersionIsPublished()
    {
        openWindow();
        auto *button = widget<QAbstractButton>("buttonUpdate");
        const auto ticks = [this] {
            for (int i = 0; i < 7; ++i)
                tick();
        };
        click("buttonSetup");
        m_data->timerVersionCheck();
        ticks();
        QVERIFY2(button->styleSheet().isEmpty(), "no check before the network is up");

        m_data->m_bNetworkReady = 1;
        m_data->timerVersionCheck();
        ticks();
        QVERIFY(button->styleSheet().contains(QStringLiteral("rgb(50, 227, 233)")));

        m_server->setNewest(m_data->m_pCommon->version());
        m_data->timerVersionCheck();
        ticks();
        QVERIFY2(!button->styleSheet().isEmpty(), "not asked again within the period");
        m_data->m_nVersionCheckPeriodSeconds = 0;
        m_data->timerVersionCheck();
        ticks();
        QVERIFY(button->styleSheet().isEmpty());
    }

    void restampedProgramReportsTheNewVersion()
    {
        QFile self(QCoreApplication::applicationFilePath());
        QVERIFY(self.open(QIODevice::ReadOnly));
        QByteArray program = self.readAll();
        const int size = program.size();
        // Put together here, so that this test's own bytes do not hold the marker.
        const QByteArray marker = QByteArray("\x01ORVELLA") + QByteArray("-VERSION-RECORD:");
        const int at = program.indexOf(marker);
        QVERIFY(at >= 0);
        const QByteArray built = versionstamp::builtVersion().toUtf8() + '\0';
        QCOMPARE(program.mid(at + marker.size(), built.size()), built);

        QVERIFY(!versionstamp::restamp(program, QString(50, QLatin1Char('9'))));
        QVERIFY(versionstamp::restamp(program, QStringLiteral("7.8.9-rc1")));
        QCOMPARE(program.size(), size);
        QCOMPARE(program.mid(at + marker.size(), 10), QByteArray("7.8.9-rc1\0", 10));
    }
};

QTEST_MAIN(UpdateTest)
#include "tst_update.moc"
