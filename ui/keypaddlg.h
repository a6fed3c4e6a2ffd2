// SPDX-License-Identifier: GPL-2.0-or-later
// The full on-screen keyboard: letters, two tables of digits and symbols, typing into one field.
#pragma once

#include <QDialog>
#include <QPointer>
#include <QString>

#include <array>
#include <memory>

class QPushButton;

namespace Ui {
class KeypadDlg;
}

// The caller binds it to one field, places it (full width, at y 350 on the
// device screen) and runs it with exec(); each key edits the field's "text"
// property at once, so the field holds the typed text when exec() returns.
class KeypadDlg : public QDialog
{
    Q_OBJECT

public:
    explicit KeypadDlg(QWidget *parent = nullptr);
    ~KeypadDlg() override;

    // Any widget with a "text" property: a QLineEdit, a QLabel.
    void setTarget(QWidget *target);

    // Adds s to the end of the field's text.
    void LineEditAppendString(const QString &s);

protected:
    void showEvent(QShowEvent *event) override;

private slots:
    void on_buttonShift_clicked();
    void on_buttonMode_clicked();
    void on_buttonSpace_clicked();
    void on_buttonDel_clicked();
    void on_buttonEnter_clicked();
    void on_buttonCloseKeypad_clicked();

private:
    // Relabels every key for the current mode.
    void UpdateKeypad();

    void fitKeyLabels();
    QString currentText() const;
    void setCurrentText(const QString &text);

    std::unique_ptr<Ui::KeypadDlg> ui;
    std::array<QPushButton *, 26> m_letterKeys{};
    QPointer<QWidget> m_pTarget;
    // 0 lower case, 1 upper case, 2 and 3 the two symbol tables.
    int m_nMode = 0;
};
