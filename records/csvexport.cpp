// SPDX-License-Identifier: GPL-2.0-or-later
// A table as a CSV file that spreadsheet programs open as it is meant, and safely.
#include "csvexport.h"

#include <QRegularExpression>

namespace csvexport {

QString neutralised(const QString &value)
{
    static const QRegularExpression number(QStringLiteral("^[-+]?[0-9]+(\\.[0-9]+)?$"));
    if (value.isEmpty())
        return value;
    const QChar first = value.at(0);
    const bool risky = first == QLatin1Char('=') || first == QLatin1Char('+') || first == QLatin1Char('-') ||
                       first == QLatin1Char('@') || first == QLatin1Char('\t') || first == QLatin1Char('\r');
    if (!risky || number.match(value).hasMatch())
        return value;
    return QLatin1Char('\'') + value;
}

QByteArray table(const QVector<QStringList> &rows)
{
    QByteArray csv("\xEF\xBB\xBF");
    for (const QStringList &row : rows) {
        QStringList fields;
        for (const QString &value : row) {
            QString field = neutralised(value);
            field.replace(QLatin1Char('"'), QStringLiteral("\"\""));
            fields << QLatin1Char('"') + field + QLatin1Char('"');
        }
        csv += fields.join(QLatin1Char(',')).toUtf8() + "\r\n";
    }
    return csv;
}

} // namespace csvexport
