// SPDX-License-Identifier: GPL-2.0-or-later
// One line of the history file: a test as the history page, the receipts and the reports read it.
#include "historyrecord.h"

#include <QLocale>
#include <QStringList>

namespace historyrecord {

// The file outlives any language setting, and its readers split the dates by
// position: the C locale keeps them in ASCII digits.
QString testTimeText(const QDateTime &time)
{
    return QLocale::c().toString(time, QStringLiteral("yyyy-MM-dd hh:mm"));
}

QString line(const Test &test)
{
    const QString when =
        QLocale::c().toString(test.birthday, QStringLiteral("yyyy-MM-dd")) + QLatin1Char('|') + test.testTime;
    const QStringList fields = {
        test.name,
        test.male ? QStringLiteral("Male") : QStringLiteral("Female"),
        when,
        test.odSphere,
        test.odCylinder,
        test.odAxis,
        test.osSphere,
        test.osCylinder,
        test.osAxis,
        test.pupilDistance,
        test.result,
    };
    return fields.join(QLatin1Char(','));
}

} // namespace historyrecord
