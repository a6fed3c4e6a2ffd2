// SPDX-License-Identifier: GPL-2.0-or-later
// Start-up: language choice, the message handler, the tagged log lines and the whole program's first run.
#include "application.h"
#include "common.h"
#include "messagehandler.h"
#include "platform.h"
#include "testsupport.h"

#include <QProcess>
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

// Runs fn with file descriptor 2 pointed at a temporary file and returns
// what was written there.
QByteArray captureStderr(const std::function<void()> &fn)
{
    QTemporaryFile file;
    if (!file.open())
        return QByteArray("<no temporary file>");
    std::fflush(stderr);
    const int saved = ::dup(2);
    ::dup2(file.handle(), 2);
    fn();
    std::fflush(stderr);
    ::dup2(saved, 2);
    ::close(saved);
    file.seek(0);
    return file.readAll();
}

void emitThroughHandler(QtMsgType type, const QString &text)
{
    myMessageOutput(type, QMessageLogContext(), text);
}

} // namespace

class TestStartup : public QObject
{
    Q_OBJECT

private:
    Application *app() const { return static_cast<Application *>(QCoreApplication::instance()); }

    // Starts the real program on a throw-away device, waits for its
    // settings file, stops it as the simulator does and returns its log.
    QByteArray runProgramOnce(TestDevice &device, int *exitCode)
    {
        // The program's own files outside its folder go to the test's folder too.
        const Platform &platform = Platform::instance();
        const QByteArray ini = "[paths]\napp_dir=" + device.appDir().toUtf8() +
                               "\nrecording=" + platform.recordingFile.toUtf8() +
                               "\ncamera_retry=" + platform.cameraRetryFile.toUtf8() +
                               "\nstartup_script=" + platform.startupScript.toUtf8() +
                               "\n[devices]\nsimulated=true\nled_loop=" + platform.ledLoopParameter.toUtf8() +
                               "\nled_val=" + platform.ledValueParameter.toUtf8() + "\n";
        device.writeFile(QStringLiteral("platform.ini"), ini);
        QProcess program;
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
        env.insert(QStringLiteral("ORVELLA_PLATFORM_FILE"), device.root() + QStringLiteral("/platform.ini"));
        program.setProcessEnvironment(env);
        program.start(QStringLiteral(ORVELLA_EXECUTABLE), QStringList());
        if (!program.waitForStarted(10000))
            return QByteArray("<did not start>");
        for (int i = 0; i < 300 && !QFile::exists(device.configFile()); ++i)
            QTest::qWait(50);
        // Let the event loop come up before asking it to leave.
        QTest::qWait(300);
        program.terminate();
        if (!program.waitForFinished(20000)) {
            program.kill();
            program.waitForFinished();
            *exitCode = -1;
        } else {
            *exitCode = program.exitStatus() == QProcess::NormalExit ? program.exitCode() : -2;
        }
        return program.readAllStandardError();
    }

private slots:
    // --- language ---

    void onlyTheThreeLanguageNamesChooseALocale_data()
    {
        QTest::addColumn<QString>("setting");
        QTest::addColumn<QString>("locale");
        const char *const rows[][2] = {{"English", "en_US"}, {"Chinese", "zh_CN"}, {"Spanish", "es_ES"},
                                       {"spanish", ""},      {"Klingon", ""},      {"", ""}};
        for (const auto &row : rows)
            QTest::addRow("'%s'", row[0]) << QString::fromLatin1(row[0]) << QString::fromLatin1(row[1]);
    }

    void onlyTheThreeLanguageNamesChooseALocale()
    {
        QFETCH(QString, setting);
        QFETCH(QString, locale);
        QCOMPARE(Application::localeForLanguage(setting), locale);
    }

