// SPDX-License-Identifier: GPL-2.0-or-later
// One line of the history file: a test as the history page, the receipts and the reports read it.
#pragma once

#include <QDate>
#include <QDateTime>
#include <QString>

namespace historyrecord {

struct Test
{
    QString name;
    bool male = true;
    QDate birthday;
    // As testTimeText gives it.
    QString testTime;
    QString odSphere;
    QString odCylinder;
    QString odAxis;
    QString osSphere;
    QString osCylinder;
    QString osAxis;
    QString pupilDistance;
    // "Pass", "Refer" or empty.
    QString result;
};

// "yyyy-MM-dd hh:mm" in plain digits, whatever the interface language.
QString testTimeText(const QDateTime &time);

// The record without its line end. Fields are joined as they are: a comma in
// a name is neither refused nor escaped, and splits that record when read.
QString line(const Test &test);

} // namespace historyrecord
