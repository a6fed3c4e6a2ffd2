// SPDX-License-Identifier: GPL-2.0-or-later
// Translations: every text of the sources is translated in all three languages, and the program carries them.
#include <QDir>
#include <QFile>
#include <QMap>
#include <QProcess>
#include <QRegularExpression>
#include <QSet>
#include <QTemporaryDir>
#include <QTest>
#include <QTranslator>
#include <QXmlStreamReader>

#include <tuple>

namespace {

const QStringList kLocales = {QStringLiteral("en_US"), QStringLiteral("zh_CN"), QStringLiteral("es_ES")};

struct Message
{
    QString context;
    QString source;
    QString comment;
    bool numerus = false;
    // "", "unfinished", "obsolete" or "vanished", as lupdate writes it.
    QString type;
    // One entry, or one per plural form.
    QStringList translations;
};

// What identifies a message to lupdate and to QTranslator.
using Key = std::tuple<QString, QString, QString>;

Key keyOf(const Message &message)
{
    return Key(message.context, message.source, message.comment);
}

QString describe(const Message &message, const QString &translation = QString())
{
    QString text = message.context + QStringLiteral(" \"") + message.source + QLatin1Char('"');
    if (!message.comment.isEmpty())
        text += QStringLiteral(" (") + message.comment + QLatin1Char(')');
    if (!translation.isNull())
        text += QStringLiteral(" -> \"") + translation + QLatin1Char('"');
    return text;
}

struct TsFile
{
    QString error;
    QVector<Message> messages;
};

// The text of the current element up to its end tag; lupdate writes control
// characters as <byte value="x1b"/> elements inside it.
QString readText(QXmlStreamReader &xml)
{
    QString text;
    while (!xml.atEnd()) {
        xml.readNext();
        if (xml.isCharacters()) {
            text += xml.text();
        } else if (xml.isStartElement() && xml.name() == QLatin1String("byte")) {
            QString value = xml.attributes().value(QLatin1String("value")).toString();
            const int base = value.startsWith(QLatin1Char('x')) ? 16 : 10;
            if (base == 16)
                value.remove(0, 1);
            text += QChar(value.toUInt(nullptr, base));
            xml.skipCurrentElement();
        } else if (xml.isStartElement()) {
            // <numerusform>/<lengthvariant>: the first variant stands for the element.
            text += readText(xml);
        } else if (xml.isEndElement()) {
            break;
        }
    }
    return text;
}

Message readMessage(QXmlStreamReader &xml, const QString &context)
{
    Message message;
    message.context = context;
    message.numerus = xml.attributes().value(QLatin1String("numerus")) == QLatin1String("yes");
    while (xml.readNextStartElement()) {
        const auto name = xml.name();
        if (name == QLatin1String("source")) {
            message.source = readText(xml);
        } else if (name == QLatin1String("comment")) {
            message.comment = readText(xml);
        } else if (name == QLatin1String("translation")) {
            message.type = xml.attributes().value(QLatin1String("type")).toString();
            if (message.numerus) {
                while (xml.readNextStartElement()) {
                    if (xml.name() == QLatin1String("numerusform"))
                        message.translations << readText(xml);
                    else
                        xml.skipCurrentElement();
                }
            } else {
                message.translations << readText(xml);
            }
        } else {
            xml.skipCurrentElement();
        }
    }
    return message;
}

TsFile readTs(const QString &path)
{
    TsFile ts;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        ts.error = path + QStringLiteral(": ") + file.errorString();
        return ts;
    }
    QXmlStreamReader xml(&file);
    if (!xml.readNextStartElement() || xml.name() != QLatin1String("TS")) {
        ts.error = path + QStringLiteral(": not a TS file");
        return ts;
    }
    while (xml.readNextStartElement()) {
        if (xml.name() != QLatin1String("context")) {
            xml.skipCurrentElement();
            continue;
        }
        QString context;
        while (xml.readNextStartElement()) {
            if (xml.name() == QLatin1String("name"))
                context = readText(xml);
            else if (xml.name() == QLatin1String("message"))
                ts.messages << readMessage(xml, context);
            else
                xml.skipCurrentElement();
        }
    }
    if (xml.hasError())
        ts.error = QStringLiteral("%1:%2: %3").arg(path).arg(xml.lineNumber()).arg(xml.errorString());
    return ts;
}

// Qt's markers (%1 to %99, %L1, %n), which a translation may reorder, and
// printf's (%d, %-5s, %.2f, %lld, %%), which it may not. A "%" before a space
// is ordinary text ("20 % de batería"), so the space flag is not recognised.
const QRegularExpression kPlaceholder(
    QStringLiteral("%(?:%|L?[1-9][0-9]?|n|[-+#0]*[0-9]*(?:\\.[0-9]+)?(?:hh|h|ll|l|L|q|j|z|t)?[diouxXeEfFgGaAcsp])"));
const QRegularExpression kQtMarker(QStringLiteral("^%(?:L?[1-9][0-9]?|n)$"));

struct Placeholders
{
    QStringList qt;     // sorted
    QStringList printf; // in order
    bool operator==(const Placeholders &other) const { return qt == other.qt && printf == other.printf; }
};

Placeholders placeholdersOf(const QString &text)
{
    Placeholders found;
    auto it = kPlaceholder.globalMatch(text);
    while (it.hasNext()) {
        const QString marker = it.next().captured();
        if (kQtMarker.match(marker).hasMatch())
            found.qt << marker;
        else
            found.printf << marker;
    }
    found.qt.sort();
    return found;
}

