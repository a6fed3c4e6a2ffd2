// SPDX-License-Identifier: GPL-2.0-or-later
// A deliberate data race in a QThread, which the thread sanitizer stage must report: proof that its suppressions hide Qt's internals, not our threads.
#include <QCoreApplication>
#include <QThread>

namespace {

// Written by both threads without a lock or an atomic, on purpose.
int g_shared = 0;

void bump()
{
    for (int i = 0; i < 1000; ++i)
        ++g_shared;
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    // The racing thread's bottom frame is in Qt, as in every worker of ours.
    QThread *racer = QThread::create(bump);
    racer->start();
    bump();
    racer->wait();
    delete racer;
    return g_shared > 0 ? 0 : 1;
}
