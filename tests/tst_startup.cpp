// SPDX-License-Identifier: GPL-2.0-or-later
// Start-up: language choice, the message handler, the tagged log lines and the whole program's first run.
#include "application.h"
#include "camcfg.h"
#include "common.h"
#include "messagehandler.h"
#include "platform.h"
#include "terminationsignals.h"
#include "testsupport.h"

#include <QElapsedTimer>
#include <QEventLoop>
#include <QCoreApplication>
#include <QProcess>
#include <QTimer>
#include <QRegularExpression>
#include <QTemporaryFile>
#include <QTest>
#include <QTextCodec>

#include <csignal>
#include <cstdio>
#include <functional>
#include <sys/wait.h>
#include <unistd.h>

namespace {

// Runs fn in a child process and returns what it wrote on standard error;
// ended receives the signal that ended the child, 0 for none.
QByteArray stderrOfChild(const std::function<void()> &fn, int *ended)
{
    QTemporaryFile output;
    if (!output.open())
        return QByteArray("<no temporary file>");
    std::fflush(stderr);
    const pid_t child = ::fork();
    if (child == 0) {
        ::dup2(output.handle(), 2);
        fn();
        std::fflush(stderr);
        ::_exit(0);
    }
    int status = 0;
    if (child < 0 || ::waitpid(child, &status, 0) != child)
        return QByteArray("<no child>");
    *ended = WIFSIGNALED(status) ? WTERMSIG(status) : 0;
    output.seek(0);
    return output.readAll();
}

} // namespace

class TestStartup : public QObject
{
    Q_OBJECT

private:
    Application *app() const { return static_cast<Application *>(QCoreApplication::instance()); }

    // Starts the real program on a throw-away device, stops it as the
    // simulator does once it has printed `ready`, and returns its log.
    QByteArray runProgramOnce(TestDevice &device, const QByteArray &ready, int *exitCode)
    {
        // The program's own files outside its folder go to the test's folder
        // too, and it asks no public time server.
        const Platform &platform = Platform::instance();
        const QByteArray ini = "[paths]\napp_dir=" + device.appDir().toUtf8() +
                               "\nrecording=" + platform.recordingFile.toUtf8() +
                               "\ncamera_retry=" + platform.cameraRetryFile.toUtf8() +
                               "\nstartup_script=" + platform.startupScript.toUtf8() +
                               "\n[devices]\nsimulated=true\nled_loop=" + platform.ledLoopParameter.toUtf8() +
                               "\nled_val=" + platform.ledValueParameter.toUtf8() + "\n[servers]\ntime=127.0.0.1\n";
        device.writeFile(QStringLiteral("platform.ini"), ini);
        QProcess program;
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
        env.insert(QStringLiteral("ORVELLA_PLATFORM_FILE"), device.root() + QStringLiteral("/platform.ini"));
        program.setProcessEnvironment(env);
        program.setReadChannel(QProcess::StandardError);
        program.start(QStringLiteral(ORVELLA_EXECUTABLE), QStringList());
        if (!program.waitForStarted(10000))
            return QByteArray("<did not start>");
        QByteArray log;
        for (int i = 0; i < 600 && !log.contains(ready) && program.state() == QProcess::Running; ++i) {
            program.waitForReadyRead(100);
            log += program.readAllStandardError();
        }
        program.terminate();
        if (!program.waitForFinished(20000)) {
            program.kill();
            program.waitForFinished();
            *exitCode = -1;
        } else {
            *exitCode = program.exitStatus() == QProcess::NormalExit ? program.exitCode() : -2;
        }
        return log + program.readAllStandardError();
    }

private slots:
    // A known language name reaches a translation that loads; any other
    // reaches none, and a load that fails drops the translation in force
    // (the rows run in order: a known one comes first).
    void languageNamesChooseAShippedTranslation_data()
    {
        QTest::addColumn<QString>("setting");
        QTest::addColumn<bool>("shipped");
        const char *const known[] = {"English", "Chinese", "Spanish"};
        for (const char *name : known)
            QTest::newRow(name) << QString::fromLatin1(name) << true;
        for (const char *name : {"spanish", "Klingon", ""})
            QTest::addRow("'%s'", name) << QString::fromLatin1(name) << false;
    }

    void languageNamesChooseAShippedTranslation()
    {
        QFETCH(QString, setting);
        QFETCH(bool, shipped);
        const QString locale = Application::localeForLanguage(setting);
        QCOMPARE(locale.isEmpty(), !shipped);
        app()->switchLanguage(shipped ? locale : QStringLiteral("tlh_QO"));
        QCOMPARE(app()->hasTranslation(), shipped);
        if (shipped)
            QCOMPARE(QLocale().name(), locale);
        else
            QCOMPARE(QCoreApplication::translate("MainDialog", "OK"), QStringLiteral("OK"));
    }

