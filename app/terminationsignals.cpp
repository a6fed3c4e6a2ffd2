// SPDX-License-Identifier: GPL-2.0-or-later
// Turns SIGTERM and SIGINT into a normal return from the event loop.
#include "terminationsignals.h"

#include <QCoreApplication>
#include <QDebug>
#include <QElapsedTimer>
#include <QSocketNotifier>
#include <QTimer>

#include <csignal>
#include <sys/socket.h>
#include <unistd.h>

namespace {

int s_signalPipe[2] = {-1, -1};

// Only async-signal-safe work here: the event loop reads the byte. The pipe
// does not block, so a burst of signals cannot hang the handler; one byte
// left unread is enough to quit.
void onSignal(int number)
{
    const char byte = static_cast<char>(number);
    [[maybe_unused]] const ssize_t written = ::write(s_signalPipe[0], &byte, 1);
}

} // namespace

void catchTerminationSignals()
{
    // A printer, server or helper program that hangs up while the device is
    // still writing to it is a failed write to report, not a reason to die.
    ::signal(SIGPIPE, SIG_IGN);
    if (s_signalPipe[0] >= 0)
        return;
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0, s_signalPipe) != 0) {
        s_signalPipe[0] = s_signalPipe[1] = -1;
        return;
    }
    struct sigaction action = {};
    action.sa_handler = onSignal;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    ::sigaction(SIGTERM, &action, nullptr);
    ::sigaction(SIGINT, &action, nullptr);
}

void quitOnTerminationSignals(QCoreApplication *app, std::function<bool()> busy, int longestWaitMs)
{
    catchTerminationSignals();
    if (s_signalPipe[1] < 0)
        return;
    // The notifier is level-triggered: a byte written before the loop started
    // is seen on its first pass, and quit() is only heard inside the loop.
    auto *notifier = new QSocketNotifier(s_signalPipe[1], QSocketNotifier::Read, app);
    QObject::connect(notifier, &QSocketNotifier::activated, app, [app, busy, longestWaitMs]() {
        char number = 0;
        if (::read(s_signalPipe[1], &number, 1) != 1)
            return;
        if (!busy || !busy()) {
            qDebug("signal %d: leaving", number);
            app->quit();
            return;
        }
        qDebug("signal %d: leaving once the running job ends", number);
        auto *poll = new QTimer(app);
        auto *waited = new QElapsedTimer;
        waited->start();
        QObject::connect(poll, &QTimer::timeout, app, [app, poll, waited, busy, longestWaitMs]() {
            if (busy() && waited->elapsed() < longestWaitMs)
                return;
            qDebug("leaving after %lld ms", static_cast<long long>(waited->elapsed()));
            delete waited;
            poll->deleteLater();
            app->quit();
        });
        poll->start(100);
    });
}
