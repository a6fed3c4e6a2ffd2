// SPDX-License-Identifier: GPL-2.0-or-later
// The provisioning PIN: drawn from the system's cryptographic source, compared in constant time.
#include "provisioningpin.h"

#include "provisioningprotocol.h"

#include <QRandomGenerator>

namespace provisioningpin {

QByteArray generate()
{
    const quint32 value = QRandomGenerator::system()->bounded(1000000u);
    return QByteArray::number(value).rightJustified(provisioningprotocol::kPinLength, '0');
}

bool matches(const QByteArray &given, const QByteArray &expected)
{
    // The length is no secret: every PIN has six digits.
    if (expected.isEmpty() || given.size() != expected.size())
        return false;
    unsigned char difference = 0;
    for (int i = 0; i < expected.size(); ++i)
        difference |= static_cast<unsigned char>(given.at(i) ^ expected.at(i));
    return difference == 0;
}

} // namespace provisioningpin
