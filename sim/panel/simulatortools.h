// SPDX-License-Identifier: GPL-2.0-or-later
// What the simulator adds beside the device window: its servers, and the control panel or a scripted tester.
#pragma once

class QWidget;

// The analysis, cloud printing and update servers at the deployment's
// addresses, for as long as the application runs. With a display: the control panel beside
// the device. On the offscreen platform: a scripted tester that works the
// device and reports on standard error, keeping screenshots in
// $ORVELLA_SIM_DIR/screens.
void startSimulatorTools(QWidget *device);
