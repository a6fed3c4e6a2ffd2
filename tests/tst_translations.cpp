// SPDX-License-Identifier: GPL-2.0-or-later
// Translations: every text of the sources is translated in all three languages, with its placeholders intact.
#include <QFile>
#include <QMap>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>
#include <QXmlStreamReader>

#include <algorithm>

namespace {

const QStringList kLocales = {QStringLiteral("en_US"), QStringLiteral("zh_CN"), QStringLiteral("es_ES")};

struct Message
{
    QString context;
    QString source;
    // "", "unfinished", "obsolete" or "vanished", as lupdate writes it.
    QString type;
    QString translation;
    QString key() const { return context + QLatin1Char('\n') + source; }
    QString text() const { return context + QStringLiteral(" \"") + source + QLatin1Char('"'); }
};

// The messages of a .ts file. A plural entry or any other element inside a
// text makes the file unreadable here, so a form this reader does not know
// fails the test rather than passing unread.
QVector<Message> readTs(const QString &path, QString *error)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        *error = path + QStringLiteral(": ") + file.errorString();
        return {};
    }
    QVector<Message> messages;
    QString context;
    QXmlStreamReader xml(&file);
    while (!xml.atEnd()) {
        if (xml.readNext() != QXmlStreamReader::StartElement)
            continue;
        if (xml.name() == QLatin1String("name")) {
            context = xml.readElementText();
        } else if (xml.name() == QLatin1String("message")) {
            messages.append({context, {}, {}, {}});
        } else if (xml.name() == QLatin1String("source") && !messages.isEmpty()) {
            messages.last().source = xml.readElementText();
        } else if (xml.name() == QLatin1String("translation") && !messages.isEmpty()) {
            messages.last().type = xml.attributes().value(QLatin1String("type")).toString();
            messages.last().translation = xml.readElementText();
        }
    }
    if (xml.hasError())
        *error = QStringLiteral("%1:%2: %3").arg(path).arg(xml.lineNumber()).arg(xml.errorString());
    return messages;
}

// Qt's markers (%1 to %99, %L1), which a translation may reorder but not lose.
QStringList placeholdersOf(const QString &text)
{
    static const QRegularExpression marker(QStringLiteral("%L?[1-9][0-9]?"));
    QStringList found;
    for (auto it = marker.globalMatch(text); it.hasNext();)
        found << it.next().captured();
    found.sort();
    return found;
}

} // namespace

class TestTranslations : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_dir;
    QMap<QString, Message> m_current;

private slots:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        // The same script that refreshes the committed files, writing into a
        // scratch file only: the folder list lives in one place.
        const QString scanned = m_dir.filePath(QStringLiteral("scan.ts"));
        QProcess script;
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(QStringLiteral("LUPDATE"), QStringLiteral(ORVELLA_LUPDATE));
        script.setProcessEnvironment(env);
        script.setProcessChannelMode(QProcess::MergedChannels);
        script.start(QStringLiteral("bash"), {QStringLiteral(ORVELLA_SOURCE_DIR "/scripts/update-translations"),
                                              QStringLiteral("--scan"), scanned});
        QVERIFY2(script.waitForFinished(120000), "update-translations --scan did not finish");
        const QByteArray output = script.readAll();
        QVERIFY2(script.exitStatus() == QProcess::NormalExit && script.exitCode() == 0, output.constData());

        QString error;
        for (const Message &message : readTs(scanned, &error))
            m_current.insert(message.key(), message);
        QVERIFY2(error.isEmpty(), qPrintable(error));
        // An empty scan would make every check pass, so it must look like the
        // program: texts of the code and of the forms.
        QVERIFY2(m_current.contains(QStringLiteral("MainDialog\nOK")), "no text of ui/*.cpp found");
        QVERIFY2(std::any_of(m_current.begin(), m_current.end(),
                             [](const Message &m) { return m.context == QLatin1String("PageWithMenu"); }),
                 "no text of resources/forms/*.ui found");
    }

    void everyTextIsTranslated_data()
    {
        QTest::addColumn<QString>("locale");
        for (const QString &locale : kLocales)
            QTest::newRow(qPrintable(locale)) << locale;
    }

    void everyTextIsTranslated()
    {
        QFETCH(QString, locale);
        QString error;
        const QVector<Message> messages =
            readTs(QStringLiteral(ORVELLA_SOURCE_DIR "/resources/i18n/app_%1.ts").arg(locale), &error);
        QVERIFY2(error.isEmpty(), qPrintable(error));
        QStringList problems;
        QMap<QString, Message> committed;
        for (const Message &message : messages) {
            if (!m_current.contains(message.key()) || message.type == QLatin1String("obsolete") ||
                message.type == QLatin1String("vanished"))
                problems << QStringLiteral("no longer in the sources: ") + message.text();
            else if (committed.contains(message.key()))
                problems << QStringLiteral("twice: ") + message.text();
            committed.insert(message.key(), message);
        }
        for (const Message &wanted : qAsConst(m_current)) {
            const Message found = committed.value(wanted.key());
            const QString text = wanted.text() + QStringLiteral(" -> \"") + found.translation + QLatin1Char('"');
            if (!committed.contains(wanted.key()))
                problems << QStringLiteral("missing: ") + wanted.text();
            else if (!found.type.isEmpty())
                problems << found.type + QStringLiteral(": ") + text;
            else if (found.translation.trimmed().isEmpty())
                problems << QStringLiteral("empty: ") + text;
            else if (placeholdersOf(found.translation) != placeholdersOf(wanted.source))
                problems << QStringLiteral("placeholders changed: ") + text;
            // Changing an English text means changing it in the code, where it is the key.
            else if (locale == QLatin1String("en_US") && found.translation != wanted.source)
                problems << QStringLiteral("reworded: ") + text;
        }
        QVERIFY2(problems.isEmpty(), qPrintable(QStringLiteral("app_%1.ts is out of step (run "
                                                               "scripts/update-translations, translate, rebuild): %2:\n  ")
                                                    .arg(locale)
                                                    .arg(problems.size()) +
                                                problems.join(QStringLiteral("\n  "))));
    }
};

QTEST_GUILESS_MAIN(TestTranslations)

#include "tst_translations.moc"
