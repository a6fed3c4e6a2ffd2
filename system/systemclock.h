// SPDX-License-Identifier: GPL-2.0-or-later
// The device's wall clock: the system time, corrected where the clock cannot be set.
#pragma once

#include <QtGlobal>

#include <functional>

namespace systemclock {

// Seconds since the epoch, UTC, as the device believes them.
qint64 nowSecs();
qint64 nowMSecs();

// Where the system clock itself must not be touched (the simulator, the
// tests), a correction applied inside this process only.
void setOffsetMSecs(qint64 offset);
qint64 offsetMSecs();

// Replaces the time source; an empty function restores the system clock.
void setSourceForTesting(std::function<qint64()> msecsSinceEpoch);

// Sets the wall clock that nowSecs() reads. Returns 0, or -1 when the clock
// refused the time.
class Clock
{
public:
    virtual ~Clock() = default;
    virtual int setSecs(qint64 secsSinceEpoch) = 0;
};

// The kernel's clock: the device's only clock, which it keeps in UTC.
class KernelClock final : public Clock
{
public:
    int setSecs(qint64 secsSinceEpoch) override;
};

// The in-process correction: the simulator and the tests run on a host whose
// clock belongs to someone else.
class ProcessClock final : public Clock
{
public:
    int setSecs(qint64 secsSinceEpoch) override;
};

} // namespace systemclock
