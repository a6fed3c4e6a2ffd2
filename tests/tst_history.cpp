// SPDX-License-Identifier: GPL-2.0-or-later
// The history file: one line per test appended and synced, read back whole, rewritten atomically.
#include "gdata.h"
#include "syncrecorder.h"
#include "testsupport.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTest>

#include <algorithm>
#include <memory>
#include <csignal>
#include <vector>

#include <dlfcn.h>
#include <limits.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

class TestHistory : public QObject, private DeviceFixture
{
    Q_OBJECT

private:
    QString historyDir() const { return m_device->appDir() + QStringLiteral("/CAMCFG"); }
    QString historyFile() const { return historyDir() + QStringLiteral("/result.txt"); }
    QByteArray onDisk() const { return TestDevice::readFile(historyFile()); }

    // Amy's test of the record layout, taken at 10:42 local time at +5.5.
    void amysTest(GData &data)
    {
        data.m_strName = QStringLiteral("Amy");
        data.m_nSex = 0;
        data.m_dateBirthday = QDate(2019, 3, 2);
        data.m_strODSphere = QStringLiteral("-0.50");
        data.m_strODCylinder = QStringLiteral("-0.75");
        data.m_strODAxis = QStringLiteral("85");
        data.m_strOSSphere = QStringLiteral("+0.25");
        data.m_strOSCylinder = QStringLiteral("-0.00");
        data.m_strOSAxis = QStringLiteral("5");
        data.m_strPupilDistance = QStringLiteral("62");
        data.m_strResult = QStringLiteral("Pass");
        data.m_strTimeZone = QStringLiteral("5.5");
        m_nowMs = QDateTime(QDate(2024, 5, 17), QTime(5, 12, 30), Qt::UTC).toMSecsSinceEpoch();
    }

    // A write that fails past the first few bytes, as on a full disk or when
    // the power goes during it.
    class FileSizeLimit
    {
    public:
        explicit FileSizeLimit(rlim_t bytes)
        {
            ::getrlimit(RLIMIT_FSIZE, &m_old);
            m_oldHandler = std::signal(SIGXFSZ, SIG_IGN);
            struct rlimit tiny = m_old;
            tiny.rlim_cur = bytes;
            ::setrlimit(RLIMIT_FSIZE, &tiny);
        }
        ~FileSizeLimit()
        {
            ::setrlimit(RLIMIT_FSIZE, &m_old);
            std::signal(SIGXFSZ, m_oldHandler);
        }

    private:
        struct rlimit m_old = {};
        void (*m_oldHandler)(int) = nullptr;
    };

private slots:
    void init()
    {
        setUp(false);
        freezeClock();
        // No Init: a fresh device has no CAMCFG folder until something saves.
        startDevice(false);
        s_syncs.clear();
    }

    void cleanup() { tearDown(); }

    // --- failure paths ---

    void unusableFolderSavesNothing()
    {
        m_device->writeFile(QStringLiteral("app/CAMCFG"), "not a folder");
        amysTest(*m_data);
        m_data->saveTestResult();
        // Receipts print this time; no record, no time.
        QCOMPARE(m_data->m_strTestTime, QString());
        QCOMPARE(m_data->readTestResult(), QString());
        m_data->saveDeleteResult(QStringLiteral("anything"));
        QCOMPARE(TestDevice::readFile(historyDir()), QByteArray("not a folder"));
    }

    // What a power cut or a full disk leaves behind never hides a later
    // record, nor glues the next record onto a broken line.
    void damageKeepsEveryWholeRecord_data()
    {
        QTest::addColumn<QByteArray>("before");
        QTest::addColumn<int>("sizeLimit"); // for the first save, 0 for none
        QTest::addColumn<QStringList>("lines");
        const QByteArray amy = "Amy,Female,2019-03-02|2024-05-17 10:42,-0.50,-0.75,85,+0.25,-0.00,5,62,Pass";
        const QByteArray ben = "Ben,Male,2018-01-09|2024-05-17 10:50,+0.50,-0.25,90,+0.50,-0.25,90,60,Pass";
        const QString amyLine = QString::fromLatin1(amy);
        QTest::newRow("zero-filled block between records")
            << amy + '\n' + QByteArray(4096, '\0') + ben + '\n' << 0
            << QStringList{amyLine, QString::fromLatin1(ben), QStringLiteral("Cleo"), QStringLiteral("Cleo")};
        QTest::newRow("torn line at the end") << amy + "\nBen,Male,2018-01-09|2024-05" << 0
                                              << QStringList{amyLine, QStringLiteral("Ben,Male,2018-01-09|2024-05"),
                                                             QStringLiteral("Cleo"), QStringLiteral("Cleo")};
        QTest::newRow("torn by a zero-filled tail") << amy + "\nBen,Ma" + QByteArray(512, '\0') << 0
                                                    << QStringList{amyLine, QStringLiteral("Ben,Ma"), QStringLiteral("Cleo"),
                                                                   QStringLiteral("Cleo")};
        QTest::newRow("disk full in the middle of a save")
            << amy + '\n' << amy.size() + 1 + 10
            << QStringList{amyLine, QStringLiteral("Cleo,Femal"), QStringLiteral("Cleo")};
    }

