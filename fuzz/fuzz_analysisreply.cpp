// SPDX-License-Identifier: GPL-2.0-or-later
// Fuzz target: any analysis server reply is decoded, shown and judged without harm, and only numbers get through.
#include "analysisreply.h"
#include "referral.h"
#include "fuzzsupport.h"

#include <QDate>

#include <cmath>

using fuzzsupport::require;

namespace {

bool finite(const QString &text)
{
    bool ok = false;
    const double value = text.toDouble(&ok);
    return ok && std::isfinite(value);
}

// "+1.25" or "-0.00": a sign, digits, a point and two decimals.
bool opticFormat(const QString &text)
{
    const int point = text.indexOf(QLatin1Char('.'));
    return text.size() >= 5 && (text.at(0) == QLatin1Char('+') || text.at(0) == QLatin1Char('-')) &&
           point == text.size() - 3 && finite(text);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString reply = fuzzsupport::text(data, size);
    analysisreply::Refraction values;
    if (!analysisreply::decode(reply, values)) {
        require(values.osSphere.isNull() && values.odAxis.isNull());
        return 0;
    }
    for (const QString *field : {&values.osSphere, &values.odSphere, &values.osCylinder, &values.odCylinder,
                                 &values.osAxis, &values.odAxis, &values.pupilDistance})
        require(finite(*field));

    analysisreply::normalise(values);
    for (const QString *field : {&values.osSphere, &values.odSphere, &values.osCylinder, &values.odCylinder})
        require(opticFormat(*field));
    require(finite(values.osAxis) && finite(values.odAxis));

    // The verdict of every criterion (and of an unknown one) over the whole range of ages a birthday can give.
    const referral::Refraction eyes =
        referral::fromText(values.osSphere, values.odSphere, values.osCylinder, values.odCylinder);
    const int months = referral::monthsOfAge(QDate(2020, 2, 29), QDate(2026, 1, 15)) + (size % 300) - 150;
    for (const int criterion : {0, 1, 2, 7}) {
        const int verdict = referral::judge(criterion, months, eyes);
        require(verdict == referral::kPass || verdict == referral::kRefer);
    }
    return 0;
}
