// SPDX-License-Identifier: GPL-2.0-or-later
// Starting and joining a QThread so that its end is ordered before what follows the join, as the thread sanitizer sees it.
#include "threadjoin.h"

#include <atomic>

namespace threadjoin {

namespace {

std::atomic<unsigned> s_finished{0};

} // namespace

void start(QThread *thread)
{
    // Direct: the release runs on the finishing thread, after run().
    QObject::connect(
        thread, &QThread::finished, thread, [] { s_finished.fetch_add(1, std::memory_order_release); },
        Qt::DirectConnection);
    thread->start();
}

bool wait(QThread *thread, unsigned long milliseconds)
{
    const bool ended = thread->wait(milliseconds);
    s_finished.load(std::memory_order_acquire);
    return ended;
}

} // namespace threadjoin
