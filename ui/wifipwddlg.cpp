// SPDX-License-Identifier: GPL-2.0-or-later
// The password box of the Wi-Fi page: one hidden or shown password, typed on the on-screen keyboard.
#include "wifipwddlg.h"

#include "keypaddlg.h"
#include "msgdialog.h"
#include "ui_wifipwddlg.h"

#include <QApplication>
#include <QIcon>
#include <QPainterPath>
#include <QRegion>
#include <QShowEvent>

namespace {

constexpr int kCornerRadius = 8;
// The buttons' text size in the form.
constexpr int kButtonPointSize = 28;
// Room between the password field and the keyboard's top edge.
constexpr int kKeypadGap = 8;
// The device's screen; the dialog is centred on it.
constexpr int kScreenWidth = 1024;
constexpr int kScreenHeight = 600;

} // namespace

WifiPwdDlg::WifiPwdDlg(QWidget *parent)
    : QDialog(parent, Qt::FramelessWindowHint | Qt::Dialog)
    , ui(std::make_unique<Ui::WifiPwdDlg>())
{
    ui->setupUi(this);
    setModal(true);
    // The field takes no focus and so no typing of its own: the device has
    // no keyboard but the on-screen one, which a tap opens.
    ui->editPassword->installEventFilter(this);
}

WifiPwdDlg::~WifiPwdDlg() = default;

bool WifiPwdDlg::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == ui->editPassword && event->type() == QEvent::MouseButtonPress) {
        openKeypad();
        return true;
    }
    return QDialog::eventFilter(watched, event);
}

void WifiPwdDlg::openKeypad()
{
    KeypadDlg keypad;
    keypad.setTarget(ui->editPassword);
    // The dialog sits in the middle of the device's screen, so the screen's
    // edges follow from its own; the keyboard spans the screen's width just
    // below the field, and is pushed up where it would run off the bottom.
    const QPoint centre = geometry().center();
    const QRect screen(centre.x() - kScreenWidth / 2, centre.y() - kScreenHeight / 2, kScreenWidth, kScreenHeight);
    const int fieldBottom = ui->editPassword->mapToGlobal(QPoint(0, ui->editPassword->height())).y();
    const int top = qMin(fieldBottom + kKeypadGap, screen.bottom() + 1 - keypad.height());
    keypad.move(screen.left(), top);
    keypad.exec();
}

void WifiPwdDlg::showEvent(QShowEvent *event)
{
    if (!event->spontaneous() && !testAttribute(Qt::WA_Moved))
        MsgDialog::centreOnDeviceScreen(this);
    QDialog::showEvent(event);
    layout()->activate();
    MsgDialog::fitButtonFont({ui->buttonCancel, ui->buttonConnect}, kButtonPointSize);
}

void WifiPwdDlg::resizeEvent(QResizeEvent *event)
{
    // Masked like the message box, with this dialog's smaller radius; the
    // screenless platforms cannot mask and have nothing below to show.
    static const bool screenless = QApplication::platformName() == QLatin1String("offscreen") ||
                                   QApplication::platformName() == QLatin1String("minimal");
    if (!screenless) {
        QPainterPath path;
        path.addRoundedRect(QRectF(rect()), kCornerRadius, kCornerRadius);
        setMask(QRegion(path.toFillPolygon().toPolygon()));
    }
    QDialog::resizeEvent(event);
}

void WifiPwdDlg::on_buttonConnect_clicked()
{
    strPassword = ui->editPassword->text();
    bConnect = true;
    close();
}

void WifiPwdDlg::on_buttonCancel_clicked()
{
    close();
}

void WifiPwdDlg::on_buttonPwdHide_clicked()
{
    const bool hidden = ui->editPassword->echoMode() == QLineEdit::Password;
    ui->editPassword->setEchoMode(hidden ? QLineEdit::Normal : QLineEdit::Password);
    ui->buttonPwdHide->setIcon(
        QIcon(hidden ? QStringLiteral(":/pic/pwdhide.jpg") : QStringLiteral(":/pic/pwdshow.jpg")));
}
