// SPDX-License-Identifier: GPL-2.0-or-later
// Whether a typed text has the shape of one e-mail address, before the settings keep it.
#include "emailaddress.h"

#include <QRegularExpression>

namespace emailaddress {

bool isWellFormed(const QString &address)
{
    // "|" is left out although mail allows it: the settings file joins its
    // values with "|", and one inside the address would shift every setting
    // after it. Quoted local parts and address literals are left out too;
    // nobody types them on a device keyboard, and the mail server would be
    // handed them unchanged.
    static const QRegularExpression shape(
        QStringLiteral("\\A[A-Za-z0-9!#$%&'*+/=?^_`{}~-]+(\\.[A-Za-z0-9!#$%&'*+/=?^_`{}~-]+)*"
                       "@([A-Za-z0-9]([A-Za-z0-9-]{0,61}[A-Za-z0-9])?\\.)+[A-Za-z]{2,63}\\z"));
    // The limits of a mail path: 64 characters before "@", 254 in all.
    const int at = address.indexOf(QLatin1Char('@'));
    if (address.size() > 254 || at > 64)
        return false;
    return shape.match(address).hasMatch();
}

} // namespace emailaddress
