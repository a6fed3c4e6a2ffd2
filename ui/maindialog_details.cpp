// SPDX-License-Identifier: GPL-2.0-or-later
// MainDialog: the patient-details page (name, sex, birthday) and its keyboards.
#include "maindialog.h"

#include "gdata.h"
#include "keypaddlg.h"
#include "numkeypaddlg.h"
#include "ui_pageinfoinput.h"

#include <QIcon>

namespace {

const char kPromptStyle[] = "color:rgb(48, 48, 48); font-size: 28pt";
const char kTypedStyle[] = "color:rgb(136, 138, 133); font-size: 28pt";

} // namespace

void MainDialog::pageMainInfoInputInit()
{
    g_pData->m_strName.clear();
    g_pData->m_nSex = 1;
    g_pData->m_dateBirthday = QDate(2020, 12, 31);

    uiInfo->editName->setText(tr("Please enter your name"));
    uiInfo->editName->setStyleSheet(QString::fromLatin1(kPromptStyle));

    uiInfo->buttonMale->setIcon(QIcon(QStringLiteral(":/png/mainpage/male@2x.png")));
    uiInfo->buttonFemale->setIcon(QIcon(QStringLiteral(":/png/mainpage/female1@2x.png")));

    uiInfo->editDate->setText(tr("Year-Month-Date"));
    uiInfo->editYear->setText(tr("Year"));
    uiInfo->editMonth->setText(tr("Month"));
    uiInfo->editDay->setText(tr("Day"));
    for (QLineEdit *edit : {uiInfo->editDate, uiInfo->editYear, uiInfo->editMonth, uiInfo->editDay})
        edit->setStyleSheet(QString::fromLatin1(kPromptStyle));
}

void MainDialog::on_buttonMale_clicked()
{
    g_pData->m_nSex = 1;
    uiInfo->buttonMale->setIcon(QIcon(QStringLiteral(":/png/mainpage/male@2x.png")));
    uiInfo->buttonFemale->setIcon(QIcon(QStringLiteral(":/png/mainpage/female1@2x.png")));
}

void MainDialog::on_buttonFemale_clicked()
{
    g_pData->m_nSex = 0;
    uiInfo->buttonMale->setIcon(QIcon(QStringLiteral(":/png/mainpage/male1@2x.png")));
    uiInfo->buttonFemale->setIcon(QIcon(QStringLiteral(":/png/mainpage/female@2x.png")));
}

void MainDialog::editNamePressed()
{
    // Only the prompt is cleared: a second press keeps what was typed.
    if (uiInfo->editName->text() == tr("Please enter your name")) {
        uiInfo->editName->clear();
        uiInfo->editName->setStyleSheet(QString::fromLatin1(kTypedStyle));
    }
    KeypadDlg keypad;
    keypad.setTarget(uiInfo->editName);
    // Device coordinates; in the simulator the device is a window somewhere on a desktop.
    keypad.move(mapToGlobal(QPoint(0, 350)));
    keypad.exec();
}

void MainDialog::editDatePressed()
{
    if (uiInfo->editDate->text() == tr("Year-Month-Date")) {
        uiInfo->editDate->clear();
        uiInfo->editDate->setStyleSheet(QString::fromLatin1(kTypedStyle));
    }
    NumKeypadDlg keypad;
    keypad.setTarget(uiInfo->editDate);
    keypad.move(mapToGlobal(QPoint(0, 240)));
    keypad.exec();

    g_pData->m_dateBirthday = QDate::fromString(uiInfo->editDate->text(), QStringLiteral("yyyy-MM-dd"));
    showDateParts();
    if (!g_pData->m_dateBirthday.isValid())
        showMessage(tr("Error"), tr("Date is not valid!"), QString(), tr("OK"), QString());
}

void MainDialog::showDateParts()
{
    // The three boxes repeat a valid birthday's parts so a slip such as a
    // swapped month and day is easy to see.
    const QDate &date = g_pData->m_dateBirthday;
    if (!date.isValid())
        return;
    uiInfo->editYear->setText(QString::number(date.year()));
    uiInfo->editMonth->setText(QString::number(date.month()));
    uiInfo->editDay->setText(QString::number(date.day()));
    for (QLineEdit *edit : {uiInfo->editYear, uiInfo->editMonth, uiInfo->editDay})
        edit->setStyleSheet(QString::fromLatin1(kTypedStyle));
}

void MainDialog::retranslateDetailPrompts()
{
    // A field in the prompt's style shows its prompt; anything else was typed
    // and stays. The name field's press handler recognises its prompt by the
    // text, so the prompt must be the one of the language in force.
    const auto prompt = [](QLineEdit *edit, const QString &text) {
        if (edit->styleSheet() == QLatin1String(kPromptStyle))
            edit->setText(text);
    };
    prompt(uiInfo->editName, tr("Please enter your name"));
    prompt(uiInfo->editDate, tr("Year-Month-Date"));
    prompt(uiInfo->editYear, tr("Year"));
    prompt(uiInfo->editMonth, tr("Month"));
    prompt(uiInfo->editDay, tr("Day"));
}
