// SPDX-License-Identifier: GPL-2.0-or-later
// Fuzz target: any version list gives only lines that name a version and its description file.
#include "firmwareupdate.h"
#include "fuzzsupport.h"

using fuzzsupport::require;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString text = fuzzsupport::text(data, size);
    const QStringList entries = firmwareupdate::parseVersionList(text);
    require(entries.size() <= text.count(QLatin1Char('\n')) + 1);
    for (const QString &entry : entries) {
        require(!entry.contains(QLatin1Char('\n')) && !entry.startsWith(QLatin1Char('#')));
        const QStringList fields = entry.split(QLatin1Char('\t'));
        require(fields.size() >= 2 && !fields.at(0).trimmed().isEmpty() && !fields.at(1).trimmed().isEmpty());
    }
    return 0;
}
