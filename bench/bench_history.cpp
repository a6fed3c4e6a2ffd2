// SPDX-License-Identifier: GPL-2.0-or-later
// Benchmark: the history page's search and refresh over large histories, against cut and sort on the same file.
#include "benchmark.h"
#include "cmdutil.h"
#include "devicefactory.h"
#include "gdata.h"
#include "historysearch.h"
#include "maindialog.h"
#include "platform.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTimer>

#include <cstdio>

namespace {

// Tests of lines / 4 children, four each and interleaved, as a device that
// visits the same schools year after year would collect them.
QByteArray generateHistory(int lines)
{
    static const char *const first[] = {"Amy", "Sam", "Zoe", "Liam", "Noor", "Mateo", "Yuki", "Ana", "Olu", "Ivy"};
    const int children = lines / 4;
    QByteArray text;
    text.reserve(lines * 90);
    for (int i = 0; i < lines; ++i) {
        const int child = static_cast<int>((qint64(i) * 7919) % children);
        text += QStringLiteral("%1 %2,%3,20%4-0%5-1%6|2024-05-%7 10:%8,-0.50,-0.75,85,+0.25,-0.00,5,62,Pass\n")
                    .arg(QLatin1String(first[child % 10]))
                    .arg(child, 5, 10, QLatin1Char('0'))
                    .arg(child % 3 ? QStringLiteral("Female") : QStringLiteral("Male"))
                    .arg(15 + child % 9)
                    .arg(1 + child % 9)
                    .arg(child % 10)
                    .arg(10 + i % 18)
                    .arg(i % 60, 2, 10, QLatin1Char('0'))
                    .toUtf8();
    }
    return text;
}

// The natural reference: the same keys from the same file by the standard
// tools, byte order, run as a pipeline from this program.
int cutAndSort(const QString &path)
{
    QProcess pipeline;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C"));
    pipeline.setProcessEnvironment(environment);
    pipeline.start(QStringLiteral("/bin/sh"),
                   {QStringLiteral("-c"), QStringLiteral("cut -d'|' -f1 \"$0\" | sort -u"), path});
    if (!pipeline.waitForFinished(60000))
        return -1;
    return pipeline.readAllStandardOutput().count('\n');
}

struct Figures
{
    double searchMs;
    double refreshMs;
    double referenceMs;
    int keys;
    int rows;
    int referenceKeys;
};

Figures measure(MainDialog &window, const QString &file, int lines)
{
    QFile out(file);
    if (!out.open(QIODevice::WriteOnly | QIODevice::Truncate))
        qFatal("cannot write %s", qPrintable(file));
    out.write(generateHistory(lines));
    out.close();

    const int rounds = lines > 50000 ? 5 : 15;
    Figures figures{};
    auto *table = window.findChild<QAbstractItemView *>(QStringLiteral("tableViewSearchResult"));
    // The search as the page runs it: the file read whole, then the keys.
    const bench::Pair searchAndReference = bench::alternating(
        rounds, 1, [&](int) { figures.keys = historysearch::childKeys(g_pData->readTestResult(), QString()).size(); },
        [&](int) { figures.referenceKeys = cutAndSort(file); });
    // The refresh: the search plus the rows of the list, as after a deletion.
    const double refresh = bench::microsecondsPerCall(rounds, 1, [&](int) {
        QMetaObject::invokeMethod(&window, "on_buttonSearch_clicked", Qt::DirectConnection);
        figures.rows = table->model()->rowCount();
    });
    figures.searchMs = searchAndReference.first / 1000;
    figures.referenceMs = searchAndReference.second / 1000;
    figures.refreshMs = refresh / 1000;
    return figures;
}

} // namespace

int main(int argc, char *argv[])
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
    QApplication app(argc, argv);

    QTemporaryDir folder;
    Platform &platform = Platform::instance();
    platform.appDir = folder.path();
    platform.recordingFile = folder.path() + QStringLiteral("/pupil_video.avi");
    QDir().mkpath(folder.path() + QStringLiteral("/CAMCFG"));
    const QString file = folder.path() + QStringLiteral("/CAMCFG/result.txt");

    g_pCmdUtil = new CmdUtil;
    g_pData = new GData(g_pCmdUtil, makeSimulatedDevices());
    g_pData->Init(&app);
    MainDialog window(nullptr, MainDialog::Workers::DoNotStart);
    window.findChild<QTimer *>(QStringLiteral("timerMain"))->stop();
    window.show();

    const Figures small = measure(window, file, 10000);
    const Figures large = measure(window, file, 100000);
    const auto print = [](int lines, const Figures &f) {
        std::printf("%6d lines, %5d children (cut|sort: %d, list rows: %d)\n", lines, f.keys, f.referenceKeys, f.rows);
        std::printf("  search  (read + keys)      %9.2f ms\n", f.searchMs);
        std::printf("  refresh (search + list)    %9.2f ms\n", f.refreshMs);
        std::printf("  cut -d'|' -f1 | sort -u    %9.2f ms\n", f.referenceMs);
    };
    print(10000, small);
    print(100000, large);
    std::printf("\nten times the lines (target close to 10, i.e. linear):\n");
    std::printf("  search  %6.2f\n  refresh %6.2f\n  cut|sort %5.2f\n", large.searchMs / small.searchMs,
                large.refreshMs / small.refreshMs, large.referenceMs / small.referenceMs);
    std::printf("\nagainst cut|sort at 100000 lines:\n");
    bench::printRatio("search (ms)", large.searchMs, "cut|sort (ms)", large.referenceMs, 3.0);
    bench::printRatio("refresh (ms)", large.refreshMs, "cut|sort (ms)", large.referenceMs, 3.0);
    return 0;
}
