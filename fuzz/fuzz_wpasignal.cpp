// SPDX-License-Identifier: GPL-2.0-or-later
// Fuzz target: any signal_poll or one-word reply, and any escaped name, is read without harm.
#include "wifiparsers.h"
#include "fuzzsupport.h"

using fuzzsupport::require;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString text = fuzzsupport::text(data, size);
    const int rssi = wifiparsers::parseRssi(text);
    if (!text.section(QLatin1Char('\n'), 0, 0).contains(QLatin1String("RSSI=")))
        require(rssi == 0);
    if (wifiparsers::isOk(text))
        require(text.startsWith(QLatin1Char('O')) || text.startsWith(QLatin1Char('\n')));

    // The decoders never grow a text: an escape is longer than its byte.
    const QByteArray bytes = fuzzsupport::bytes(data, size);
    require(wifiparsers::urlDecode(bytes).size() <= bytes.size());
    wifiparsers::ssidDecode(text);
    require(wifiparsers::unicodeToText(text).size() <= text.size());
    return 0;
}
