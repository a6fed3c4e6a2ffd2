// SPDX-License-Identifier: GPL-2.0-or-later
// The screen-off and power-off durations: the texts the settings keep and the minutes the idle timers use.
#pragma once

#include <QString>

namespace powertimers {

// The choices, untranslated, as the settings store them.
constexpr int kChoiceCount = 6;
extern const char *const kChoices[kChoiceCount];

// Minutes of a stored setting, -1 for never. The settings hold either a
// choice text or, from the factory defaults, a number of minutes.
// Anything else, and a number below 1, counts as never: a timer that
// fired at once would switch the device off as soon as it was put down.
int minutesFromSetting(const QString &setting);

// The choice text for a number of minutes, or nullptr when no choice has it.
const char *choiceForMinutes(int minutes);

} // namespace powertimers
