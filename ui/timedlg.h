// SPDX-License-Identifier: GPL-2.0-or-later
// The duration chooser of the screen-off and power-off timers: six choices and a way out.
#pragma once

#include <QDialog>
#include <QString>

#include <memory>

namespace Ui {
class TimeDlg;
}

class TimeDlg : public QDialog
{
    Q_OBJECT

public:
    explicit TimeDlg(QWidget *parent = nullptr);
    ~TimeDlg() override;

    // The question above the choices (translated), and the stored setting
    // whose choice is marked.
    void Init(const QString &title, const QString &current);

    // The choice made, untranslated as the settings keep it ("1 Minute" ...
    // "Never"); empty when the dialog was left without one.
    QString strTime;

protected:
    void showEvent(QShowEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private slots:
    void on_button1M_clicked();
    void on_button5M_clicked();
    void on_button10M_clicked();
    void on_button30M_clicked();
    void on_button1H_clicked();
    void on_buttonNever_clicked();
    void on_buttonTimeCancel_clicked();

private:
    void choose(int choice);

    std::unique_ptr<Ui::TimeDlg> ui;
};
