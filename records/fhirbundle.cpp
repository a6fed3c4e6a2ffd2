// SPDX-License-Identifier: GPL-2.0-or-later
// The history's tests as a health-record bundle: one patient per child, one observation per test.
#include "fhirbundle.h"

#include <QHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLocale>
#include <QRegularExpression>
#include <QUuid>

#include <cstdlib>

namespace fhirbundle {

const char kCodeSystem[] = "https://orvella.example/fhir/CodeSystem/vision-screening";

namespace {

const char kUcum[] = "http://unitsofmeasure.org";
const char kCategories[] = "http://terminology.hl7.org/CodeSystem/observation-category";
const char kAbsentReasons[] = "http://terminology.hl7.org/CodeSystem/data-absent-reason";
// Every identifier of the export is a name-based UUID within this one.
const QUuid kNamespace(QStringLiteral("{6f1c2a9e-4b7d-5e38-9a61-0c2d8e4f7b13}"));

QJsonObject coding(const char *system, const QString &code, const QString &display)
{
    return {{QStringLiteral("system"), QString::fromLatin1(system)},
            {QStringLiteral("code"), code},
            {QStringLiteral("display"), display}};
}

QJsonObject concept(const char *system, const QString &code, const QString &display)
{
    return {{QStringLiteral("coding"), QJsonArray{coding(system, code, display)}}, {QStringLiteral("text"), display}};
}

QJsonObject absent()
{
    return concept(kAbsentReasons, QStringLiteral("unknown"), QStringLiteral("Unknown"));
}

QString urn(const QString &name)
{
    return QStringLiteral("urn:uuid:") + QUuid::createUuidV5(kNamespace, name).toString(QUuid::WithoutBraces);
}

// A record's value as a FHIR decimal, which must be a plain JSON number.
bool decimal(const QString &text, double &value)
{
    static const QRegularExpression number(QStringLiteral("^[-+]?[0-9]+(\\.[0-9]+)?$"));
    if (!number.match(text).hasMatch())
        return false;
    value = text.toDouble();
    return true;
}

QJsonObject component(const QString &code, const QString &display, const QString &text, const QString &unit)
{
    QJsonObject part{{QStringLiteral("code"), concept(kCodeSystem, code, display)}};
    double value = 0;
    if (decimal(text, value)) {
        part.insert(QStringLiteral("valueQuantity"), QJsonObject{{QStringLiteral("value"), value},
                                                                 {QStringLiteral("unit"), unit},
                                                                 {QStringLiteral("system"), QString::fromLatin1(kUcum)},
                                                                 {QStringLiteral("code"), unit}});
    } else {
        part.insert(QStringLiteral("dataAbsentReason"), absent());
    }
    return part;
}

QString offsetText(int seconds)
{
    const QChar sign = seconds < 0 ? QLatin1Char('-') : QLatin1Char('+');
    const int minutes = std::abs(seconds) / 60;
    return sign + QStringLiteral("%1:%2").arg(minutes / 60, 2, 10, QLatin1Char('0')).arg(minutes % 60, 2, 10, QLatin1Char('0'));
}

// The record's local test time with the device's zone; empty when the record's time is not one.
QString effectiveTime(const QString &testTime, int utcOffsetSeconds)
{
    const QDateTime local = QDateTime::fromString(testTime, QStringLiteral("yyyy-MM-dd hh:mm"));
    if (!local.isValid())
        return QString();
    return local.toString(QStringLiteral("yyyy-MM-ddThh:mm:00")) + offsetText(utcOffsetSeconds);
}

QJsonObject patient(const historysearch::ExportedTest &test)
{
    QJsonObject resource{{QStringLiteral("resourceType"), QStringLiteral("Patient")},
                         {QStringLiteral("name"), QJsonArray{QJsonObject{{QStringLiteral("text"), test.name}}}}};
    if (test.sex == QLatin1String("Male") || test.sex == QLatin1String("Female"))
        resource.insert(QStringLiteral("gender"), test.sex.toLower());
    if (QDate::fromString(test.birthday, QStringLiteral("yyyy-MM-dd")).isValid())
        resource.insert(QStringLiteral("birthDate"), test.birthday);
    return resource;
}

QJsonObject observation(const historysearch::ExportedTest &test, const QString &subject, const Origin &origin)
{
    const QStringList &v = test.values;
    QJsonObject resource{
        {QStringLiteral("resourceType"), QStringLiteral("Observation")},
        {QStringLiteral("status"), QStringLiteral("final")},
        {QStringLiteral("category"),
         QJsonArray{concept(kCategories, QStringLiteral("exam"), QStringLiteral("Exam"))}},
        {QStringLiteral("code"),
         concept(kCodeSystem, QStringLiteral("photoscreening"), QStringLiteral("Vision screening by photorefraction"))},
        {QStringLiteral("subject"), QJsonObject{{QStringLiteral("reference"), subject}}},
        {QStringLiteral("device"), QJsonObject{{QStringLiteral("display"), origin.device}}},
    };
    const QString effective = effectiveTime(v.at(0), origin.utcOffsetSeconds);
    if (!effective.isEmpty())
        resource.insert(QStringLiteral("effectiveDateTime"), effective);
    const QString &result = v.at(8);
    if (result == QLatin1String("Pass") || result == QLatin1String("Refer"))
        resource.insert(QStringLiteral("valueCodeableConcept"), concept(kCodeSystem, result.toLower(), result));
    else
        resource.insert(QStringLiteral("dataAbsentReason"), absent());

    const QString dioptre = QStringLiteral("[diop]");
    const QString degree = QStringLiteral("deg");
    QJsonArray components{
        component(QStringLiteral("od-sphere"), QStringLiteral("Right eye sphere"), v.at(1), dioptre),
        component(QStringLiteral("od-cylinder"), QStringLiteral("Right eye cylinder"), v.at(2), dioptre),
        component(QStringLiteral("od-axis"), QStringLiteral("Right eye axis"), v.at(3), degree),
        component(QStringLiteral("os-sphere"), QStringLiteral("Left eye sphere"), v.at(4), dioptre),
        component(QStringLiteral("os-cylinder"), QStringLiteral("Left eye cylinder"), v.at(5), dioptre),
        component(QStringLiteral("os-axis"), QStringLiteral("Left eye axis"), v.at(6), degree),
    };
    // "0" is what the record holds when the server measured no distance.
    double distance = 0;
    if (decimal(v.at(7), distance) && distance > 0)
        components.append(component(QStringLiteral("pupil-distance"), QStringLiteral("Pupil distance"), v.at(7),
                                    QStringLiteral("mm")));
    resource.insert(QStringLiteral("component"), components);
    return resource;
}

} // namespace

QByteArray bundle(const QVector<historysearch::ExportedTest> &tests, const Origin &origin)
{
    QJsonArray entries;
    QHash<QString, QString> patients; // child key -> reference
    QHash<QString, int> seen;         // tests of the same child at the same minute
    for (const historysearch::ExportedTest &test : tests) {
        const QString key = test.key();
        QString subject = patients.value(key);
        if (subject.isEmpty()) {
            subject = urn(QStringLiteral("patient|") + key);
            patients.insert(key, subject);
            entries.append(QJsonObject{{QStringLiteral("fullUrl"), subject},
                                       {QStringLiteral("resource"), patient(test)}});
        }
        const QString testName = key + QLatin1Char('|') + test.values.join(QLatin1Char(','));
        const int repeat = seen[testName]++;
        entries.append(QJsonObject{
            {QStringLiteral("fullUrl"),
             urn(QStringLiteral("observation|%1|%2").arg(testName).arg(repeat))},
            {QStringLiteral("resource"), observation(test, subject, origin)}});
    }
    const QDateTime created = origin.created.toOffsetFromUtc(origin.utcOffsetSeconds);
    const QJsonObject document{
        {QStringLiteral("resourceType"), QStringLiteral("Bundle")},
        {QStringLiteral("type"), QStringLiteral("collection")},
        {QStringLiteral("timestamp"),
         created.toString(QStringLiteral("yyyy-MM-ddThh:mm:ss")) + offsetText(origin.utcOffsetSeconds)},
        {QStringLiteral("entry"), entries},
    };
    return QJsonDocument(document).toJson(QJsonDocument::Indented);
}

} // namespace fhirbundle
