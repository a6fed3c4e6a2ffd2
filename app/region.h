// SPDX-License-Identifier: GPL-2.0-or-later
// The regions the device can be set to: each one's analysis server and the name the update server files it under.
#pragma once

#include <QString>

struct Platform;

namespace region {

// Values of the region setting.
enum Index { Us = 0, India = 1, China = 2, Philippines = 3 };

struct Entry
{
    int index;
    // Lower-case English; the update server's folders are named by it, so it never changes.
    const char *name;
    QString Platform::*analysisHost;
    const char *analysisPath;
};

// The entry of a region setting; a value that names no region is the US,
// the factory setting, so a damaged setting still uploads somewhere.
const Entry &forIndex(int index);

// "http://host:port/path/" followed by the MAC address, as the analysis server expects it.
QString analysisUrl(int index, const Platform &platform, const QString &mac);

} // namespace region
