// SPDX-License-Identifier: GPL-2.0-or-later
// Fuzz target: a history file of any content (a torn tail, stray separators) is searched, shown, exported and pruned without harm.
#include "historysearch.h"
#include "fuzzsupport.h"

#include <QDateTime>

using fuzzsupport::require;

// The first line is what the operator typed into the search box, the rest
// the history file.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString input = fuzzsupport::text(data, size);
    const int end = input.indexOf(QLatin1Char('\n'));
    const QString search = end < 0 ? input : input.left(end);
    const QString history = end < 0 ? QString() : input.mid(end + 1);

    const QStringList keys = historysearch::childKeys(history, search);
    for (int i = 1; i < keys.size(); ++i)
        require(keys.at(i - 1) < keys.at(i));

    int rows = -1;
    historysearch::exportHtml(history, keys, &rows);
    require(rows >= 0);

    for (const QString &key : keys) {
        require(key.contains(search) && !key.contains(QLatin1Char('|')));
        const QStringList fields = historysearch::keyFields(key);
        require(fields.size() == 3);
        for (const QStringList &test : historysearch::testsOf(history, fields.at(0), fields.at(1), fields.at(2)))
            require(test.size() == historysearch::kValuesPerTest);
        historysearch::reportFileName(fields.at(0), QDateTime(QDate(2025, 6, 1), QTime(9, 30)));
    }

    // Deleting the children found leaves none of their lines, and deleting
    // them again changes nothing.
    const QString pruned = historysearch::withoutKeys(history, keys);
    require(pruned.isEmpty() || pruned.endsWith(QLatin1Char('\n')));
    require(historysearch::withoutKeys(pruned, keys) == pruned);
    for (const QString &key : keys)
        require(!historysearch::childKeys(pruned, QString()).contains(key) || key.isEmpty());
    return 0;
}