// Single "&"s, the mnemonic markers; "&&" is a literal ampersand.
int mnemonicsOf(const QString &text)
{
    int count = 0;
    for (int i = 0; i < text.size(); ++i) {
        if (text.at(i) != QLatin1Char('&'))
            continue;
        if (i + 1 < text.size() && text.at(i + 1) == QLatin1Char('&'))
            ++i;
        else
            ++count;
    }
    return count;
}

QString committedFile(const QString &locale)
{
    return QStringLiteral(ORVELLA_SOURCE_DIR "/resources/i18n/app_%1.ts").arg(locale);
}

QString listed(const QStringList &problems)
{
    return QString::number(problems.size()) + QStringLiteral(":\n  ") + problems.join(QStringLiteral("\n  "));
}

} // namespace

class TestTranslations : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_dir;
    QMap<Key, Message> m_current;
    QMap<QString, TsFile> m_committed;

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

        const TsFile scan = readTs(scanned);
        QVERIFY2(scan.error.isEmpty(), qPrintable(scan.error));
        QSet<QString> contexts;
        for (const Message &message : scan.messages) {
            m_current.insert(keyOf(message), message);
            contexts.insert(message.context);
        }
        // An empty scan would make every check pass, so it must look like the
        // program: texts of the code and of the forms.
        QVERIFY2(contexts.contains(QStringLiteral("MainDialog")), "no text of ui/*.cpp found");
        QVERIFY2(contexts.contains(QStringLiteral("PageWithMenu")), "no text of resources/forms/*.ui found");
        QVERIFY(scan.messages.size() >= 20);
        for (const QString &locale : kLocales) {
            const TsFile ts = readTs(committedFile(locale));
            QVERIFY2(ts.error.isEmpty(), qPrintable(ts.error));
            m_committed.insert(locale, ts);
        }
    }

    void everyTextIsTranslatedAndCarried_data()
    {
        QTest::addColumn<QString>("locale");
        for (const QString &locale : kLocales)
            QTest::newRow(qPrintable(locale)) << locale;
    }

    void everyTextIsTranslatedAndCarried()
    {
        QFETCH(QString, locale);
        QTranslator translator;
        QVERIFY2(translator.load(QStringLiteral(":/i18n/app_%1.qm").arg(locale)), qPrintable(locale));
        QStringList problems;
        QMap<Key, Message> committed;
        QSet<QString> translatedContexts;
        for (const Message &message : m_committed.value(locale).messages) {
            const auto problem = [&](const char *what, const QString &translation = QString()) {
                problems << QLatin1String(what) + describe(message, translation);
            };
            if (!m_current.contains(keyOf(message)) || message.type == QLatin1String("obsolete") ||
                message.type == QLatin1String("vanished"))
                problem("no longer in the sources: ");
            else if (committed.contains(keyOf(message)))
                problem("twice: ");
            committed.insert(keyOf(message), message);
            for (const QString &translation : message.translations) {
                if (translation.isEmpty())
                    continue; // reported as untranslated below
                if (!(placeholdersOf(translation) == placeholdersOf(message.source)))
                    problem("placeholders changed: ", translation);
                else if (mnemonicsOf(translation) != mnemonicsOf(message.source))
                    problem("\"&\" markers changed: ", translation);
            }
            if (!message.type.isEmpty() || message.numerus)
                continue;
            // Changing an English text means changing it in the code, where it is the key.
            if (locale == QLatin1String("en_US") && message.translations.value(0) != message.source)
                problem("reworded: ", message.translations.value(0));
            const QString shown =
                translator.translate(message.context.toUtf8().constData(), message.source.toUtf8().constData(),
                                     message.comment.isEmpty() ? nullptr : message.comment.toUtf8().constData());
            if (shown != message.translations.value(0))
                problem("the program carries another text: ", shown);
            else if (shown != message.source)
                translatedContexts.insert(message.context);
        }
        for (const Message &wanted : qAsConst(m_current)) {
            const auto found = committed.constFind(keyOf(wanted));
            if (found == committed.constEnd()) {
                problems << QStringLiteral("missing: ") + describe(wanted);
                continue;
            }
            bool empty = found->translations.isEmpty();
            for (const QString &translation : found->translations)
                empty = empty || translation.trimmed().isEmpty();
            if (!found->type.isEmpty())
                problems << found->type + QStringLiteral(": ") + describe(*found);
            else if (empty)
                problems << QStringLiteral("empty: ") + describe(*found);
            else if (found->numerus != wanted.numerus)
                problems << QStringLiteral("plural form changed: ") + describe(*found);
        }
        QVERIFY2(problems.isEmpty(), qPrintable(QStringLiteral("app_%1.ts is out of step (run "
                                                               "scripts/update-translations, translate, rebuild): ")
                                                    .arg(locale) +
                                                listed(problems)));
        // Code, forms and the dialogs each carry their own context; the
        // Chinese and Spanish tables must really change texts in several of them.
        if (locale != QLatin1String("en_US"))
            QVERIFY2(translatedContexts.size() >= 3, qPrintable(QStringList(translatedContexts.values()).join(' ')));
    }
};

QTEST_GUILESS_MAIN(TestTranslations)

#include "tst_translations.moc"
