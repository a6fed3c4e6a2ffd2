// SPDX-License-Identifier: GPL-2.0-or-later
// The digit pad: digits, "-" and "." for dates and calibration values, typing into one field.
#include "numkeypaddlg.h"

#include "msgdialog.h"
#include "ui_numkeypaddlg.h"

#include <QLineEdit>
#include <QPushButton>
#include <QVariant>

#include <array>

NumKeypadDlg::NumKeypadDlg(QWidget *parent)
    : QDialog(parent, Qt::FramelessWindowHint | Qt::Dialog)
    , ui(std::make_unique<Ui::NumKeypadDlg>())
{
    ui->setupUi(this);
    setModal(true);

    const std::array<QPushButton *, 10> digitKeys = {ui->button0, ui->button1, ui->button2, ui->button3, ui->button4,
                                                     ui->button5, ui->button6, ui->button7, ui->button8, ui->button9};
    for (int digit = 0; digit < 10; ++digit)
        connect(digitKeys[digit], &QPushButton::clicked, this, [this, digit] { on_number_input(digit); });
}

NumKeypadDlg::~NumKeypadDlg() = default;

void NumKeypadDlg::showEvent(QShowEvent *event)
{
    QDialog::showEvent(event);
    // The two named keys carry translated words; the form sets them at 20 pt.
    layout()->activate();
    for (QPushButton *key : {ui->buttonDel, ui->buttonCloseKeypad})
        MsgDialog::fitButtonFont({key}, 20);
}

void NumKeypadDlg::setTarget(QWidget *target)
{
    m_pTarget = target;
    if (auto *edit = qobject_cast<QLineEdit *>(target))
        ui->editKeypad->setEchoMode(edit->echoMode());
    ui->editKeypad->setText(currentText());
}

void NumKeypadDlg::on_number_input(int digit)
{
    appendString(QString::number(digit));
}

void NumKeypadDlg::on_buttonMinus_clicked()
{
    appendString(QStringLiteral("-"));
}

void NumKeypadDlg::on_buttonDot_clicked()
{
    appendString(QStringLiteral("."));
}

void NumKeypadDlg::on_buttonDel_clicked()
{
    QString text = currentText();
    text.chop(1);
    setCurrentText(text);
}

void NumKeypadDlg::on_buttonCloseKeypad_clicked()
{
    close();
}

QString NumKeypadDlg::currentText() const
{
    if (m_pTarget)
        return m_pTarget->property("text").toString();
    return ui->editKeypad->text();
}

void NumKeypadDlg::setCurrentText(const QString &text)
{
    if (m_pTarget) {
        m_pTarget->setProperty("text", text);
        // Read back: a line edit with a length limit keeps only what fits.
        ui->editKeypad->setText(m_pTarget->property("text").toString());
    } else {
        ui->editKeypad->setText(text);
    }
}

void NumKeypadDlg::appendString(const QString &s)
{
    setCurrentText(currentText() + s);
}
