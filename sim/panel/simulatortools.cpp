// SPDX-License-Identifier: GPL-2.0-or-later
// What the simulator adds beside the device window: the analysis server, and the control panel or a scripted tester.
#include "simulatortools.h"

#include "analysisserver.h"
#include "cloudprintserver.h"
#include "controlpanel.h"
#include "platform.h"
#include "scriptedoperator.h"

#include <QCoreApplication>
#include <QDir>
#include <QGuiApplication>
#include <QWidget>

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

} // namespace

void startSimulatorTools(QWidget *device)
{
    AnalysisServer *server = startAnalysisServer();
    CloudPrintServer *cloud = startCloudPrintServer();
    if (QGuiApplication::platformName() == QLatin1String("offscreen")) {
        QString state = qEnvironmentVariable("ORVELLA_SIM_DIR");
        if (state.isEmpty())
            state = QDir::tempPath();
        auto *tester = new ScriptedOperator(device, state + QStringLiteral("/screens"), device);
        tester->setCloudPrintServer(cloud);
        tester->setPrinterDir(state + QStringLiteral("/printer"));
        tester->start();
        return;
    }
    auto *panel = new ControlPanel(server, cloud);
    panel->setAttribute(Qt::WA_DeleteOnClose);
    panel->show();
    panel->move(device->frameGeometry().right() + 16, device->frameGeometry().top());
}
