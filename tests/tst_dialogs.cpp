// SPDX-License-Identifier: GPL-2.0-or-later
// The small modal dialogs every page uses: message box, keyboards and the "please wait" dialog.
#include "gdata.h"
#include "keypaddlg.h"
#include "msgdialog.h"
#include "numkeypaddlg.h"
#include "testsupport.h"
#include "uploaddlg.h"

#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>
#include <QTest>
#include <QTimer>

#include <functional>

namespace {

// Runs the dialog modally, with whileOpen queued into its event loop. A
// watchdog rejects a dialog that is still open after two seconds, so a
// dialog that fails to close fails the test instead of hanging it.
bool runModal(QDialog &dialog, const std::function<void()> &whileOpen = {})
{
    bool watchdogFired = false;
    QTimer watchdog;
    watchdog.setSingleShot(true);
    QObject::connect(&watchdog, &QTimer::timeout, &dialog, [&] {
        watchdogFired = true;
        dialog.reject();
    });
    watchdog.start(2000);
    if (whileOpen)
        QTimer::singleShot(0, &dialog, whileOpen);
    dialog.exec();
    return !watchdogFired;
}

QPushButton *button(QWidget *dialog, const QString &name)
{
    auto *found = dialog->findChild<QPushButton *>(name);
    if (!found)
        qFatal("no button %s", qPrintable(name));
    return found;
}

// This program does not link the window fixtures; a click is all it needs of them.
void click(QWidget *dialog, const QString &name)
{
    QTest::mouseClick(button(dialog, name), Qt::LeftButton);
}

// The label as drawn: "&" marks a mnemonic and is not drawn; "&&" draws one "&".
QString shownText(QPushButton *key)
{
    return key->text()
        .replace(QLatin1String("&&"), QLatin1String("\1"))
        .remove(QLatin1Char('&'))
        .replace(QLatin1Char('\1'), QLatin1Char('&'));
}

// Swallows the activation of one window, as a platform without a window
// manager would never deliver it.
class ActivationEater : public QObject
{
public:
    bool eventFilter(QObject *, QEvent *event) override { return event->type() == QEvent::WindowActivate; }
};

} // namespace

