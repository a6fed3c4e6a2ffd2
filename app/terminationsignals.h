// SPDX-License-Identifier: GPL-2.0-or-later
// Turns SIGTERM and SIGINT into a normal return from the event loop.
#pragma once

#include <functional>

class QCoreApplication;

// The device itself is switched off rather than stopped, but the simulator and
// a service shell stop the program with a signal; leaving the event loop then
// lets it exit with status 0 instead of dying mid-write.
//
// Called first thing in main, before anything slow: from then on the signals
// are held on a self-pipe instead of killing the half-started program.
void catchTerminationSignals();

// Once the application object exists: a signal held since the start, or any
// later one, makes its event loop return as soon as the loop runs. While
// `busy` says a job runs (an upload whose child's result is not saved yet),
// the stop waits for it, for at most `longestWaitMs`: quitting ends every
// nested event loop, and the job would return as a failure.
void quitOnTerminationSignals(QCoreApplication *app, std::function<bool()> busy = {}, int longestWaitMs = 120000);
