// SPDX-License-Identifier: GPL-2.0-or-later
// The referral criteria: a child's age and refraction in, Pass or Refer out.
#pragma once

#include <QDate>
#include <QString>

namespace referral {

// The verdicts as the result page reads them.
constexpr int kPass = 1;
constexpr int kRefer = -1;

// The values of the criterion setting; anything else means Arthur2.
enum Criterion { Arnold = 0, Matta = 1, Arthur2 = 2 };

// Dioptres; left is OS, right is OD.
struct Refraction
{
    float leftSphere = 0;
    float rightSphere = 0;
    float leftCylinder = 0;
    float rightCylinder = 0;
};

// Age in whole months, rounded by day of the month: 15 or more days past the
// monthly birthday count as the next month, 15 or more days short of it as
// the month before.
int monthsOfAge(const QDate &birthday, const QDate &today);

// The result texts as decoded from the analysis reply ("+1.25", "-0.00");
// a text that is no number counts as 0.
Refraction fromText(const QString &leftSphere, const QString &rightSphere, const QString &leftCylinder,
                    const QString &rightCylinder);

int matta(int months, const Refraction &eyes);
int arnold(int months, const Refraction &eyes);
int arthur2(const Refraction &eyes);

// The criterion chosen in the settings applied to one test.
int judge(int criterion, int months, const Refraction &eyes);

} // namespace referral