class TestDialogs : public QObject, private DeviceFixture
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        setUp();
        QFont font(QStringLiteral("WenQuanYi Micro Hei"));
        font.setPixelSize(28);
        QApplication::setFont(font);
    }

    void cleanupTestCase() { tearDown(); }

    // --- the "please wait" dialog ---

    void uploadRunsItsOperationOnceAndKeepsItsResult_data()
    {
        QTest::addColumn<int>("mode");
        QTest::addColumn<QString>("resultKept");
        QTest::addColumn<bool>("activationArrives");
        const char *const kept[] = {"bool",   "bool", "none",   "none", "string",
                                    "string", "int",  "string", "none", "string"};
        for (int mode = 0; mode < 10; ++mode)
            QTest::addRow("%d", mode) << mode << QString::fromLatin1(kept[mode]) << true;
        QTest::newRow("6 never activated") << 6 << QStringLiteral("int") << false;
    }

    void uploadRunsItsOperationOnceAndKeepsItsResult()
    {
        QFETCH(int, mode);
        QFETCH(QString, resultKept);
        QFETCH(bool, activationArrives);
        LogCapture log;
        UploadDlg dialog;
        dialog.mode = mode;
        dialog.bResult = true;
        dialog.strResult = QStringLiteral("untouched");
        dialog.nResult = 12345;
        ActivationEater eater;
        if (!activationArrives)
            dialog.installEventFilter(&eater);
        QVERIFY2(runModal(dialog), "the dialog did not close by itself");
        // Neither a later activation nor a pending fallback may run it again.
        dialog.removeEventFilter(&eater);
        QEvent activate(QEvent::WindowActivate);
        QApplication::sendEvent(&dialog, &activate);
        QCoreApplication::processEvents();
        QCOMPARE(log.lines().count(QStringLiteral("UploadDlg mode %1").arg(mode)), 1);
        // Nothing answers here, so every operation fails: its failure shows
        // in exactly the member that belongs to the mode, the others keep
        // what they held.
        QCOMPARE(dialog.bResult, resultKept != QLatin1String("bool"));
        QCOMPARE(dialog.strResult == QLatin1String("untouched"), resultKept != QLatin1String("string"));
        QCOMPARE(dialog.nResult, resultKept == QLatin1String("int") ? -1 : 12345);
    }

    // --- the message box ---

    void messageBoxLayoutFollowsTheTexts_data()
    {
        QTest::addColumn<QString>("message");
        QTest::addColumn<QString>("texts");
        QTest::addColumn<QString>("buttons");
        // The left, middle and right texts given; then each button shown:
        // its name, the text it shows and the result it gives.
        const auto row = [](const char *name, const char *message, const char *texts, const char *buttons) {
            QTest::newRow(name) << QString::fromUtf8(message) << QString::fromUtf8(texts) << QString::fromUtf8(buttons);
        };
        row("all empty: one blank button", "", "||", "Middle1==1");
        row("notice", "", "|OK|", "Middle1=OK=1");
        row("no left: right text ignored", "", "|OK|Connect", "Middle1=OK=1");
        row("question", "Guest", "Cancel||Connect", "Left1=Cancel=0,Right1=Connect=2");
        row("left only: blank right", "", "Back||", "Left1=Back=0,Right1==2");
        row("three-way", "Guest", "Cancel|Delete|Connect", "Left=Cancel=0,Middle=Delete=1,Right=Connect=2");
        row("ampersand shown as typed", "", "|Print & Send|", "Middle1=Print & Send=1");
    }

    void messageBoxLayoutFollowsTheTexts()
    {
        QFETCH(QString, message);
        QFETCH(QString, texts);
        QFETCH(QString, buttons);
        const QStringList given = texts.split(QLatin1Char('|'));
        QStringList shown;
        for (const QString &button : buttons.split(QLatin1Char(',')))
            shown << QStringLiteral("button") + button.section(QLatin1Char('='), 0, 0);
        for (const QString &expected : buttons.split(QLatin1Char(','))) {
            MsgDialog dialog;
            dialog.Init(QStringLiteral("Connect to Network"), message, given[0], given[1], given[2]);
            // Without a message the title alone, large, in the middle.
            QStringList labels;
            for (QLabel *label : dialog.findChildren<QLabel *>()) {
                if (label->isVisibleTo(&dialog))
                    labels << label->objectName() + QLatin1Char('=') + label->text();
            }
            labels.sort();
            QCOMPARE(labels, message.isEmpty() ? QStringList({"labelTitleMsg=Connect to Network"})
                                               : QStringList({"labelMsg=" + message, "labelTitle=Connect to Network"}));
            for (QPushButton *key : dialog.findChildren<QPushButton *>())
                QVERIFY2(key->isVisibleTo(&dialog) == shown.contains(key->objectName()), qPrintable(key->objectName()));
            const QString name = QStringLiteral("button") + expected.section(QLatin1Char('='), 0, 0);
            QCOMPARE(shownText(button(&dialog, name)), expected.section(QLatin1Char('='), 1, 1));
            QVERIFY2(runModal(dialog, [&] { click(&dialog, name); }), qPrintable(name + " did not close"));
            QCOMPARE(dialog.result, expected.section(QLatin1Char('='), 2, 2).toInt());
        }
    }

    void messageBoxFitsLongTextsAndIsCentredUnlessPlaced()
    {
        MsgDialog dialog;
        dialog.Init(QStringLiteral("Conectar a la red inalámbrica"),
                    QStringLiteral("No se ha podido establecer la conexión con el servidor de análisis. Compruebe la "
                                   "red inalámbrica e inténtelo de nuevo dentro de unos minutos."),
                    QStringLiteral("Cancelar"), QStringLiteral("Desvincular"), QStringLiteral("Imprimir prueba"));
        dialog.show();
        auto *message = dialog.findChild<QLabel *>(QStringLiteral("labelMsg"));
        QVERIFY(message->height() >= message->heightForWidth(message->width()));
        QVERIFY(dialog.height() <= 600);
        for (const char *name : {"buttonLeft", "buttonMiddle", "buttonRight"}) {
            QPushButton *key = button(&dialog, QLatin1String(name));
            QVERIFY2(QFontMetrics(key->font()).horizontalAdvance(key->text()) <= key->width(), name);
        }
        const QPoint off = dialog.geometry().center() - QGuiApplication::primaryScreen()->geometry().center();
        QVERIFY(qAbs(off.x()) <= 1 && qAbs(off.y()) <= 1);

        MsgDialog placed;
        placed.Init(QStringLiteral("Saved"), QString(), QString(), QStringLiteral("OK"), QString());
        placed.move(10, 20);
        placed.show();
        QCOMPARE(placed.pos(), QPoint(10, 20));
    }

    // --- the keyboards ---

    // Keys pressed on a keyboard bound to a field: the field and the
    // keyboard's own copy hold what was typed, the last letter or digit key
    // shows what it typed, and only the close key closes the keyboard.
    void typing_data()
    {
        QTest::addColumn<bool>("digitPad");
        QTest::addColumn<QString>("target");
        QTest::addColumn<QString>("before");
        QTest::addColumn<QStringList>("keys");
        QTest::addColumn<QString>("typed");
        const auto row = [](const char *name, bool digitPad, const char *target, const char *before,
                            const QStringList &keys, const QString &typed) {
            QTest::newRow(name) << digitPad << QString::fromLatin1(target) << QString::fromLatin1(before) << keys
                                << typed;
        };
        row("Del on empty text", false, "edit", "", {"Del", "Del", "A", "B", "Del"}, "a");
        row("Shift twice, lower case", false, "label", "", {"A", "Shift", "A", "Shift", "A"}, "aAa");
        row("Shift twice, symbols 1", false, "label", "", {"Mode", "A", "Shift", "A", "Shift", "A"}, "~%~");
        row("mode key: upper case, symbols, lower case", false, "edit", "", {"Shift", "Mode", "A", "Mode", "A"}, "~a");
        // "&", which a label would take for a mnemonic.
        row("symbols 2: F", false, "edit", "", {"Mode", "Shift", "F"}, "&");
        row("line edit, Enter changing nothing", false, "edit", "Ana",
            {"Space", "Shift", "L", "Shift", "U", "Z", "Enter"}, "Ana Luz");
        row("a field of three keeps three", false, "password3", "", {"S", "E", "C", "R", "Space"}, "sec");
        row("digits", true, "edit", "", {"Del", "0", "1", "2", "3", "4", "5", "6", "7", "8", "9"}, "0123456789");
        row("a date", true, "edit", "", {"2", "0", "2", "1", "Minus", "0", "2", "Minus", "3", "1", "Del", "0"},
            "2021-02-30");
        row("a signed value", true, "label", "-", {"1", "Dot", "5"}, "-1.5");
        row("no field: the keypad's own copy", false, "none", "", {"Del", "Q"}, "q");
    }

    void typing()
    {
        QFETCH(bool, digitPad);
        QFETCH(QString, target);
        QFETCH(QString, before);
        QFETCH(QStringList, keys);
        QFETCH(QString, typed);
        QLabel label(before);
        QLineEdit edit(before);
        if (target == QLatin1String("password3")) {
            edit.setEchoMode(QLineEdit::Password);
            edit.setMaxLength(3);
        }
        QWidget *field = target == QLatin1String("label") ? static_cast<QWidget *>(&label) : &edit;
        KeypadDlg keypad;
        NumKeypadDlg pad;
        QDialog *keyboard = digitPad ? static_cast<QDialog *>(&pad) : &keypad;
        // Without a field the keyboard is never given one.
        if (target == QLatin1String("none"))
            field = nullptr;
        else if (digitPad)
            pad.setTarget(field);
        else
            keypad.setTarget(field);
        auto *copy = keyboard->findChild<QLineEdit *>(QStringLiteral("editKeypad"));
        QCOMPARE(copy->echoMode(), field == &edit ? edit.echoMode() : QLineEdit::Normal);
        QCOMPARE(copy->text(), before);

        keyboard->show();
        // Every key inside the keyboard; letters and digits big enough for a finger.
        for (QPushButton *key : keyboard->findChildren<QPushButton *>()) {
            QVERIFY2(keyboard->rect().contains(key->geometry()), qPrintable(key->objectName()));
            QVERIFY2(key->objectName().size() != 7 || (key->width() >= 80 && key->height() >= 52),
                     qPrintable(key->objectName()));
        }
        for (const QString &key : keys)
            click(keyboard, QStringLiteral("button") + key);
        if (field)
            QCOMPARE(field->property("text").toString(), typed);
        QCOMPARE(copy->text(), typed);
        if (keys.last().size() == 1)
            QCOMPARE(shownText(button(keyboard, QStringLiteral("button") + keys.last())), typed.right(1));
        QVERIFY(keyboard->isVisible());
        click(keyboard, QStringLiteral("buttonCloseKeypad"));
        QVERIFY(!keyboard->isVisible());
    }
};

QTEST_MAIN(TestDialogs)
#include "tst_dialogs.moc"
