// SPDX-License-Identifier: GPL-2.0-or-later
// The battery icon's level and the low-battery warning, from the gauge's percentage.
#include "batterylevel.h"

#include <algorithm>

namespace batterylevel {

Step next(int previousLevel, bool &warningArmed, int percent, bool externalPower)
{
    Step step;
    if (externalPower) {
        step.level = (previousLevel + 1) % 6;
        if (percent > 99)
            step.level = 5;
        else if (percent > 79)
            step.level = std::max(step.level, 4);
        else if (percent > 59)
            step.level = std::max(step.level, 3);
        else if (percent > 39)
            step.level = std::max(step.level, 2);
        else if (percent >= 20)
            step.level = std::max(step.level, 1);
        return step;
    }

    if (percent > 99)
        step.level = 5;
    else if (percent > 79)
        step.level = 4;
    else if (percent > 59)
        step.level = 3;
    else if (percent > 39)
        step.level = 2;
    else if (percent > 19)
        step.level = 1;
    else
        step.level = 0;

    // Between 20 % and 30 % the arming is left alone, so a gauge that wobbles
    // around 20 % cannot raise the box again and again.
    if (percent > 30)
        warningArmed = true;
    if (percent <= 19 && warningArmed) {
        step.warn = true;
        warningArmed = false;
    }
    return step;
}

} // namespace batterylevel
