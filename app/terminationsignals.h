// SPDX-License-Identifier: GPL-2.0-or-later
// Turns SIGTERM and SIGINT into a normal return from the event loop.
#pragma once

class QCoreApplication;

// The device itself is switched off rather than stopped, but the simulator and
// a service shell stop the program with a signal; leaving the event loop then
// lets it exit with status 0 instead of dying mid-write.
//
// Called first thing in main, before anything slow: from then on the signals
// are held on a self-pipe instead of killing the half-started program.
void catchTerminationSignals();

// Once the application object exists: a signal held since the start, or any
// later one, makes its event loop return as soon as the loop runs.
void quitOnTerminationSignals(QCoreApplication *app);
