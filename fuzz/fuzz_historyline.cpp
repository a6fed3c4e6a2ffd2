// SPDX-License-Identifier: GPL-2.0-or-later
// Fuzz target: a test whose texts hold no separator is written as one history line and read back as the same test.
#include "historyrecord.h"
#include "historysearch.h"
#include "fuzzsupport.h"

#include <QStringList>

using fuzzsupport::require;

// The input is the record's texts separated by tabs: name, test time, the six
// refraction values, pupil distance and result; missing ones are empty. Its
// length picks the sex and the birthday.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QStringList parts = fuzzsupport::text(data, size).split(QLatin1Char('\t'));
    auto part = [&parts](int i) { return i < parts.size() ? parts.at(i) : QString(); };

    historyrecord::Test test;
    test.name = part(0);
    test.male = size % 2 == 0;
    test.birthday = QDate(2010, 1, 1).addDays(static_cast<qint64>(size % 5000));
    test.testTime = part(1);
    test.odSphere = part(2);
    test.odCylinder = part(3);
    test.odAxis = part(4);
    test.osSphere = part(5);
    test.osCylinder = part(6);
    test.osAxis = part(7);
    test.pupilDistance = part(8);
    test.result = part(9);

    const QString line = historyrecord::line(test);
    const QString sex = test.male ? QStringLiteral("Male") : QStringLiteral("Female");
    const QString birthday = test.birthday.toString(QStringLiteral("yyyy-MM-dd"));
    const QVector<QStringList> tests = historysearch::testsOf(line + QLatin1Char('\n'), test.name, sex, birthday);

    // Separators and line ends inside a text are not escaped: such a record
    // reads back differently, which is known. Only clean ones must survive.
    for (int i = 0; i < 10; ++i) {
        const QString value = part(i);
        if (value.contains(QLatin1Char(',')) || value.contains(QLatin1Char('|')) || value.contains(QLatin1Char('\n')) ||
            value.contains(QLatin1Char('\r')))
            return 0;
    }
    require(tests.size() == 1);
    const QStringList expected = {test.testTime,   test.odSphere, test.odCylinder,    test.odAxis, test.osSphere,
                                  test.osCylinder, test.osAxis,   test.pupilDistance, test.result};
    require(tests.first() == expected);
    require(historysearch::childKeys(line, QString()) ==
            QStringList{test.name + QLatin1Char(',') + sex + QLatin1Char(',') + birthday});
    return 0;
}
