// SPDX-License-Identifier: GPL-2.0-or-later
// The one message box of the device: a title, an optional message and one, two or three buttons.
#pragma once

#include <QDialog>
#include <QList>

#include <memory>

class QPushButton;

namespace Ui {
class MsgDialog;
}

class MsgDialog : public QDialog
{
    Q_OBJECT

public:
    explicit MsgDialog(QWidget *parent = nullptr);
    ~MsgDialog() override;

    // An empty message shows the title alone, large. The buttons follow the
    // left and middle texts: no left text gives one wide button with the
    // middle text; a left text without a middle text gives left and right;
    // both give all three. Texts arrive translated.
    void Init(QString title, QString message, QString left, QString middle, QString right);

    // Moves a frameless dialog that nobody placed to the middle of the
    // device's screen; shared by the small dialogs.
    static void centreOnDeviceScreen(QDialog *dialog);
    // Clips a window to its rounded frame so that the page shows at the
    // corners; to be called whenever the window's size changes.
    static void roundWindowCorners(QWidget *window);
    // Gives the buttons one font size, the form's pointSize or less, at
    // which every shown label fits its button; call once they are laid out.
    static void fitButtonFont(const QList<QPushButton *> &buttons, int pointSize);

    // 0 left, 1 middle, 2 right; -1 until a button is pressed.
    int result = -1;

protected:
    void showEvent(QShowEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private slots:
    void on_buttonLeft_clicked();
    void on_buttonMiddle_clicked();
    void on_buttonRight_clicked();
    void on_buttonLeft1_clicked();
    void on_buttonMiddle1_clicked();
    void on_buttonRight1_clicked();

    void on_buttonLeft_pressed();
    void on_buttonLeft_released();
    void on_buttonMiddle_pressed();
    void on_buttonMiddle_released();
    void on_buttonRight_pressed();
    void on_buttonRight_released();
    void on_buttonLeft1_pressed();
    void on_buttonLeft1_released();
    void on_buttonMiddle1_pressed();
    void on_buttonMiddle1_released();
    void on_buttonRight1_pressed();
    void on_buttonRight1_released();

private:
    void fitButtonTexts();

    std::unique_ptr<Ui::MsgDialog> ui;
};
