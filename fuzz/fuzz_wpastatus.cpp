// SPDX-License-Identifier: GPL-2.0-or-later
// Fuzz target: any status text is read without harm, and the state is the text after the last "wpa_state=".
#include "wifiparsers.h"
#include "fuzzsupport.h"

using fuzzsupport::require;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString text = fuzzsupport::text(data, size);
    const wifiparsers::LinkStatus status = wifiparsers::parseStatus(text);
    const QString state = wifiparsers::lastWpaState(text);
    if (!text.contains(QLatin1String("wpa_state=")))
        require(state.isEmpty() && status.state.isEmpty());
    require(state == state.trimmed() && !state.contains(QLatin1Char('\n')));
    require(!status.ssid.contains(QLatin1Char('\n')) && !status.bssid.contains(QLatin1Char('\n')));
    return 0;
}
