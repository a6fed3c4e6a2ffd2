// SPDX-License-Identifier: GPL-2.0-or-later
// GData: opening and closing the Wi-Fi provisioning servers.
#include "gdata.h"

#include "platform.h"
#include "provisioningserver.h"

bool GData::startProvisioning()
{
    const Platform &platform = Platform::instance();
    ProvisioningSettings settings;
    settings.interfaceName = platform.provisioningInterface;
    settings.address = QHostAddress(platform.provisioningAddress);
    // Out of range ports are refused rather than wrapped into another one;
    // 0 (any free port) is for tests.
    if (platform.provisioningCommandPort < 0 || platform.provisioningCommandPort > 65535 ||
        platform.provisioningStatusPort < 0 || platform.provisioningStatusPort > 65535) {
        qDebug("[LOG] provisioning ports out of range");
        return false;
    }
    settings.commandPort = static_cast<quint16>(platform.provisioningCommandPort);
    settings.statusPort = static_cast<quint16>(platform.provisioningStatusPort);
    QString error;
    if (!provisioning()->start(settings, &error)) {
        qDebug("[LOG] provisioning not opened: %s", qPrintable(error));
        return false;
    }
    return true;
}

void GData::stopProvisioning()
{
    if (m_pProvisioning)
        m_pProvisioning->stop();
}

ProvisioningServer *GData::provisioning()
{
    if (!m_pProvisioning)
        m_pProvisioning = std::make_unique<ProvisioningServer>();
    return m_pProvisioning.get();
}
