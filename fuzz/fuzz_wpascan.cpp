// SPDX-License-Identifier: GPL-2.0-or-later
// Fuzz target: any scan_result text gives a list of distinct, named networks, strongest first.
#include "wifiparsers.h"
#include "fuzzsupport.h"

using fuzzsupport::require;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const wifiparsers::AccessPointList found = wifiparsers::parseScanResults(fuzzsupport::text(data, size));
    require(found.ssids.size() == found.signalLevels.size() && found.ssids.size() == found.flags.size());
    for (int i = 0; i < found.ssids.size(); ++i) {
        require(found.ssids.indexOf(found.ssids.at(i)) == i);
        if (i > 0)
            require(found.signalLevels.at(i - 1).toInt() >= found.signalLevels.at(i).toInt());
    }
    return 0;
}
