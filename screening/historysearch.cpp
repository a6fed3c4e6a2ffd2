// SPDX-License-Identifier: GPL-2.0-or-later
// The history page's reading of the history file: child keys, search, deletion, the HTML export, one child's tests.
#include "historysearch.h"

#include <QCryptographicHash>
#include <QHashFunctions>
#include <QLocale>
#include <QRegularExpression>

#include <algorithm>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace historysearch {

namespace {

// The history is read whole and can hold years of tests: lines and keys are
// looked at as views into it rather than copied one by one.
template <class Visit> void forEachLine(const QString &text, Visit visit)
{
    const QStringView all(text);
    qsizetype start = 0;
    while (start < all.size()) {
        qsizetype end = all.indexOf(QLatin1Char('\n'), start);
        if (end < 0)
            end = all.size();
        if (end > start)
            visit(all.mid(start, end - start));
        start = end + 1;
    }
}

QStringView keyOf(QStringView line)
{
    const qsizetype bar = line.indexOf(QLatin1Char('|'));
    return bar < 0 ? line : line.left(bar);
}

struct ViewHash
{
    size_t operator()(QStringView view) const noexcept { return qHash(view); }
};

// "Starts with one of the keys" for every line of the history. Testing each
// key in turn would cost lines times keys, and selecting every child of a
// large history is an ordinary thing to do before deleting. Instead each
// line's prefixes are hashed as the line is walked once, and only prefixes
// as long as some key are looked up.
class KeyPrefixes
{
public:
    explicit KeyPrefixes(const QStringList &keys)
        : m_keys(keys)
    {
        for (int i = 0; i < m_keys.size(); ++i) {
            const QString &key = m_keys.at(i);
            const size_t length = static_cast<size_t>(key.size());
            if (length >= m_lengths.size())
                m_lengths.resize(length + 1, false);
            m_lengths[length] = true;
            quint64 hash = kBasis;
            for (const QChar c : key)
                hash = step(hash, c);
            m_byHash.emplace(hash, i);
        }
    }

    bool startsAny(QStringView line) const
    {
        if (m_lengths.empty())
            return false;
        // An empty key is a prefix of everything, as QString::startsWith has it.
        if (m_lengths[0])
            return true;
        const size_t longest = std::min(m_lengths.size() - 1, static_cast<size_t>(line.size()));
        quint64 hash = kBasis;
        for (size_t length = 1; length <= longest; ++length) {
            hash = step(hash, line[static_cast<qsizetype>(length - 1)]);
            if (!m_lengths[length])
                continue;
            const QStringView prefix = line.left(static_cast<qsizetype>(length));
            const auto range = m_byHash.equal_range(hash);
            for (auto it = range.first; it != range.second; ++it) {
                if (QStringView(m_keys.at(it->second)) == prefix)
                    return true;
            }
        }
        return false;
    }

private:
    // FNV-1a over UTF-16 code units: a prefix's hash extends by one step per character.
    static constexpr quint64 kBasis = 14695981039346656037ull;
    static quint64 step(quint64 hash, QChar c) { return (hash ^ c.unicode()) * 1099511628211ull; }

    const QStringList m_keys;
    std::vector<bool> m_lengths;
    std::unordered_multimap<quint64, int> m_byHash;
};

const char kTableStart[] = "<table border=\"1\">";
const char kHeaderRow[] = "<tr><td>Name</td><td>Sex</td><td>Birthday</td><td>Time</td><td>OD SPH</td><td>OD CYL</td>"
                          "<td>OD AXIS</td><td>OS SPH</td><td>OS CYL</td><td>OS AXIS</td><td>PD</td>"
                          "<td>Screening results</td></tr>";
const char kTableEnd[] = "</table>";
const char kMissing[] = "N/A";

// A file name stays well inside the 255 bytes a file system allows.
constexpr int kLongestFileName = 64;

void appendCell(QString &html, const QString &value)
{
    // Names are typed on a keyboard that offers "<" and "&"; in a mail they
    // must read as text, not as markup.
    html += QLatin1String("<td>") + value.toHtmlEscaped() + QLatin1String("</td>");
}

} // namespace

QString childKey(const QString &line)
{
    return keyOf(QStringView(line)).toString();
}

QStringList keyFields(const QString &key)
{
    const QStringList fields = key.split(QLatin1Char(','));
    return {fields.value(0), fields.value(1), fields.value(2)};
}

QStringList childKeys(const QString &history, const QString &search)
{
    std::unordered_set<QStringView, ViewHash> seen;
    std::vector<QStringView> found;
    const QStringView wanted(search);
    forEachLine(history, [&](QStringView line) {
        const QStringView key = keyOf(line);
        if (!seen.insert(key).second)
            return;
        if (!wanted.isEmpty() && key.indexOf(wanted) < 0)
            return;
        found.push_back(key);
    });
    // QStringView's order compares UTF-16 code units, as QString's does.
    std::sort(found.begin(), found.end());

    QStringList keys;
    keys.reserve(static_cast<int>(found.size()));
    for (const QStringView key : found)
        keys << key.toString();
    return keys;
}

