// SPDX-License-Identifier: GPL-2.0-or-later
// The digit pad: digits, "-" and "." for dates and calibration values, typing into one field.
#pragma once

#include <QDialog>
#include <QPointer>
#include <QString>

#include <memory>

namespace Ui {
class NumKeypadDlg;
}

// Used like KeypadDlg: bind it to one field, place it (at y 240 on the device
// screen) and exec(); the field holds the typed text when exec() returns.
class NumKeypadDlg : public QDialog
{
    Q_OBJECT

public:
    explicit NumKeypadDlg(QWidget *parent = nullptr);
    ~NumKeypadDlg() override;

    // Any widget with a "text" property: a QLineEdit, a QLabel.
    void setTarget(QWidget *target);

    // All ten digit keys end here with their digit. Not a slot, so that
    // automatic slot connection does not look for a widget called "number".
    void on_number_input(int digit);

protected:
    void showEvent(QShowEvent *event) override;

private slots:
    void on_buttonMinus_clicked();
    void on_buttonDot_clicked();
    void on_buttonDel_clicked();
    void on_buttonCloseKeypad_clicked();

private:
    QString currentText() const;
    void setCurrentText(const QString &text);
    void appendString(const QString &s);

    std::unique_ptr<Ui::NumKeypadDlg> ui;
    QPointer<QWidget> m_pTarget;
};
