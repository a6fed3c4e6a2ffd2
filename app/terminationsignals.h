// SPDX-License-Identifier: GPL-2.0-or-later
// Turns SIGTERM and SIGINT into a normal return from the event loop.
#pragma once

class QCoreApplication;

// The device itself is switched off rather than stopped, but the simulator and
// a service shell stop the program with a signal; leaving the event loop then
// lets it exit with status 0 instead of dying mid-write.
void quitOnTerminationSignals(QCoreApplication *app);
