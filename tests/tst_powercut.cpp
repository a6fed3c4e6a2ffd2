// SPDX-License-Identifier: GPL-2.0-or-later
// Every file the device writes, cut off at each write, sync, rename and open: old or new, never torn.
#include "camcfg.h"
#include "gdata.h"
#include "historysearch.h"
#include "testsupport.h"

#include <QDir>
#include <QFile>
#include <QImage>
#include <QTest>

#include <csignal>
#include <cstdarg>
#include <functional>

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

// Armed only in the child that runs one operation: the n-th step that could
// change a file kills the process before the step happens, as a power cut
// between two steps would stop it.
int s_countdown = -1;

void cutPoint()
{
    if (s_countdown > 0 && --s_countdown == 0)
        ::raise(SIGKILL);
}

template <class Function> Function nextDefinition(const char *name)
{
    return reinterpret_cast<Function>(::dlsym(RTLD_NEXT, name));
}

bool writes(int flags)
{
    return (flags & (O_WRONLY | O_RDWR | O_CREAT | O_TRUNC)) != 0;
}

} // namespace

extern "C" {

ssize_t write(int fd, const void *buffer, size_t size)
{
    static const auto real = nextDefinition<ssize_t (*)(int, const void *, size_t)>("write");
    if (fd > 2) // the log is no file the device keeps
        cutPoint();
    return real(fd, buffer, size);
}

int fsync(int fd)
{
    static const auto real = nextDefinition<int (*)(int)>("fsync");
    cutPoint();
    return real(fd);
}

int fdatasync(int fd)
{
    static const auto real = nextDefinition<int (*)(int)>("fdatasync");
    cutPoint();
    return real(fd);
}

int ftruncate(int fd, off_t length)
{
    static const auto real = nextDefinition<int (*)(int, off_t)>("ftruncate");
    cutPoint();
    return real(fd, length);
}

int rename(const char *from, const char *to)
{
    static const auto real = nextDefinition<int (*)(const char *, const char *)>("rename");
    cutPoint();
    return real(from, to);
}

int renameat(int fromDir, const char *from, int toDir, const char *to)
{
    static const auto real = nextDefinition<int (*)(int, const char *, int, const char *)>("renameat");
    cutPoint();
    return real(fromDir, from, toDir, to);
}

int unlink(const char *path)
{
    static const auto real = nextDefinition<int (*)(const char *)>("unlink");
    cutPoint();
    return real(path);
}

#define ORVELLA_OPEN(name)                                                                                             \
    int name(const char *path, int flags, ...)                                                                         \
    {                                                                                                                  \
        static const auto real = nextDefinition<int (*)(const char *, int, ...)>(#name);                               \
        va_list arguments;                                                                                             \
        va_start(arguments, flags);                                                                                    \
        const mode_t mode = (flags & O_CREAT) ? mode_t(va_arg(arguments, int)) : 0;                                    \
        va_end(arguments);                                                                                             \
        if (writes(flags))                                                                                             \
            cutPoint();                                                                                                \
        return real(path, flags, mode);                                                                                \
    }
ORVELLA_OPEN(open)
ORVELLA_OPEN(open64)

int openat(int dir, const char *path, int flags, ...)
{
    static const auto real = nextDefinition<int (*)(int, const char *, int, ...)>("openat");
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = (flags & O_CREAT) ? mode_t(va_arg(arguments, int)) : 0;
    va_end(arguments);
    if (writes(flags))
        cutPoint();
    return real(dir, path, flags, mode);
}

} // extern "C"

class TestPowerCut : public QObject, private DeviceFixture
{
    Q_OBJECT

    // Runs the operation in a child cut off at its first, second, ... step
    // until one run gets through; after each cut the files are checked as
    // the next boot would find them. Returns the number of cuts tried.
    int cutEverywhere(const std::function<void()> &prepare, const std::function<void()> &operation,
                      const std::function<void(bool finished)> &check)
    {
        for (int step = 1; step < 1000; ++step) {
            prepare();
            const pid_t child = ::fork();
            if (child == 0) {
                s_countdown = step;
                operation();
                s_countdown = -1;
                ::_exit(0);
            }
            int status = 0;
            if (::waitpid(child, &status, 0) != child)
                return -1;
            const bool finished = WIFEXITED(status) && WEXITSTATUS(status) == 0;
            if (!finished && !(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL))
                return -1;
            check(finished);
            if (QTest::currentTestFailed())
                return -1;
            if (finished)
                return step - 1;
        }
        return -1;
    }

    QString historyFile() const { return m_device->appDir() + QStringLiteral("/CAMCFG/result.txt"); }

    static const QByteArray kHistory;

private slots:
    void init()
    {
        setUp(false);
        freezeClock();
        startDevice(true);
    }

    void cleanup() { tearDown(); }

    void everyFileIsOldOrNew_data()
    {
        QTest::addColumn<QString>("file");
        QTest::newRow("settings save") << QStringLiteral("config");
        QTest::newRow("calibration save") << QStringLiteral("calibration");
        QTest::newRow("history append with its photo") << QStringLiteral("append");
        QTest::newRow("history rewrite after a deletion") << QStringLiteral("rewrite");
        QTest::newRow("downloaded program") << QStringLiteral("update");
    }

    void everyFileIsOldOrNew()
    {
        QFETCH(QString, file);
        CamCfg &cfg = *m_data->m_pCamCfg;
        const QString history = QString::fromLatin1(kHistory);
        const QStringList keep = historysearch::childKeys(history, QString());
        QString path;
        QByteArray before;
        QByteArray after;
        std::function<void()> operation;
        QString photo;
        if (file == QLatin1String("config")) {
            path = cfg.configFilePath();
            before = TestDevice::readFile(path);
            cfg.setValue(CamCfg::Language, QStringLiteral("Chinese"));
            cfg.setValue(CamCfg::ReferralCriterion, QStringLiteral("2"));
            after = cfg.dogenCurrentCFG().toUtf8();
            operation = [&cfg] { cfg.saveCFG2File(); };
        } else if (file == QLatin1String("calibration")) {
            path = m_device->calibrationFile();
            m_device->writeFile(QStringLiteral("app/CAMCFG/sensor_calibration.txt"), "12,-3\n");
            before = TestDevice::readFile(path);
            operation = [this] {
                sensor_calibrate_data_t data;
                data.distance_offset = -40;
                data.pitch_offset = 7;
                m_data->setSensorCalibrationData(data);
            };
        } else if (file == QLatin1String("append")) {
            path = historyFile();
            before = kHistory;
            m_data->m_strName = QStringLiteral("Dee");
            m_data->m_strResult = QStringLiteral("Refer");
            QImage frame(GData::kCameraWidth, GData::kCameraHeight, QImage::Format_Grayscale8);
            frame.fill(120);
            m_data->m_pupilPhoto.offer(frame.constBits(), frame.width(), frame.height());
            operation = [this] { m_data->saveTestResult(); };
        } else if (file == QLatin1String("rewrite")) {
            path = historyFile();
            before = kHistory;
            after = historysearch::withoutKeys(history, {keep.at(1)}).toUtf8();
            operation = [&] {
                m_data->readTestResult();
                m_data->saveDeleteResult(QString::fromUtf8(after));
            };
        } else {
            path = m_device->appDir() + QStringLiteral("/orvella.tmp");
            after = QByteArray(300 * 1024, 'x');
            operation = [&] { m_data->versionSave(after); };
        }

        int records = 0;
        int lost = 0;
        const auto prepare = [&] {
            if (before.isNull())
                QFile::remove(path);
            else
                m_device->writeFile(QDir(m_device->root()).relativeFilePath(path), before);
            QDir(m_data->photoDir()).removeRecursively();
        };
        const auto check = [&](bool finished) {
            const QByteArray now = QFile::exists(path) ? TestDevice::readFile(path) : QByteArray();
            if (file == QLatin1String("append")) {
                // The old records whole, the new one whole or absent; its
                // photo, when there, a whole picture.
                const QStringList lines = m_data->readTestResult().split(QLatin1Char('\n'), Qt::SkipEmptyParts);
                records += 3;
                for (const QString &line : QString::fromLatin1(kHistory).split(QLatin1Char('\n'), Qt::SkipEmptyParts))
                    lost += lines.contains(line) ? 0 : 1;
                QVERIFY(lines.size() == 3 || (lines.size() == 4 && lines.last().startsWith(QLatin1String("Dee,"))));
                QVERIFY(!finished || lines.size() == 4);
                for (const QString &name : QDir(m_data->photoDir()).entryList({QStringLiteral("*.jpg")}, QDir::Files))
                    QVERIFY2(!QImage(m_data->photoDir() + QLatin1Char('/') + name).isNull(), qPrintable(name));
                return;
            }
            if (file == QLatin1String("calibration")) {
                sensor_calibrate_data_t read;
                QVERIFY(m_data->getSensorCalibrationData(read));
                QVERIFY((read.distance_offset == 12 && read.pitch_offset == -3) ||
                        (read.distance_offset == -40 && read.pitch_offset == 7));
                QVERIFY(!finished || read.distance_offset == -40);
                return;
            }
            QVERIFY2(now == before || now == after, now.left(80).constData());
            QVERIFY(!finished || now == after);
            if (file == QLatin1String("config")) {
                // As the next boot reads it.
                CamCfg next;
                next.setBaseDir(cfg.baseDir());
                QVERIFY(!next.readCFG4File().isEmpty() && !next.unreadable());
            }
            if (file == QLatin1String("rewrite")) {
                records += 3;
                const QString kept = QString::fromUtf8(now);
                for (const QString &key : {keep.at(0), keep.at(2)})
                    lost += kept.contains(key) ? 0 : 1;
            }
        };
        const int cuts = cutEverywhere(prepare, operation, check);
        QVERIFY(cuts > 0);
        QCOMPARE(lost, 0);
        qInfo("%s: %d cut points tried, %d records checked, %d lost", QTest::currentDataTag(), cuts, records, lost);
    }
};

const QByteArray TestPowerCut::kHistory =
    "Amy,Female,2019-03-02|2024-05-17 10:42,-0.50,-0.75,85,+0.25,-0.00,5,62,Pass\n"
    "Ben,Male,2018-01-09|2024-05-17 10:50,+0.50,-0.25,90,+0.50,-0.25,90,60,Pass\n"
    "Cleo,Female,2017-04-11|2024-05-17 11:02,+2.50,-1.75,170,+2.25,-1.50,10,58,Refer\n";

QTEST_GUILESS_MAIN(TestPowerCut)
#include "tst_powercut.moc"
