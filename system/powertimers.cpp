// SPDX-License-Identifier: GPL-2.0-or-later
// The screen-off and power-off durations: the texts the settings keep and the minutes the idle timers use.
#include "powertimers.h"

namespace powertimers {

const char *const kChoices[kChoiceCount] = {"1 Minute", "5 Minutes", "10 Minutes", "30 Minutes", "1 Hour", "Never"};

namespace {

const int kChoiceMinutes[kChoiceCount] = {1, 5, 10, 30, 60, -1};

} // namespace

int minutesFromSetting(const QString &setting)
{
    for (int i = 0; i < kChoiceCount; ++i) {
        if (setting == QLatin1String(kChoices[i]))
            return kChoiceMinutes[i];
    }
    bool ok = false;
    const int minutes = setting.toInt(&ok);
    return ok && minutes > 0 ? minutes : -1;
}

const char *choiceForMinutes(int minutes)
{
    for (int i = 0; i < kChoiceCount; ++i) {
        if (kChoiceMinutes[i] == minutes)
            return kChoices[i];
    }
    return nullptr;
}

} // namespace powertimers
