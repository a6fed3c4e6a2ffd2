// SPDX-License-Identifier: GPL-2.0-or-later
// The analysis server's reply line: its fields, and the refraction values as the device shows them.
#include "analysisreply.h"

#include <QStringList>

#include <cmath>

namespace analysisreply {

namespace {

// Qt's number syntax after trimming; "inf" and "nan" parse but are no value.
bool isFiniteNumber(const QString &field)
{
    bool ok = false;
    const double value = field.toDouble(&ok);
    return ok && std::isfinite(value);
}

} // namespace

bool decode(const QString &reply, Refraction &values)
{
    const QStringList parts = reply.split(QLatin1Char(','));
    if (parts.size() < 7)
        return false;

    Refraction read;
    read.osSphere = parts[1].trimmed();
    read.odSphere = parts[2].trimmed();
    read.osCylinder = parts[3].trimmed();
    read.odCylinder = parts[4].trimmed();
    // The axes are trimmed too: the last field may carry the line's end,
    // and an axis over 180 is shown exactly as it arrived.
    if (parts.size() == 7) {
        read.pupilDistance = QStringLiteral("0");
        read.osAxis = parts[5].trimmed();
        read.odAxis = parts[6].trimmed();
    } else {
        read.pupilDistance = parts[5].trimmed();
        read.osAxis = parts[6].trimmed();
        read.odAxis = parts[7].trimmed();
    }

    // A captive portal's page or a proxy's error text can hold commas too;
    // normalising would show its words as "-0.00" and the child would pass.
    for (const QString *field :
         {&read.osSphere, &read.odSphere, &read.osCylinder, &read.odCylinder, &read.osAxis, &read.odAxis}) {
        if (!isFiniteNumber(*field))
            return false;
    }
    // The pupil distance goes into the history file as it is: a server's
    // text there could carry its separators or a line end.
    if (!isFiniteNumber(read.pupilDistance))
        read.pupilDistance = QStringLiteral("0");

    values = read;
    return true;
}

QString toOpticFloat(const QString &text)
{
    bool ok = false;
    const double value = text.toDouble(&ok);
    // "inf" and "nan" parse, but are no more a refraction than "abc".
    if (!ok || !std::isfinite(value) || std::fabs(value) < 0.005)
        return QStringLiteral("-0.00");
    // A magnitude this large has no hundredths to round, and a hundredfold of
    // it would overflow to "inf".
    const double magnitude = std::fabs(value);
    const double rounded = magnitude < 1e15 ? std::floor(magnitude * 100 + 0.5) / 100 : magnitude;
    return QLatin1Char(value > 0 ? '+' : '-') + QString::number(rounded, 'f', 2);
}

QString correctAxis(const QString &cylinder, const QString &axis)
{
    // Single precision throughout, as the device has always rounded; the
    // truncations are std::trunc so that an absurd axis cannot overflow an int.
    float a = axis.toFloat();
    if (!std::isfinite(a))
        a = 0.0f;
    if (a >= 0.0f) {
        a = std::trunc(a + 0.5f);
    } else {
        const float k = std::trunc(a - 1.0f);
        a = std::trunc(a - k + 0.5f) + k;
    }

    const float c = cylinder.toFloat();
    if (c >= -0.25f && c <= 0.25f)
        return QStringLiteral("5");
    if (c >= -0.5f && c <= 0.5f)
        return QStringLiteral("10");
    if (a > 180.0f)
        return axis;
    const float shown = a <= 90.0f ? a + 5.0f : a - 5.0f;
    return QString::number(static_cast<double>(shown), 'f', 0);
}

void normalise(Refraction &values)
{
    values.osSphere = toOpticFloat(values.osSphere);
    values.odSphere = toOpticFloat(values.odSphere);
    values.osCylinder = toOpticFloat(values.osCylinder);
    values.odCylinder = toOpticFloat(values.odCylinder);
    values.osAxis = correctAxis(values.osCylinder, values.osAxis);
    values.odAxis = correctAxis(values.odCylinder, values.odAxis);
}

} // namespace analysisreply
