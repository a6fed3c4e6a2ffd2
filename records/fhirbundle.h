// SPDX-License-Identifier: GPL-2.0-or-later
// The history's tests as a health-record bundle: one patient per child, one observation per test.
#pragma once

#include "historysearch.h"

#include <QByteArray>
#include <QDateTime>
#include <QString>
#include <QVector>

namespace fhirbundle {

// The code system of this device's own codes: no standard code is claimed
// for a photoscreening, its values or its verdict.
extern const char kCodeSystem[];

// What the bundle says about where it came from.
struct Origin
{
    QString device;        // shown as the observations' device
    int utcOffsetSeconds;  // the device's zone: test times are local times
    QDateTime created;     // the bundle's time stamp
};

// A "collection" bundle (JSON, application/fhir+json). Each child is one
// Patient (name, gender, birth date); each test one Observation of the
// child with the screening result as its value and sphere, cylinder and
// axis of each eye (and the pupil distance when measured) as components in
// UCUM units. Values the record lacks are marked absent, never made up.
// Identifiers are name-based UUIDs, so exporting the same records twice
// gives the same resources.
QByteArray bundle(const QVector<historysearch::ExportedTest> &tests, const Origin &origin);

} // namespace fhirbundle
