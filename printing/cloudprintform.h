// SPDX-License-Identifier: GPL-2.0-or-later
// The cloud printing service's request: signature, form body, and what counts as accepted.
#pragma once

#include <QByteArray>
#include <QString>

// MD5 of memberCode + deviceID + msgNo + reqTime + the signature key, in lower-case hexadecimal.
QString httpPrintGetMD5(const QString &memberCode, const QString &deviceID, const QString &msgNo,
                        const QString &reqTime);

namespace cloudprintform {

inline const QString kPath = QStringLiteral("/apisc/sendMsg");
inline const QString kCharset = QStringLiteral("1");
inline const QString kMemberCode = QStringLiteral("3f0c8e21a9d74b56b0e1c7fa25d98e40");
inline const QString kSignatureKey = QStringLiteral("KQBN4RX7");
inline const QString kReprint = QStringLiteral("0");
inline const QString kMode = QStringLiteral("2");
constexpr int kTimeoutSeconds = 30;

// The form in the service's field order. The ticket goes in as it is, not
// percent-encoded: the service's printers expect it so, and a "&" in it
// therefore splits the form at the service.
QByteArray body(const QString &deviceID, const QString &reqTime, const QString &ticket);

// The service answers JSON; only this exact spelling of a zero code is success.
bool accepted(const QString &reply);

} // namespace cloudprintform
