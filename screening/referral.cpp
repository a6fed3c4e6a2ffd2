// SPDX-License-Identifier: GPL-2.0-or-later
// The referral criteria: a child's age and refraction in, Pass or Refer out.
#include "referral.h"

#include <cstddef>

namespace referral {

namespace {

// Refer at or beyond any bound; every bound is inclusive. Anisometropia and
// cylinder refer at the same distance on either side of zero, sphere not.
struct Limits
{
    float anisometropia;
    float sphereAbove;
    float sphereBelow;
    float cylinder;
};

// The limits of a band hold below its month; the last band has no end.
struct Band
{
    int belowMonths;
    Limits limits;
};

constexpr Band kMattaBands[] = {
    {13, {1.25f, 3.0f, -2.0f, 1.0f}},
    {37, {1.25f, 1.25f, -2.0f, 1.0f}},
    {73, {1.25f, 1.25f, -1.0f, 1.0f}},
    {0, {1.25f, 1.0f, -1.0f, 1.25f}},
};

constexpr Band kArnoldBands[] = {
    {9, {1.5f, 3.0f, -3.0f, 2.0f}},
    {73, {1.0f, 2.5f, -2.25f, 2.0f}},
    {0, {1.25f, 2.0f, -1.5f, 1.5f}},
};

constexpr Limits kArthur2Limits = {1.5f, 3.5f, -3.0f, 2.5f};

bool outside(float value, float above, float below)
{
    return value >= above || value <= below;
}

int verdict(const Limits &limits, const Refraction &eyes)
{
    // Signed, left minus right: a bound on one side only would miss a child
    // whose right eye is the weaker one.
    const float anisometropia = eyes.leftSphere - eyes.rightSphere;
    const bool refer = outside(anisometropia, limits.anisometropia, -limits.anisometropia) ||
                       outside(eyes.leftSphere, limits.sphereAbove, limits.sphereBelow) ||
                       outside(eyes.rightSphere, limits.sphereAbove, limits.sphereBelow) ||
                       outside(eyes.leftCylinder, limits.cylinder, -limits.cylinder) ||
                       outside(eyes.rightCylinder, limits.cylinder, -limits.cylinder);
    return refer ? kRefer : kPass;
}

template <std::size_t N> const Limits &limitsAt(const Band (&bands)[N], int months)
{
    for (std::size_t i = 0; i + 1 < N; ++i) {
        if (months < bands[i].belowMonths)
            return bands[i].limits;
    }
    return bands[N - 1].limits;
}

} // namespace

int monthsOfAge(const QDate &birthday, const QDate &today)
{
    int months = 12 * (today.year() - birthday.year()) + (today.month() - birthday.month());
    const int birthDay = birthday.day();
    const int currentDay = today.day();
    // Day numbers, not elapsed days: the 31st to the 16th of a February is
    // 15 days short, whatever the month lengths.
    if (birthDay > currentDay) {
        if (birthDay - currentDay >= 15)
            --months;
    } else if (currentDay - birthDay >= 15) {
        ++months;
    }
    return months;
}

Refraction fromText(const QString &leftSphere, const QString &rightSphere, const QString &leftCylinder,
                    const QString &rightCylinder)
{
    Refraction eyes;
    eyes.leftSphere = leftSphere.toFloat();
    eyes.rightSphere = rightSphere.toFloat();
    eyes.leftCylinder = leftCylinder.toFloat();
    eyes.rightCylinder = rightCylinder.toFloat();
    return eyes;
}

int matta(int months, const Refraction &eyes)
{
    return verdict(limitsAt(kMattaBands, months), eyes);
}

int arnold(int months, const Refraction &eyes)
{
    return verdict(limitsAt(kArnoldBands, months), eyes);
}

int arthur2(const Refraction &eyes)
{
    return verdict(kArthur2Limits, eyes);
}

int judge(int criterion, int months, const Refraction &eyes)
{
    switch (criterion) {
    case Matta: return matta(months, eyes);
    case Arnold: return arnold(months, eyes);
    default: return arthur2(eyes);
    }
}

} // namespace referral
