// SPDX-License-Identifier: GPL-2.0-or-later
// The regions the device can be set to: each one's analysis server and the name the update server files it under.
#include "region.h"

#include "platform.h"

#include <iterator>

namespace region {

namespace {

// The first entry is the fallback of forIndex.
const Entry kRegions[] = {
    {Us, "us", &Platform::analysisHostUs, "/production/"},
    {India, "india", &Platform::analysisHostIndia, "/production/"},
    // The Chinese server was set up separately and takes uploads under its own path.
    {China, "china", &Platform::analysisHostChina, "/upload_pupil_images/"},
    {Philippines, "philippines", &Platform::analysisHostPhilippines, "/production/"},
};

} // namespace

const Entry &forIndex(int index)
{
    for (const Entry &entry : kRegions) {
        if (entry.index == index)
            return entry;
    }
    return *std::begin(kRegions);
}

QString analysisUrl(int index, const Platform &platform, const QString &mac)
{
    const Entry &entry = forIndex(index);
    return QStringLiteral("http://") + platform.*entry.analysisHost + QLatin1Char(':') +
           QString::number(platform.analysisPort) + QLatin1String(entry.analysisPath) + mac;
}

} // namespace region
