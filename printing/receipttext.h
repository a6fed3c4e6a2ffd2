// SPDX-License-Identifier: GPL-2.0-or-later
// The texts printed for a test and for a test page, on the Bluetooth printer and through the cloud service.
#pragma once

#include "historyrecord.h"

#include <QDateTime>
#include <QString>

namespace receipttext {

// The cloud service's printer starts a new line after each piece.
inline const QString kCut = QStringLiteral("<gpCut/>");

// Lines joined with "\n" and one final "\n". `printTime` is when the receipt
// is printed, not when the test was made.
QString bluetoothReceipt(const historyrecord::Test &test, const QDateTime &printTime);
QString bluetoothTestPage(const QDateTime &printTime);

// Pieces each followed by kCut, no line ends.
QString cloudTicket(const historyrecord::Test &test, const QDateTime &printTime);
QString cloudTestTicket(const QDateTime &printTime);

} // namespace receipttext