    void damageKeepsEveryWholeRecord()
    {
        QFETCH(QByteArray, before);
        QFETCH(int, sizeLimit);
        QFETCH(QStringList, lines);
        m_device->writeFile(QStringLiteral("app/CAMCFG/result.txt"), before);
        amysTest(*m_data);
        m_data->m_strName = QStringLiteral("Cleo");
        {
            std::unique_ptr<FileSizeLimit> limit(sizeLimit > 0 ? new FileSizeLimit(rlim_t(sizeLimit)) : nullptr);
            m_data->saveTestResult();
        }
        m_data->saveTestResult();
        QStringList read = m_data->readTestResult().split(QLatin1Char('\n'), Qt::SkipEmptyParts);
        for (QString &line : read) {
            if (line.startsWith(QLatin1String("Cleo,Female,2019-03-02|")))
                line = QStringLiteral("Cleo");
        }
        QCOMPARE(read, lines);
    }

    // A history that is there but cannot be read must not be replaced by
    // the little a deletion computed from nothing.
    void unreadableHistoryIsNeverRewritten()
    {
        QVERIFY(QDir().mkpath(historyFile()));
        QCOMPARE(m_data->readTestResult(), QString());
        QVERIFY(m_data->m_bHistoryUnreadable);
        QVERIFY(!m_data->saveDeleteResult(QString()));
        QVERIFY(QFileInfo(historyFile()).isDir());
        QVERIFY(QDir().rmdir(historyFile()));
        QCOMPARE(m_data->readTestResult(), QString());
        QVERIFY(m_data->saveDeleteResult(QString()));
    }

    void interruptedRewriteLeavesTheOldHistory()
    {
        const QByteArray before = "Amy,Female,2019-03-02|2024-05-17 10:42,-0.50,-0.75,85,+0.25,-0.00,5,62,Pass\n"
                                  "Ben,Male,2018-01-09|2024-05-17 10:50,+0.50,-0.25,90,+0.50,-0.25,90,60,Pass\n";
        m_device->writeFile(QStringLiteral("app/CAMCFG/result.txt"), before);
        {
            FileSizeLimit limit(16);
            m_data->saveDeleteResult(QString::fromLatin1(before.left(before.indexOf('\n'))));
        }
        QCOMPARE(onDisk(), before);
        QCOMPARE(QDir(historyDir()).entryList(QDir::Files), QStringList{QStringLiteral("result.txt")});
    }

    // --- appending ---

    void firstSaveCreatesTheFileWithTheExactLine()
    {
        QVERIFY(!QDir(historyDir()).exists());
        amysTest(*m_data);
        m_data->m_strName = QString::fromUtf8("Jos\xc3\xa9 N\xc3\xba\xc3\xb1\x65z");
        m_data->saveTestResult();
        const QByteArray line = "Jos\xc3\xa9 N\xc3\xba\xc3\xb1\x65z,Female,2019-03-02|2024-05-17 10:42,-0.50,-0.75,85,"
                                "+0.25,-0.00,5,62,Pass\n";
        QCOMPARE(onDisk(), line);
        QCOMPARE(m_data->m_strTestTime, QStringLiteral("2024-05-17 10:42"));
        // As read back after a restart.
        QCOMPARE(GData(nullptr, makeSimulatedDevices()).readTestResult(), QString::fromUtf8(line));
    }

    void appendIsOnTheDiskBeforeSaveReturns()
    {
        amysTest(*m_data);
        m_data->saveTestResult();
        m_data->m_strName = QStringLiteral("Ben");
        s_syncs.clear();
        m_data->saveTestResult();
        // The sync must come after the whole line reached the file, not
        // before the buffered write was pushed out.
        const qint64 size = onDisk().size();
        const bool synced = std::any_of(s_syncs.begin(), s_syncs.end(), [&](const Sync &sync) {
            return sync.path == historyFile() && sync.size == size;
        });
        QVERIFY2(synced, "no sync of the complete history file");
    }

    void twoTestsInOneMinuteGiveTwoRecords()
    {
        amysTest(*m_data);
        m_data->saveTestResult();
        m_nowMs += 20000;
        m_data->m_strName = QStringLiteral("Ben");
        m_data->m_nSex = 1;
        m_data->m_strResult.clear();
        m_data->saveTestResult();
        const QStringList lines = m_data->readTestResult().split(QLatin1Char('\n'));
        QCOMPARE(lines.size(), 3);
        QVERIFY(lines[0].startsWith(QLatin1String("Amy,Female,2019-03-02|2024-05-17 10:42,")));
        // No verdict leaves the last field empty.
        QVERIFY(lines[1].startsWith(QLatin1String("Ben,Male,2019-03-02|2024-05-17 10:42,")));
        QVERIFY(lines[1].endsWith(QLatin1String(",-0.00,5,62,")));
        QCOMPARE(lines[2], QString());
    }

    // --- rewriting after a deletion ---

    void rewriteReplacesTheWholeFile()
    {
        amysTest(*m_data);
        for (const char *name : {"Amy", "Ben", "Cleo"}) {
            m_data->m_strName = QString::fromLatin1(name);
            m_data->saveTestResult();
        }
        const QStringList lines = m_data->readTestResult().split(QLatin1Char('\n'));
        const QString remaining = lines[0] + QLatin1Char('\n') + lines[2];
        m_data->saveDeleteResult(remaining);
        QCOMPARE(m_data->readTestResult(), remaining);

        m_data->saveDeleteResult(QString());
        QVERIFY(QFile::exists(historyFile()));
        QCOMPARE(QFileInfo(historyFile()).size(), 0);
        QCOMPARE(QDir(historyDir()).entryList(QDir::Files), QStringList{QStringLiteral("result.txt")});
    }
};

QTEST_GUILESS_MAIN(TestHistory)
#include "tst_history.moc"
