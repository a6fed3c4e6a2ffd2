// SPDX-License-Identifier: GPL-2.0-or-later
// The provisioning PIN: drawn from the system's cryptographic source, compared in constant time.
#pragma once

#include <QByteArray>

namespace provisioningpin {

// Six decimal digits, leading zeros kept, from QRandomGenerator::system().
QByteArray generate();

// Looks at every byte whatever the first difference, so the time taken
// tells a guesser nothing about how many leading digits were right.
bool matches(const QByteArray &given, const QByteArray &expected);

} // namespace provisioningpin
