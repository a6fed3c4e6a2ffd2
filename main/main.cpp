// SPDX-License-Identifier: GPL-2.0-or-later
// Start-up: the services every page reaches, the font and language, then the main window.
#include "application.h"
#include "camcfg.h"
#include "cmdutil.h"
#include "devicefactory.h"
#include "gdata.h"
#include "maindialog.h"
#include "messagehandler.h"
#include "platform.h"
#include "terminationsignals.h"

#ifdef ORVELLA_SIMULATOR
#include "simulatortools.h"
#endif

#include <QDebug>
#include <QFont>
#include <QTextCodec>
#include <QTimer>

namespace {

// The window lives until the process ends; a static keeps it reachable.
MainDialog *s_mainDialog = nullptr;

} // namespace

int main(int argc, char *argv[])
{
    // Before anything slow: a stop asked for during start-up (the simulator,
    // a service shell, a test) must not kill the program half-started.
    catchTerminationSignals();
    Application app(argc, argv);
    quitOnTerminationSignals(&app, [] { return g_pData && g_pData->isBusy(); });

    // Translations and C strings are UTF-8 already; only the locale codec,
    // which turns texts into bytes for files and commands, needs setting.
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));

    qInstallMessageHandler(myMessageOutput);

    QString platformError;
    if (!Platform::instance().load(Platform::deploymentFilePath(), &platformError))
        qCritical("%s", qPrintable(platformError));

    const bool simulated = deploymentAsksForSimulator(Platform::deploymentFilePath());
#ifdef ORVELLA_SIMULATOR
    DeviceSet devices = simulated ? makeSimulatedDevices() : makeKernelDevices();
#else
    if (simulated)
        qCritical("this build has no simulator: the device's own hardware is used");
    DeviceSet devices = makeKernelDevices();
#endif

    g_pCmdUtil = new CmdUtil;

    g_pData = new GData(g_pCmdUtil, std::move(devices));
    g_pData->Init(&app);

    g_pData->versionDelete();

    auto *font = new QFont(QStringLiteral("WenQuanYi Micro Hei"));
    font->setPixelSize(28);
    QApplication::setFont(*font);

    const QString locale = Application::localeForLanguage(g_pData->m_pCamCfg->value(CamCfg::Language));
    if (!locale.isEmpty())
        app.switchLanguage(locale);

    s_mainDialog = new MainDialog;
    // The device's screen is the window; the simulator shows it framed on a desktop.
    if (!simulated)
        s_mainDialog->setWindowFlags(s_mainDialog->windowFlags() | Qt::FramelessWindowHint);
    s_mainDialog->show();
#ifdef ORVELLA_SIMULATOR
    if (simulated)
        startSimulatorTools(s_mainDialog);
#endif
    // Whoever started the program may wait for this line before talking to it.
    qDebug("main window shown");
    // Once the event loop has drawn the window, this boot counts as good and
    // a program just installed stays (deploy/orvella-start).
    QTimer::singleShot(0, [] { g_pData->markBootGood(); });

    const int result = app.exec();
    // The device is switched off rather than left; when the program is
    // stopped instead (the simulator, a service shell), the worker threads
    // must finish their step before the process's static objects go.
    delete s_mainDialog;
    s_mainDialog = nullptr;
    delete font;
    return result;
}
