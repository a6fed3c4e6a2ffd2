// SPDX-License-Identifier: GPL-2.0-or-later
// The password box of the Wi-Fi page: one hidden or shown password, typed on the on-screen keyboard.
#pragma once

#include <QDialog>
#include <QString>

#include <memory>

namespace Ui {
class WifiPwdDlg;
}

// Run with exec(), then read bConnect and, when it is set, strPassword.
// A tap on the password field opens the keyboard below it.
class WifiPwdDlg : public QDialog
{
    Q_OBJECT

public:
    explicit WifiPwdDlg(QWidget *parent = nullptr);
    ~WifiPwdDlg() override;

    bool eventFilter(QObject *watched, QEvent *event) override;

    // Set only when the dialog closed by Connect.
    bool bConnect = false;
    QString strPassword;

protected:
    void showEvent(QShowEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private slots:
    void on_buttonConnect_clicked();
    void on_buttonCancel_clicked();
    void on_buttonPwdHide_clicked();

private:
    void openKeypad();

    std::unique_ptr<Ui::WifiPwdDlg> ui;
};
