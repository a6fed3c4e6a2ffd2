// SPDX-License-Identifier: GPL-2.0-or-later
// The battery icon's level and the low-battery warning, from the gauge's percentage.
#pragma once

namespace batterylevel {

struct Step
{
    int level = 5;     // icon level, 0 (empty) to 5 (full)
    bool warn = false; // show the low-battery box now
};

// One refresh of the battery label. On battery the level follows the
// percentage and the warning fires once at 19 % or less, re-armed only
// above 30 %. On external power the icon animates: each refresh climbs one
// level from a floor set by the charge, and no warning is given.
Step next(int previousLevel, bool &warningArmed, int percent, bool externalPower);

} // namespace batterylevel
