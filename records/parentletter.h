// SPDX-License-Identifier: GPL-2.0-or-later
// The letter to a child's parents: one A4 page per child in a PDF, in the interface language.
#pragma once

#include <QCoreApplication>
#include <QImage>
#include <QString>
#include <QVector>

namespace parentletter {

struct Letter
{
    QString device;   // the screener as the parents should know it
    QString testTime; // as the record has it
    QString name;
    bool male = true;
    QString birthday;
    // Sphere, cylinder and axis, as the record has them.
    QString odSphere, odCylinder, odAxis;
    QString osSphere, osCylinder, osAxis;
    QString pupilDistance;
    QString result; // "Pass", "Refer" or anything else for no result
    QImage photo;   // null: none was kept
};

// Writes the letters, one page each, to the file; the font is embedded so
// that Chinese names and texts read the same on any computer. Needs a
// QGuiApplication (fonts). False when the file cannot be written.
bool write(const QString &path, const QVector<Letter> &letters);

} // namespace parentletter