    // Debug lines are printed as they are and Qt's own warnings dropped;
    // critical and fatal ones are tagged, and a fatal one aborts. The device's
    // log lines carry their tag and the time.
    void logLines_data()
    {
        QTest::addColumn<int>("kind"); // a QtMsgType, or 10, 11, 12 for LOG, CHK, SCL
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("printed"); // a pattern
        QTest::addColumn<int>("signal");
        const QString time = QStringLiteral(" \\d\\d:\\d\\d:\\d\\d ");
        const QString child = QString::fromUtf8("Ni\xc3\xb1o \xe7\x9c\xbc\xe7\xa7\x91");
        QTest::newRow("debug") << int(QtDebugMsg) << child << child + QLatin1Char('\n') << 0;
        QTest::newRow("warning") << int(QtWarningMsg) << QStringLiteral("style sheet") << QString() << 0;
        QTest::newRow("critical") << int(QtCriticalMsg) << QStringLiteral("no disk")
                                  << QStringLiteral("Critical: no disk\n") << 0;
        QTest::newRow("fatal") << int(QtFatalMsg) << QStringLiteral("bad state") << QStringLiteral("Fatal: bad state\n")
                               << int(SIGABRT);
        QTest::newRow("LOG, empty") << 10 << QString() << "\\[LOG\\]" + time + "\n" << 0;
        QTest::newRow("CHK") << 11 << child << "\\[CHK\\]" + time + child + "\n" << 0;
        QTest::newRow("SCL") << 12 << QStringLiteral("x") << "\\[SCL\\]" + time + "x\n" << 0;
    }

    void logLines()
    {
        QFETCH(int, kind);
        QFETCH(QString, text);
        QFETCH(QString, printed);
        QFETCH(int, signal);
        int ended = -1;
        const QByteArray output = stderrOfChild(
            [kind, text] {
                qInstallMessageHandler(myMessageOutput);
                common helper;
                if (kind == 10)
                    helper.saveLOG2File(text);
                else if (kind == 11)
                    helper.saveCHK2File(text);
                else if (kind == 12)
                    helper.saveSCL2File(text);
                else
                    myMessageOutput(QtMsgType(kind), QMessageLogContext(), text);
            },
            &ended);
        QCOMPARE(ended, signal);
        const QRegularExpression pattern(QRegularExpression::anchoredPattern(printed));
        QVERIFY2(pattern.match(QString::fromUtf8(output)).hasMatch(), output.constData());
    }

    // --- the whole program ---

    // A first start writes the settings file whole; a short one is completed,
    // an unknown language in it kept as it is rather than replaced by a
    // default. A stop that comes while the program is still starting (after
    // its first line) ends it as cleanly as one to its running window.
    void programStartsAndExitsCleanly_data()
    {
        QTest::addColumn<QByteArray>("config");
        QTest::addColumn<QByteArray>("ready");
        const QByteArray shown = "main window shown\n";
        QTest::newRow("first start") << QByteArray() << shown;
        QTest::newRow("unknown language") << QByteArray("225|1|50|5|5|1920*1080|h:15000|0|-1|-1|0|0|Klingon") << shown;
        QTest::newRow("stopped while starting") << QByteArray() << QByteArray("\n");
    }

    // A stop during a job (an upload whose result is not saved yet) lets the
    // job's own event loop end by itself, then leaves; a job that never ends
    // holds the stop no longer than the bound.
    void stopWaitsForTheRunningJob_data()
    {
        QTest::addColumn<int>("jobEndsMs");
        QTest::newRow("job ends") << 300;
        QTest::newRow("job hangs") << -1;
    }

    void stopWaitsForTheRunningJob()
    {
        QFETCH(int, jobEndsMs);
        static bool busy = false;
        static bool installed = false;
        if (!installed) {
            catchTerminationSignals();
            quitOnTerminationSignals(QCoreApplication::instance(), [] { return busy; }, 600);
            installed = true;
        }
        busy = true;
        // The job's dialog runs its own loop inside the program's loop, as
        // the upload dialog does inside the application's.
        int jobEnded = -2;
        QTimer::singleShot(0, [&jobEnded, jobEndsMs] {
            QEventLoop job;
            if (jobEndsMs > 0) {
                QTimer::singleShot(jobEndsMs, &job, [&job] {
                    busy = false;
                    job.exit(7);
                });
            }
            jobEnded = job.exec();
            busy = false;
        });
        QTimer::singleShot(50, [] { ::raise(SIGTERM); });
        QTimer::singleShot(5000, [] { QCoreApplication::exit(99); });
        QElapsedTimer elapsed;
        elapsed.start();
        QCOMPARE(QCoreApplication::exec(), 0);
        if (jobEndsMs > 0) {
            QCOMPARE(jobEnded, 7);
            QVERIFY(elapsed.elapsed() >= jobEndsMs);
        } else {
            QCOMPARE(jobEnded, 0);
            QVERIFY2(elapsed.elapsed() >= 600 && elapsed.elapsed() < 2000, qPrintable(QString::number(elapsed.elapsed())));
        }
    }

    void programStartsAndExitsCleanly()
    {
        QFETCH(QByteArray, config);
        QFETCH(QByteArray, ready);
        TestDevice device;
        if (!config.isNull())
            device.writeFile(QStringLiteral("app/CAMCFG/config.txt"), config);
        int exitCode = 0;
        const QByteArray log = runProgramOnce(device, ready, &exitCode);
        QVERIFY2(exitCode == 0 && !log.contains("Critical:") && !log.contains("Fatal:"), log.constData());
        const QByteArray written = TestDevice::readFile(device.configFile());
        QVERIFY2(written.count('|') == CamCfg::kPositions - 1 && (config.isNull() || written.startsWith(config + '|')),
                 written.constData());
    }
};

int main(int argc, char *argv[])
{
    Application app(argc, argv);
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));
    TestStartup test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_startup.moc"
