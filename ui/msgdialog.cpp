// SPDX-License-Identifier: GPL-2.0-or-later
// The one message box of the device: a title, an optional message and one, two or three buttons.
#include "msgdialog.h"

#include "ui_msgdialog.h"

#include <QApplication>
#include <QFontMetrics>
#include <QPainterPath>
#include <QRegion>
#include <QScreen>
#include <QShowEvent>

namespace {

constexpr int kCornerRadius = 16;
// The buttons' text size in the form.
constexpr int kButtonPointSize = 24;
// A long translation may shrink this far, and still be read at arm's length.
constexpr int kSmallestButtonPointSize = 16;
constexpr int kButtonPadding = 8;

// A button shows its text as given: the device has no keyboard, so an "&"
// in a translation must not turn into a mnemonic and vanish.
QString buttonText(QString text)
{
    return text.replace(QLatin1Char('&'), QLatin1String("&&"));
}

} // namespace

MsgDialog::MsgDialog(QWidget *parent)
    : QDialog(parent, Qt::FramelessWindowHint | Qt::Dialog)
    , ui(std::make_unique<Ui::MsgDialog>())
{
    ui->setupUi(this);
    setModal(true);
}

MsgDialog::~MsgDialog() = default;

void MsgDialog::Init(QString title, QString message, QString left, QString middle, QString right)
{
    const bool titleOnly = message.isEmpty();
    ui->labelTitleMsg->setVisible(titleOnly);
    ui->labelTitle->setVisible(!titleOnly);
    ui->labelMsg->setVisible(!titleOnly);
    ui->labelTitleMsg->setText(title);
    ui->labelTitle->setText(title);
    ui->labelMsg->setText(message);

    // The right text counts only once there is a left one: a notice is a
    // single wide button whatever the caller put on the right.
    const bool oneButton = left.isEmpty();
    const bool twoButtons = !oneButton && middle.isEmpty();
    const bool threeButtons = !oneButton && !twoButtons;

    ui->buttonMiddle1->setVisible(oneButton);
    ui->buttonMiddle1->setText(buttonText(middle));

    ui->buttonLeft1->setVisible(twoButtons);
    ui->buttonRight1->setVisible(twoButtons);
    ui->buttonLeft1->setText(buttonText(left));
    ui->buttonRight1->setText(buttonText(right));

    ui->buttonLeft->setVisible(threeButtons);
    ui->buttonMiddle->setVisible(threeButtons);
    ui->buttonRight->setVisible(threeButtons);
    ui->buttonLeft->setText(buttonText(left));
    ui->buttonMiddle->setText(buttonText(middle));
    ui->buttonRight->setText(buttonText(right));

    // A long message (Spanish runs a third longer than English) makes the
    // box taller rather than cutting lines off.
    resize(width(), qMax(minimumHeight(), heightForWidth(width())));
    if (isVisible())
        fitButtonTexts();
}

void MsgDialog::centreOnDeviceScreen(QDialog *dialog)
{
    // Callers pass no parent. On the device the screen is the main window;
    // in the simulator the main window is one window on a larger desktop,
    // and the dialog belongs over it, not in the middle of the desktop.
    QWidget *anchor = dialog->parentWidget() ? dialog->parentWidget()->window() : QApplication::activeWindow();
    QRect area;
    if (anchor && anchor != dialog && anchor->isVisible())
        area = anchor->geometry();
    else if (QScreen *screen = dialog->screen())
        area = screen->geometry();
    else
        return;
    dialog->move(area.x() + (area.width() - dialog->width()) / 2, area.y() + (area.height() - dialog->height()) / 2);
}

void MsgDialog::roundWindowCorners(QWidget *window)
{
    // The screenless platforms (tests, the headless simulator) cannot mask a
    // window and would warn at every resize; nothing lies below it there.
    static const bool screenless = QApplication::platformName() == QLatin1String("offscreen") ||
                                   QApplication::platformName() == QLatin1String("minimal");
    if (screenless)
        return;
    // A mask rather than a translucent window: without a compositor (as on
    // the device, or under Xvfb) translucent corners come out black, while
    // masked ones show the page below.
    QPainterPath path;
    path.addRoundedRect(QRectF(window->rect()), kCornerRadius, kCornerRadius);
    window->setMask(QRegion(path.toFillPolygon().toPolygon()));
}

void MsgDialog::showEvent(QShowEvent *event)
{
    if (!event->spontaneous() && !testAttribute(Qt::WA_Moved))
        centreOnDeviceScreen(this);
    QDialog::showEvent(event);
    fitButtonTexts();
}

void MsgDialog::resizeEvent(QResizeEvent *event)
{
    roundWindowCorners(this);
    QDialog::resizeEvent(event);
}

void MsgDialog::fitButtonTexts()
{
    // The buttons share the width equally; a label that does not fit (two
    // Spanish words on a third of the box) makes the row's font smaller
    // rather than being cut, and the row keeps one size.
    layout()->activate();
    fitButtonFont(findChildren<QPushButton *>(), kButtonPointSize);
}

void MsgDialog::fitButtonFont(const QList<QPushButton *> &buttons, int pointSize)
{
    int size = pointSize;
    for (QPushButton *button : buttons) {
        if (button->isHidden())
            continue;
        QFont font = button->font();
        font.setPointSize(size);
        const int room = button->width() - 2 * kButtonPadding;
        while (size > kSmallestButtonPointSize && QFontMetrics(font).horizontalAdvance(button->text()) > room)
            font.setPointSize(--size);
    }
    // A button's own sheet outranks the form's, and only the size changes.
    const QString sheet = size == pointSize ? QString() : QStringLiteral("font-size: %1pt;").arg(size);
    for (QPushButton *button : buttons) {
        if (button->styleSheet() != sheet)
            button->setStyleSheet(sheet);
    }
}

void MsgDialog::on_buttonLeft_clicked()
{
    on_buttonLeft1_clicked();
}

void MsgDialog::on_buttonMiddle_clicked()
{
    on_buttonMiddle1_clicked();
}

void MsgDialog::on_buttonRight_clicked()
{
    on_buttonRight1_clicked();
}

void MsgDialog::on_buttonLeft1_clicked()
{
    result = 0;
    close();
}

void MsgDialog::on_buttonMiddle1_clicked()
{
    result = 1;
    close();
}

void MsgDialog::on_buttonRight1_clicked()
{
    result = 2;
    close();
}

// The pressed look comes from the form's style sheet; nothing else reacts to
// a press or a release, only to the click.
void MsgDialog::on_buttonLeft_pressed()
{
}

void MsgDialog::on_buttonLeft_released()
{
}

void MsgDialog::on_buttonMiddle_pressed()
{
}

void MsgDialog::on_buttonMiddle_released()
{
}

void MsgDialog::on_buttonRight_pressed()
{
}

void MsgDialog::on_buttonRight_released()
{
}

void MsgDialog::on_buttonLeft1_pressed()
{
}

void MsgDialog::on_buttonLeft1_released()
{
}

void MsgDialog::on_buttonMiddle1_pressed()
{
}

void MsgDialog::on_buttonMiddle1_released()
{
}

void MsgDialog::on_buttonRight1_pressed()
{
}

void MsgDialog::on_buttonRight1_released()
{
}