    void shippedTranslationsLoadAndUnknownLocaleLeavesBuiltInTexts()
    {
        for (const QString &locale : {QStringLiteral("en_US"), QStringLiteral("es_ES"), QStringLiteral("zh_CN")}) {
            app()->switchLanguage(locale);
            QVERIFY2(app()->hasTranslation(), qPrintable(locale));
            QCOMPARE(QLocale().name(), locale);
        }
        // A failed load must also drop the previous translation.
        app()->switchLanguage(QStringLiteral("tlh_QO"));
        QVERIFY(!app()->hasTranslation());
        QCOMPARE(QCoreApplication::translate("MainDialog", "OK"), QStringLiteral("OK"));
    }

    // --- message handler ---

    void handlerPrintsDebugDropsWarningsTagsCritical()
    {
        QCOMPARE(captureStderr([] { emitThroughHandler(QtDebugMsg, QStringLiteral("camera open")); }),
                 QByteArray("camera open\n"));
        QCOMPARE(captureStderr([] { emitThroughHandler(QtWarningMsg, QStringLiteral("style sheet")); }), QByteArray());
        QCOMPARE(captureStderr([] { emitThroughHandler(QtCriticalMsg, QStringLiteral("no disk")); }),
                 QByteArray("Critical: no disk\n"));
    }

    void fatalMessageAborts()
    {
        QTemporaryFile output;
        QVERIFY(output.open());
        const pid_t child = ::fork();
        QVERIFY(child >= 0);
        if (child == 0) {
            ::dup2(output.handle(), 2);
            emitThroughHandler(QtFatalMsg, QStringLiteral("bad state"));
            ::_exit(0);
        }
        int status = 0;
        QCOMPARE(::waitpid(child, &status, 0), child);
        QVERIFY(WIFSIGNALED(status));
        QCOMPARE(WTERMSIG(status), SIGABRT);
        output.seek(0);
        QCOMPARE(output.readAll(), QByteArray("Fatal: bad state\n"));
    }

    // --- tagged log lines ---

    void taggedLinesCarryTimeAndText()
    {
        qInstallMessageHandler(myMessageOutput);
        common helper;
        const QRegularExpression emptyLine(QStringLiteral("^\\[LOG\\] \\d\\d:\\d\\d:\\d\\d \\n$"));
        const QByteArray empty = captureStderr([&helper] { helper.saveLOG2File(QString()); });
        QVERIFY2(emptyLine.match(QString::fromLatin1(empty)).hasMatch(), empty.constData());

        const QString text = QString::fromUtf8("Ni\xc3\xb1o \xe7\x9c\xbc\xe7\xa7\x91");
        const QByteArray chk = captureStderr([&] { helper.saveCHK2File(text); });
        QVERIFY2(chk.startsWith("[CHK] ") && chk.endsWith(" " + text.toUtf8() + "\n"), chk.constData());
        const QByteArray scl = captureStderr([&] { helper.saveSCL2File(QStringLiteral("x")); });
        QVERIFY2(scl.startsWith("[SCL] ") && scl.endsWith(" x\n"), scl.constData());
        qInstallMessageHandler(nullptr);
    }

    // --- the whole program ---

    // A first start writes the defaults; an unknown language is kept as it
    // is, not replaced by a default, and starts without error either.
    void programStartsAndExitsCleanly_data()
    {
        QTest::addColumn<QByteArray>("config");
        QTest::addColumn<QByteArray>("written");
        QTest::newRow("first start") << QByteArray() << QByteArray("225|1|50|5|5|1920*1080|");
        QTest::newRow("unknown language")
            << QByteArray("225|1|50|5|5|1920*1080|h:15000|0|-1|-1|0|0|Klingon|bt|||0|0|0|0|a@b")
            << QByteArray("|Klingon|");
    }

    void programStartsAndExitsCleanly()
    {
        QFETCH(QByteArray, config);
        QFETCH(QByteArray, written);
        TestDevice device;
        if (!config.isNull())
            device.writeFile(QStringLiteral("app/CAMCFG/config.txt"), config);
        int exitCode = 0;
        const QByteArray log = runProgramOnce(device, &exitCode);
        QCOMPARE(exitCode, 0);
        QVERIFY2(TestDevice::readFile(device.configFile()).contains(written), log.constData());
        QVERIFY2(!log.contains("Critical:") && !log.contains("Fatal:"), log.constData());
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
