// SPDX-License-Identifier: GPL-2.0-or-later
// What the simulator adds beside the device window: its servers, and the control panel or a scripted tester.
#include "simulatortools.h"

#include "analysisserver.h"
#include "cloudprintserver.h"
#include "controlpanel.h"
#include "platform.h"
#include "scriptedoperator.h"
#include "updateserver.h"
#include "versionstamp.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QScreen>
#include <QWidget>

#include <algorithm>

namespace {

// The deployment file of the simulator points all four regional hosts at one
// loopback address, so serving the US host's address serves every region.
AnalysisServer *startAnalysisServer()
{
    auto *server = new AnalysisServer;
    const Platform &platform = Platform::instance();
    server->start(platform.analysisHostUs, platform.analysisPort);
    // Stopped while the application still exists: a request being answered
    // may still be logging through Qt.
    QObject::connect(QCoreApplication::instance(), &QCoreApplication::aboutToQuit, [server] { delete server; });
    return server;
}

// At the host and port the deployment names for the cloud printing service;
// a host that is not a loopback address is left alone (and not served).
CloudPrintServer *startCloudPrintServer()
{
    auto *server = new CloudPrintServer;
    server->start(Platform::instance().cloudPrintHost);
    QObject::connect(QCoreApplication::instance(), &QCoreApplication::aboutToQuit, [server] { delete server; });
    return server;
}

// This program's own file with another version in its version record: an
// update that really replaces the program, and then reports the new version.
UpdateServer::Maker restampedProgram(const QString &version)
{
    return [version] {
        QFile file(QCoreApplication::applicationFilePath());
        if (!file.open(QIODevice::ReadOnly))
            return QByteArray();
        QByteArray program = file.readAll();
        return versionstamp::restamp(program, version) ? program : QByteArray();
    };
}

// At the deployment's update address; a host that is not a loopback address
// is left alone. Publishes the next version (the newest), a broken one that
// dies before its window shows, and the first one, for the version switch.
UpdateServer *startUpdateServer()
{
    auto *server = new UpdateServer;
    server->publish(QStringLiteral("0.0.2"), restampedProgram(QStringLiteral("0.0.2")),
                    QStringLiteral("the next release"));
    server->publish(
        QStringLiteral("0.0.3"),
        [] {
            return QByteArray("#!/bin/sh\n"
                              "echo 'orvella 0.0.3: Segmentation fault' >&2\n"
                              "exit 139\n");
        },
        QStringLiteral("a broken build: dies before its window shows"));
    server->publish(QStringLiteral("0.0.1"), restampedProgram(QStringLiteral("0.0.1")),
                    QStringLiteral("the first release"));
    // Published before it listens: the device asks as soon as its network is up.
    server->start(Platform::instance().updateBaseUrl);
    QObject::connect(QCoreApplication::instance(), &QCoreApplication::aboutToQuit, [server] { delete server; });
    return server;
}

// What the scripted tester did before the device last restarted: the last
// line of its notes, which it writes before each update it starts.
ScriptedOperator::Boot testerBoot(const QString &notes)
{
    QFile file(notes);
    if (!file.open(QIODevice::ReadOnly))
        return ScriptedOperator::Boot::First;
    const QList<QByteArray> lines = file.readAll().trimmed().split('\n');
    if (lines.last() == "installing-broken")
        return ScriptedOperator::Boot::AfterBrokenUpdate;
    if (lines.last() == "installing-update")
        return ScriptedOperator::Boot::AfterUpdate;
    return ScriptedOperator::Boot::First;
}

} // namespace

void startSimulatorTools(QWidget *device)
{
    AnalysisServer *server = startAnalysisServer();
    CloudPrintServer *cloud = startCloudPrintServer();
    UpdateServer *update = startUpdateServer();
    if (QGuiApplication::platformName() == QLatin1String("offscreen")) {
        QString state = qEnvironmentVariable("ORVELLA_SIM_DIR");
        if (state.isEmpty())
            state = QDir::tempPath();
        const QString notes = state + QStringLiteral("/tester-notes");
        auto *tester = new ScriptedOperator(device, state + QStringLiteral("/screens"), testerBoot(notes), device);
        tester->setCloudPrintServer(cloud);
        tester->setUpdateServer(update, notes);
        tester->setPrinterDir(state + QStringLiteral("/printer"));
        tester->start();
        return;
    }
    auto *panel = new ControlPanel(server, cloud, update);
    panel->setAttribute(Qt::WA_DeleteOnClose);
    panel->show();
    // Side by side, the pair centred on the device's screen: a centred
    // device alone would push the panel off a 1920-pixel screen.
    const QRect screen = device->screen()->availableGeometry();
    const int gap = 16;
    const int width = device->frameGeometry().width() + gap + panel->frameGeometry().width();
    const int left = screen.left() + std::max(0, (screen.width() - width) / 2);
    device->move(left, device->frameGeometry().top());
    panel->move(left + device->frameGeometry().width() + gap, device->frameGeometry().top());
}
