// SPDX-License-Identifier: GPL-2.0-or-later
// The device's wall clock: the system time, corrected where the clock cannot be set.
#include "systemclock.h"

#include <QDateTime>

#include <atomic>
#include <ctime>
#include <mutex>

namespace systemclock {

namespace {

std::atomic<qint64> s_offset{0};
std::mutex s_sourceMutex;
std::function<qint64()> s_source;

qint64 uncorrectedMSecs()
{
    {
        std::lock_guard<std::mutex> locker(s_sourceMutex);
        if (s_source)
            return s_source();
    }
    return QDateTime::currentMSecsSinceEpoch();
}

} // namespace

qint64 nowMSecs()
{
    return uncorrectedMSecs() + s_offset;
}

qint64 nowSecs()
{
    return nowMSecs() / 1000;
}

void setOffsetMSecs(qint64 offset)
{
    s_offset = offset;
}

qint64 offsetMSecs()
{
    return s_offset;
}

void setSourceForTesting(std::function<qint64()> msecsSinceEpoch)
{
    std::lock_guard<std::mutex> locker(s_sourceMutex);
    s_source = std::move(msecsSinceEpoch);
}

int KernelClock::setSecs(qint64 secsSinceEpoch)
{
    // clock_settime rather than stime: newer C libraries no longer offer
    // stime, and this takes a 64-bit time where the board's time_t allows.
    timespec time{};
    time.tv_sec = static_cast<time_t>(secsSinceEpoch);
    if (static_cast<qint64>(time.tv_sec) != secsSinceEpoch)
        return -1;
    if (clock_settime(CLOCK_REALTIME, &time) != 0)
        return -1;
    // The kernel now holds the time itself; a correction on top would count twice.
    s_offset = 0;
    return 0;
}

int ProcessClock::setSecs(qint64 secsSinceEpoch)
{
    s_offset = secsSinceEpoch * 1000 - uncorrectedMSecs();
    return 0;
}

} // namespace systemclock
