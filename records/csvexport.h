// SPDX-License-Identifier: GPL-2.0-or-later
// A table as a CSV file that spreadsheet programs open as it is meant, and safely.
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QVector>

namespace csvexport {

// Every field quoted, quotes doubled, records ended by CRLF, UTF-8 after a
// byte-order mark (without it common spreadsheet programs read the bytes
// in a local code page and garble Chinese names).
QByteArray table(const QVector<QStringList> &rows);

// The text a spreadsheet shows for a typed value: one that starts with "=",
// "+", "-", "@", a tab or a carriage return and is not a number gets a
// leading "'", so that the program shows it instead of running it as a
// formula. Names are typed by hand; "-0.50" stays a number.
QString neutralised(const QString &value);

} // namespace csvexport
