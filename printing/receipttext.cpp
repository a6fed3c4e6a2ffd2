// SPDX-License-Identifier: GPL-2.0-or-later
// The texts printed for a test and for a test page, on the Bluetooth printer and through the cloud service.
#include "receipttext.h"

#include <QStringList>

namespace receipttext {

namespace {

// One row of the 58 mm paper, 32 characters.
const QString kDashes(32, QLatin1Char('-'));
const QString kValueHeads = QStringLiteral("SPH        CYL       AXIS");

QString stamp(const QDateTime &printTime)
{
    return QString(11, QLatin1Char(' ')) + printTime.toString(QStringLiteral("yyyy-MM-dd hh:mm:ss"));
}

QString sexWord(const historyrecord::Test &test)
{
    return test.male ? QStringLiteral("Male") : QStringLiteral("Female");
}

// The body both printers share, from the name to the print time; the eye
// rows differ in the gap between their values.
QStringList body(const historyrecord::Test &test, const QDateTime &printTime, const QString &gap)
{
    const auto values = [&gap](const QString &sphere, const QString &cylinder, const QString &axis) {
        return sphere + gap + cylinder + gap + axis;
    };
    return {QStringLiteral("Name: ") + test.name,
            QStringLiteral("Sex: ") + sexWord(test),
            QStringLiteral("Birthday: ") + test.birthday.toString(QStringLiteral("yyyy-MM-dd")),
            QStringLiteral("ID: "),
            QStringLiteral("Test Time: ") + test.testTime,
            QString(),
            QStringLiteral("REF.DATA"),
            QStringLiteral("VD: 12.00"),
            kDashes,
            QStringLiteral("<OD>"),
            kValueHeads,
            values(test.odSphere, test.odCylinder, test.odAxis),
            kDashes,
            kDashes,
            QStringLiteral("<OS>"),
            kValueHeads,
            values(test.osSphere, test.osCylinder, test.osAxis),
            kDashes,
            QString(),
            QStringLiteral("PD: ") + test.pupilDistance,
            QStringLiteral("Screening result: ") + test.result,
            QString(),
            QStringLiteral("Note: "),
            QString(),
            stamp(printTime)};
}

QString cut(const QStringList &pieces)
{
    QString ticket;
    for (const QString &piece : pieces)
        ticket += piece + kCut;
    return ticket;
}

} // namespace

QString bluetoothReceipt(const historyrecord::Test &test, const QDateTime &printTime)
{
    QStringList lines{QStringLiteral("        Eye Test Result")};
    lines += body(test, printTime, QString(7, QLatin1Char(' ')));
    // Paper feed, so the receipt clears the tear bar.
    lines << QString() << QString() << QString();
    return lines.join(QLatin1Char('\n')) + QLatin1Char('\n');
}

QString bluetoothTestPage(const QDateTime &printTime)
{
    const QStringList lines{QStringLiteral("Bluetooth Test Page..."),
                            QString(),
                            QString(),
                            QStringLiteral("        LUMENTRA"),
                            stamp(printTime),
                            QString(),
                            QString(),
                            QString(),
                            QString(),
                            QString()};
    return lines.join(QLatin1Char('\n'));
}

QString cloudTicket(const historyrecord::Test &test, const QDateTime &printTime)
{
    QStringList pieces = body(test, printTime, QString(5, QLatin1Char(' ')));
    for (int i = 0; i < 5; ++i)
        pieces << QString();
    return cut(pieces);
}

QString cloudTestTicket(const QDateTime &printTime)
{
    QStringList pieces{QStringLiteral("This is a test page..."), QString(), stamp(printTime)};
    for (int i = 0; i < 5; ++i)
        pieces << QString();
    return cut(pieces);
}

} // namespace receipttext
