// SPDX-License-Identifier: GPL-2.0-or-later
// Fuzz target: any bluetoothctl output is cleaned and read into devices without harm, each known by a full address.
#include "btprintermanager.h"
#include "fuzzsupport.h"

using fuzzsupport::require;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString cleaned = BtPrinterManager::stripColours(fuzzsupport::text(data, size));
    QMap<QString, BtDevice> devices;
    BtPrinterManager::parseScanText(cleaned, devices);
    // Parsing the same output again finds no new device.
    const int count = devices.size();
    BtPrinterManager::parseScanText(cleaned, devices);
    require(devices.size() == count);
    for (auto it = devices.cbegin(); it != devices.cend(); ++it) {
        require(it.key().size() == 17 && it.value().mac == it.key());
        require(!it.value().name.isEmpty());
    }
    return 0;
}
