// SPDX-License-Identifier: GPL-2.0-or-later
// The full on-screen keyboard: letters, two tables of digits and symbols, typing into one field.
#include "keypaddlg.h"

#include "msgdialog.h"
#include "ui_keypaddlg.h"

#include <QDebug>
#include <QLineEdit>
#include <QStyle>
#include <QVariant>

#include <array>

namespace {

// The named keys' text size in the form.
constexpr int kNamedKeyPointSize = 20;

// What each letter key (named "button" and its letter in the form) types in
// the two symbol modes; in the letter modes it types its own letter.
struct KeyCharacters
{
    char letter;
    char symbols1;
    char symbols2;
};

constexpr std::array<KeyCharacters, 26> kKeys = {{
    {'Q', '1', '1'},  {'W', '2', '2'}, {'E', '3', '3'}, {'R', '4', '4'}, {'T', '5', '5'}, {'Y', '6', '6'},
    {'U', '7', '7'},  {'I', '8', '8'}, {'O', '9', '9'}, {'P', '0', '0'}, {'A', '~', '%'}, {'S', '/', '$'},
    {'D', ':', '^'},  {'F', ';', '&'}, {'G', '(', '*'}, {'H', ')', '<'}, {'J', '@', '>'}, {'K', '"', '+'},
    {'L', '\'', '='}, {'Z', '-', '{'}, {'X', '_', '}'}, {'C', '#', '['}, {'V', '?', ']'}, {'B', '!', '|'},
    {'N', ',', ','},  {'M', '.', '.'},
}};

QChar keyCharacter(const KeyCharacters &key, int mode)
{
    switch (mode) {
    case 0: return QChar(key.letter).toLower();
    case 1: return QChar(key.letter);
    case 2: return QChar(key.symbols1);
    default: return QChar(key.symbols2);
    }
}

} // namespace

KeypadDlg::KeypadDlg(QWidget *parent)
    : QDialog(parent, Qt::FramelessWindowHint | Qt::Dialog)
    , ui(std::make_unique<Ui::KeypadDlg>())
{
    qDebug("KeypadDlg Init");
    ui->setupUi(this);
    setModal(true);

    for (size_t i = 0; i < kKeys.size(); ++i) {
        m_letterKeys[i] = findChild<QPushButton *>(QStringLiteral("button") + QLatin1Char(kKeys[i].letter));
        connect(m_letterKeys[i], &QPushButton::clicked, this,
                [this, i] { LineEditAppendString(keyCharacter(kKeys[i], m_nMode)); });
    }

    UpdateKeypad();
}

KeypadDlg::~KeypadDlg() = default;

void KeypadDlg::setTarget(QWidget *target)
{
    m_pTarget = target;
    // A password stays hidden in the keypad's copy too.
    if (auto *edit = qobject_cast<QLineEdit *>(target))
        ui->editKeypad->setEchoMode(edit->echoMode());
    ui->editKeypad->setText(currentText());
}

void KeypadDlg::LineEditAppendString(const QString &s)
{
    setCurrentText(currentText() + s);
}

void KeypadDlg::UpdateKeypad()
{
    for (size_t i = 0; i < m_letterKeys.size(); ++i) {
        const QChar c = keyCharacter(kKeys[i], m_nMode);
        // "&" would be taken as a mnemonic marker and not drawn.
        m_letterKeys[i]->setText(c == QLatin1Char('&') ? QStringLiteral("&&") : QString(c));
    }
    ui->buttonMode->setText(m_nMode < 2 ? tr(".?123") : tr("abc"));

    const bool shifted = m_nMode == 1 || m_nMode == 3;
    if (ui->buttonShift->property("active").toBool() != shifted) {
        ui->buttonShift->setProperty("active", shifted);
        ui->buttonShift->style()->unpolish(ui->buttonShift);
        ui->buttonShift->style()->polish(ui->buttonShift);
    }
    if (isVisible())
        fitKeyLabels();
}

void KeypadDlg::showEvent(QShowEvent *event)
{
    QDialog::showEvent(event);
    fitKeyLabels();
}

void KeypadDlg::fitKeyLabels()
{
    // The named keys carry translated words; each shrinks on its own so that
    // a long one does not shrink its neighbours.
    layout()->activate();
    for (QPushButton *key :
         {ui->buttonShift, ui->buttonMode, ui->buttonSpace, ui->buttonDel, ui->buttonEnter, ui->buttonCloseKeypad})
        MsgDialog::fitButtonFont({key}, kNamedKeyPointSize);
}

QString KeypadDlg::currentText() const
{
    if (m_pTarget)
        return m_pTarget->property("text").toString();
    return ui->editKeypad->text();
}

void KeypadDlg::setCurrentText(const QString &text)
{
    if (m_pTarget) {
        m_pTarget->setProperty("text", text);
        // Read back: a line edit with a length limit keeps only what fits.
        ui->editKeypad->setText(m_pTarget->property("text").toString());
    } else {
        ui->editKeypad->setText(text);
    }
}

void KeypadDlg::on_buttonShift_clicked()
{
    static constexpr int kShifted[] = {1, 0, 3, 2};
    m_nMode = kShifted[m_nMode];
    UpdateKeypad();
}

void KeypadDlg::on_buttonMode_clicked()
{
    m_nMode = m_nMode < 2 ? 2 : 0;
    UpdateKeypad();
}

void KeypadDlg::on_buttonSpace_clicked()
{
    LineEditAppendString(QStringLiteral(" "));
}

void KeypadDlg::on_buttonDel_clicked()
{
    QString text = currentText();
    text.chop(1);
    setCurrentText(text);
}

void KeypadDlg::on_buttonEnter_clicked()
{
    // Deliberately nothing. Every field typed into is a single line, so there
    // is no line break to insert, and ending the entry is the close key's job:
    // Enter sits among the letters, where a stray touch must not close the
    // keyboard halfway through a name.
}

void KeypadDlg::on_buttonCloseKeypad_clicked()
{
    close();
}