QString withoutKeys(const QString &history, const QStringList &keys)
{
    const KeyPrefixes selected(keys);
    QString kept;
    kept.reserve(history.size() + 1);
    forEachLine(history, [&](QStringView line) {
        if (selected.startsAny(line))
            return;
        kept.append(line);
        kept.append(QLatin1Char('\n'));
    });
    return kept;
}

QStringList linesWithKeys(const QString &history, const QStringList &keys)
{
    const KeyPrefixes selected(keys);
    QStringList lines;
    forEachLine(history, [&](QStringView line) {
        if (selected.startsAny(line))
            lines << line.toString();
    });
    return lines;
}

QVector<ExportedTest> exportedTests(const QString &history, const QStringList &keys)
{
    const KeyPrefixes selected(keys);
    QVector<ExportedTest> tests;
    forEachLine(history, [&](QStringView line) {
        if (!selected.startsAny(line))
            return;
        const QStringList halves = line.toString().split(QLatin1Char('|'));
        if (halves.size() != 2)
            return;
        const QStringList person = halves.at(0).split(QLatin1Char(','));
        QStringList values = halves.at(1).split(QLatin1Char(','));
        if (person.size() != 3 || values.size() > kValuesPerTest)
            return;
        while (values.size() < kValuesPerTest)
            values << QString::fromLatin1(kMissing);
        tests.append({person.at(0), person.at(1), person.at(2), values});
    });
    return tests;
}

QString exportHtml(const QString &history, const QStringList &keys, int *rows)
{
    const QVector<ExportedTest> tests = exportedTests(history, keys);
    QString html = QLatin1String(kTableStart) + QLatin1String(kHeaderRow);
    for (const ExportedTest &test : tests) {
        html += QLatin1String("<tr>");
        for (const QString &field : {test.name, test.sex, test.birthday})
            appendCell(html, field);
        for (const QString &value : test.values)
            appendCell(html, value);
        html += QLatin1String("</tr>");
    }
    html += QLatin1String(kTableEnd);
    if (rows)
        *rows = tests.size();
    return html;
}

namespace {

QString fileText(QString text)
{
    static const QRegularExpression notFileText(QStringLiteral("[^A-Za-z0-9_]"));
    return text.left(kLongestFileName).replace(notFileText, QStringLiteral("_"));
}

QString timeDigits(QString time)
{
    static const QRegularExpression timeSeparators(QStringLiteral("[-:\\s]"));
    return time.remove(timeSeparators);
}

} // namespace

QString reportFileName(const QString &name, const QDateTime &time)
{
    return fileText(name) + QLatin1Char('_') +
           timeDigits(QLocale::c().toString(time, QStringLiteral("yyyy-MM-dd hh:mm:ss"))) + QStringLiteral(".html");
}

QStringList testValues(const QString &line)
{
    const int key = keyOf(QStringView(line)).size();
    QStringList values;
    if (key < line.size())
        values = line.mid(key + 1).split(QLatin1Char(','));
    QStringList test;
    for (int i = 0; i < kValuesPerTest; ++i)
        test << (i < values.size() ? values.at(i) : QString::fromLatin1(kMissing));
    return test;
}

QString photoFileName(const QString &key, const QStringList &test)
{
    // The record's values are in the checksum too: a child screened again
    // within the same minute (a first attempt that went wrong) has two
    // records with one time, and each keeps its own photo.
    const QString record = key + QLatin1Char('|') + test.join(QLatin1Char(','));
    const QByteArray sum = QCryptographicHash::hash(record.toUtf8(), QCryptographicHash::Sha1).toHex().left(8);
    return fileText(key) + QLatin1Char('_') + timeDigits(test.value(0)).left(kLongestFileName) + QLatin1Char('_') +
           QString::fromLatin1(sum) + QStringLiteral(".jpg");
}

QVector<QStringList> testsOf(const QString &history, const QString &name, const QString &sex, const QString &birthday)
{
    QVector<QStringList> tests;
    const QStringView wantedName(name);
    forEachLine(history, [&](QStringView line) {
        // Most lines are other children's; skip them before splitting anything.
        if (!line.startsWith(wantedName))
            return;
        const QStringList fields = keyFields(keyOf(line).toString());
        if (fields.at(0) != name || fields.at(1) != sex || fields.at(2) != birthday)
            return;
        tests << testValues(line.toString());
    });
    return tests;
}

} // namespace historysearch
