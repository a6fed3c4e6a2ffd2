// SPDX-License-Identifier: GPL-2.0-or-later
// Fuzz target: any list_network text gives the saved networks, and a name not among them has no number.
#include "wifiparsers.h"
#include "fuzzsupport.h"

using fuzzsupport::require;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString text = fuzzsupport::text(data, size);
    const QStringList saved = wifiparsers::parseSavedNetworks(text);
    for (const QString &ssid : saved) {
        wifiparsers::findSavedNetwork(text, ssid);
        // A name that is not saved has no number, however the table looks.
        const QString other = ssid + QStringLiteral("\n");
        if (!saved.contains(other))
            require(wifiparsers::findSavedNetwork(text, other) == -1);
    }
    return 0;
}
