// SPDX-License-Identifier: GPL-2.0-or-later
// The history page's reading of the history file: child keys, search, deletion, the HTML export, one child's tests.
#pragma once

#include <QDateTime>
#include <QString>
#include <QStringList>
#include <QVector>

// A child is known by the text of a record before its first "|": name, sex
// and birthday joined by ",". Records are split as they are, without
// quoting, so a comma typed into a name shifts that record's fields; the
// functions here give such a record exactly what the splitting gives it.
namespace historysearch {

// The text before the first "|", the whole line when there is none.
QString childKey(const QString &line);

// Name, sex and birthday of a key: its first three ","-separated fields,
// empty where the key has fewer.
QStringList keyFields(const QString &key);

// Every key of a non-empty line that contains `search` (case-sensitive; an
// empty search matches every key), each once, in ascending code-unit order.
// Runs in time linear in the size of the history (plus one sort of the keys
// found), however many tests each child has.
QStringList childKeys(const QString &history, const QString &search);

// The history without every line that starts with one of the keys (a plain,
// case-sensitive prefix test) and without empty lines; each kept line ends
// with "\n". Linear in the size of the history, however many keys there are.
QString withoutKeys(const QString &history, const QStringList &keys);

// Test time and the eight values: the part of a record after "|".
constexpr int kValuesPerTest = 9;

// One test as every export shows it.
struct ExportedTest
{
    QString name;
    QString sex; // as recorded: "Male" or "Female"
    QString birthday;
    // kValuesPerTest texts: test time, OD sphere, cylinder and axis, OS
    // sphere, cylinder and axis, pupil distance, result; "N/A" where the
    // record lacks one.
    QStringList values;

    QString key() const { return name + QLatin1Char(',') + sex + QLatin1Char(',') + birthday; }
};

// The tests on lines that start with one of the keys, in the file's order.
// A line counts only when it has exactly one "|", three fields before it and
// at most nine after.
QVector<ExportedTest> exportedTests(const QString &history, const QStringList &keys);

// The non-empty lines withoutKeys leaves out, in the file's order.
QStringList linesWithKeys(const QString &history, const QStringList &keys);

// An HTML table of the exported tests. Values are HTML-escaped. `rows`, when
// given, receives the number of tests.
QString exportHtml(const QString &history, const QStringList &keys, int *rows = nullptr);

// File-name text for a report: the child's name with every character outside
// [A-Za-z0-9_] made "_", then "_", then the time as "yyyyMMddhhmmss"
// ("yyyy-MM-dd hh:mm:ss" without its "-", ":" and blanks), then ".html".
QString reportFileName(const QString &name, const QDateTime &time);

// Test time, OD sphere, cylinder and axis, OS sphere, cylinder and axis,
// pupil distance and result of one record, taken from the text after its
// first "|"; a value the record lacks reads "N/A", one past the ninth is
// left out.
QStringList testValues(const QString &line);

// File-name text for one test's pupil photo: the child's key with every
// character outside [A-Za-z0-9_] made "_", the test time (the first of
// `test`, the record's values as testValues gives them) without its "-",
// ":" and blanks, and a checksum of the exact key and values, so that
// neither two children whose names differ only in letters outside that set
// (any two Chinese names) nor two tests of one child in the same minute
// share a photo. Ends in ".jpg".
QString photoFileName(const QString &key, const QStringList &test);

// The tests of the child whose key fields are the three given, in the file's
// order, each as testValues gives it.
QVector<QStringList> testsOf(const QString &history, const QString &name, const QString &sex, const QString &birthday);

} // namespace historysearch
