// SPDX-License-Identifier: GPL-2.0-or-later
// Fuzz target: a settings file of any content is read without harm into settings that the device can use and save.
#include "camcfg.h"
#include "platform.h"
#include "powertimers.h"
#include "region.h"
#include "fuzzsupport.h"

using fuzzsupport::require;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    CamCfg config;
    config.setRawText(fuzzsupport::text(data, size));
    const QString filled = config.parseCurrentCFG();
    require(filled.isEmpty() || filled == QLatin1String("1"));

    // What start-up does with the values it read.
    for (const int position : {CamCfg::ScreenOffMinutes, CamCfg::PowerOffMinutes}) {
        const int minutes = powertimers::minutesFromSetting(config.value(position));
        require(minutes == -1 || minutes >= 1);
    }
    const int regionIndex = config.value(CamCfg::Region).toInt();
    const region::Entry &entry = region::forIndex(regionIndex);
    require(entry.name != nullptr);
    require(region::analysisUrl(regionIndex, Platform::instance(), QString()).startsWith(QLatin1String("http://")));

    // A saved line reads back as the same settings, unless a value carried
    // the separator (which can only come from a line that had more fields).
    const QString saved = config.dogenCurrentCFG();
    CamCfg again;
    again.setRawText(saved);
    require(again.parseCurrentCFG().isEmpty());
    for (int position = 1; position <= CamCfg::kPositions; ++position)
        require(again.value(position) == config.value(position));
    return 0;
}
