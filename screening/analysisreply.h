// SPDX-License-Identifier: GPL-2.0-or-later
// The analysis server's reply line: its fields, and the refraction values as the device shows them.
#pragma once

#include <QString>

namespace analysisreply {

// The left eye (OS) before the right eye (OD), as in the reply.
struct Refraction
{
    QString osSphere;
    QString odSphere;
    QString osCylinder;
    QString odCylinder;
    QString pupilDistance;
    QString osAxis;
    QString odAxis;
};

// Takes the fields of a reply of seven or more comma-separated parts (part 0
// is not used; a seven-part reply has no pupil distance, which becomes "0").
// False, with the values untouched, for a shorter reply or one whose spheres,
// cylinders or axes are not all finite numbers. A pupil distance that is not
// one becomes "0".
bool decode(const QString &reply, Refraction &values);

// A dioptre value as shown: a sign and two decimals. Zero and text that is
// not a number read "-0.00".
QString toOpticFloat(const QString &text);

// The axis as shown for an eye with the given, already normalised, cylinder.
QString correctAxis(const QString &cylinder, const QString &axis);

// Spheres and cylinders through toOpticFloat, then each eye's axis, the left
// eye first. The pupil distance stays as the server sent it.
void normalise(Refraction &values);

} // namespace analysisreply
