// SPDX-License-Identifier: GPL-2.0-or-later
// The cloud printing service's request: signature, form body, and what counts as accepted.
#include "cloudprintform.h"

#include <QCryptographicHash>

QString httpPrintGetMD5(const QString &memberCode, const QString &deviceID, const QString &msgNo,
                        const QString &reqTime)
{
    const QString signed_ = memberCode + deviceID + msgNo + reqTime + cloudprintform::kSignatureKey;
    return QString::fromLatin1(QCryptographicHash::hash(signed_.toUtf8(), QCryptographicHash::Md5).toHex());
}

namespace cloudprintform {

QByteArray body(const QString &deviceID, const QString &reqTime, const QString &ticket)
{
    const QString token;
    const QString msgNo;
    const QString text = QStringLiteral("charset=") + kCharset + QStringLiteral("&reqTime=") + reqTime +
                         QStringLiteral("&memberCode=") + kMemberCode + QStringLiteral("&deviceID=") + deviceID +
                         QStringLiteral("&token=") + token + QStringLiteral("&securityCode=") +
                         httpPrintGetMD5(kMemberCode, deviceID, msgNo, reqTime) + QStringLiteral("&msgDetail=") +
                         ticket + QStringLiteral("&msgNo=") + msgNo + QStringLiteral("&reprint=") + kReprint +
                         QStringLiteral("&mode=") + kMode;
    return text.toUtf8();
}

bool accepted(const QString &reply)
{
    return reply.contains(QStringLiteral("\"code\":0"));
}

} // namespace cloudprintform
