// SPDX-License-Identifier: GPL-2.0-or-later
// The boot-time start-up script under dash: installing an update, keeping the previous program, the rollback,
// and power cuts between its steps.
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

namespace {

// Programs as the script sees them: each notes its name when it runs; a good
// one then marks the boot good, as the real program does once its window shows.
QByteArray program(const char *name, bool good)
{
    QByteArray text = "#!/bin/sh\necho " + QByteArray(name) + " >>\"$(dirname \"$0\")/ran\"\n";
    text += good ? "/bin/rm -f \"$(dirname \"$0\")/orvella.trial\"\n" : "exit 1\n";
    return text;
}

// The commands the script changes files with; a wrapper counts each call and
// cuts the power (kills the script outright) at the chosen one.
const char *const kWrapped[] = {"sync", "mv", "ln", "chmod", "rm"};

} // namespace

class BootScriptTest : public QObject
{
    Q_OBJECT

    std::unique_ptr<QTemporaryDir> m_root;

    QString dir() const { return m_root->path() + QStringLiteral("/app"); }
    QString file(const char *name) const { return dir() + QLatin1Char('/') + QLatin1String(name); }
    QByteArray read(const char *name) const
    {
        QFile f(file(name));
        return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
    }
    void write(const char *name, const QByteArray &bytes) const
    {
        QFile f(file(name));
        QVERIFY(f.open(QIODevice::WriteOnly | QIODevice::Truncate));
        f.write(bytes);
        f.close();
        f.setPermissions(f.permissions() | QFileDevice::ExeOwner);
    }
    // The name of the program the last boot ran; empty when none ran.
    QString lastRan() const
    {
        const QList<QByteArray> lines = read("ran").trimmed().split('\n');
        return QString::fromUtf8(lines.last());
    }

    // One boot; with killAt > 0 the power goes at that wrapped command.
    // Returns the number of wrapped commands the script reached.
    int boot(int killAt = 0)
    {
        QFile::remove(m_root->path() + QStringLiteral("/count"));
        QProcess script;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("PATH"), m_root->path() + QStringLiteral("/wrap:/usr/bin:/bin"));
        environment.insert(QStringLiteral("KILL_AT"), QString::number(killAt));
        environment.insert(QStringLiteral("TEST_PID"), QString::number(QCoreApplication::applicationPid()));
        environment.insert(QStringLiteral("COUNT_FILE"), m_root->path() + QStringLiteral("/count"));
        script.setProcessEnvironment(environment);
        script.start(QStringLiteral("dash"), {QStringLiteral(ORVELLA_START_SCRIPT), dir()});
        if (!script.waitForFinished(20000))
            script.kill();
        QFile count(m_root->path() + QStringLiteral("/count"));
        return count.open(QIODevice::ReadOnly) ? count.readAll().trimmed().toInt() : 0;
    }

private slots:
    void init()
    {
        m_root = std::make_unique<QTemporaryDir>();
        QVERIFY(QDir().mkpath(dir()));
        const QString wrap = m_root->path() + QStringLiteral("/wrap");
        QVERIFY(QDir().mkpath(wrap));
        for (const char *name : kWrapped) {
            const QString real = QStandardPaths::findExecutable(QLatin1String(name), {"/usr/bin", "/bin"});
            QVERIFY2(!real.isEmpty(), name);
            QFile wrapper(wrap + QLatin1Char('/') + QLatin1String(name));
            QVERIFY(wrapper.open(QIODevice::WriteOnly));
            wrapper.write("#!/bin/sh\n"
                          "n=0\n"
                          "[ -f \"$COUNT_FILE\" ] && read n <\"$COUNT_FILE\"\n"
                          "n=$((n + 1))\n"
                          "echo \"$n\" >\"$COUNT_FILE\"\n"
                          // Never the test itself, should a program it started call one.
                          "if [ \"$n\" -eq \"$KILL_AT\" ] && [ \"$PPID\" != \"$TEST_PID\" ]; then\n"
                          "    kill -KILL \"$PPID\"\n"
                          "    exit 1\n"
                          "fi\n"
                          "exec " +
                          real.toUtf8() + " \"$@\"\n");
            wrapper.close();
            wrapper.setPermissions(wrapper.permissions() | QFileDevice::ExeOwner);
        }
        write("orvella", program("v1", true));
    }

    void withoutANewFileNothingChanges()
    {
        boot();
        QCOMPARE(lastRan(), QStringLiteral("v1"));
        QCOMPARE(QDir(dir()).entryList(QDir::Files), QStringList({"orvella", "ran"}));
    }

    void installsTheNewProgramAndKeepsThePrevious()
    {
        write("orvella.new", program("v2", true));
        boot();
        QCOMPARE(lastRan(), QStringLiteral("v2"));
        QCOMPARE(read("orvella"), program("v2", true));
        QCOMPARE(read("orvella.prev"), program("v1", true));
        QVERIFY(!QFile::exists(file("orvella.new")));
        QVERIFY2(!QFile::exists(file("orvella.trial")), "the good boot ends the trial");
        boot();
        QCOMPARE(read("orvella"), program("v2", true));
    }

    void returnsToThePreviousAfterThreeFailedBoots()
    {
        write("orvella.new", program("v2", false));
        for (int i = 0; i < 3; ++i) {
            boot();
            QCOMPARE(lastRan(), QStringLiteral("v2"));
        }
        boot();
        QCOMPARE(lastRan(), QStringLiteral("v1"));
        QCOMPARE(read("orvella"), program("v1", true));
        QVERIFY(!QFile::exists(file("orvella.trial")));
        boot();
        QCOMPARE(read("ran"), QByteArray("v2\nv2\nv2\nv1\nv1\n"));
    }

    void aPowerCutAtAnyStepLeavesAProgramThatStarts_data()
    {
        QTest::addColumn<bool>("broken");
        QTest::newRow("installing") << false;
        QTest::newRow("rolling back") << true;
    }

    void aPowerCutAtAnyStepLeavesAProgramThatStarts()
    {
        QFETCH(bool, broken);
        const QByteArray v1 = program("v1", true);
        const QByteArray v2 = program("v2", !broken);
        // The state before the boot that is cut: a fresh download, or a
        // broken program on its third failed boot.
        const auto prepare = [&] {
            for (const QString &name : QDir(dir()).entryList(QDir::Files))
                QFile::remove(dir() + QLatin1Char('/') + name);
            write("orvella", broken ? v2 : v1);
            if (broken) {
                write("orvella.prev", v1);
                write("orvella.trial", "3\n");
            } else {
                write("orvella.new", v2);
            }
        };
        prepare();
        const int steps = boot();
        QVERIFY(steps >= 4);
        for (int cut = 1; cut <= steps; ++cut) {
            prepare();
            boot(cut);
            const QByteArray left = read("orvella");
            QVERIFY2(left == v1 || left == v2, qPrintable(QStringLiteral("cut at step %1").arg(cut)));
            QFile::remove(file("ran"));
            boot();
            QVERIFY2(!lastRan().isEmpty(),
                     qPrintable(QStringLiteral("nothing started after a cut at step %1").arg(cut)));
            QCOMPARE(read("orvella"), broken ? v1 : v2);
        }
    }
};

QTEST_GUILESS_MAIN(BootScriptTest)
#include "tst_bootscript.moc"
