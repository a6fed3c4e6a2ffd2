// SPDX-License-Identifier: GPL-2.0-or-later
// The duration chooser of the screen-off and power-off timers: six choices and a way out.
#include "timedlg.h"

#include "msgdialog.h"
#include "powertimers.h"
#include "ui_timedlg.h"

#include <QShowEvent>

namespace {

constexpr int kChoicePointSize = 24;

} // namespace

TimeDlg::TimeDlg(QWidget *parent)
    : QDialog(parent, Qt::FramelessWindowHint | Qt::Dialog)
    , ui(std::make_unique<Ui::TimeDlg>())
{
    ui->setupUi(this);
    setModal(true);
}

TimeDlg::~TimeDlg() = default;

void TimeDlg::Init(const QString &title, const QString &current)
{
    ui->labelTimeTitle->setText(title);
    // Marked by minutes, so that the factory "-1" shows as "Never".
    const int minutes = powertimers::minutesFromSetting(current);
    const char *marked = powertimers::choiceForMinutes(minutes);
    QPushButton *const buttons[] = {ui->button1M,  ui->button5M, ui->button10M,
                                    ui->button30M, ui->button1H, ui->buttonNever};
    for (int i = 0; i < powertimers::kChoiceCount; ++i)
        buttons[i]->setChecked(marked == powertimers::kChoices[i]);
}

void TimeDlg::showEvent(QShowEvent *event)
{
    if (!event->spontaneous() && !testAttribute(Qt::WA_Moved))
        MsgDialog::centreOnDeviceScreen(this);
    QDialog::showEvent(event);
    layout()->activate();
    MsgDialog::fitButtonFont(findChildren<QPushButton *>(), kChoicePointSize);
}

void TimeDlg::resizeEvent(QResizeEvent *event)
{
    MsgDialog::roundWindowCorners(this);
    QDialog::resizeEvent(event);
}

void TimeDlg::choose(int choice)
{
    strTime = QString::fromLatin1(powertimers::kChoices[choice]);
    accept();
}

void TimeDlg::on_button1M_clicked()
{
    choose(0);
}

void TimeDlg::on_button5M_clicked()
{
    choose(1);
}

void TimeDlg::on_button10M_clicked()
{
    choose(2);
}

void TimeDlg::on_button30M_clicked()
{
    choose(3);
}

void TimeDlg::on_button1H_clicked()
{
    choose(4);
}

void TimeDlg::on_buttonNever_clicked()
{
    choose(5);
}

void TimeDlg::on_buttonTimeCancel_clicked()
{
    reject();
}
