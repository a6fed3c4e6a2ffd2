// SPDX-License-Identifier: GPL-2.0-or-later
// Starting and joining a QThread so that its end is ordered before what follows the join, as the thread sanitizer sees it.
#pragma once

#include <QThread>

#include <climits>

// Qt's threads are detached and QThread::wait() synchronises through Qt's
// own futex and wait condition, which an uninstrumented Qt hides from the
// thread sanitizer: what a worker did then looks concurrent with its
// destruction. Each thread started here releases an atomic as it finishes,
// and each join acquires it. Outside the sanitizer this costs one atomic
// operation per start and per join.
namespace threadjoin {

void start(QThread *thread);
// QThread::wait, then the acquire; false when the time ran out first.
bool wait(QThread *thread, unsigned long milliseconds = ULONG_MAX);

} // namespace threadjoin
